// SPDX-License-Identifier: GPL-3.0-or-later
#include "DynamicsTestTools.h"
#include "strip/CompressorCircuit.h"
#include "strip/Expander.h"
#include "strip/OpeningTable.h"
#include "strip/VcaCurve.h"

#include <gtest/gtest.h>

#include <limits>

namespace tarvik::test
{
namespace
{
double gainAt (double volts) { return VcaCurve::getSegment (volts).gainAt (volts); }

TEST (VcaCurve, IsThePlainInterpolationAndGoesOnInStraightLines)
{
    for (auto volts = -5.0; volts < 39.0; volts += 0.00123)
    {
        ASSERT_TRUE (VcaCurve::getSegment (volts).contains (volts)) << volts;
        ASSERT_NEAR (gainAt (volts), plain::Dynamics::curve (volts), 1e-10) << volts;
    }

    const auto ceiling = VcaCurve::getZeroGainVolts();
    EXPECT_NEAR (ceiling, plain::Dynamics::ceiling, 1e-9);
    EXPECT_NEAR (gainAt (ceiling), 0.0, 1e-12);
    EXPECT_GT (gainAt (ceiling - 0.01), 0.0);

    // The control scale stands at -11 + 0.1 k at point k; the last is number 24.
    const auto voltsAtPoint = [] (double k) { return 12.32 - (9.914435 - 11.0 + 0.1 * k) / 0.087612525; };
    EXPECT_NEAR (gainAt (voltsAtPoint (27.0)), 45.62331 + 3.0 * (45.62331 - 39.25255), 1e-4);

    // Out of all reason.
    constexpr auto infinity = std::numeric_limits<double>::infinity();
    EXPECT_LT (gainAt (1e300), 0.0);
    EXPECT_GT (gainAt (-1e300), 0.0);
    EXPECT_TRUE (VcaCurve::getSegment (infinity).highestVolts == infinity);
    EXPECT_TRUE (VcaCurve::getSegment (-infinity).lowestVolts == -infinity);
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
        for (const auto level : { 1e3, 1e9, 1e30 })
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

using Mode = Expander::Mode;

Expander makeExpander (Mode mode, float rangeDb = -20.0f)
{
    Expander expander;
    expander.set ({ -20.0f, rangeDb, 1, 0.3f, static_cast<int> (mode), false, false });
    expander.prepare (48000.0);
    return expander;
}

// Closed form: threshold -20 dB scales a key by -20 dB; 22.2184875 dB below 0 after that is where attenuation begins.
TEST (Expander, StaticCurveIsARampWithASoftKneeUpToTheRange)
{
    const auto expander = makeExpander (Mode::expander);
    EXPECT_EQ (expander.attenuationFor (-20.0), 0.0);
    EXPECT_NEAR (expander.attenuationFor (-22.2184875 - 12.0), 12.0 - 4.0 / (8.0 * 0.125 + 1.0), 1e-12);
    EXPECT_NEAR (expander.attenuationFor (-22.2184875 - 20.0), 20.0 - 4.0, 1e-12);
    EXPECT_NEAR (expander.attenuationFor (-22.2184875 - 60.0), 20.0 - 4.0 / (40.0 * 0.125 + 1.0), 1e-12);
    EXPECT_EQ (expander.attenuationFor (-500.0), expander.attenuationFor (-100.0));

    const auto none = makeExpander (Mode::expander, 0.0f);
    EXPECT_EQ (none.attenuationFor (-100.0), 0.0);
    EXPECT_EQ (none.getActivity (5.0), 0.0);
    EXPECT_EQ (makeExpander (Mode::off).getActivity (5.0), 0.0);
    EXPECT_DOUBLE_EQ (expander.getActivity (5.0), 0.25);
}
} // namespace
} // namespace tarvik::test
