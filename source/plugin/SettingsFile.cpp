// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/SettingsFile.h"

namespace tarvik
{

namespace
{
constexpr const char* folder = "Tarvik Plugins";

#if JUCE_LINUX || JUCE_BSD
/** JUCE would put a relative folder, unhidden, into the home folder; it takes an absolute one as it is. */
juce::String settingsFolder()
{
    const auto configured = juce::SystemStats::getEnvironmentVariable ("XDG_CONFIG_HOME", {});
    const auto base = juce::File::isAbsolutePath (configured)
                          ? juce::File (configured)
                          : juce::File::getSpecialLocation (juce::File::userHomeDirectory).getChildFile (".config");
    return base.getChildFile (folder).getFullPathName();
}
#else
juce::String settingsFolder() { return folder; }
#endif
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
