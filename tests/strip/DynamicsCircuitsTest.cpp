// SPDX-License-Identifier: GPL-3.0-or-later
#include "PlainDynamics.h"
#include "strip/DynamicsChannel.h"
#include "strip/OpeningTable.h"

#include <gtest/gtest.h>

namespace tarvik::test
{
namespace
{
double gainAt (double volts) { return VcaCurve::getSegment (volts).gainAt (volts); }

TEST (VcaCurve, IsThePlainInterpolationAndContinuesInStraightLines)
{
    for (auto volts = -10.0; volts < 45.0; volts += 0.00123)
    {
        ASSERT_TRUE (VcaCurve::getSegment (volts).contains (volts)) << volts;
        ASSERT_NEAR (std::max (gainAt (volts), 0.0), plain::Dynamics::curve (volts), 1e-10) << volts;
    }

    EXPECT_NEAR (VcaCurve::getZeroGainVolts(), plain::Dynamics::ceiling, 1e-9);
    EXPECT_LT (gainAt (1e300), 0.0);
    EXPECT_GT (gainAt (-1e300), 0.0);
    EXPECT_TRUE (std::isnan (gainAt (std::nan ("")))); // found, and not hidden
}

TEST (Compressor, OpeningOfTheAttackFollowsTheExponential)
{
    for (auto volts = OpeningTable::lowestVolts; volts < 1e9; volts *= 1.001) // past the cells' end, too
        ASSERT_NEAR (OpeningTable::at (volts), std::exp (-1.0 / volts), 1e-10) << volts;
}

TEST (Compressor, NoLevelTakesTheCapacitorsBeyondTheCurvesEnd)
{
    const auto ceiling = VcaCurve::getZeroGainVolts();

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
                ASSERT_LE (state.c1Volts, ceiling + 0.01);
                ASSERT_GE (state.c1Volts, 0.0);
                ASSERT_LE (state.c2Volts, ceiling + 0.01);
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
