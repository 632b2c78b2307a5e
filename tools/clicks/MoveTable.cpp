// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/ParameterTable.h"
#include "tools/clicks/MovedStrip.h"
#include "tools/clicks/SteepHighPass.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace tarvik::clicks
{

namespace
{
constexpr double edgeHz = 8000.0, lowestDb = -199.0;
constexpr int blockSize = 64, slowness = 10;
constexpr int lineSamples = 96000, numSwitches = 8;

/** Whole blocks, and a part of the tone's period over, ten times as slowly too: what a switch leaves depends on where in
    the tone it falls. */
constexpr int switchSamples = 188 * blockSize;

/** More than this over the slow passage is marked. */
constexpr double limitDb = 3.0;

double toDb (double power) { return std::max (10.0 * std::log10 (power + 1e-30), lowestDb); }

/** Above 8 kHz: the energy of the whole passage, as seconds of full scale squared, and the loudest 10 ms. */
struct Loudness
{
    double energyDb = 0.0;
    double loudestDb = 0.0;
};

/** The parameter moves over its travel as a line, or to its ends in turn, `times` as slowly. */
Loudness measure (int parameter, bool isSwitched, int times)
{
    const auto isExpanders = std::string_view (parameterRow (parameter).id).starts_with ("exp");
    MovedStrip strip (isExpanders ? Settings::closedGate : Settings::everythingAtWork, 1, 1);
    SteepHighPass highPass (edgeHz / rateHz);
    Signal piece;
    strip.set (parameter, 0.0f);
    strip.run (static_cast<int> (rateHz), blockSize, piece);

    for (const auto sample : piece)
        highPass.step (static_cast<double> (sample));

    constexpr auto window = static_cast<int> (0.01 * rateHz);
    double sum = 0.0, sumOfWindow = 0.0, loudest = 0.0;
    const auto length = times * (isSwitched ? switchSamples * numSwitches : lineSamples);

    for (int done = 0, inWindow = 0; done < length; done += blockSize)
    {
        const auto share = static_cast<float> (done) / static_cast<float> (length);
        strip.set (parameter, isSwitched ? static_cast<float> (1 - done / (times * switchSamples) % 2) : share);
        piece.clear();
        strip.run (blockSize, blockSize, piece);

        for (const auto sample : piece)
        {
            const auto above = highPass.step (static_cast<double> (sample));
            sum += above * above;
            sumOfWindow += above * above;

            if (++inWindow == window)
            {
                loudest = std::max (loudest, sumOfWindow / window);
                sumOfWindow = inWindow = 0;
            }
        }
    }

    return { toDb (sum / rateHz), toDb (loudest) };
}
} // namespace

bool printMoveTable (std::FILE* table)
{
    std::fprintf (table,
                  "Above 8 kHz under a tone of 100 Hz: energy of the passage, dB of a second at full scale, and the\n"
                  "loudest 10 ms, dBFS, each fast (2 s from end to end, or 4 positions a second) and ten times as\n"
                  "slowly. Mono, factor 1, everything at work; the expander's under a tone of -50 dBFS that its\n"
                  "gate keeps out.\n\n"
                  "%-18s%-8s%9s%9s%8s%12s%9s\n",
                  "", "", "fast", "slow", "by", "fast 10 ms", "slow");
    auto holds = true;

    for (int parameter = 0; parameter < numParameters; ++parameter)
    {
        const auto& row = parameterRow (parameter);
        const auto hasPositions = row.kind == ParameterFieldKind::Bool || row.kind == ParameterFieldKind::Choice;

        for (const auto isSwitched : { false, true })
        {
            if (isSwitched ? ! hasPositions : row.kind == ParameterFieldKind::Bool)
                continue;

            const auto fast = measure (parameter, isSwitched, 1), slow = measure (parameter, isSwitched, slowness);
            const auto excessDb = fast.energyDb - slow.energyDb;
            std::fprintf (table, "%-18s%-8s%9.1f%9.1f%8.1f%12.1f%9.1f%s\n", row.id, isSwitched ? "switch" : "line",
                          fast.energyDb, slow.energyDb, excessDb, fast.loudestDb, slow.loudestDb,
                          excessDb > limitDb ? "  *" : "");
            std::fflush (table);
            holds = holds && excessDb <= limitDb;
        }
    }

    return holds;
}

} // namespace tarvik::clicks
