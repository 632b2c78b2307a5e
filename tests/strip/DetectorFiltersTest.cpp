// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/DetectorFilters.h"

#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <limits>

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

/** Gain in dB of the idle filters for a tone. */
double gainDb (DetectorFilters& filters, double hz, double rateHz)
{
    filters.reset();
    const auto wholePeriods = static_cast<std::size_t> (std::floor (0.3 * hz) / hz * rateHz);
    return 20.0
           * std::log10 (std::numbers::sqrt2 * rmsOfEnd (run (filters, sine (hz, 1.0, rateHz, 0.6)), wholePeriods));
}

TEST (DetectorFilters, NiveauTiltsFromMinus16ToPlus12Decibels)
{
    for (const auto rateHz : { 44100.0, 384000.0 })
    {
        DetectorFilters filters;
        filters.prepare (rateHz, 1, 256);
        filters.setNiveau (true);

        for (const auto& [hz, db] :
             { std::pair (20.0, -16.1), { 125.0, -9.0 }, { 1000.0, 0.0 }, { 8000.0, 9.0 }, { 16000.0, 11.6 } })
            EXPECT_NEAR (gainDb (filters, hz, rateHz), db, 0.3) << hz << " at " << rateHz;
    }
}

TEST (DetectorFilters, HighPassIs3dBDownAtItsFrequencyAndOutAt20Hz)
{
    constexpr double rateHz = 48000.0;
    DetectorFilters filters;
    filters.prepare (rateHz, 1, 256);

    for (const auto hz : { 60.0f, 400.0f })
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

TEST (DetectorFilters, NiveauFadesForATenthOfASecondAndOutIsUntouched)
{
    const auto in = noise (14400, 1);
    DetectorFilters moving, idle;

    for (auto* const filters : { &moving, &idle })
    {
        filters->prepare (48000.0, 1, 256);
        filters->setHighPass (20.0f);
        filters->setNiveau (filters == &idle);
        filters->reset();
    }

    // Fading in: the filter hears its share of the signal, and the rest passes it by.
    moving.setNiveau (true);
    const auto faded = run (moving, in);
    const auto wetShare = [] (std::size_t i) { return std::min (1.0f, static_cast<float> (i + 1) / 4800.0f); };
    auto filtered = in;

    for (std::size_t i = 0; i < in.size(); ++i)
        filtered[i] *= wetShare (i);

    filtered = run (idle, filtered);

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
