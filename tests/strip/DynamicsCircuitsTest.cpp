// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/DynamicsChannel.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace tarvik
{
namespace
{
TEST (Expander, ActivityIsAShareOfTheRange)
{
    const auto activity = [] (Expander::Mode mode, float rangeDb)
    {
        Expander expander;
        expander.set ({ -20.0f, rangeDb, 1, 0.3f, static_cast<int> (mode), false, false });
        return expander.getActivity (5.0);
    };

    EXPECT_DOUBLE_EQ (activity (Expander::Mode::gate, -8.0f), 0.625);
    EXPECT_DOUBLE_EQ (activity (Expander::Mode::expander, -4.0f), 1.25) << "not limited to 1";
    EXPECT_EQ (activity (Expander::Mode::expander, 0.0f), 0.0);
    EXPECT_EQ (activity (Expander::Mode::off, -20.0f), 0.0);
}

TEST (DynamicsChannel, SkippedSilenceComesToTheGainsOfSilence)
{
    constexpr auto rateHz = 44100.0;
    test::Signal sound = test::noise (441, 1, 3.0f), silence (1024), gains (1024);
    std::array<double, 1024> levels {};

    for (int i = 0; i < 108; ++i)
    {
        DynamicsCircuits circuits;
        circuits.compressor.prepare (rateHz);
        circuits.limiter.prepare (rateHz);
        circuits.expander.prepare (rateHz);
        circuits.compressor.set ({ -15.0f, i % 6, i % 3, i % 9 });
        circuits.limiter.setOn (i % 2 == 0);
        circuits.expander.set ({ -10.0f, -20.0f, i % 3, 0.3f, i / 6 % 3, i % 5 == 0, i % 4 < 2 });

        std::array<DynamicsChannel, 1> processed {};
        const auto process = [&] (test::Signal& row, int n)
        {
            const DynamicsRows rows { row.data(), row.data(), levels.data(), gains.data() };
            processDynamics (circuits, processed, { &rows, 1 }, n);
        };

        for (int k = 0; k < 40; ++k)
            process (sound, 441);

        int waited = 0;

        for (; ! isSettled (circuits, processed[0]) && waited < 220500; waited += 256)
            process (silence, 256);

        EXPECT_LT (waited, 220500) << i;
        auto skipped = processed[0];

        for (int k = 0; k < 150; ++k)
        {
            const auto n = k % 3 == 0 ? 1 + 7 * k % 1000 : 1024;
            process (silence, n);
            skipSilence (circuits, skipped, n);
            ASSERT_NEAR (skipped.gain, processed[0].gain, 1e-7 * processed[0].gain) << i << ", " << k;
            ASSERT_NEAR (skipped.expander.volts, processed[0].expander.volts, 1e-5) << i << ", " << k;
        }
    }
}
} // namespace
} // namespace tarvik
