// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/NeedleMeter.h"

#include "dsp/AnalogBiquad.h"
#include "dsp/BiquadCascade.h"
#include "dsp/MZTiCoefs.h"
#include "strip/ParameterSnapshot.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <limits>
#include <numbers>

namespace tarvik
{
namespace
{
using test::Signal;

/** Feeds channels in rows of n. Returns the largest reading on the way. */
float feed (NeedleMeter& meter, const std::vector<Signal>& channels, int n)
{
    auto largest = -100.0f;
    test::inPieces (channels[0].size(), { n },
                    [&] (std::size_t begin, int length)
                    {
                        std::vector<const float*> rows;

                        for (const auto& channel : channels)
                            rows.push_back (channel.data() + begin);

                        meter.process (rows.data(), length);
                        largest = std::max (largest, meter.getReading());
                    });
    return largest;
}
} // namespace

TEST (NeedleMeter, ASineAtMinus18ReadsZeroVu)
{
    const auto zeroVu = ParameterSnapshot::defaultCalibration * std::pow (10.0, -18.0 / 20.0);

    for (const auto rateHz : { 44100.0, 48000.0, 192000.0 })
        for (const auto n : { 1, 256, 1000 })
        {
            const auto feedSine = [&] (NeedleMeter& meter, double amplitude, double seconds)
            { return feed (meter, { test::sine (997.0, amplitude, rateHz, seconds) }, n); };

            NeedleMeter meter;
            meter.prepare (rateHz, 1, n);
            EXPECT_LT (meter.getReading(), 0.0f) << "nothing has been measured";

            // The needle takes a fraction of a second, and swings a little past: 1.2 % for a Q of 0.615.
            feedSine (meter, zeroVu, 0.1);
            EXPECT_LT (meter.getReading(), 0.6f);
            EXPECT_NEAR (feedSine (meter, zeroVu, 3.0), 1.0124f, 0.001f);
            EXPECT_NEAR (meter.getReading(), 1.0f, 1e-3f) << rateHz << " " << n;

            feedSine (meter, 0.1 * zeroVu, 3.0);
            EXPECT_NEAR (meter.getReading(), 0.1f, 1e-3f);
            meter.prepare (rateHz, 1, n);
            EXPECT_LT (meter.getReading(), 0.0f);
            feedSine (meter, 0.0, 0.1);
            EXPECT_EQ (meter.getReading(), 0.0f) << "a new start has no memory";
        }
}

TEST (NeedleMeter, TwoChannelsShowTheMagnitudeOfTheirMeanAndBadSamplesAreForgotten)
{
    using Limits = std::numeric_limits<float>;
    const Signal up (300, 0.5f), down (300, -0.5f), silent (300, 0.0f);
    const auto read = [] (const Signal& left, const Signal& right)
    {
        NeedleMeter meter;
        meter.prepare (48000.0, 2, 300);
        feed (meter, { left, right }, 300);
        return meter.getReading();
    };

    EXPECT_GT (read (up, up), 0.001f);
    EXPECT_FLOAT_EQ (read (up, silent), 0.5f * read (up, up));
    EXPECT_FLOAT_EQ (read (down, down), read (up, up));
    EXPECT_EQ (read (up, down), 0.0f);

    auto late = silent;
    late.back() = 0.5f;
    EXPECT_GT (read (late, late), 0.0f) << "rows are heard to their end";

    for (const auto bad : { Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity() })
    {
        auto spoilt = up, gap = up;
        spoilt[100] = bad;
        gap[100] = 0.0f;
        EXPECT_FLOAT_EQ (read (spoilt, up), read (gap, gap)) << "a bad sample counts as silence";
    }
}

TEST (NeedleMeter, ItsFilterGivesThePlainOnesValuesHoweverLongTheRows)
{
    for (const auto rateHz : { 44100.0, 192000.0 })
    {
        const auto plain =
            AnalogBiquad::make (AnalogBiquad::Type::lowPass, 0.615, 1.0, 1.0, 2.0 * std::numbers::pi * 2.15);
        MZTiCoefs<double, 2, 2> design;
        design.numerator = plain.numerator;
        design.denominator = plain.denominator;
        design.sampleRate = rateHz;
        design.design();
        BiquadCascade cascade;
        cascade.setTaps (design.taps);
        NeedleFilter filter;
        filter.prepare (rateHz);

        for (int n = 1; n <= 300; ++n)
        {
            auto row = test::noise (n, static_cast<std::size_t> (n));
            const auto fast = filter.process (row.data(), n);
            cascade.processPlain (row.data(), n);
            ASSERT_NEAR (fast, row.back(), 1e-6f) << n << " at " << rateHz;
        }
    }
}
} // namespace tarvik
