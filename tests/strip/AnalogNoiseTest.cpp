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

TEST (AnalogNoise, IsUniformWhiteAndDifferentOnEveryChannel)
{
    constexpr std::size_t numSamples = 1 << 20;
    constexpr double fiveSigma = 5.0 / 1024.0; // of a mean of 2^20 independent numbers of variance 1
    constexpr auto range = AnalogNoise::outputRange;
    AnalogNoise noise (range, 1);
    const auto rows = run (noise, numSamples);
    const auto [lowest, highest] = std::minmax_element (rows[1].begin(), rows[1].end());
    EXPECT_NEAR (*lowest, -0.99995f * range, 0.00005f * range); // near the end, but not beyond
    EXPECT_NEAR (*highest, 0.99995f * range, 0.00005f * range);

    for (const auto& other : rows)
        for (std::size_t lag = 0; lag <= 32; ++lag)
        {
            auto sum = 0.0; // relative to the variance, range^2 / 3

            for (std::size_t i = 0; i + lag < numSamples; ++i)
                sum += static_cast<double> (rows[1][i] / range) * static_cast<double> (other[i + lag] / range) * 3.0;

            EXPECT_NEAR (sum / numSamples, lag == 0 && &other == &rows[1] ? 1.0 : 0.0, fiveSigma) << lag;
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

    AnalogNoise one (AnalogNoise::outputRange), other (AnalogNoise::outputRange); // within one tick of the clock
    EXPECT_NE (run (one, 16), run (other, 16));
}
} // namespace
} // namespace tarvik::test
