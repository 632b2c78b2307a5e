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
constexpr int rampLength = 4410;       ///< also of a tail
constexpr int hurriedTailLength = 441; ///< of a tail while the next design waits
constexpr int blockSize = 256;

/** A change of control as the equaliser makes it. A gain has no memory, so that the crossfade itself can be seen. */
template <typename AnyFilter>
void changeGain (AnyFilter& filter, double gain)
{
    filter.setAnalogue ({ 0.0, 0.0, gain }, { 0.0, 0.0, 1.0 });
    filter.bringInCoefficients();
}

void changeLowPass (Filter& filter, double omega0)
{
    const auto lowPass = AnalogBiquad::make (AnalogBiquad::Type::lowPass, 2.0, 1.0, 1.0, omega0);
    filter.setAnalogue (lowPass.numerator, lowPass.denominator);
    filter.bringInCoefficients();
}

template <typename AnyFilter>
Row processed (AnyFilter& filter, Row row)
{
    auto* const pointer = row.data();
    filter.process (&pointer, static_cast<int> (row.size()));
    return row;
}

template <typename AnyFilter>
Row processOnes (AnyFilter& filter, int n)
{
    return processed (filter, Row (static_cast<std::size_t> (n), 1.0f));
}

/** What part of a ramp over 0.1 s has passed with its sample i. */
double shareAt (std::size_t i) { return static_cast<double> (i + 1) / rampLength; }

class SmoothedIppIIRTest : public testing::Test
{
protected:
    void prepare() { filter.prepare (rate, 1, blockSize); }

    Filter filter;
};

TEST_F (SmoothedIppIIRTest, CrossfadeScalesTheInputsAndFadesTheOldTail)
{
    auto seed = 0u;
    const auto filtered = [] (Row input, BiquadCascade& cascade)
    {
        filterPlainly ({ input.data(), &cascade }, static_cast<int> (input.size()));
        return input;
    };
    const auto currentFilter = [this]
    {
        auto cascade = *filter.getActiveCascades().front();
        cascade.clear();
        return cascade;
    };
    const auto crossfadeFrom = [&] (BiquadCascade& from)
    {
        auto fading = noise (rampLength, ++seed), rising = fading;
        const auto got = processed (filter, fading);
        auto to = currentFilter();

        for (std::size_t i = 0; i < got.size(); ++i)
        {
            fading[i] *= static_cast<float> (1.0 - shareAt (i));
            rising[i] *= static_cast<float> (shareAt (i));
        }

        fading = filtered (fading, from);
        rising = filtered (rising, to);

        for (std::size_t i = 0; i < got.size(); ++i)
            EXPECT_NEAR (got[i], fading[i] + rising[i], 1e-6f) << i;

        return to;
    };
    const auto halfCosine = [] (std::size_t i, int length)
    { return 0.5 + 0.5 * std::cos (std::numbers::pi * static_cast<double> (i + 1) / length); };
    const auto expectTail = [&] (BiquadCascade& from, BiquadCascade& to, bool isHurried)
    {
        const auto input = noise (isHurried ? hurriedTailLength : rampLength, ++seed);
        const auto tail = filtered (Row (input.size(), 0.0f), from);
        const auto got = processed (filter, input), expected = filtered (input, to);
        EXPECT_GT (std::abs (tail.front()), 1e-4f);

        for (std::size_t i = 0; i < input.size(); ++i)
        {
            const auto share = halfCosine (i, rampLength) * (isHurried ? halfCosine (i, hurriedTailLength) : 1.0);
            ASSERT_NEAR (got[i], expected[i] + static_cast<float> (share) * tail[i], 1e-6f) << i;
        }
    };

    changeLowPass (filter, 1000.0);
    prepare();
    auto old = currentFilter();
    EXPECT_EQ (processed (filter, noise (1000, 9)), filtered (noise (1000, 9), old));
    changeLowPass (filter, 500.0);
    auto changed = crossfadeFrom (old);
    changeLowPass (filter, 300.0); // waits for the tail, and shortens it
    expectTail (old, changed, true);
    auto last = crossfadeFrom (changed);
    expectTail (changed, last, false);
    EXPECT_EQ (processed (filter, noise (1000, 9)), filtered (noise (1000, 9), last));
}

TEST_F (SmoothedIppIIRTest, OnlyTheNewestChangeFollowsACrossfade)
{
    changeGain (filter, 0.0);
    prepare();
    changeGain (filter, 1.0);
    auto row = processOnes (filter, 1000);                      // this is the audio thread for the moment
    std::thread ([&] { changeGain (filter, -1000.0); }).join(); // never heard
    EXPECT_FALSE (filter.isTimerRunning());
    changeGain (filter, 0.5);
    filter.timerCallback();                // changes nothing while the crossfade runs
    EXPECT_TRUE (filter.isTimerRunning()); // as this is the message thread

    // No message loop runs here: the audio side alone goes on, at the first call after the crossfade's end.
    const auto rest = processOnes (filter, rampLength - 1000);
    row.insert (row.end(), rest.begin(), rest.end());
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

TEST_F (SmoothedIppIIRTest, FadesInAndOutAsAWhole)
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

/** A design that takes as long as the test likes. */
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

TEST (SmoothedIppIIRHandOver, ADesignInProgressStopsNobodyAndIsNotLost)
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
    const auto isDone = others.wait_for (std::chrono::seconds (5)) == std::future_status::ready;
    HeldCoefs::mayEnd.release (isDone ? 1 : 10);
    EXPECT_TRUE (isDone) << "it has waited for the design";
    EXPECT_EQ (others.get(), 1.0f);

    // The designer has looked again and designs the newest. A slice that begins before it ends finds nothing to do, and
    // still the next one on the same thread hears of the design.
    HeldCoefs::begun.acquire();
    EXPECT_EQ (lastOf (filter), 1.0f);
    HeldCoefs::mayEnd.release();
    designer.join();
    EXPECT_EQ (lastOf (filter), 0.25f);
    EXPECT_EQ (HeldCoefs::numDesigns, 3);
}
} // namespace
} // namespace tarvik
