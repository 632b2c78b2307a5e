// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/Ramps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <thread>
#include <vector>

namespace tarvik
{

namespace
{
template <typename RampType>
std::vector<float> take (RampType& ramp, int n)
{
    std::vector<float> row (static_cast<std::size_t> (n), -99.0f);
    ramp.fill (row.data(), n);
    return row;
}
} // namespace

TEST (Ramps, LinearMoveTakesEqualStepsAndEndsExactlyOnTheTarget)
{
    LinearRamp ramp (1.0);
    ramp.steps = 4;
    ramp.set (0.1);
    EXPECT_EQ (ramp.remaining, 4u);

    const auto row = take (ramp, 6);
    EXPECT_FLOAT_EQ (row[0], 0.775f);
    EXPECT_FLOAT_EQ (row[2], 0.325f);
    EXPECT_EQ (row[3], 0.1f);
    EXPECT_EQ (row[5], 0.1f);
    EXPECT_EQ (ramp.current, 0.1);
    EXPECT_TRUE (ramp.isIdle());
}

TEST (Ramps, GeometricMoveTakesEqualFactorsAndNeverTouchesZero)
{
    GeometricRamp ramp (1.0);
    ramp.steps = 4;
    ramp.set (0.0);

    const auto row = take (ramp, 5);
    EXPECT_NEAR (row[0], 0.1f, 1e-7f);
    EXPECT_NEAR (row[1], 0.01f, 1e-8f);
    EXPECT_EQ (row[3], 1e-4f);
    EXPECT_EQ (ramp.target, 1e-4);

    // Asked for zero again it has not arrived, and goes a flat way; asked for what it holds, it stays.
    ramp.set (0.0);
    EXPECT_EQ (ramp.remaining, 4u);
    EXPECT_EQ (take (ramp, 4).back(), 1e-4f);
    ramp.set (1e-4);
    EXPECT_TRUE (ramp.isIdle());
}

TEST (Ramps, TinyDistancesJumpAndTheTargetOnItsWayIsLeftAlone)
{
    LinearRamp ramp (1.0);
    ramp.steps = 100;
    ramp.set (1.0 + 9e-7);
    EXPECT_TRUE (ramp.isIdle());
    EXPECT_EQ (ramp.current, 1.0 + 9e-7);

    ramp.set (0.0);
    take (ramp, 60);
    ramp.set (0.0);
    EXPECT_EQ (ramp.remaining, 40u) << "the same target again must not start over";
    ramp.set (0.5);
    EXPECT_EQ (ramp.remaining, 100u);

    ramp.set (std::numeric_limits<double>::quiet_NaN());
    ramp.set (std::numeric_limits<double>::infinity());
    EXPECT_EQ (ramp.target, 0.5) << "what is no number is no target";
}

TEST (Ramps, RowsCutAnywhereAreTheSameMove)
{
    constexpr int numSteps = 483; // no whole number of groups
    std::mt19937 random (7);

    for (int round = 0; round < 20; ++round)
    {
        GeometricRamp whole (0.3), cut (0.3);
        whole.steps = cut.steps = numSteps;
        whole.set (2.0);
        cut.set (2.0);

        const auto expected = take (whole, 600);
        std::vector<float> pieces;

        while (pieces.size() < expected.size())
        {
            const auto left = static_cast<int> (expected.size() - pieces.size());
            const auto piece = take (cut, std::min (left, static_cast<int> (random() % 97)));
            pieces.insert (pieces.end(), piece.begin(), piece.end());
        }

        ASSERT_EQ (pieces, expected);
        ASSERT_EQ (expected[numSteps - 1], 2.0f);

        for (int i = 0; i < numSteps; ++i)
            ASSERT_FLOAT_EQ (expected[static_cast<std::size_t> (i)],
                             static_cast<float> (0.3 * std::pow (2.0 / 0.3, (i + 1.0) / numSteps)));
    }
}

TEST (Ramps, SharedRampTakesTheNewestRequestAtItsNextRow)
{
    SharedRamp<LinearRamp> ramp (1.0);
    ramp.prepare (10);
    EXPECT_TRUE (ramp.restsAtOne());

    std::thread (
        [&]
        {
            ramp.request (-5.0);
            ramp.request (0.0);
        })
        .join();
    EXPECT_EQ (ramp.get().target, 1.0) << "nothing may change outside the audio thread";
    EXPECT_FALSE (ramp.restsAtOne());

    float row[4];
    ramp.fill (row, 4);
    EXPECT_FLOAT_EQ (row[3], 0.6f);

    ramp.request (0.25);
    ramp.fillTaken (row, 4);
    EXPECT_FLOAT_EQ (row[3], 0.2f) << "what comes after the slice's look waits for the next one";
    ramp.snap();
    EXPECT_EQ (ramp.get().current, 0.25) << "a reset goes where the latest request points";
    EXPECT_TRUE (ramp.get().isIdle());
}

} // namespace tarvik
