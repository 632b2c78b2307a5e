// SPDX-License-Identifier: GPL-3.0-or-later
#include "PlainDynamics.h"
#include "strip/DynamicsChannel.h"
#include "strip/OpeningTable.h"

#include <gtest/gtest.h>

namespace tarvik::test
{
namespace
{
TEST (Compressor, OpeningOfTheAttackFollowsTheExponential)
{
    for (auto volts = OpeningTable::lowestVolts; volts < 1e9; volts *= 1.001) // past the cells' end, too
        ASSERT_NEAR (OpeningTable::at (volts), std::exp (-1.0 / volts), 1e-10) << volts;
}

TEST (Compressor, NoLevelTakesTheCapacitorsBeyondTheCurvesEnd)
{
    const auto highest = plain::Dynamics::ceiling + 0.01;

    for (int release = 0; release < 9; ++release)
        for (const auto level : { 1e3, 1e30 })
        {
            CompressorCircuit circuit;
            CompressorCircuit::State state;
            circuit.prepare (44100.0);
            circuit.set ({ -20.0f, 5, 2, release });

            for (int i = 0; i < 44100; ++i)
            {
                circuit.step (state, 30.0, level);
                ASSERT_LE (state.c1Volts, highest);
                ASSERT_GE (state.c1Volts, 0.0);
                ASSERT_LE (state.c2Volts, highest);
            }
        }
}

TEST (Expander, ActivityIsAShareOfTheRange)
{
    using Mode = Expander::Mode;
    const auto activity = [] (Mode mode, float rangeDb)
    {
        Expander expander;
        expander.set ({ -20.0f, rangeDb, 1, 0.3f, static_cast<int> (mode), false, false });
        return expander.getActivity (5.0);
    };

    EXPECT_DOUBLE_EQ (activity (Mode::expander, -20.0f), 0.25);
    EXPECT_DOUBLE_EQ (activity (Mode::gate, -8.0f), 0.625);
    EXPECT_DOUBLE_EQ (activity (Mode::expander, -4.0f), 1.25) << "not limited to 1";
    EXPECT_EQ (activity (Mode::expander, 0.0f), 0.0);
    EXPECT_EQ (activity (Mode::off, -20.0f), 0.0);
}

TEST (Dynamics, InSilenceNoStateBecomesSubnormal)
{
    constexpr int n = 256, numBlocks = 300 * 44100 / n; // five minutes
    std::vector<float> silence (n, 0.0f), loud (n, 3.0f), gains (n);
    std::vector<double> attenuations (n);

    DynamicsCircuits circuits;
    circuits.compressor.prepare (44100.0);
    circuits.compressor.set ({ -10.0f, 3, 1, 1 });
    circuits.limiter.prepare (44100.0);
    circuits.limiter.setOn (true);
    circuits.expander.set ({ -30.0f, 0.0f, 1, 0.3f, static_cast<int> (Expander::Mode::expander), false, false });
    circuits.expander.prepare (44100.0);
    DynamicsChannel channel;
    channel.expander.volts = 10.0;

    for (int block = 0; block < numBlocks; ++block)
    {
        const DynamicsRows rows { block < 10 ? loud.data() : silence.data(), silence.data(), attenuations.data(),
                                  gains.data() };
        processDynamics (circuits, std::span (&channel, 1), std::span (&rows, 1), n);
    }

    EXPECT_EQ (channel.compressor.peak, 0.0);
    EXPECT_EQ (channel.limiterVolts, 0.0);
    EXPECT_EQ (channel.expander.volts, 0.0);
    EXPECT_TRUE (std::isnormal (channel.compressor.c1Volts) && std::isnormal (channel.compressor.c2Volts));
}
} // namespace
} // namespace tarvik::test
