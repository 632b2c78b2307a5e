// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ConsoleEQ.h"

#include "FilterTestTools.h"
#include "dsp/AnalogBiquad.h"
#include "dsp/EqualiserComponents.h"
#include "dsp/EqualiserNetwork.h"
#include "tests/support/RealTimeTrap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <thread>

namespace tarvik
{
namespace
{
using namespace test;
using Row = std::vector<float>;

constexpr double rate = 96000.0;
constexpr int rampLength = 9600;
constexpr int blockSize = 256;

void process (ConsoleEQ& eq, Row& row, int block = blockSize)
{
    for (int done = 0; done < static_cast<int> (row.size()); done += block)
        eq.process (row.data() + done, std::min (block, static_cast<int> (row.size()) - done));
}

/** What comes of an impulse; the tail is long enough for the lowest resonance. */
Row getImpulseResponse (ConsoleEQ& eq)
{
    Row row (1 << 17, 0.0f);
    row[0] = 1.0f;
    process (eq, row);
    return row;
}

Complex transform (const Row& row, double hz)
{
    const auto turn = std::polar (1.0, -2.0 * std::numbers::pi * hz / rate);
    Complex sum = 0.0;

    for (auto sample = row.rbegin(); sample != row.rend(); ++sample)
        sum = sum * turn + static_cast<double> (*sample);

    return sum;
}

class ConsoleEQTest : public testing::Test
{
protected:
    void prepare (const EQControls& controls)
    {
        eq.update (controls, true);
        eq.prepare (rate, blockSize);
    }

    /** Whether the last update() set off a crossfade: it spoils the bits of an otherwise steady stream. */
    bool isCrossfading()
    {
        auto row = makeNoise (blockSize, 1);
        auto before = row;
        ConsoleEQ steady;
        steady.update (heard, true);
        steady.prepare (rate, blockSize);
        eq.process (row.data(), blockSize);
        steady.process (before.data(), blockSize);
        return row != before;
    }

