// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/VBuffer.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

namespace tarvik
{
namespace
{
TEST (VBufferProvider, RowsAreAlignedAndABlockOnlyGrows)
{
    VBufferProvider<float> pool;
    const auto resize = [&pool] (int rows, int size)
    {
        pool.setSize (rows, size);
        return std::array { pool.getCapacityRows(), pool.getCapacitySize(), pool.getLength(), pool.getListRows(),
                            static_cast<int> (pool.getFreeTop()) };
    };

    EXPECT_EQ (resize (2, 250), (std::array { 2, 252, 250, 2, 1 }));
    EXPECT_EQ (reinterpret_cast<std::uintptr_t> (pool.getRow (1)) % 16, 0u);
    EXPECT_EQ (resize (1, 100), (std::array { 2, 252, 100, 1, 0 }));
    EXPECT_EQ (resize (3, 8), (std::array { 3, 8, 8, 3, 2 })) << "outgrown, a block has exactly the new size";
    pool.release();
    EXPECT_EQ (pool.getCapacityRows() + pool.getCapacitySize() + pool.getLength() + pool.getListRows(), 0);
}

TEST (VBuffer, CopiesShareARowUntilOneOfThemChanges)
{
    constexpr int numRows = 4;
    constexpr std::array x { 1.0f, -2.0f, 3.0f };
    VBufferProvider<float> pool;
    pool.setSize (numRows, static_cast<int> (x.size()));
    VBuffer<float> original (pool, x.data());
    {
        auto copy = original;
        EXPECT_EQ (copy.getSamples(), original.getSamples());
        copy *= 2.0f;
        EXPECT_EQ (copy.getSamples()[1], -4.0f);
        EXPECT_EQ (original.getSamples()[1], -2.0f);

        const auto* unshared = copy.getSamples();
        copy += copy;
        EXPECT_EQ (copy.getSamples(), unshared) << "a row of its own was given up";
        EXPECT_EQ (copy.getSamples()[2], 12.0f);
    }
    EXPECT_EQ (pool.getFreeTop(), numRows - 2) << "a row was lost or returned twice";

    const VBuffer<float> next (pool, x.data());
    original = VBuffer<float>();
    EXPECT_EQ (VBuffer<float> (pool, x.data()).getRow(), numRows - 1) << "the row freed last is taken first";
}
} // namespace
} // namespace tarvik
