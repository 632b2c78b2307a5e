// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/NeedleMeter.h"

#include "strip/ParameterSnapshot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace tarvik
{
namespace
{
/** `seconds` of a 997 Hz sine, fed in rows of n. Returns the largest reading on the way. */
float feed (NeedleMeter& meter, double amplitude, double seconds, double rateHz, int n = 200)
{
    std::vector<float> row (static_cast<std::size_t> (n));
    const auto total = static_cast<std::size_t> (seconds * rateHz);
    auto largest = -100.0f;

    for (std::size_t done = 0; done < total; done += row.size())
    {
        for (std::size_t i = 0; i < row.size(); ++i)
            row[i] = static_cast<float> (
                amplitude * std::sin (2.0 * std::numbers::pi * 997.0 * static_cast<double> (done + i) / rateHz));

        const auto* const mono = row.data();
        meter.process (&mono, 1, n);
        largest = std::max (largest, meter.getReading());
    }

    return largest;
}
} // namespace

TEST (NeedleMeter, ASineAtMinus18ReadsZeroVu)
{
    const auto zeroVu = ParameterSnapshot::defaultCalibration * std::pow (10.0, -18.0 / 20.0);

    for (const auto rateHz : { 44100.0, 48000.0, 192000.0 })
        for (const auto n : { 1, 256, 1000 })
        {
            NeedleMeter meter;
            meter.prepare (rateHz);
            EXPECT_LT (meter.getReading(), 0.0f) << "nothing has been measured";

            // The needle takes a fraction of a second, and swings a little past: 1.2 % for a Q of 0.615.
            feed (meter, zeroVu, 0.1, rateHz, n);
            EXPECT_LT (meter.getReading(), 0.6f);
            const auto largest = feed (meter, zeroVu, 3.0, rateHz, n);
            EXPECT_NEAR (meter.getReading(), 1.0f, 1e-3f) << rateHz << " " << n;
            EXPECT_NEAR (largest, 1.0124f, 0.001f);

            feed (meter, 0.1 * zeroVu, 3.0, rateHz, n);
            EXPECT_NEAR (meter.getReading(), 0.1f, 1e-3f);
        }
}

TEST (NeedleMeter, TwoChannelsShowTheMagnitudeOfTheirMean)
{
    const std::vector<float> up (300, 0.5f), down (300, -0.5f), silent (300, 0.0f);
    const auto read = [&] (const std::vector<float>& left, const std::vector<float>& right)
    {
        NeedleMeter meter;
        meter.prepare (48000.0);
        const float* const channels[] = { left.data(), right.data() };
        meter.process (channels, 2, 300);
        return meter.getReading();
    };

    EXPECT_GT (read (up, up), 0.001f);
    EXPECT_FLOAT_EQ (read (up, silent), 0.5f * read (up, up));
    EXPECT_FLOAT_EQ (read (down, down), read (up, up));
    EXPECT_EQ (read (up, down), 0.0f);
}

TEST (NeedleMeter, RecoversFromBadSamples)
{
    NeedleMeter meter;
    meter.prepare (48000.0);
    feed (meter, 1.0, 1.0, 48000.0);
    using Limits = std::numeric_limits<float>;
    const std::vector<float> bad { Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity() };
    const std::vector<float> good (bad.size(), 1.0f);
    const float* const stereo[] = { bad.data(), good.data() };
    meter.process (stereo, 2, 3);
    EXPECT_TRUE (std::isfinite (meter.getReading()));
    feed (meter, 1.0, 1.0, 48000.0);
    EXPECT_NEAR (meter.getReading(), 1.433934f * 2.0f / 3.141593f, 2e-3f);

    meter.prepare (48000.0);
    EXPECT_LT (meter.getReading(), 0.0f);
    feed (meter, 0.0, 0.1, 48000.0);
    EXPECT_EQ (meter.getReading(), 0.0f) << "a new start has no memory";
}
} // namespace tarvik
