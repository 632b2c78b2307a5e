// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/AnalogNoise.h"

#include "dsp/InstructionSets.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace tarvik
{
namespace
{
using Row = test::Signal;
using Rows = std::array<Row, 2>;
constexpr std::size_t numSamples = 1 << 20;

Rows run (AnalogNoise& noise, std::size_t length, const std::vector<int>& pieces = { 256 })
{
    Rows rows { Row (length), Row (length) };
    noise.prepare (48000.0, 2, 256);
    test::inPieces (length, pieces,
                    [&] (std::size_t begin, int n)
                    {
                        const std::array<float*, 2> pointers { rows[0].data() + begin, rows[1].data() + begin };
                        noise.process (pointers.data(), n);
                    });
    return rows;
}

/** Mean of a[i] b[i + lag], relative to that of a[i]^2 for uniform noise. */
double correlation (const Row& a, const Row& b, std::size_t lag, float range)
{
    auto sum = 0.0;

    for (std::size_t i = 0; i + lag < a.size(); ++i)
        sum += static_cast<double> (a[i]) * static_cast<double> (b[i + lag]);

    return 3.0 * sum / (static_cast<double> (a.size()) * std::pow (static_cast<double> (range), 2.0));
}
} // namespace

TEST (AnalogNoise, IsUniformWhiteAndDifferentOnEveryChannel)
{
    constexpr double fourSigma = 4.0 / 1024.0; // of a mean of 2^20 independent numbers of variance 1

    for (const auto range : { AnalogNoise::inputRange, AnalogNoise::outputRange })
    {
        AnalogNoise noise (range, 1);
        const auto rows = run (noise, numSamples);

        for (const auto& row : rows)
        {
            const auto [lowest, highest] = std::minmax_element (row.begin(), row.end());
            EXPECT_NEAR (*lowest, -0.99995f * range, 0.00005f * range); // near the end, but not beyond
            EXPECT_NEAR (*highest, 0.99995f * range, 0.00005f * range);

            std::array<int, 10> bins {};
            auto mean = 0.0;

            for (const auto x : row)
            {
                mean += static_cast<double> (x) / static_cast<double> (range) / static_cast<double> (row.size());
                ++bins[std::min<std::size_t> (static_cast<std::size_t> ((x / range + 1.0f) * 5.0f), 9)];
            }

            EXPECT_NEAR (mean, 0.0, fourSigma / std::sqrt (3.0));
            EXPECT_NEAR (correlation (row, row, 0, range), 1.0, fourSigma);

            for (const auto count : bins)
                EXPECT_NEAR (count, numSamples / 10.0, 4.0 * std::sqrt (numSamples * 0.09));

            for (std::size_t lag = 1; lag <= 32; ++lag)
                EXPECT_NEAR (correlation (row, row, lag, range), 0.0, 1.25 * fourSigma) << lag;
        }

        for (std::size_t lag = 0; lag <= 16; ++lag)
            EXPECT_NEAR (correlation (rows[0], rows[1], lag, range), 0.0, 1.25 * fourSigma) << lag;
    }
}

TEST (AnalogNoise, StartsDifferButASeedFixesThem)
{
    AnalogNoise seven (AnalogNoise::outputRange, 7), eight (AnalogNoise::outputRange, 8);
    const auto fixed = run (seven, 5000);
    EXPECT_EQ (run (seven, 5000, { 1, 256, 3, 8, 13 }), fixed) << "however the stream is cut";
    EXPECT_NE (run (eight, 5000), fixed);

    for (const auto& set : supportedInstructionSets())
    {
        const ScopedInstructionSet forced (set);
        EXPECT_EQ (run (seven, 5000), fixed) << set.name;
    }

    std::vector<Row> starts;

    for (int i = 0; i < 20; ++i) // many within one tick of the clock
    {
        AnalogNoise noise (AnalogNoise::outputRange);

        for (const auto& rows : { run (noise, 16), run (noise, 16) })
            starts.insert (starts.end(), rows.begin(), rows.end());
    }

    std::sort (starts.begin(), starts.end());
    EXPECT_EQ (std::adjacent_find (starts.begin(), starts.end()), starts.end());
}

TEST (AnalogNoise, AddsToTheSignalAndNothingOnceReleased)
{
    AnalogNoise noise (AnalogNoise::outputRange, 3);
    noise.prepare (48000.0, 1, 256);
    Row row (256, 1.0f);
    auto* const pointer = row.data();
    noise.process (&pointer, 256);
    EXPECT_NE (row, Row (256, 1.0f));
    EXPECT_NEAR (row[0], 1.0f, 1.01f * AnalogNoise::outputRange);

    noise.release();
    const auto before = row;
    noise.process (&pointer, 256);
    EXPECT_EQ (row, before);
}
} // namespace tarvik
