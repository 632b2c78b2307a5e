// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/TripleBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace tarvik
{
namespace
{
TEST (TripleBuffer, ReaderFindsTheNewestOnce)
{
    TripleBuffer<int> buffer;
    EXPECT_FALSE (buffer.takeNewest());

    for (int round = 1; round < 10; ++round)
    {
        for (int value = 1; value <= round; ++value)
        {
            buffer.getWriteSlot() = value;
            buffer.publish();
        }

        EXPECT_TRUE (buffer.takeNewest());
        EXPECT_EQ (buffer.getReadSlot(), round);
        buffer.getWriteSlot() = 1000; // not published
        EXPECT_FALSE (buffer.takeNewest());
        EXPECT_EQ (buffer.getReadSlot(), round);
    }
}

TEST (TripleBuffer, ValuesAreNeverTornAndNeverGoBack)
{
    using Value = std::array<int, 256>;
    constexpr int numValues = 100000;
    TripleBuffer<Value> buffer;

    std::thread writer (
        [&buffer]
        {
            for (int i = 1; i <= numValues; ++i)
            {
                buffer.getWriteSlot().fill (i);
                buffer.publish();
            }
        });

    auto isTorn = false, isBackwards = false;

    for (int last = 0; last < numValues;)
        if (buffer.takeNewest())
        {
            const auto& value = buffer.getReadSlot();
            const auto first = value.front();
            isTorn = isTorn || ! std::all_of (value.begin(), value.end(), [first] (int x) { return x == first; });
            isBackwards = isBackwards || first <= last;
            last = std::max (last, value.back());
        }

    writer.join();
    EXPECT_FALSE (isTorn);
    EXPECT_FALSE (isBackwards);
}
} // namespace
} // namespace tarvik
