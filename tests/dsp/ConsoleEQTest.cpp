// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ConsoleEQ.h"

#include "FilterTestTools.h"
#include "dsp/EqualiserComponents.h"
#include "dsp/EqualiserNetwork.h"
#include "tests/support/RealTimeTrap.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <thread>

namespace tarvik
{
namespace
{
using namespace test;
using Row = Signal;

constexpr double rate = 96000.0;
constexpr int rampLength = 9600;
constexpr int blockSize = 256;

void process (ConsoleEQ& eq, Row& row, int block = blockSize)
{
    inPieces (row.size(), { block }, [&] (std::size_t begin, int n) { eq.process (row.data() + begin, n); });
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
        auto row = noise (blockSize, 1);
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
    // H(s) of the high pass at its three positions.
    const auto highPassAt = [] (std::int32_t position, double hz)
    {
        const Complex s (0.0, hz / (position == 1 ? 54.0 : 109.0));
        return position == 0 ? Complex (1.0) : s * s / (s * s + s / (position == 1 ? 1.04 : 1.05) + 1.0);
    };

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
            const auto wanted = std::abs (highPassAt (controls.highPass, hz)
                                          * analogueResponse (response.numerator, response.denominator, hz));
            EXPECT_NEAR (toDecibels (std::abs (transform (impulse, hz)) / wanted), 0.0, 0.03)
                << "trial " << trial << " at " << hz; // the design's own error up to half of half the rate
        }
    }
}

TEST_F (ConsoleEQTest, OnlyAChangeThatMakesAnotherFilterSetsOffACrossfade)
{
    const auto isFading = [this] (bool force, auto change)
    {
        prepare (heard);
        auto controls = heard;
        change (controls);
        eq.update (controls, force);
        return isCrossfading();
    };

    EXPECT_FALSE (isFading (false, [] (auto&) {}));
    EXPECT_FALSE (isFading (true, [] (auto&) {}));
    EXPECT_FALSE (isFading (false, [] (auto& c) { c.lowGain = 0.7f; })); // without effect beside a low cut
    EXPECT_TRUE (isFading (false, [] (auto& c) { c.midGain = 0.7f; }));
    EXPECT_TRUE (isFading (false, [] (auto& c) { c.highPass = 2; }));
    EXPECT_FALSE (isFading (false, [] (auto& c) { c.toleranceChannel = 31; })); // asks for force
    EXPECT_TRUE (isFading (true, [] (auto& c) { c.toleranceChannel = 31; }));
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

TEST_F (ConsoleEQTest, ChannelsOfTheTableDifferAndPositionsBeyondAnEndCountAsIt)
{
    const auto sound = [] (int toleranceChannel, int highPass)
    {
        ConsoleEQ other;
        other.update ({ .midGain = 0.5f, .highPass = highPass, .toleranceChannel = toleranceChannel }, true);
        other.prepare (rate, blockSize);
        auto row = noise (1000, 1);
        process (other, row);
        return row;
    };

    EXPECT_EQ (sound (0, 0), sound (-5, -1));
    EXPECT_EQ (sound (31, 2), sound (99, 99));
    EXPECT_NE (sound (0, 0), sound (1, 0));
    EXPECT_NE (sound (1, 0), sound (31, 0));
    EXPECT_NE (sound (0, 1), sound (0, 2));
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

        const auto n = static_cast<int> (random() % (blockSize + 1));
        std::array rows { noise (n, random()), noise (n, random()) };
        auto alone = rows;
        ConsoleEQ::processPair (eqs[0], eqs[1], rows[0].data(), rows[1].data(), n);
        eqs[2].process (alone[0].data(), n);
        eqs[3].process (alone[1].data(), n);
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
    const auto run = [this]
    {
        std::mt19937 random (5);
        Row row (blockSize, 0.1f);
        eq.process (row.data(), blockSize); // from now on this thread counts as the audio thread
        const RealTimeTrap trap;

        for (int i = 0; i < 500; ++i)
        {
            eq.update (drawControls (random), i % 7 == 0);
            eq.process (row.data(), blockSize);
        }

        EXPECT_EQ (trap.allocations(), 0);
        EXPECT_EQ (trap.locks(), 0);
    };

    prepare ({});
    std::thread (run).join();
    run(); // a program may render on its message thread
}
} // namespace
} // namespace tarvik
