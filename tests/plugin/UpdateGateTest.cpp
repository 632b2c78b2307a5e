// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/UpdateGate.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace tarvik
{

TEST (UpdateGate, ARequestDuringTheWorkIsDoneByTheOneAtWork)
{
    UpdateGate gate;
    int runs = 0;
    bool isAtWork = false;

    const auto outer = [&]
    {
        EXPECT_FALSE (isAtWork) << "one at a time";
        isAtWork = true;

        if (++runs < 3)
            gate.request ([&] { ADD_FAILURE() << "whoever asks meanwhile goes without working"; });

        isAtWork = false;
    };

    gate.request (outer);
    EXPECT_EQ (runs, 3);
    gate.request (outer);
    EXPECT_EQ (runs, 4);
}

TEST (UpdateGate, WhatIsAskedDuringAHoldComesAtItsEndAndOnlyThen)
{
    UpdateGate gate;
    int runs = 0;
    const auto work = [&] { ++runs; };
    {
        const UpdateGate::Hold hold (gate, work);
        gate.request (work);
        gate.request (work);
        EXPECT_EQ (runs, 0);
    }
    EXPECT_EQ (runs, 1);
    {
        const UpdateGate::Hold hold (gate, work);
    }
    EXPECT_EQ (runs, 1) << "nobody asked";
}

TEST (UpdateGate, NoChangeOfManyThreadsIsLost)
{
    constexpr int numThreads = 4;
    constexpr int changesPerThread = 20000;
    UpdateGate gate;
    std::atomic<int> newest[numThreads] {};
    int seen[numThreads] {}; // written by whoever is at work

    const auto work = [&]
    {
        for (int i = 0; i < numThreads; ++i)
            seen[i] = newest[i].load();
    };

    std::vector<std::thread> threads;

    for (int t = 0; t < numThreads; ++t)
        threads.emplace_back (
            [&, t]
            {
                for (int i = 1; i <= changesPerThread; ++i)
                {
                    newest[t] = i;
                    gate.request (work);
                }
            });

    for (auto& thread : threads)
        thread.join();

    for (const auto value : seen)
        EXPECT_EQ (value, changesPerThread);
}

} // namespace tarvik
