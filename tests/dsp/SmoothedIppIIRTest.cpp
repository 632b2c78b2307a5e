// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/SmoothedIppIIR.cpp" // the template itself, to run it with a design of our own

#include "dsp/AnalogBiquad.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <numbers>
#include <thread>
#include <utility>

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

Row filtered (BiquadCascade& cascade, Row row)
{
    filterPlainly ({ row.data(), &cascade }, static_cast<int> (row.size()));
    return row;
}

/** What part of a ramp over 0.1 s has passed with its sample i, or of a fade of another length. */
double shareAt (std::size_t i, int length = rampLength) { return static_cast<double> (i + 1) / length; }

double halfCosine (double share) { return 0.5 + 0.5 * std::cos (std::numbers::pi * share); }

class SmoothedIppIIRTest : public testing::Test
{
protected:
    void prepare() { filter.prepare (rate, 1, blockSize); }

    Filter filter;
};

TEST_F (SmoothedIppIIRTest, CrossfadeScalesTheInputsAndFadesTheOldTail)
{
    const auto currentCascade = [this]
    {
        auto cascade = *filter.getActiveCascades().front();
        cascade.clear();
        return cascade;
    };
    const auto expectChange = [&] (BiquadCascade& from, double nextOmega0)
    {
        auto fading = noise (rampLength, 1), rising = fading;
        const auto crossfaded = processed (filter, fading);
        auto to = currentCascade();

        for (std::size_t i = 0; i < fading.size(); ++i)
        {
            fading[i] *= static_cast<float> (1.0 - shareAt (i));
            rising[i] *= static_cast<float> (shareAt (i));
        }

        fading = filtered (from, fading);
        rising = filtered (to, rising);

        for (std::size_t i = 0; i < fading.size(); ++i)
            ASSERT_NEAR (crossfaded[i], fading[i] + rising[i], 1e-6f) << i;

        const auto isHurried = nextOmega0 > 0.0;

        if (isHurried)
            changeLowPass (filter, nextOmega0); // waits for the tail, and shortens it

        const auto input = noise (isHurried ? hurriedTailLength : rampLength, 2);
        const auto tail = filtered (from, Row (input.size(), 0.0f));
        const auto got = processed (filter, input), expected = filtered (to, input);
        EXPECT_GT (std::abs (tail.front()), 1e-4f);

        for (std::size_t i = 0; i < input.size(); ++i)
        {
            const auto hurry = isHurried ? halfCosine (shareAt (i, hurriedTailLength)) : 1.0;
            const auto fade = static_cast<float> (halfCosine (shareAt (i)) * hurry);
            ASSERT_NEAR (got[i], expected[i] + fade * tail[i], 1e-6f) << i;
        }

        from = to;
    };

    changeLowPass (filter, 1000.0);
    prepare();
    auto cascade = currentCascade();
    EXPECT_EQ (processed (filter, noise (1000, 9)), filtered (cascade, noise (1000, 9)));
    changeLowPass (filter, 500.0);
    expectChange (cascade, 300.0);
    expectChange (cascade, 0.0);
    EXPECT_EQ (processed (filter, noise (1000, 9)), filtered (cascade, noise (1000, 9)));
}

TEST_F (SmoothedIppIIRTest, OnlyTheNewestChangeFollowsACrossfade)
{
    changeGain (filter, 0.0);
    prepare();
    changeGain (filter, 1.0);
    auto row = processOnes (filter, 1000);                      // this is the audio thread for the moment
    std::thread ([&] { changeGain (filter, -1000.0); }).join(); // never heard
    EXPECT_FALSE (filter.isTimerRunning());
    const auto processMore = [&] (int n)
    {
        const auto more = processOnes (filter, n);
        row.insert (row.end(), more.begin(), more.end());
    };
    std::thread (processMore, 1000).join();
    changeGain (filter, 0.5);
    filter.timerCallback();                // changes nothing while the crossfade runs
    EXPECT_TRUE (filter.isTimerRunning()); // as this is the message thread

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

TEST_F (SmoothedIppIIRTest, FadesInAndOutAsAWhole)
{
    changeGain (filter, 3.0);
    prepare();
    changeGain (filter, 4.0); // crossfades at the same time
    filter.setOn (false);
    const auto out = processOnes (filter, rampLength);
    changeGain (filter, 5.0); // meets nobody
    EXPECT_EQ (processed (filter, noise (1000, 6)), noise (1000, 6));
    filter.setOn (true);
    const auto in = processOnes (filter, rampLength);

    for (std::size_t i = 0; i < rampLength; ++i)
    {
        ASSERT_NEAR (out[i], shareAt (i) + (3.0 + shareAt (i)) * (1.0 - shareAt (i)), 2e-6);
        ASSERT_NEAR (in[i], (1.0 - shareAt (i)) + 5.0 * shareAt (i), 2e-6);
    }
}

/** As the library's, which MinGW's can leave waiting. */
class Semaphore
{
public:
    void release (int number = 1)
    {
        const std::lock_guard lock (mutex);
        count += number;
        changed.notify_all();
    }

    void acquire()
    {
        std::unique_lock lock (mutex);
        changed.wait (lock, [this] { return count > 0; });
        --count;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    int count = 0;
};

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
    static inline Semaphore begun, mayEnd;
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

struct CountedCoefs : Coefs
{
    void design()
    {
        ++numDesigns;
        Coefs::design();
    }

    static inline int numDesigns = 0;
};

TEST (SmoothedIppIIRHandOver, TheAudioThreadDesignsOnceAndWhatIsAboutToBeHeard)
{
    SmoothedIppIIR<float, CountedCoefs> filter;
    const auto expectDesigns = [&] (int expected, int samples, float last)
    {
        EXPECT_EQ (processOnes (filter, samples).back(), last);
        EXPECT_EQ (std::exchange (CountedCoefs::numDesigns, 0), expected);
    };

    changeGain (filter, 2.0);
    filter.prepare (rate, 1, blockSize);
    expectDesigns (1, 1, 2.0f);

    for (const auto gain : { 3.0, 4.0, 6.0 })
        changeGain (filter, gain);

    expectDesigns (1, rampLength / 2, 4.0f);
    changeGain (filter, 7.0); // while the crossfade runs
    expectDesigns (0, rampLength / 2, 6.0f);
    changeGain (filter, 6.0); // back, so the tail is not hurried
    expectDesigns (0, hurriedTailLength, 6.0f);
    changeGain (filter, 8.0);
    expectDesigns (1, rampLength + hurriedTailLength, 8.0f);
    processOnes (filter, rampLength); // the tail
    filter.setOn (false);
    processOnes (filter, rampLength);
    changeGain (filter, 9.0);
    expectDesigns (0, 1, 1.0f);
    filter.setOn (true);
    expectDesigns (1, rampLength, 9.0f);
    changeGain (filter, 10.0);
    filter.skip();
    expectDesigns (1, 1, 10.0f); // at once
}
} // namespace
} // namespace tarvik
