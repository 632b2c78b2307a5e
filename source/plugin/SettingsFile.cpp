// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/SettingsFile.h"

namespace tarvik
{

namespace
{
constexpr const char* folder = "Tarvik Plugins";

/** Where the user's settings are if no variable says otherwise. */
juce::File usualBase()
{
#if JUCE_WINDOWS
    return juce::File::getSpecialLocation (juce::File::userApplicationDataDirectory);
#else
    return juce::File::getSpecialLocation (juce::File::userHomeDirectory).getChildFile (".config");
#endif
}

/** JUCE on Linux would put a relative folder, unhidden, into the home folder; it takes an absolute one as it is. */
juce::String settingsFolder()
{
    const auto configured = juce::SystemStats::getEnvironmentVariable ("XDG_CONFIG_HOME", {});
    const auto base = juce::File::isAbsolutePath (configured) ? juce::File (configured) : usualBase();
    return base.getChildFile (folder).getFullPathName();
}
} // namespace

juce::PropertiesFile::Options settingsFileOptions()
{
    juce::PropertiesFile::Options options;
    options.applicationName = "Tarvik 41 Channel";
    options.filenameSuffix = "settings";
    options.folderName = settingsFolder();
    options.osxLibrarySubFolder = "Application Support";
    return options;
}

} // namespace tarvik
