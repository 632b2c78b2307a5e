// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/LatencyDelay.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace tarvik
{

TEST (LatencyDelay, DelaysByExactlyItsLengthHoweverTheStreamIsCut)
{
    constexpr int total = 5000;
    std::mt19937 random (11);

    for (const auto delay : { 0, 1, 51, 52 })
        for (int round = 0; round < 10; ++round)
        {
            LatencyDelay delayLine;
            delayLine.prepare (2);
            std::vector<float> stream (total);

            for (int i = 0; i < total; ++i)
                stream[static_cast<std::size_t> (i)] = static_cast<float> (i + 1);

            for (int position = 0; position < total;)
            {
                // Short pieces, pieces about the history's length, and long ones.
                const int longest[] = { 10, 60, 256 };
                const auto n = std::min (total - position,
                                         static_cast<int> (random() % static_cast<unsigned> (longest[round % 3])));
                delayLine.process (1, stream.data() + position, n, delay);
                position += n;
            }

            for (int i = 0; i < total; ++i)
                ASSERT_EQ (stream[static_cast<std::size_t> (i)], static_cast<float> (std::max (0, i + 1 - delay)))
                    << "delay " << delay << ", sample " << i;
        }
}

TEST (LatencyDelay, KeepsItsHistoryWhileNothingIsDelayed)
{
    LatencyDelay delayLine;
    delayLine.prepare (1);
    std::vector<float> row (100, 3.0f);
    delayLine.process (0, row.data(), 100, 0);

    std::vector<float> next (60, 0.0f);
    delayLine.process (0, next.data(), 60, LatencyDelay::length);
    EXPECT_EQ (next[0], 3.0f);
    EXPECT_EQ (next[51], 3.0f);
    EXPECT_EQ (next[52], 0.0f);
}

} // namespace tarvik
