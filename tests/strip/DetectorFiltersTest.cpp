// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/DetectorFilters.h"

#include "DynamicsTestTools.h"

#include <gtest/gtest.h>

namespace tarvik::test
{
namespace
{
Signal run (DetectorFilters& filters, Signal signal)
{
    inPieces (signal.size(), { 256 },
              [&] (std::size_t begin, int n)
              {
                  auto* const row = signal.data() + begin;
                  filters.process (&row, n);
              });
    return signal;
}

// Gain in dB of the filters, at rest, for a tone.
double gainDb (DetectorFilters& filters, double hz, double rateHz)
{
    filters.reset();
    const auto wholePeriods = static_cast<std::size_t> (std::floor (0.3 * hz) / hz * rateHz);
    return 20.0
           * std::log10 (std::numbers::sqrt2 * rmsOfEnd (run (filters, sine (hz, 1.0, rateHz, 0.6)), wholePeriods));
}

TEST (DetectorFilters, NiveauTiltsFromMinusSixteenToPlusTwelveDecibels)
{
    for (const auto rateHz : { 44100.0, 96000.0, 384000.0 })
    {
        DetectorFilters filters;
        filters.prepare (rateHz, 1, 256);
        filters.setNiveau (true);
        EXPECT_NEAR (gainDb (filters, 20.0, rateHz), -16.1, 0.1) << rateHz;
        EXPECT_NEAR (gainDb (filters, 1000.0, rateHz), 0.0, 0.3) << rateHz;
        EXPECT_NEAR (gainDb (filters, 16000.0, rateHz), 11.6, 0.3) << rateHz;
        auto last = -99.0;

        for (auto hz = 20.0; hz < 20000.0; hz *= 1.4)
        {
            const auto now = gainDb (filters, hz, rateHz);
            EXPECT_GT (now, last - 0.01) << hz << " at " << rateHz;
            last = now;
        }
    }
}

TEST (DetectorFilters, HighPassIsThreeDecibelsDownAtItsFrequencyAndOutAtTwentyHertz)
{
    constexpr double rateHz = 48000.0;
    DetectorFilters filters;
    filters.prepare (rateHz, 1, 256);

    for (const auto hz : { 60.0f, 200.0f, 400.0f })
    {
        filters.setHighPass (hz);
        EXPECT_NEAR (gainDb (filters, static_cast<double> (hz), rateHz), -3.01, 0.05) << hz;
        EXPECT_NEAR (gainDb (filters, static_cast<double> (hz) / 2.0, rateHz), -12.3, 0.1) << hz;
    }

    for (const auto hz : { 20.0f, std::numeric_limits<float>::quiet_NaN() })
    {
        filters.setHighPass (hz);
        EXPECT_NEAR (gainDb (filters, 20.0, rateHz), 0.0, 1e-4);
    }
}

TEST (DetectorFilters, FadesLastATenthOfASecondAndOutMeansUntouched)
{
    constexpr double rateHz = 48000.0;
    const auto in = bursts (1, 1.0, rateHz, 0.3);
    DetectorFilters moving, resting;

    for (auto* const filters : { &moving, &resting })
    {
        filters->prepare (rateHz, 1, 256);
        filters->setHighPass (20.0f);
        filters->setNiveau (filters == &resting);
        filters->reset();
    }

    // Fading in: the filter hears its share of the signal, and the rest goes past it.
    moving.setNiveau (true);
    const auto faded = run (moving, in);
    const auto wetShare = [] (std::size_t i) { return std::min (1.0f, static_cast<float> (i + 1) / 4800.0f); };
    auto filtered = in;

    for (std::size_t i = 0; i < in.size(); ++i)
        filtered[i] *= wetShare (i);

    filtered = run (resting, filtered);

    for (std::size_t i = 0; i < in.size(); ++i)
        ASSERT_NEAR (faded[i], filtered[i] + (1.0f - wetShare (i)) * in[i], 1e-5f) << i;

    moving.setNiveau (false);
    const auto out = run (moving, in);
    EXPECT_FALSE (std::equal (out.begin(), out.begin() + 4000, in.begin()));
    EXPECT_TRUE (std::equal (out.begin() + 4800, out.end(), in.begin() + 4800));

    moving.setNiveau (true);
    EXPECT_EQ (run (moving, in), faded); // it comes back without a memory of the last time
}
} // namespace
} // namespace tarvik::test
