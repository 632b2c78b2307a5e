// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/DetectorFilters.h"

#include "tests/support/Signals.h"

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

/** Gain in dB of the idle filters for a tone. */
double gainDb (DetectorFilters& filters, double hz, double rateHz)
{
    filters.reset();
    const auto wholePeriods = static_cast<std::size_t> (std::floor (0.3 * hz) / hz * rateHz);
    return 20.0 * std::log10 (rmsOfEnd (run (filters, sine (hz, std::numbers::sqrt2, rateHz, 0.6)), wholePeriods));
}

TEST (DetectorFilters, HaveTheirGainsAtAnyRate)
{
    for (const auto rateHz : { 44100.0, 384000.0 })
    {
        SCOPED_TRACE (rateHz);
        DetectorFilters filters;
        filters.prepare (rateHz, 1, 256);
        filters.setNiveau (true);

        for (const auto& [hz, db] : { std::pair (20.0, -16.1), { 125.0, -9.0 }, { 1000.0, 0.0 }, { 16000.0, 11.6 } })
            EXPECT_NEAR (gainDb (filters, hz, rateHz), db, 0.3) << hz;

        filters.setNiveau (false);

        for (const auto hz : { 60.0, 400.0 })
        {
            filters.setHighPass (static_cast<float> (hz));
            EXPECT_NEAR (gainDb (filters, hz, rateHz), -3.01, 0.05) << hz;
            EXPECT_NEAR (gainDb (filters, hz / 2.0, rateHz), -12.3, 0.1) << hz;
        }

        filters.setHighPass (20.0f);
        EXPECT_NEAR (gainDb (filters, 20.0, rateHz), 0.0, 1e-4);
    }
}

TEST (DetectorFilters, NiveauFadesForATenthOfASecondAndOutIsUntouched)
{
    const auto in = noise (14400, 1);
    DetectorFilters filters;
    filters.prepare (48000.0, 1, 256);
    filters.setHighPass (20.0f);
    filters.reset();
    filters.setNiveau (true);
    const auto faded = run (filters, in);
    EXPECT_NEAR (faded[0], in[0], 0.001f);

    filters.setNiveau (false);
    const auto out = run (filters, in);
    EXPECT_FALSE (std::equal (out.begin(), out.begin() + 4000, in.begin()));
    EXPECT_TRUE (std::equal (out.begin() + 4800, out.end(), in.begin() + 4800));

    filters.setNiveau (true);
    EXPECT_EQ (run (filters, in), faded); // it comes back without a memory of the last time
}
} // namespace
} // namespace tarvik::test
