// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/UpdateGate.h"
#include "tests/support/StateTestTools.h"
#include "tests/support/StripTestTools.h"

#include <atomic>
#include <thread>

namespace tarvik
{

using namespace test;

/** A host's state thread loads and saves, its message thread turns controls, steps through programs and slots and names
    the track, its audio thread plays.
*/
TEST (StateThreads, LoadingSavingTurningAndPlayingAtOnce)
{
    constexpr int enoughRounds = 400, enoughBlocks = 4000;
    const auto strip = makeNoiselessStrip();
    strip->prepareToPlay (48000.0, 256);

    // Two projects that differ in every way, the oversampling too.
    const auto first = saved (*strip);
    strip->selectSlot (1);
    strip->setCurrentProgram (17);
    strip->oversamplingSetting().setValue (4);
    const juce::MemoryBlock projects[] = { first, saved (*strip) };
    std::atomic<int> rounds { 0 };

    std::jthread state (
        [&] (const std::stop_token& stop)
        {
            for (unsigned i = 0; ! stop.stop_requested(); ++i, ++rounds)
            {
                // Mostly without a rebuild, which would silence the audio all the time.
                load (*strip, projects[i / 50 % 2]);
                const auto xml = savedXml (*strip);
                ASSERT_NE (xml, nullptr) << "a torn document"; // leaves the thread, not the test
                ASSERT_EQ (xml->getChildElement (1)->getNumAttributes(), numParameters);
            }
        });

    std::jthread user (
        [&] (const std::stop_token& stop)
        {
            std::mt19937 random (3);
            juce::String trackName;

            for (int i = 0; ! stop.stop_requested(); ++i)
            {
                for (int slot = 0; slot < KVLProcessor::numSlots; ++slot)
                    ASSERT_EQ (strip->getSlot (slot).trackName, trackName) << "which only this thread may touch";

                strip->getParameters()[static_cast<int> (random() % numParameters)]->setValueNotifyingHost (
                    static_cast<float> (random() % 101) / 100.0f);

                if (i % 20 == 0)
                    strip->selectSlot (i / 20 % 2);

                if (i % 50 == 0)
                    strip->setCurrentProgram (i / 50 % 26);

                if (i % 30 == 0)
                    strip->copySlotToOther();

                trackName = "a track name too long for any short buffer " + juce::String (i);
                strip->updateTrackProperties ({ trackName, {} });
            }
        });

    for (int played = 0; (rounds < enoughRounds || played < enoughBlocks) && ! testing::Test::HasFailure();)
    {
        // As JUCE's wrappers do it.
        const juce::ScopedLock lock (strip->getCallbackLock());

        if (! strip->isSuspended())
        {
            EXPECT_TRUE (allFinite (firstOf (process (*strip, { Signal (64, 0.1f), Signal (64, 0.1f) }, 64))))
                << played;
            ++played;
        }
    }

    state = {}; // asks it to stop, and waits
    user = {};

    // After all that a project still comes back whole.
    load (*strip, projects[1]);
    EXPECT_EQ (saved (*strip), projects[1]);
}

TEST (UpdateGate, ARequestDuringTheWorkOrAHoldIsDoneOnceAfterIt)
{
    UpdateGate gate;
    int runs = 0;
    const auto work = [&] { ++runs; };
    const auto workAndAsk = [&]
    {
        ++runs;
        gate.request ([] { ADD_FAILURE() << "whoever asks meanwhile goes without working"; });
    };

    gate.request (workAndAsk);
    EXPECT_EQ (runs, 1) << "nobody works for others without end";
    EXPECT_TRUE (gate.catchUp (workAndAsk));
    gate.request (work); // takes up the note as well
    EXPECT_FALSE (gate.catchUp (work));
    EXPECT_EQ (runs, 3);
    gate.request (workAndAsk);

    // A note from before the hold is taken up at its end, requests during it then, and nobody's is not.
    for (const auto& [requests, runsAfter] : { std::pair (0, 5), { 2, 6 }, { 0, 6 } })
    {
        const auto runsBefore = runs;
        {
            const UpdateGate::Hold hold (gate, work);
            EXPECT_FALSE (gate.catchUp (work));

            for (int i = 0; i < requests; ++i)
                gate.request (work);

            EXPECT_EQ (runs, runsBefore);
        }
        EXPECT_EQ (runs, runsAfter);
    }
}

TEST (UpdateGate, NoChangeOfManyThreadsIsLost)
{
    constexpr int numThreads = 4, changesPerThread = 20000;
    UpdateGate gate;
    std::atomic<int> newest[numThreads] {};
    int seen[numThreads] {}; // written by whoever is at work
    const auto look = [&] { std::copy (std::begin (newest), std::end (newest), seen); };
    {
        std::vector<std::jthread> threads;

        for (auto& own : newest)
            threads.emplace_back (
                [&]
                {
                    for (int i = 1; i <= changesPerThread; ++i)
                    {
                        own = i;
                        gate.request (look);
                    }
                });
    }
    gate.catchUp (look);

    for (const auto value : seen)
        EXPECT_EQ (value, changesPerThread);
}

} // namespace tarvik
