// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/RenderSettings.h"

#include "plugin/ParameterTable.h"
#include "tools/PresetFile.h"

namespace tarvik
{

RenderSettings::RenderSettings (const CommandLine& commandLine)
    : statePath (commandLine.loadStatePath), program (commandLine.program)
{
    for (const auto& assignment : commandLine.assignments)
        settings.push_back (parseParameterSetting (assignment));
}

void RenderSettings::apply (ModuleHost& host, std::ostream& report) const
{
    const auto programIndex = program.isEmpty() ? -1 : host.findProgram (program);

    if (statePath.isNotEmpty())
        host.loadPreset (readStateFile (statePath, classIDOfPreset (host.savePreset())));

    if (programIndex >= 0)
    {
        host.selectProgram (programIndex);
        reportLine (report, "program", host.programNames()[programIndex]);
    }

    for (const auto& setting : settings)
    {
        host.setParameter (setting.index, setting.normalised);
        reportLine (report, "set",
                    juce::String (parameterRow (setting.index).id) + " = "
                        + withUnit (setting.index, host.parameterText (setting.index)));
    }
}

void reportLine (std::ostream& report, const char* subject, const juce::String& text)
{
    constexpr int subjectWidth = 16;
    report << juce::String (subject).paddedRight (' ', subjectWidth) << text << '\n';
}

} // namespace tarvik
