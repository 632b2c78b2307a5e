// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/InstructionSets.h"
#include "tools/ScratchSettings.h"
#include "tools/clicks/MovedStrip.h"

#include <juce_events/juce_events.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

int main (int argc, char** argv)
{
    using namespace tarvik::clicks;

    struct Table
    {
        std::string_view name;
        bool (*print) (std::FILE*);
    };

    constexpr std::array tables { Table { "blocks", printBlockTable }, Table { "moves", printMoveTable },
                                  Table { "tails", printTailTable }, Table { "harmonics", printHarmonicErrors } };

    const tarvik::ScratchSettings settings;
    setenv ("DISPLAY", ":65000", 1); // no screen is joined

    const juce::ScopedJuceInitialiser_GUI juceRuntime;
    tarvik::selectInstructionSet();
    auto status = 2;

    // Each strip writes a start line to standard output, thousands of them here: the table gets a way of its own.
    auto* const output = fdopen (dup (STDOUT_FILENO), "w");

    if (output == nullptr || std::freopen ("/dev/null", "w", stdout) == nullptr)
        return status;

    for (const auto& table : tables)
        if (argc == 2 && table.name == argv[1])
            status = table.print (output) ? 0 : 1;

    if (status == 2)
        std::fprintf (
            stderr, "tarvik41-clicks TABLE, one of:\n"
                    "  blocks     each parameter automated: whether the size of the host's blocks can be heard\n"
                    "  moves      each parameter moved fast and slowly: what is heard above 8 kHz under a low tone\n"
                    "  tails      what a crossfade leaves above 300 Hz of a full-scale bass tone\n"
                    "  harmonics  the saturation's harmonics against their table, for each oversampling factor\n"
                    "Exit status: 0, 1 if \"blocks\" or \"moves\" finds more than it should, or 2 after a mistake.\n");

    std::fclose (output);
    return status;
}
