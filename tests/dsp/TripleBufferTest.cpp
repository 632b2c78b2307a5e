// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/TripleBuffer.h"

#include <gtest/gtest.h>

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
    std::thread writer (
        [&buffer]
        {
            for (int i = 1; i <= numValues; ++i)
            {
                buffer.getWriteSlot().fill (i);
                buffer.publish();
            }
        });
    auto numBad = 0;

    for (int last = 0; last < numValues;)
        if (buffer.takeNewest())
        {
            Value whole;
            whole.fill (buffer.getReadSlot().front());
            numBad += buffer.getReadSlot() != whole || whole.front() <= last;
            last = std::max (last, whole.front());
        }

    writer.join();
    EXPECT_EQ (numBad, 0);
    EXPECT_FALSE (buffer.takeNewest());
}
} // namespace
} // namespace tarvik
