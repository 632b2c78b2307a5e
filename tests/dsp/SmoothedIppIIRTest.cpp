// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/SmoothedIppIIR.cpp" // the template itself, to run it with a design of our own

#include "dsp/AnalogBiquad.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <numbers>
#include <semaphore>
#include <thread>

namespace tarvik
{
namespace
{
using Coefs = MZTiCoefs<double, 2, 2>;
using Filter = SmoothedIppIIR<float, Coefs>;
using Row = test::Signal;
using test::noise;

constexpr double rate = 44100.0;
constexpr int rampLength = 4410;
constexpr int tailLength = 4410;
constexpr int hurriedTailLength = 441; ///< while the next design waits
constexpr int blockSize = 256;

/** A change of control as the equaliser makes it. A gain has no memory, so that the crossfade itself can be seen. */
template <typename AnyFilter>
void changeGain (AnyFilter& filter, double gain)
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

template <typename AnyFilter>
Row processed (AnyFilter& filter, Row row, int block = blockSize)
{
    test::inPieces (row.size(), { block },
                    [&] (std::size_t begin, int n)
                    {
                        auto* const pointer = row.data() + begin;
                        filter.process (&pointer, n);
                    });
    return row;
}

template <typename AnyFilter>
Row processOnes (AnyFilter& filter, int n, int block = blockSize)
{
    return processed (filter, Row (static_cast<std::size_t> (n), 1.0f), block);
}

/** What part of a ramp over 0.1 s has passed with its sample i. */
double shareAt (std::size_t i) { return static_cast<double> (i + 1) / rampLength; }

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

TEST_F (SmoothedIppIIRTest, CrossfadeScalesTheInputsStartsFromRestAndFadesTheOldTail)
{
    changeLowPass (filter, 1000.0);
    prepare();
    auto old = makeCascade (1000.0), changed = makeCascade (500.0), last = makeCascade (300.0);
    auto seed = 0u;
    const auto filtered = [] (Row input, BiquadCascade& cascade)
    {
        cascade.processPlain (input.data(), static_cast<int> (input.size()));
        return input;
    };
    const auto expectCrossfade = [&] (BiquadCascade& from, BiquadCascade& to)
    {
        const auto input = noise (rampLength, ++seed);
        Row fading (input), rising (input);

        for (std::size_t i = 0; i < input.size(); ++i)
        {
            fading[i] *= static_cast<float> (1.0 - shareAt (i));
            rising[i] *= static_cast<float> (shareAt (i));
        }

        fading = filtered (fading, from);
        rising = filtered (rising, to);
        const auto got = processed (filter, input);

        for (std::size_t i = 0; i < input.size(); ++i)
            ASSERT_NEAR (got[i], fading[i] + rising[i], 1e-6f) << i;
    };
    const auto halfCosine = [] (std::size_t i, int length)
    { return 0.5 + 0.5 * std::cos (std::numbers::pi * static_cast<double> (i + 1) / length); };
    const auto expectTail = [&] (BiquadCascade& from, BiquadCascade& to, bool isHurried)
    {
        const auto length = isHurried ? hurriedTailLength : tailLength;
        const auto input = noise (length, ++seed), tail = filtered (Row (input.size(), 0.0f), from);
        const auto got = processed (filter, input), expected = filtered (input, to);
        EXPECT_GT (std::abs (tail.front()), 1e-4f);

        for (std::size_t i = 0; i < input.size(); ++i)
        {
            const auto share = halfCosine (i, tailLength) * (isHurried ? halfCosine (i, hurriedTailLength) : 1.0);
            ASSERT_NEAR (got[i], expected[i] + static_cast<float> (share) * tail[i], 1e-6f) << i;
        }
    };

    EXPECT_EQ (processed (filter, noise (1000, 9)), filtered (noise (1000, 9), old));
    changeLowPass (filter, 500.0);
    expectCrossfade (old, changed);
    changeLowPass (filter, 300.0); // waits for the tail, and shortens it
    expectTail (old, changed, true);
    expectCrossfade (changed, last);
    expectTail (changed, last, false);
    EXPECT_EQ (processed (filter, noise (1000, 9)), filtered (noise (1000, 9), last));
}

TEST_F (SmoothedIppIIRTest, TheSameChangesSoundTheSameHoweverTheStreamIsCut)
{
    const auto run = [] (int block)
    {
        Filter fresh;
        changeLowPass (fresh, 100.0);
        fresh.prepare (rate, 1, blockSize);
        Row heard;

        // Changes at rest, in a crossfade, in a tail and in a fade of the whole.
        for (unsigned i = 0; i < 24; ++i)
        {
            changeLowPass (fresh, 50.0 + 30.0 * i);

            if (i % 5 == 3)
                fresh.setOn (i % 10 != 3);

            const auto more = processed (fresh, noise (i % 3 == 0 ? 1000 : 6001, i), block);
            heard.insert (heard.end(), more.begin(), more.end());
        }

        return heard;
    };

    const auto expected = run (1);

    for (const auto block : { 37, 256, 441, 4096 })
        EXPECT_EQ (run (block), expected) << block;
}

TEST_F (SmoothedIppIIRTest, ADesignEqualToTheCurrentOneChangesNothing)
{
    Filter untouched;

    for (auto* const each : { &filter, &untouched })
    {
        changeLowPass (*each, 100.0);
        each->prepare (rate, 1, blockSize);
    }

    changeLowPass (filter, 100.0);
    EXPECT_EQ (processed (filter, noise (1000, 1)), processed (untouched, noise (1000, 1)));

    for (auto* const each : { &filter, &untouched })
        changeLowPass (*each, 200.0);

    EXPECT_EQ (processed (filter, noise (1000, 2)), processed (untouched, noise (1000, 2)));
    changeLowPass (filter, 300.0);
    changeLowPass (filter, 200.0); // where the crossfade goes to already
    EXPECT_EQ (processed (filter, noise (20000, 3)), processed (untouched, noise (20000, 3)));
}

TEST_F (SmoothedIppIIRTest, OnlyTheNewestChangeFollowsARunningCrossfade)
{
    changeGain (filter, 0.0);
    prepare();
    changeGain (filter, 1.0);
    Row row;
    const auto processMore = [&] (int n)
    {
        const auto more = processOnes (filter, n);
        row.insert (row.end(), more.begin(), more.end());
    };

    processMore (1000);                                         // this is the audio thread for the moment
    std::thread ([&] { changeGain (filter, -1000.0); }).join(); // never heard
    EXPECT_FALSE (filter.isTimerRunning());
    std::thread ([&] { processMore (1000); }).join();
    changeGain (filter, 0.5);
    EXPECT_TRUE (filter.isTimerRunning()); // this is the message thread
    filter.timerCallback();                // changes nothing while the crossfade runs
    EXPECT_TRUE (filter.isTimerRunning());

    // No message loop runs here: the audio side alone goes on, at the first call after the crossfade's end.
    processMore (rampLength - 2000);
    EXPECT_EQ (processOnes (filter, hurriedTailLength), Row (hurriedTailLength, 1.0f)); // no tail, but its time passes
    const auto second = processOnes (filter, rampLength);

    for (std::size_t i = 0; i < rampLength; ++i)
    {
        ASSERT_NEAR (row[i], shareAt (i), 1e-6);
        ASSERT_NEAR (second[i], 1.0 - 0.5 * shareAt (i), 1e-6);
    }

    EXPECT_EQ (processOnes (filter, 2 * rampLength), Row (2 * rampLength, 0.5f)); // nothing else was waiting
    filter.timerCallback();
    EXPECT_FALSE (filter.isTimerRunning());
}

TEST_F (SmoothedIppIIRTest, FadesTheWholeFilterInAndOut)
{
    changeGain (filter, 3.0);
    prepare();
    filter.setOn (false);
    const auto out = processOnes (filter, rampLength);
    changeGain (filter, 5.0); // meets nobody
    EXPECT_EQ (processed (filter, noise (1000, 6)), noise (1000, 6));
    filter.setOn (true);
    const auto in = processOnes (filter, rampLength);

    // Both ramps at once: the filter's share applies to the sum of both banks.
    changeGain (filter, 7.0);
    filter.setOn (false);
    const auto both = processOnes (filter, rampLength);

    for (std::size_t i = 0; i < rampLength; ++i)
    {
        const auto w = shareAt (i);
        ASSERT_NEAR (out[i], w + 3.0 * (1.0 - w), 2e-6);
        ASSERT_NEAR (in[i], (1.0 - w) + 5.0 * w, 2e-6);
        ASSERT_NEAR (both[i], w + (1.0 - w) * (5.0 + 2.0 * w), 3e-6);
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
    EXPECT_EQ (processed (filter, Row (1000, 0.0f)), Row (1000, 0.0f));
}

TEST_F (SmoothedIppIIRTest, ChannelsTogetherGiveTheBitsOfEachAlone)
{
    std::array<Filter, 3> alone;
    prepare (3);

    for (auto& each : alone)
        each.prepare (rate, 1, blockSize);

    // Through rest, crossfade, tail and a fade of the whole, also together.
    for (int block = 0; block < 60; ++block)
    {
        for (auto* const each : { &filter, &alone[0], &alone[1], &alone[2] })
        {
            if (block % 35 == 5)
                changeLowPass (*each, 50.0 + 10.0 * block);

            if (block == 12 || block == 41)
                each->setOn (block == 41);
        }

        std::array<Row, 3> rows, expected;
        std::array<float*, 3> pointers {};

        for (std::size_t c = 0; c < rows.size(); ++c)
        {
            rows[c] = noise (600, 3 * static_cast<std::size_t> (block) + c);
            expected[c] = processed (alone[c], rows[c]);
            pointers[c] = rows[c].data();
        }

        filter.process (pointers.data(), 600);
        ASSERT_EQ (rows, expected) << block;
    }
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
    const auto lastOf = [] (HeldFilter& filter) { return processOnes (filter, rampLength + hurriedTailLength).back(); };
    HeldFilter filter;
    HeldCoefs::mayEnd.release();
    filter.prepare (rate, 1, blockSize);
    HeldCoefs::begun.acquire();

    std::thread designer ([&] { filter.setAnalogue ({ 0.0, 0.0, 0.5 }, { 0.0, 0.0, 1.0 }); });
    HeldCoefs::begun.acquire();
    auto others = std::async (std::launch::async,
                              [&]
                              {
                                  changeGain (filter, 2.0);
                                  changeGain (filter, 0.25);
                                  return lastOf (filter); // the old sound goes on
                              });
    const auto haveWaited = others.wait_for (std::chrono::seconds (5)) != std::future_status::ready;
    HeldCoefs::mayEnd.release (3);
    EXPECT_FALSE (haveWaited);
    EXPECT_EQ (others.get(), 1.0f);
    designer.join();
    EXPECT_EQ (HeldCoefs::numDesigns, 3); // it has looked again: nothing is left for the audio side to design
    EXPECT_EQ (lastOf (filter), 0.25f);
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
