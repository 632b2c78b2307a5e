// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"
#include "tools/ModuleHost.h"
#include "tools/ParameterArguments.h"

#include <ostream>
#include <vector>

namespace tarvik
{

/** What the command line wants the module to be set to. */
class RenderSettings
{
public:
    /** Throws `ToolError` at the first setting that no parameter has; the module is not needed for that. */
    explicit RenderSettings (const CommandLine& commandLine);

    /** Loads the state, then selects the program, then sets the parameters, and reports the last two as the module
        shows them. The module's layout is made before. Throws `ToolError`.
    */
    void apply (ModuleHost& host, std::ostream& report) const;

private:
    const juce::String statePath, program;
    std::vector<ParameterSetting> settings;
};

/** One line of a report, its subject in a column of its own. */
void reportLine (std::ostream& report, const char* subject, const juce::String& text);

} // namespace tarvik
