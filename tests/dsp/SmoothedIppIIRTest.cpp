// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/SmoothedIppIIR.cpp" // the template itself, to run it with a design of our own

#include "FilterTestTools.h"
#include "dsp/AnalogBiquad.h"
#include "tests/support/RealTimeTrap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <semaphore>
#include <thread>

namespace tarvik
{
namespace
{
using Coefs = MZTiCoefs<double, 2, 2>;
using Filter = SmoothedIppIIR<float, Coefs>;
using Row = std::vector<float>;

constexpr double rate = 44100.0;
constexpr int rampLength = 4410;
constexpr int tailLength = 441;
constexpr int blockSize = 256;

/** A change of control as the equaliser makes it. A gain has no memory, so that the crossfade itself can be seen. */
void changeGain (Filter& filter, double gain)
{
    filter.setAnalogue ({ 0.0, 0.0, gain }, { 0.0, 0.0, 1.0 });
    filter.bringInCoefficients();
}

AnalogBiquad makeLowPass (double omega0)
{
    return AnalogBiquad::make (AnalogBiquad::Type::lowPass, 2.0, 1.0, 1.0, omega0);
}

void changeLowPass (Filter& filter, double omega0)
{
    filter.setAnalogue (makeLowPass (omega0).numerator, makeLowPass (omega0).denominator);
    filter.bringInCoefficients();
}

BiquadCascade makeCascade (double omega0)
{
    Coefs coefs;
    coefs.numerator = makeLowPass (omega0).numerator;
    coefs.denominator = makeLowPass (omega0).denominator;
    coefs.sampleRate = rate;
    coefs.design();
    BiquadCascade cascade;
    cascade.setTaps (coefs.taps);
    return cascade;
}

void process (Filter& filter, Row& row, int block = blockSize)
{
    for (int done = 0; done < static_cast<int> (row.size()); done += block)
    {
        auto* const pointer = row.data() + done;
        filter.process (&pointer, std::min (block, static_cast<int> (row.size()) - done));
    }
}

Row processOnes (Filter& filter, int n, int block = blockSize)
{
    Row row (static_cast<std::size_t> (n), 1.0f);
    process (filter, row, block);
    return row;
}

/** The curve of a ramp over 0.1 s, as floats. */
Row makeRamp (double from, double to)
{
    Row ramp (rampLength);
    LinearRamp linear (from);
    linear.steps = rampLength;
    linear.set (to);
    linear.fill (ramp.data(), rampLength);
    return ramp;
}

class SmoothedIppIIRTest : public testing::Test
{
protected:
    void prepare (int channels = 1) { filter.prepare (rate, channels, blockSize); }

