// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/ParameterTable.h"
#include "tools/clicks/MovedStrip.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace tarvik::clicks
{

namespace
{
constexpr std::array blockSizes { 32, 1, 64, 256, 441, 4096 }; ///< The first is what the others are compared with.

/** Samples from change to change: a stretch of steady automation, then gaps that end within a crossfade, within what
    rings on after it, at its very end, and long after. */
constexpr std::array gaps { 1024, 1024, 1024,  1024, 1024, 1024, 1024, 1024, 1024, 1024, 1024, 1024, 3333,
                            4800, 5300, 12000, 7001, 9600, 2000, 1,    4799, 5280, 9601, 4000, 14000 };

/** Where on its travel the parameter goes, in turn. */
constexpr std::array places { 0.0f, 1.0f, 0.3f, 0.7f, 0.45f, 0.1f, 0.9f, 0.5f };

Signal render (int parameter, int blockSize, Settings settings, int numChannels, int factor)
{
    MovedStrip strip (settings, numChannels, factor);
    Signal output;
    std::size_t change = 0;

    for (const auto gap : gaps)
    {
        strip.set (parameter, places[change++ % places.size()]);
        strip.run (gap, blockSize, output);
    }

    return output;
}

/** Of two renders, as a share of the louder peak. */
double largestDifference (const Signal& a, const Signal& b)
{
    float difference = 0.0f, peak = 0.0f;

    for (std::size_t i = 0; i < a.size(); ++i)
    {
        difference = std::max (difference, std::abs (a[i] - b[i]));
        peak = std::max ({ peak, std::abs (a[i]), std::abs (b[i]) });
    }

    return difference == 0.0f ? 0.0 : static_cast<double> (difference / peak);
}
} // namespace

bool printBlockTable (std::FILE* table)
{
    std::fprintf (table,
                  "Largest difference from blocks of %d, dB of peak; every parameter moved in turn; the worst of mono\n"
                  "and stereo, factors 1, 2 and 4, from the defaults and with everything at work.\n\n%-18s",
                  blockSizes[0], "");

    for (std::size_t b = 1; b < blockSizes.size(); ++b)
        std::fprintf (table, "%8d", blockSizes[b]);

    std::fprintf (table, "\n");
    auto numEqual = 0;

    for (int parameter = 0; parameter < numParameters; ++parameter)
    {
        std::array<double, blockSizes.size()> worst {};

        for (const auto settings : { Settings::defaults, Settings::everythingAtWork })
            for (const auto numChannels : { 1, 2 })
                for (const auto factor : { 1, 2, 4 })
                {
                    const auto reference = render (parameter, blockSizes[0], settings, numChannels, factor);

                    for (std::size_t b = 1; b < blockSizes.size(); ++b)
                        worst[b] =
                            std::max (worst[b], largestDifference (reference, render (parameter, blockSizes[b],
                                                                                      settings, numChannels, factor)));
                }

        std::fprintf (table, "%-18s", parameterRow (parameter).id);

        for (std::size_t b = 1; b < blockSizes.size(); ++b)
            if (worst[b] > 0.0)
                std::fprintf (table, "%8.1f", 20.0 * std::log10 (worst[b]));
            else
                std::fprintf (table, "%8s", "equal");

        std::fprintf (table, "\n");
        std::fflush (table);
        numEqual += std::all_of (worst.begin(), worst.end(), [] (double w) { return w == 0.0; });
    }

    std::fprintf (table, "\n%d of %d parameters equal\n", numEqual, numParameters);
    return numEqual == numParameters;
}

} // namespace tarvik::clicks
