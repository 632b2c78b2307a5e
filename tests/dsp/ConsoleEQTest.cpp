// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ConsoleEQ.h"

#include "tests/support/Signals.h"

#include <gtest/gtest.h>

// What the equaliser sounds like is held by the running strip's tests; here is what sets off a change.

namespace tarvik
{
namespace
{
using test::noise;
using Row = test::Signal;

constexpr double rate = 96000.0;
constexpr int blockSize = 1000;

Row hear (ConsoleEQ& eq)
{
    auto row = noise (blockSize, 1);
    eq.process (row.data(), blockSize);
    return row;
}

void prepare (ConsoleEQ& eq, const EQControls& controls)
{
    eq.update (controls, true);
    eq.prepare (rate, blockSize);
}

TEST (ConsoleEQ, OnlyAChangeThatMakesAnotherFilterIsHeard)
{
    const auto isHeard = [] (bool force, auto change, EQControls controls = {})
    {
        ConsoleEQ eq, steady;
        prepare (eq, controls);
        prepare (steady, controls);
        change (controls);
        eq.update (controls, force);
        return hear (eq) != hear (steady);
    };

    EXPECT_FALSE (isHeard (false, [] (auto&) {}));
    EXPECT_FALSE (isHeard (true, [] (auto&) {}));
    EXPECT_FALSE (isHeard (false, [] (auto& c) { c.lowGain = 0.7f; })); // without effect beside a low cut
    EXPECT_TRUE (isHeard (false, [] (auto& c) { c.lowGain = 0.7f; }, { .lowFreq = 2 }));
    EXPECT_TRUE (isHeard (false, [] (auto& c) { c.highFreq = 2; }));
    EXPECT_TRUE (isHeard (false, [] (auto& c) { c.highGain = 2; }));
    EXPECT_TRUE (isHeard (false, [] (auto& c) { c.midGain = 0.7f; }));
    EXPECT_TRUE (isHeard (false, [] (auto& c) { c.midMode = 0; }));
    EXPECT_TRUE (isHeard (false, [] (auto& c) { c.lowFreq = 2; }));
    EXPECT_TRUE (isHeard (false, [] (auto& c) { c.highPass = 2; }));
    EXPECT_FALSE (isHeard (false, [] (auto& c) { c.toleranceChannel = 31; })); // needs force
    EXPECT_TRUE (isHeard (true, [] (auto& c) { c.toleranceChannel = 31; }));
}

TEST (ConsoleEQ, ResetEndsAllMovesAndClears)
{
    ConsoleEQ eq, steady;
    const EQControls controls { .midGain = 0.5f, .highPass = 1 };
    prepare (steady, controls);
    eq.prepare (rate, blockSize);
    eq.update (controls, true);
    hear (eq); // the crossfade has begun
    eq.reset();
    EXPECT_EQ (hear (eq), hear (steady));
}
} // namespace
} // namespace tarvik
