// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ConsoleEQ.h"
#include "tools/clicks/MovedStrip.h"
#include "tools/clicks/SteepHighPass.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarvik::clicks
{

namespace
{
constexpr double edgeHz = 300.0;

struct Change
{
    const char* name;
    double toneHz; ///< 0 is a constant of 1
    EQControls before, after;
};

const std::array changes {
    Change { "61 Hz boost to flat, 61 Hz tone", 61.0, { .lowFreq = 3, .lowGain = 1.0f }, { .lowFreq = 3 } },
    Change { "40 Hz high pass off, 40 Hz tone", 40.0, { .highPass = 1 }, {} },
    Change { "Low cut moved, constant 1", 0.0, { .lowFreq = 4 }, { .lowFreq = 5 } },
};

/** The largest sample above 300 Hz from the change on, for a crossfade that nothing follows, or one behind which the
    next change waits already. The makeup gain is counted. */
double peakAfter (const Change& change, bool isHurried)
{
    ConsoleEQ equaliser;
    equaliser.update (change.before, true);
    equaliser.prepare (rateHz, KVLProcessor::sliceSize);
    SteepHighPass highPass (edgeHz / rateHz);
    const auto length = static_cast<int> (rateHz), begin = length / 2;
    double peak = 0.0;

    for (int i = 0; i < length; ++i)
    {
        if (i == begin)
            equaliser.update (change.after, false);

        if (isHurried && i == begin + 1000)
            equaliser.update (change.before, false);

        auto sample = change.toneHz > 0.0
                          ? static_cast<float> (std::sin (2.0 * std::numbers::pi * change.toneHz * i / rateHz))
                          : 1.0f;
        equaliser.process (&sample, 1);
        const auto above = highPass.step (static_cast<double> (sample) * ConsoleEQ::makeupGain);

        if (i >= begin)
            peak = std::max (peak, std::abs (above));
    }

    return 20.0 * std::log10 (peak);
}
} // namespace

bool printTailTable (std::FILE* table)
{
    std::fprintf (table,
                  "What a crossfade leaves above 300 Hz, dBFS of the largest sample; and if the next change waits\n\n");

    for (const auto& change : changes)
        std::fprintf (table, "%-36s%8.1f%8.1f\n", change.name, peakAfter (change, false), peakAfter (change, true));

    return true;
}

} // namespace tarvik::clicks
