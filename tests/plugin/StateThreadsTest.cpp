// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/StateTestTools.h"
#include "tests/support/StripTestTools.h"

#include <atomic>
#include <cstdlib>
#include <thread>

namespace tarvik
{

using namespace test;

/** A host's state thread loads and saves, its message thread turns controls, steps through programs and slots and names
    the track, its audio thread plays. For TARVIK_STRESS_SECONDS of the environment (4), and until each has done enough.
*/
TEST (StateThreads, LoadingSavingTurningAndPlayingAtOnce)
{
    constexpr int enoughRounds = 100, enoughBlocks = 1000;
    const auto* const wish = std::getenv ("TARVIK_STRESS_SECONDS");
    const auto leastMs = 1000.0 * (wish != nullptr ? std::atof (wish) : 4.0);
    const auto mostMs = leastMs + 120000.0; // who has not done enough by then waits for the others all the time
    const auto begin = juce::Time::getMillisecondCounterHiRes();
    const auto strip = makeNoiselessStrip();
    strip->prepareToPlay (48000.0, 256);

    // Two projects that differ in every way, the oversampling too.
    const auto first = saved (*strip);
    strip->selectSlot (1);
    strip->setCurrentProgram (17);
    strip->oversamplingSetting().setValue (4);
    const juce::MemoryBlock projects[] = { first, saved (*strip) };
    std::atomic<bool> isRunning { true };
    std::atomic<int> rounds { 0 };

    std::thread state (
        [&]
        {
            for (unsigned i = 0; isRunning; ++i)
            {
                // Mostly without a rebuild, which would silence the audio all the time.
                load (*strip, projects[i / 50 % 2]);
                const auto xml = savedXml (*strip);
                ASSERT_NE (xml, nullptr) << "a torn document"; // leaves the thread, not the test
                ASSERT_EQ (xml->getChildElement (1)->getNumAttributes(), numParameters);
                ++rounds;
            }
        });

    juce::String trackName; // the user's thread's, until it has ended
    std::thread user (
        [&]
        {
            std::mt19937 random (3);

            for (int i = 0; isRunning; ++i)
            {
                // Only this thread may touch the name: it must have survived what the others did meanwhile.
                for (int slot = 0; slot < KVLProcessor::numSlots; ++slot)
                    ASSERT_EQ (strip->getSlot (slot).trackName, trackName) << slot;

                strip->getParameters()[static_cast<int> (random() % numParameters)]->setValueNotifyingHost (
                    static_cast<float> (random() % 101) / 100.0f);

                if (i % 20 == 0)
                    strip->selectSlot (i / 20 % 2);

                if (i % 50 == 0)
                    strip->setCurrentProgram (i / 50 % 26);

                trackName = "a track name too long for any short buffer " + juce::String (i);
                strip->updateTrackProperties ({ trackName, {} });

                if (i % 30 == 0)
                    strip->copySlotToOther();
            }
        });

    int played = 0;
    const auto goesOn = [&]
    {
        const auto ms = juce::Time::getMillisecondCounterHiRes() - begin;
        return ms < leastMs || (ms < mostMs && (rounds < enoughRounds || played < enoughBlocks));
    };

    while (goesOn() && ! testing::Test::HasFailure())
    {
        // As JUCE's wrappers do it.
        const juce::ScopedLock lock (strip->getCallbackLock());

        if (strip->isSuspended())
            continue;

        EXPECT_TRUE (allFinite (firstOf (process (*strip, { Signal (64, 0.1f), Signal (64, 0.1f) }, 64)))) << played;
        ++played;
    }

    isRunning = false;
    state.join();
    user.join();
    EXPECT_GE (rounds, enoughRounds);
    EXPECT_GE (played, enoughBlocks);
    EXPECT_EQ (firstFieldOutOfRange (*strip), "");

    for (int slot = 0; slot < KVLProcessor::numSlots; ++slot)
        EXPECT_EQ (strip->getSlot (slot).trackName, trackName) << slot;

    // After all that a project still comes back whole.
    load (*strip, projects[1]);
    EXPECT_EQ (saved (*strip), projects[1]);
}

} // namespace tarvik
