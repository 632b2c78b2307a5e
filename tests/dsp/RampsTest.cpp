// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/Ramps.h"

#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <limits>
#include <sys/time.h>

namespace tarvik
{
namespace
{
template <typename RampType>
RampType startRamp (double from, double to, std::uint32_t steps)
{
    RampType ramp (from);
    ramp.steps = steps;
    ramp.set (to);
    return ramp;
}

template <typename RampType>
test::Signal take (RampType& ramp, int n, const std::vector<int>& pieces = { 1000 })
{
    test::Signal row (static_cast<std::size_t> (n), -99.0f);
    test::inPieces (row.size(), pieces,
                    [&] (std::size_t begin, int length) { ramp.fill (row.data() + begin, length); });
    return row;
}

TEST (Ramps, LinearMoveTakesEqualStepsAndEndsOnTheTarget)
{
    auto ramp = startRamp<LinearRamp> (1.0, 0.1, 4);
    const auto row = take (ramp, 6, { 3, 1, 2 });
    EXPECT_FLOAT_EQ (row[0], 0.775f);
    EXPECT_FLOAT_EQ (row[2], 0.325f);
    EXPECT_EQ (row[3], 0.1f);
    EXPECT_EQ (row[5], 0.1f);
    EXPECT_TRUE (ramp.isIdle());
}

TEST (Ramps, GeometricMoveTakesEqualFactorsAndNeverTouchesZero)
{
    constexpr int numSteps = 483; // no whole number of groups
    auto whole = startRamp<GeometricRamp> (0.3, 2.0, numSteps), cut = whole;
    const auto row = take (whole, 600);
    EXPECT_EQ (take (cut, 600, { 1, 7, 96, 3, 8, 33, 0, 12 }), row);
    EXPECT_EQ (row[numSteps - 1], 2.0f);

    for (int i = 0; i < numSteps; ++i)
        ASSERT_FLOAT_EQ (row[static_cast<std::size_t> (i)],
                         static_cast<float> (0.3 * std::pow (2.0 / 0.3, (i + 1.0) / numSteps)));

    auto ramp = startRamp<GeometricRamp> (1.0, 0.0, 4);
    EXPECT_EQ (take (ramp, 4).back(), 1e-4f);
}

TEST (Ramps, TinyDistancesJumpAndTheCurrentTargetIsLeftAlone)
{
    auto ramp = startRamp<LinearRamp> (1.0, 1.0 + 9e-7, 100);
    EXPECT_TRUE (ramp.isIdle());
    ramp.set (0.0);
    take (ramp, 60);
    ramp.set (0.0);
    EXPECT_EQ (ramp.remaining, 40u) << "the same target again must not start over";
    ramp.set (0.5);
    ramp.set (std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ (ramp.target, 0.5) << "only finite numbers are targets";
}

TEST (Ramps, SharedRampTakesTheNewestRequestWhenAsked)
{
    SharedRamp<LinearRamp> ramp (1.0);
    ramp.prepare (10);
    EXPECT_TRUE (ramp.isIdleAtOne());
    ramp.request (-5.0);
    ramp.request (0.0);
    EXPECT_EQ (ramp.get().target, 1.0) << "nothing may change before the audio thread takes it";
    EXPECT_FALSE (ramp.isIdle());
    EXPECT_FALSE (ramp.isIdleAtOne());
    EXPECT_FLOAT_EQ (take (ramp, 4)[3], 0.6f);

    float row[4];
    ramp.request (0.25);
    ramp.fillTaken (row, 4);
    EXPECT_FLOAT_EQ (row[3], 0.2f) << "what comes after the slice's look waits for the next one";
    ramp.snap();
    EXPECT_EQ (ramp.get().current, 0.25) << "a reset goes where the latest request points";
    EXPECT_TRUE (ramp.isIdle());
}

#ifdef SIGALRM // which Windows lacks
// A timer's signal interrupts takeRequest() and asks for another value, as another thread may at any instruction.
SharedRamp<LinearRamp> interrupted;
volatile std::sig_atomic_t isTaking = 0, hasInterrupted = 0, numInterrupts = 0;

void askMeanwhile (int)
{
    if (isTaking != 0)
    {
        interrupted.request (1.0);
        hasInterrupted = 1;
        numInterrupts = numInterrupts + 1;
    }
}

TEST (Ramps, NoRequestIsLostWhileAnotherIsTaken)
{
    constexpr auto enough = 500; // interrupts; one in fifty falls between the value and a late clearing
    constexpr itimerval often { { 0, 200 }, { 0, 200 } }, never {};
    std::signal (SIGALRM, askMeanwhile);
    setitimer (ITIMER_REAL, &often, nullptr);
    auto numLost = 0;

    for (auto end = std::chrono::steady_clock::now() + std::chrono::seconds (5);
         numInterrupts < enough && std::chrono::steady_clock::now() < end;)
        for (int i = 0; i < 1000; ++i)
        {
            hasInterrupted = 0;
            interrupted.request (-1.0);
            isTaking = 1;
            interrupted.takeRequest();
            isTaking = 0;
            interrupted.takeRequest();
            numLost += interrupted.get().target == (hasInterrupted != 0 ? 1.0 : -1.0) ? 0 : 1;
        }

    setitimer (ITIMER_REAL, &never, nullptr);
    std::signal (SIGALRM, SIG_IGN);
    EXPECT_EQ (numLost, 0);
    EXPECT_GT (numInterrupts, enough / 10);
}
#endif
} // namespace
} // namespace tarvik
