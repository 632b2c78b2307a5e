// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ScratchSettings.h"

#include "plugin/SettingsFile.h"
#include "tools/ToolError.h"

#include <cstdlib>

namespace tarvik
{

namespace
{
constexpr const char* variable = "XDG_CONFIG_HOME";
} // namespace

ScratchSettings::ScratchSettings (int oversamplingFactor)
    : folder (juce::File::createTempFile ("tarvik-settings")),
      configBefore (juce::SystemStats::getEnvironmentVariable (variable, {}))
{
    ::setenv (variable, folder.getFullPathName().toRawUTF8(), 1);

    juce::PropertiesFile file (settingsFileOptions());
    file.setValue ("Analog", false);
    file.setValue ("Oversampling", oversamplingFactor);

    if (! file.save())
        throw ToolError ("cannot write settings to '" + folder.getFullPathName() + "'");
}

ScratchSettings::~ScratchSettings()
{
    if (configBefore.isEmpty())
        ::unsetenv (variable);
    else
        ::setenv (variable, configBefore.toRawUTF8(), 1);

    folder.deleteRecursively();
}

} // namespace tarvik
