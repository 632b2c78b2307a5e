// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/EqualiserComponents.h"
#include "dsp/EqualiserNetwork.h"
#include "plugin/ParameterTable.h"
#include "strip/EqualiserSection.h"
#include "strip/HarmonicTable.h"
#include "tools/Commands.h"
#include "tools/LayoutList.h"
#include "tools/ModuleHost.h"
#include "tools/ParameterArguments.h"
#include "tools/ToolError.h"

#include <iostream>
#include <limits>
#include <string>
#include <utility>

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
        const auto& row = parameterRow (index);

        // Nothing has been set, so the current value is the default.
        std::cout << column (row.id, idWidth) << column (row.name, nameWidth)
                  << column (withUnit (index, host.parameterText (index)), defaultWidth) << column (row.unit, unitWidth)
                  << describeValues (index) << '\n';
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

void printHarmonics()
{
    for (const auto& row : HarmonicTable::rows)
    {
        std::cout << row.amplitude;

        for (const auto harmonic : row.harmonics)
            std::cout << '\t' << harmonic;

        std::cout << '\n';
    }
}

/** What the equaliser's circuit is set to by a line of settings, and by the defaults of what the line leaves out. */
EQControls controlsOf (const juce::String& line)
{
    ParameterSnapshot snapshot;

    auto words = juce::StringArray::fromTokens (line, "\t", {});
    words.removeEmptyStrings();

    for (const auto& [index, normalised] : parseParameterSettings (words))
        fieldForParameter (snapshot, index).set (createParameter (index)->convertFrom0to1 (normalised));

    return equaliserControls (snapshot, snapshot.tolChannel - 1);
}

void printNetworks()
{
    ComponentTable components (equaliserComponents);

    for (std::string line; std::getline (std::cin, line);)
    {
        const auto controls = controlsOf (juce::String::fromUTF8 (line.c_str()));
        components.setActiveChannel (controls.toleranceChannel);
        const auto [numerator, denominator] = solveEqualiserNetwork (components, controls);
        const auto* separator = "";
        std::cout.precision (std::numeric_limits<double>::max_digits10);

        for (const auto& polynomial : { numerator, denominator })
            for (const auto coefficient : polynomial)
                std::cout << std::exchange (separator, "\t") << coefficient;

        std::cout << '\n';
    }
}

void printModule (const CommandLine& line)
{
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
} // namespace

void listModule (const CommandLine& line)
{
    const auto& kind = line.inputPath;

    if (kind.isEmpty())
        printModule (line);
    else if (kind == "layout")
        std::cout << layoutAsJson() << '\n';
    else if (kind == "harmonics")
        printHarmonics();
    else if (kind == "network")
        printNetworks();
    else
        throw ToolError ("there is no list '" + kind + "', only layout, harmonics and network");
}

} // namespace tarvik
