// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/UpdateGate.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace tarvik
{

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