    Filter filter;
};

TEST_F (SmoothedIppIIRTest, ChangesBeforePrepareLeaveNeitherCrossfadeNorTimerBehind)
{
    changeGain (filter, 0.25);
    changeGain (filter, 0.5);
    EXPECT_EQ (processOnes (filter, 10), Row (10, 1.0f)); // unprepared, it has no channels
    prepare();
    EXPECT_EQ (processOnes (filter, 1000), Row (1000, 0.5f));
    EXPECT_FALSE (filter.isTimerRunning());
}

TEST_F (SmoothedIppIIRTest, CrossfadeTakesATenthOfASecondForAnyCuttingIntoBlocks)
{
    for (const auto block : { 1, 100, 256, 1000 })
    {
        changeGain (filter, 0.5);
        prepare();
        changeGain (filter, 1.0);
        const auto row = processOnes (filter, rampLength + 100, block);
        EXPECT_LT (row[rampLength - 2], 1.0f);
        EXPECT_EQ (row[rampLength - 1], 1.0f) << block;

        for (std::size_t i = 0; i < rampLength; ++i)
            ASSERT_NEAR (row[i], 0.5 + 0.5 * static_cast<double> (i + 1) / rampLength, 1e-6) << block;
    }
}

TEST_F (SmoothedIppIIRTest, CrossfadeScalesTheInputsStartsFromRestAndFadesTheOldTail)
{
    changeLowPass (filter, 1000.0);
    prepare();
    auto before = test::makeNoise (1000, 1), row = test::makeNoise (rampLength, 2),
         next = test::makeNoise (rampLength, 3), behind = test::makeNoise (tailLength, 4);
    auto old = makeCascade (1000.0), changed = makeCascade (9000.0), last = makeCascade (300.0);
    const auto ramp = makeRamp (0.0, 1.0);
    const auto crossfade = [&ramp] (const Row& input, BiquadCascade& from, BiquadCascade& to)
    {
        Row fading (input), rising (input);

        for (std::size_t i = 0; i < input.size(); ++i)
        {
            fading[i] *= 1.0f - ramp[i];
            rising[i] *= ramp[i];
        }

        from.processPlain (fading.data(), rampLength);
        to.processPlain (rising.data(), rampLength);
        std::transform (fading.begin(), fading.end(), rising.begin(), rising.begin(), std::plus<>());
        return rising;
    };

    process (filter, before);
    auto expectedBefore = test::makeNoise (1000, 1);
    old.processPlain (expectedBefore.data(), 1000);
    EXPECT_EQ (before, expectedBefore);

    // Into bank 1, whose ramp rises, and back into bank 0, whose ramp falls and may differ in the last bit.
    const auto expected = crossfade (row, old, changed);
    Row tail (tailLength, 0.0f), expectedBehind (behind);
    old.processPlain (tail.data(), tailLength);
    changed.processPlain (expectedBehind.data(), tailLength);
    const auto expectedNext = crossfade (next, changed, last);

    changeLowPass (filter, 9000.0);
    process (filter, row);
    EXPECT_EQ (row, expected);
    changeLowPass (filter, 300.0); // waits for the tail
    process (filter, behind);
    process (filter, next);
    EXPECT_GT (std::abs (tail.front()), 1e-3f);

    for (std::size_t i = 0; i < behind.size(); ++i)
        ASSERT_NEAR (behind[i], expectedBehind[i] + tail[i] * (1.0f - static_cast<float> (i + 1) / tailLength), 1e-6f);

    for (std::size_t i = 0; i < next.size(); ++i)
        ASSERT_NEAR (next[i], expectedNext[i], 1e-6f);
}

TEST_F (SmoothedIppIIRTest, OnlyTheNewestChangeFollowsARunningCrossfade)
{
    changeGain (filter, 0.0);
    prepare();
    changeGain (filter, 1.0);
    Row row;
    const auto processOnAudioThread = [&]
    {
        const auto next = processOnes (filter, 1000);
        row.insert (row.end(), next.begin(), next.end());
    };

    processOnAudioThread();                                     // which is this one for the moment
    std::thread ([&] { changeGain (filter, -1000.0); }).join(); // never heard
    EXPECT_FALSE (filter.isTimerRunning());
    std::thread (processOnAudioThread).join();
    changeGain (filter, 0.5);
    EXPECT_TRUE (filter.isTimerRunning()); // this is the message thread
    filter.timerCallback();                // changes nothing while the crossfade runs
    EXPECT_TRUE (filter.isTimerRunning());

    // No message loop runs here: the audio side alone goes on, at the first call after the crossfade's end.
    auto rest = processOnes (filter, rampLength - 2000);
    EXPECT_EQ (processOnes (filter, tailLength), Row (tailLength, 1.0f)); // gains have no tail, but its time passes
    const auto second = processOnes (filter, rampLength);
    row.insert (row.end(), rest.begin(), rest.end());

    for (std::size_t i = 0; i < rampLength; ++i)
    {
        const auto share = static_cast<double> (i + 1) / rampLength;
        ASSERT_NEAR (row[i], share, 1e-6);
        ASSERT_NEAR (second[i], 1.0 - 0.5 * share, 1e-6);
    }

    EXPECT_EQ (processOnes (filter, 2 * rampLength), Row (2 * rampLength, 0.5f)); // nothing else was waiting
    filter.timerCallback();
    EXPECT_FALSE (filter.isTimerRunning());
}

TEST_F (SmoothedIppIIRTest, NewRateRedesignsWithoutCrossfadeAndTheOldRateKeepsTheDesign)
{
    const auto impulse = [this]
    {
        Row row (100, 0.0f);
        row[0] = 1.0f;
        process (filter, row);
        return row;
    };

    changeLowPass (filter, 3000.0);
    prepare();
    const auto first = impulse();
    filter.prepare (2.0 * rate, 1, blockSize);
    EXPECT_NE (impulse(), first);
    prepare();
    EXPECT_EQ (impulse(), first);
    prepare();
    EXPECT_EQ (impulse(), first);

    changeLowPass (filter, 100.0); // waits
    filter.prepare (rate, 1, blockSize);
    const auto changed = impulse();
    auto expected = makeCascade (100.0);
    Row row (100, 0.0f);
    row[0] = 1.0f;
    expected.processPlain (row.data(), 100);
    EXPECT_EQ (changed, row);
}

TEST_F (SmoothedIppIIRTest, ResetEndsAtRestOnTheNewestDesign)
{
    changeLowPass (filter, 3000.0);
    prepare();
    auto noise = test::makeNoise (500, 5);
    process (filter, noise);
    changeGain (filter, 2.0);
    process (filter, noise); // in the crossfade
    changeGain (filter, 0.5);
    filter.reset();
    EXPECT_EQ (processOnes (filter, 100), Row (100, 0.5f));

    changeLowPass (filter, 3000.0);
    filter.reset();
    process (filter, noise);
    filter.reset();
    Row silence (500, 0.0f);
    process (filter, silence);
    EXPECT_EQ (silence, Row (500, 0.0f)); // no tail
}

TEST_F (SmoothedIppIIRTest, FadesTheWholeFilterInAndOut)
{
    changeGain (filter, 3.0);
    prepare();
    filter.setOn (false);
    const auto out = processOnes (filter, rampLength);
    changeGain (filter, 5.0); // meets nobody
    const auto off = test::makeNoise (1000, 6);
    auto untouched = off;
    process (filter, untouched);
    EXPECT_EQ (untouched, off);

    filter.setOn (true);
    const auto in = processOnes (filter, rampLength);

    for (std::size_t i = 0; i < rampLength; ++i)
    {
        const auto w = static_cast<double> (i + 1) / rampLength;
        ASSERT_NEAR (out[i], w + 3.0 * (1.0 - w), 2e-6);
        ASSERT_NEAR (in[i], (1.0 - w) + 5.0 * w, 2e-6);
    }

    // Both ramps at once: the filter's share w applies to the sum of both banks.
    changeGain (filter, 7.0);
    filter.setOn (false);
    const auto both = processOnes (filter, rampLength);

    for (std::size_t i = 0; i < rampLength; ++i)
    {
        const auto share = static_cast<double> (i + 1) / rampLength, w = 1.0 - share;
        ASSERT_NEAR (both[i], (1.0 - w) + w * (5.0 + 2.0 * share), 3e-6);
    }
}

TEST_F (SmoothedIppIIRTest, ComesBackFromOffWithoutAnOldTail)
{
    changeLowPass (filter, 30.0);
    prepare();
    processOnes (filter, 2000);
    filter.setOn (false);
    processOnes (filter, 2 * rampLength);
    filter.setOn (true);
    Row silence (1000, 0.0f);
    process (filter, silence);
    EXPECT_EQ (silence, Row (1000, 0.0f));
}

// Through rest, crossfade, tail and a fade of the whole: three channels in one object, one beside it in the same pass that
// starts its crossfade later, and each of them alone.
TEST_F (SmoothedIppIIRTest, ChannelsAndFiltersTogetherGiveTheBitsOfEachAlone)
{
    Filter beside;
    std::array<Filter, 4> alone;
    changeLowPass (filter, 3000.0);
    prepare (3);
    beside.prepare (rate, 1, blockSize);

    for (std::size_t c = 0; c < alone.size(); ++c)
    {
        if (c < 3)
            changeLowPass (alone[c], 3000.0);

        alone[c].prepare (rate, 1, blockSize);
    }

    for (int block = 0; block < 60; ++block)
    {
        for (std::size_t c = 0; c < 3; ++c)
        {
            if (block == 5)
                changeLowPass (alone[c], 50.0);

            if (block == 12 || block == 40)
                alone[c].setOn (block == 40);
        }

        if (block == 5)
            changeLowPass (filter, 50.0);

        if (block == 12 || block == 40)
            filter.setOn (block == 40);

        if (block == 8)
            changeLowPass (beside, 700.0), changeLowPass (alone[3], 700.0);

        std::array<Row, 4> rows;
        std::array<float*, 4> pointers {};

        for (std::size_t c = 0; c < rows.size(); ++c)
        {
            rows[c] = test::makeNoise (600, static_cast<unsigned> (4 * block) + static_cast<unsigned> (c));
            pointers[c] = rows[c].data();
        }

        auto expected = rows;
        Filter::processTogether (std::array { &filter, &beside }, pointers.data(), 600);

        for (std::size_t c = 0; c < alone.size(); ++c)
            process (alone[c], expected[c]);

        ASSERT_EQ (rows, expected) << block;
    }
}

TEST_F (SmoothedIppIIRTest, ChangesOnTheAudioThreadTakeNoMemoryAndNoLock)
{
    const auto run = [this]
    {
        Row row (blockSize, 1.0f);
        auto* const pointer = row.data();
        filter.process (&pointer, blockSize); // from now on this thread counts as the audio thread
        const test::RealTimeTrap trap;

        for (int i = 0; i < 200; ++i)
        {
            changeLowPass (filter, 100.0 + i);
            filter.setOn (i % 50 < 25);
            filter.process (&pointer, blockSize);
        }

        EXPECT_EQ (trap.allocations(), 0);
        EXPECT_EQ (trap.locks(), 0);
        EXPECT_FALSE (filter.isTimerRunning());
    };

    prepare();
    std::thread (run).join();
    run(); // a program may render on its message thread
}

/** A design that takes as long as the test wants. */
struct HeldCoefs : Coefs
{
    void design()
    {
        ++numDesigns;
        begun.release();
        mayEnd.acquire();
        Coefs::design();
    }

