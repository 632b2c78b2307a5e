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
    bool isAsking = true;
    const auto work = [&]
    {
        ++runs;

        if (isAsking)
            for (int i = 0; i < 3; ++i)
                gate.request ([] { ADD_FAILURE() << "whoever asks meanwhile goes without working"; });
    };

    gate.request (work);
    EXPECT_EQ (runs, 1) << "nobody works for others without end";
    EXPECT_TRUE (gate.catchUp (work));
    EXPECT_EQ (runs, 2);
    isAsking = false;
    gate.request (work); // takes up the note as well
    EXPECT_FALSE (gate.catchUp (work));
    EXPECT_EQ (runs, 3);

    isAsking = true;
    gate.request (work);
    isAsking = false;
    {
        const UpdateGate::Hold hold (gate, work);
        EXPECT_FALSE (gate.catchUp (work));
        EXPECT_EQ (runs, 4);
    }
    EXPECT_EQ (runs, 5) << "a note from before the hold is taken up at its end";
    {
        const UpdateGate::Hold hold (gate, work);
        gate.request (work);
        gate.request (work);
        EXPECT_EQ (runs, 5);
    }
    EXPECT_EQ (runs, 6);
    {
        const UpdateGate::Hold hold (gate, work);
    }
    EXPECT_EQ (runs, 6) << "nobody asked";
}

TEST (UpdateGate, NoChangeOfManyThreadsIsLost)
{
    constexpr int numThreads = 4, changesPerThread = 20000;
    UpdateGate gate;
    std::atomic<int> newest[numThreads] {};
    int seen[numThreads] {}; // written by whoever is at work
    std::vector<std::thread> threads;

    for (auto& own : newest)
        threads.emplace_back (
            [&]
            {
                for (int i = 1; i <= changesPerThread; ++i)
                {
                    own = i;
                    gate.request ([&] { std::copy (std::begin (newest), std::end (newest), seen); });
                }
            });

    for (auto& thread : threads)
        thread.join();

    gate.catchUp ([&] { std::copy (std::begin (newest), std::end (newest), seen); });

    for (const auto value : seen)
        EXPECT_EQ (value, changesPerThread);
}

} // namespace tarvik
