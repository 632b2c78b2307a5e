// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/HarmonicTable.h"
#include "strip/SaturationShaper.h"
#include "tools/clicks/MovedStrip.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>

namespace tarvik::clicks
{

namespace
{
/** Harmonics below this part of full scale are left out: 32 bits round there. */
constexpr double quietest = 1e-5;

/** Of all harmonics of all rows of the table, the largest deviation, as a part of the harmonic in the table. */
double largestDeviation (int factor, int hz)
{
    const auto second = static_cast<int> (rateHz) * factor; // samples; whole periods of every tone
    const auto radians = 2.0 * std::numbers::pi * hz / second;
    constexpr int pieceLength = 256;
    const Signal scale (pieceLength, 1.0f);
    auto largest = 0.0;

    for (const auto& row : HarmonicTable::rows)
    {
        SaturationShaper shaper;
        auto* const pointer = &shaper;
        Signal tone (static_cast<std::size_t> (2 * second));

        for (std::size_t i = 0; i < tone.size(); ++i)
            tone[i] = static_cast<float> (static_cast<double> (row.amplitude) * SaturationShaper::unit
                                          * std::cos (radians * static_cast<double> (i)));

        for (int done = 0; done < 2 * second; done += pieceLength)
        {
            auto* const piece = tone.data() + done;
            SaturationShaper::process (std::span (&pointer, 1), &piece, scale.data(),
                                       std::min (pieceLength, 2 * second - done));
        }

        for (std::size_t k = 0; k < row.harmonics.size(); ++k)
        {
            const auto step = radians * static_cast<double> (k + HarmonicTable::firstHarmonic);
            std::complex<double> sum;

            for (int i = second; i < 2 * second; ++i)
                sum += static_cast<double> (tone[static_cast<std::size_t> (i)]) * std::polar (1.0, -step * i);

            const auto wanted = static_cast<double> (row.harmonics[k]);
            const auto got = 2.0 * std::abs (sum) / (second * SaturationShaper::unit);

            if (std::abs (wanted) > quietest)
                largest = std::max (largest, std::abs (got / std::abs (wanted) - 1.0));
        }
    }

    return largest;
}
} // namespace

bool printHarmonicErrors (std::FILE* table)
{
    constexpr std::array tonesHz { 50, 100, 200, 1000 };
    std::fprintf (table,
                  "Largest deviation of a single harmonic, 2nd to 7th, of a sine at the table's amplitudes from the\n"
                  "table, in per cent of the harmonic, at a host's rate of 48 kHz; those above -100 dB\n\n"
                  "Factor");

    for (const auto hz : tonesHz)
        std::fprintf (table, "%6d Hz", hz);

    for (const auto factor : { 1, 2, 4, 8, 16 })
    {
        std::fprintf (table, "\n%6d", factor);

        for (const auto hz : tonesHz)
            std::fprintf (table, "%9.2f", 100.0 * largestDeviation (factor, hz));

        std::fflush (table);
    }

    std::fprintf (table, "\n");
    return true;
}

} // namespace tarvik::clicks
