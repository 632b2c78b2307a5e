// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/TripleBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace tarvik
{
namespace
{
TEST (TripleBuffer, ReaderFindsTheNewestValueWholeAndOnce)
{
    using Value = std::array<int, 256>;
    constexpr int numValues = 100000;
    TripleBuffer<Value> buffer;
    EXPECT_FALSE (buffer.takeNewest());

    std::thread writer (
        [&buffer]
        {
            for (int i = 1; i <= numValues; ++i)
            {
                buffer.getWriteSlot().fill (i);
                buffer.publish();
            }

            buffer.getWriteSlot().fill (-1); // not published
        });

    auto isTorn = false, isOld = false;

    for (int last = 0; last < numValues;)
        if (buffer.takeNewest())
        {
            const auto& value = buffer.getReadSlot();
            const auto first = value.front();
            isTorn = isTorn || ! std::all_of (value.begin(), value.end(), [first] (int x) { return x == first; });
            isOld = isOld || first <= last;
            last = std::max (last, value.back());
        }

    writer.join();
    EXPECT_FALSE (isTorn);
    EXPECT_FALSE (isOld);
    EXPECT_FALSE (buffer.takeNewest());
    EXPECT_EQ (buffer.getReadSlot().back(), numValues);
}
} // namespace
} // namespace tarvik
