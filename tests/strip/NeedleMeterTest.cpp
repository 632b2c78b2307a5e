// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/NeedleMeter.h"

#include "dsp/AnalogBiquad.h"
#include "dsp/BiquadCascade.h"
#include "strip/ParameterSnapshot.h"
#include "tests/dsp/FilterTestTools.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <limits>

namespace tarvik::test
{
namespace
{
void feed (NeedleMeter& meter, const Signal& left, const Signal& right)
{
    inPieces (left.size(), { 256, 1, 255 },
              [&] (std::size_t begin, int n)
              {
                  const std::array rows { left.data() + begin, right.data() + begin };
                  meter.process (rows.data(), n);
              });
}

TEST (NeedleMeter, Reads0VuForASineAtMinus18AndForgetsAtAReset)
{
    const auto zeroVu = sine (997.0, ParameterSnapshot::defaultCalibration * std::pow (10.0, -0.9), 48000.0, 3.0);
    NeedleMeter meter;
    meter.prepare (48000.0, 2, 256);
    EXPECT_LT (meter.getReading(), 0.0f) << "nothing has been measured";
    feed (meter, zeroVu, zeroVu);
    EXPECT_NEAR (meter.getReading(), 1.0f, 1e-3f);
    meter.reset();
    EXPECT_LT (meter.getReading(), 0.0f);
}

TEST (NeedleMeter, ShowsTheMagnitudeOfTheMeanAndForgetsBadSamples)
{
    const Signal up (300, 0.5f), down (300, -0.5f), silent (300, 0.0f);
    const auto read = [] (const Signal& left, const Signal& right)
    {
        NeedleMeter meter;
        meter.prepare (48000.0, 2, 256);
        feed (meter, left, right);
        return meter.getReading();
    };

    EXPECT_FLOAT_EQ (read (up, silent), 0.5f * read (down, down));
    EXPECT_EQ (read (up, down), 0.0f);

    auto spoilt = up, gap = up;
    spoilt[100] = std::numeric_limits<float>::quiet_NaN();
    gap[100] = 0.0f;
    EXPECT_FLOAT_EQ (read (spoilt, up), read (gap, gap));
}

TEST (NeedleFilter, GivesThePlainFiltersValuesForRowsOfAnyLength)
{
    for (const auto rateHz : { 44100.0, 192000.0 })
    {
        const auto plain =
            AnalogBiquad::make (AnalogBiquad::Type::lowPass, 0.615, 1.0, 1.0, 2.0 * std::numbers::pi * 2.15);
        BiquadCascade cascade;
        cascade.setTaps (designTaps<2> (plain.numerator, plain.denominator, rateHz));
        NeedleFilter filter;
        filter.prepare (rateHz);

        for (int n = 1; n <= 300; ++n)
        {
            auto row = noise (n, static_cast<unsigned> (n));
            filter.process (row.data(), n);
            filterPlainly ({ row.data(), &cascade }, n);
            ASSERT_NEAR (filter.getReading(), row.back(), 1e-6f) << n << " at " << rateHz;
        }
    }
}
} // namespace
} // namespace tarvik::test