    static inline std::atomic<int> numDesigns { 0 };
    static inline std::counting_semaphore<> begun { 0 }, mayEnd { 0 };
};

TEST (SmoothedIppIIRHandOver, ADesignUnderWayHoldsUpNobodyAndLosesNothing)
{
    using HeldFilter = SmoothedIppIIR<float, HeldCoefs>;
    const auto change = [] (HeldFilter& filter, double gain)
    {
        filter.setAnalogue ({ 0.0, 0.0, gain }, { 0.0, 0.0, 1.0 });
        filter.bringInCoefficients();
    };
    const auto processOne = [] (HeldFilter& filter)
    {
        Row row (rampLength + tailLength, 1.0f);
        auto* pointer = row.data();
        filter.process (&pointer, static_cast<int> (row.size()));
        return row.back();
    };

    HeldFilter filter;
    HeldCoefs::mayEnd.release();
    filter.prepare (rate, 1, blockSize);
    HeldCoefs::begun.acquire();

    std::thread designer ([&] { filter.setAnalogue ({ 0.0, 0.0, 0.5 }, { 0.0, 0.0, 1.0 }); });
    HeldCoefs::begun.acquire();
    auto others = std::async (std::launch::async,
                              [&]
                              {
                                  change (filter, 2.0);
                                  change (filter, 0.25);
                                  return processOne (filter); // the old sound goes on
                              });
    const auto haveWaited = others.wait_for (std::chrono::seconds (5)) != std::future_status::ready;
    HeldCoefs::mayEnd.release (3);
    EXPECT_FALSE (haveWaited);
    EXPECT_EQ (others.get(), 1.0f);
    designer.join();
    EXPECT_EQ (HeldCoefs::numDesigns, 3); // it has looked again: nothing is left for the audio side to design
    EXPECT_EQ (processOne (filter), 0.25f);
    EXPECT_EQ (HeldCoefs::numDesigns, 3);
}

// Run this one under ThreadSanitizer too. A constant input through gains between 0.5 and 1 stays between them whatever
// is torn or lost; the last change must win.
TEST_F (SmoothedIppIIRTest, ThreadsMeetWithoutHarm)
{
    changeGain (filter, 0.5);
    filter.prepare (1000.0, 1, blockSize); // ramps of 100 samples
    std::atomic<bool> isDone { false };

    std::thread audio (
        [&]
        {
            while (! isDone)
                for (const auto sample : processOnes (filter, 37))
                    ASSERT_TRUE (sample > 0.4999f && sample < 1.0001f) << sample;
        });

    std::thread otherMessages (
        [&]
        {
            while (! isDone)
                filter.timerCallback();
        });

    for (int i = 0; i <= 3000; ++i)
        changeGain (filter, 0.5 + 0.25 * (i % 3));

    isDone = true;
    audio.join();
    otherMessages.join();
    processOnes (filter, 1000); // enough for a crossfade under way and another one
    EXPECT_EQ (processOnes (filter, 10), Row (10, 0.5f));
}

// The design lock may be held by prepare() while a change comes on another thread: the change must neither wait nor be
// lost.
TEST_F (SmoothedIppIIRTest, ChangesDuringPrepareAreNotLost)
{
    for (int i = 0; i < 300; ++i)
    {
        std::thread control ([&] { changeGain (filter, 0.5 + i); });
        filter.prepare (1000.0 + i, 1, blockSize);
        control.join();
        processOnes (filter, 1000); // enough for a crossfade under way and another one
        ASSERT_NEAR (processOnes (filter, 1).front(), 0.5f + static_cast<float> (i), 1e-3f);
    }
}
} // namespace
} // namespace tarvik
