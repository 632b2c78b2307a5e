// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ListCommand.h"

#include "plugin/ParameterTable.h"
#include "tools/LayoutList.h"
#include "tools/ModuleHost.h"
#include "tools/ParameterArguments.h"

#include <iostream>

namespace tarvik
{

namespace
{
juce::String column (const juce::String& text, int width) { return text.paddedRight (' ', width); }

void printParameters (const ModuleHost& host)
{
    constexpr int idWidth = 18, nameWidth = 26, defaultWidth = 12, unitWidth = 6;

    std::cout << column ("ID", idWidth) << column ("Name", nameWidth) << column ("Default", defaultWidth)
              << column ("Unit", unitWidth) << "Values\n";

    for (int index = 0; index < numParameters; ++index)
    {
        const auto& row = parameterTable()[static_cast<std::size_t> (index)];

        // Nothing has been set, so the present value is the default.
        std::cout << column (row.id, idWidth) << column (row.name, nameWidth)
                  << column (withUnit (index, host.parameterText (index)), defaultWidth)
                  << column (unitOf (index), unitWidth) << describeValues (index) << '\n';
    }
}

void printPrograms (const ModuleHost& host)
{
    constexpr int numberWidth = 4;
    const auto names = host.programNames();
    std::cout << "\nPrograms\n";

    for (int i = 0; i < names.size(); ++i)
        std::cout << juce::String (i).paddedLeft (' ', numberWidth) << "  " << names[i] << '\n';
}
} // namespace

void listModule (const CommandLine& line)
{
    if (line.listKind == "layout")
    {
        std::cout << layoutAsJson() << '\n';
        return;
    }

    constexpr double anyRate = 48000.0; // the latency in samples is the same at every rate
    ModuleHost host (ModuleHost::findBundle (line.modulePath));
    host.prepare (anyRate, line.blockSize);

    printParameters (host);
    printPrograms (host);

    std::cout << "\nBuses\n";

    for (const auto& bus : host.describeBuses())
        std::cout << "  " << bus << '\n';

    std::cout << "\nLatency: " << host.latency() << " samples\nVersion: " << host.versionText() << '\n';
}

} // namespace tarvik
