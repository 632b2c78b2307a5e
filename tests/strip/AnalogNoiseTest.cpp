// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/AnalogNoise.h"

#include "dsp/InstructionSets.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <array>

namespace tarvik::test
{
namespace
{
using Rows = std::array<Signal, 2>;

Rows run (AnalogNoise& noise, std::size_t length, const std::vector<int>& pieces = { 256 })
{
    Rows rows { Signal (length), Signal (length) };
    noise.prepare (48000.0, 2, 256);
    inPieces (length, pieces,
              [&] (std::size_t begin, int n)
              {
                  const std::array<float*, 2> pointers { rows[0].data() + begin, rows[1].data() + begin };
                  noise.process (pointers.data(), n);
              });
    return rows;
}

/** Mean of a[i] b[i + lag], relative to that of a[i]^2 for uniform noise. */
double correlation (const Signal& a, const Signal& b, std::size_t lag, float range)
{
    auto sum = 0.0;

    for (std::size_t i = 0; i + lag < a.size(); ++i)
        sum += static_cast<double> (a[i]) * static_cast<double> (b[i + lag]);

    return 3.0 * sum / (static_cast<double> (a.size()) * std::pow (static_cast<double> (range), 2.0));
}

TEST (AnalogNoise, IsUniformWhiteAndDifferentOnEveryChannel)
{
    constexpr std::size_t numSamples = 1 << 20;
    constexpr double fiveSigma = 5.0 / 1024.0; // of a mean of 2^20 independent numbers of variance 1

    for (const auto range : { AnalogNoise::inputRange, AnalogNoise::outputRange })
    {
        AnalogNoise noise (range, 1);
        const auto rows = run (noise, numSamples);

        for (const auto& row : rows)
        {
            const auto [lowest, highest] = std::minmax_element (row.begin(), row.end());
            EXPECT_NEAR (*lowest, -0.99995f * range, 0.00005f * range); // near the end, but not beyond
            EXPECT_NEAR (*highest, 0.99995f * range, 0.00005f * range);

            for (std::size_t lag = 0; lag <= 32; ++lag)
                EXPECT_NEAR (correlation (row, row, lag, range), lag == 0 ? 1.0 : 0.0, fiveSigma) << lag;
        }

        for (std::size_t lag = 0; lag <= 16; ++lag)
            EXPECT_NEAR (correlation (rows[0], rows[1], lag, range), 0.0, fiveSigma) << lag;
    }
}

TEST (AnalogNoise, StartsDifferButASeedFixesThem)
{
    AnalogNoise seven (AnalogNoise::outputRange, 7), eight (AnalogNoise::outputRange, 8);
    const auto fixed = run (seven, 5000);
    EXPECT_NE (run (eight, 5000), fixed);

    for (const auto& set : supportedInstructionSets())
    {
        const ScopedInstructionSet forced (set);
        EXPECT_EQ (run (seven, 5000, { 1, 256, 3, 8, 13 }), fixed) << set.name;
    }

    Signal starts;

    for (int i = 0; i < 20; ++i) // many within one tick of the clock
    {
        AnalogNoise noise (AnalogNoise::outputRange);

        for (const auto& row : run (noise, 16))
            starts.insert (starts.end(), row.begin(), row.end());
    }

    std::sort (starts.begin(), starts.end());
    EXPECT_EQ (std::adjacent_find (starts.begin(), starts.end()), starts.end());
}
} // namespace
} // namespace tarvik::test