    ConsoleEQ eq;
    EQControls heard;
};

TEST_F (ConsoleEQTest, SoundsAsTheNetworkAndTheHighPassDemand)
{
    struct HighPass
    {
        double hz, q;
    };

    constexpr std::array<HighPass, 3> highPasses { { { 0.0, 0.0 }, { 54.0, 1.04 }, { 109.0, 1.05 } } };
    std::mt19937 random (1);
    ComponentTable table (equaliserComponents);

    for (int trial = 0; trial < 12; ++trial)
    {
        const auto controls = drawControls (random);
        table.setActiveChannel (controls.toleranceChannel);
        const auto response = solveEqualiserNetwork (selectElements (table, controls));
        eq.update (controls, true);
        eq.prepare (rate, blockSize);
        const auto impulse = getImpulseResponse (eq);

        for (const auto hz : { 40.0, 150.0, 700.0, 1900.0, 5000.0, 12000.0, 20000.0 })
        {
            const auto [cornerHz, q] = highPasses[static_cast<std::size_t> (controls.highPass)];
            const Complex s (0.0, hz / (cornerHz > 0.0 ? cornerHz : 1.0));
            const auto highPass = cornerHz > 0.0 ? s * s / (s * s + s / q + 1.0) : Complex (1.0);
            const auto wanted = std::abs (highPass * analogueResponse (response.numerator, response.denominator, hz));
            EXPECT_NEAR (toDecibels (std::abs (transform (impulse, hz)) / wanted), 0.0, 0.03)
                << "trial " << trial << " at " << hz; // the design's own error up to half of half the rate
        }
    }
}

TEST_F (ConsoleEQTest, MakeupGainBringsTheNeutralBoostNetworkToUnity)
{
    EXPECT_EQ (ConsoleEQ::makeupGain, std::pow (10.0, 0.771));
    prepare ({});
    const auto gain = std::abs (transform (getImpulseResponse (eq), 1000.0)) * ConsoleEQ::makeupGain;
    EXPECT_NEAR (toDecibels (gain), 0.0, 0.01);
}

TEST_F (ConsoleEQTest, OnlyAChangeOfItsControlsSetsOffACrossfade)
{
    const auto expectCrossfade = [this] (const EQControls& controls, bool force, bool expected)
    {
        eq.update (heard, true);
        eq.prepare (rate, blockSize);
        eq.update (controls, force);
        EXPECT_EQ (isCrossfading(), expected);
    };

    expectCrossfade (heard, false, false);
    expectCrossfade (heard, true, true);

    auto changed = heard;
    changed.lowGain = 0.7f; // without effect beside a low cut, yet a change
    expectCrossfade (changed, false, true);
    changed = heard;
    changed.highPass = 2;
    expectCrossfade (changed, false, true);
    changed = heard;
    changed.toleranceChannel = 31; // asks for force
    expectCrossfade (changed, false, false);
    expectCrossfade (changed, true, true);
}

TEST_F (ConsoleEQTest, HighPassMovesWithoutTheNetwork)
{
    prepare (heard);
    auto controls = heard;
    controls.highPass = 2;
    eq.update (controls, false);
    auto row = makeNoise (2 * blockSize, 1);
    auto expected = row;
    process (eq, row);

    // The same in two pieces: a high pass by itself, and an equaliser that never heard of it.
    SmoothedIppIIR<float, MZTiCoefs<double, 2, 2>> highPass;
    highPass.prepare (rate, 1, 2 * blockSize);
    const auto prototype = AnalogBiquad::make (AnalogBiquad::Type::highPass, 1.05, 1.0, 1.0, 684.8671984825748);
    highPass.setAnalogue (prototype.numerator, prototype.denominator);
    highPass.bringInCoefficients();
    auto* const pointer = expected.data();
    highPass.process (&pointer, 2 * blockSize);
    prepare (heard);
    process (eq, expected);
    EXPECT_EQ (row, expected);
}

TEST_F (ConsoleEQTest, ResetAfterTheFullUpdateOfPrepareEndsAtRest)
{
    std::mt19937 random (2);
    eq.prepare (rate, blockSize);
    heard = drawControls (random);
    eq.update (heard, true);
    eq.reset();
    EXPECT_FALSE (isCrossfading());
    eq.reset();
    Row silence (1000, 0.0f);
    process (eq, silence);
    EXPECT_EQ (silence, Row (1000, 0.0f));
}

TEST_F (ConsoleEQTest, ChannelsOfTheTableDifferAndAreLimited)
{
    EQControls controls;
    controls.midGain = 0.5f;
    std::vector<Row> responses;

    for (const auto channel : { 0, 0, 1, 31, 99, -5 })
    {
        controls.toleranceChannel = channel;
        ConsoleEQ other;
        other.update (controls, true);
        other.prepare (rate, blockSize);
        responses.push_back (getImpulseResponse (other));
        EXPECT_EQ (other.getToleranceChannel(), std::clamp (channel, 0, 31));
    }

    EXPECT_EQ (responses[0], responses[1]);
    EXPECT_NE (responses[0], responses[2]);
    EXPECT_NE (responses[2], responses[3]);
    EXPECT_EQ (responses[3], responses[4]);
    EXPECT_EQ (responses[0], responses[5]);
}

TEST_F (ConsoleEQTest, PairGivesTheBitsOfTwoSinglesWhileControlsMove)
{
    std::array<ConsoleEQ, 4> eqs; // two together, two alone
    std::mt19937 random (3);

    for (auto& each : eqs)
        each.prepare (rate, blockSize);

    for (int block = 0; block < 2000; ++block)
    {
        // A control now and then, on one side or both; the crossfade then takes some 75 of these blocks. At times
        // nothing moves, at times only one filter does.
        if (const auto chance = random() % 400; chance < 3)
        {
            const auto controls = drawControls (random);

            for (std::size_t i = 0; i < eqs.size(); ++i)
                if (chance == 2 || i % 2 == chance)
                    eqs[i].update (controls, false);
        }

        const auto n = random() % (blockSize + 1);
        std::array rows { makeNoise (n, random()), makeNoise (n, random()) };
        auto alone = rows;
        ConsoleEQ::processPair (eqs[0], eqs[1], rows[0].data(), rows[1].data(), static_cast<int> (n));
        eqs[2].process (alone[0].data(), static_cast<int> (n));
        eqs[3].process (alone[1].data(), static_cast<int> (n));
        ASSERT_EQ (rows, alone) << block;
    }
}

// At rest a sine of level 1 moves by at most G w per sample behind a filter of gain G, with w in radians per sample. In
// a crossfade the old and the new filter share it, (1 - r) and r of it, so that their sines together move by no more
// than that; r itself adds 1 / 9600 per sample for each of them, as it does in the other filter if both change. The
// network is passive, so its G is 1 at most; that of the high pass is 1.2 at its peak.
TEST_F (ConsoleEQTest, NoControlChangeClicks)
{
    constexpr auto hz = 200.0, largestGain = 1.2;
    const auto step = 2.0 * std::numbers::pi * hz / rate;
    const auto bound = static_cast<float> (largestGain * (step + 4.0 / rampLength));
    std::mt19937 random (4);
    prepare ({});
    auto phase = 0.0;
    auto previous = 0.0f;

    for (int change = 0; change < 120; ++change)
    {
        eq.update (drawControls (random), change % 3 == 0);
        Row row (rampLength + static_cast<std::size_t> (random() % 2000));

        for (auto& sample : row)
            sample = static_cast<float> (std::sin (phase += step));

        process (eq, row, 64);

        for (const auto sample : row)
        {
            ASSERT_LT (std::abs (sample - previous), bound) << change;
            previous = sample;
        }
    }
}

TEST_F (ConsoleEQTest, UpdateOnTheAudioThreadTakesNoMemoryAndNoLock)
{
    prepare ({});
    std::thread audio (
        [this]
        {
            std::mt19937 random (5);
            Row row (blockSize, 0.1f);
            const RealTimeTrap trap;

            for (int i = 0; i < 500; ++i)
            {
                eq.update (drawControls (random), i % 7 == 0);
                eq.process (row.data(), blockSize);
            }

            EXPECT_EQ (trap.allocations(), 0);
            EXPECT_EQ (trap.locks(), 0);
        });
    audio.join();
}

TEST_F (ConsoleEQTest, NonsenseOnTheControlsLeavesFiniteAudio)
{
    constexpr auto nan = std::numeric_limits<float>::quiet_NaN(), infinity = std::numeric_limits<float>::infinity();
    prepare ({});

    for (const auto& controls : { EQControls { -1, 99, -7, nan, 5, 1000, -infinity, -2, 64 },
                                  EQControls { 99, -3, 50, infinity, -1, -1, nan, 99, -1 } })
    {
        eq.update (controls, true);
        auto row = makeNoise (2 * rampLength, 6);
        process (eq, row);
        EXPECT_TRUE (std::all_of (row.begin(), row.end(), [] (float x) { return std::abs (x) < 10.0f; }));
    }
}
} // namespace
} // namespace tarvik
