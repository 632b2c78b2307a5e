// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/VBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace tarvik
{
namespace
{
constexpr int poolRows = 4;
constexpr int poolLength = 21; // no multiple of any vector

class VBufferValues : public testing::Test
{
protected:
    VBufferValues()
    {
        pool.setSize (poolRows, poolLength);

        for (int i = 0; i < poolLength; ++i)
        {
            x.push_back (-1.3f + 0.17f * static_cast<float> (i));
            y.push_back (0.2f + 0.31f * static_cast<float> (i % 5));
        }
    }

    // Compares with function (x, y), exactly unless a relative tolerance is given, and finds every row back in the
    // pool.
    template <typename Function>
    void expectValues (const VBuffer<float>& result, Function function, float tolerance = 0.0f)
    {
        std::vector<float> samples (poolLength);
        result.copyToSamples (samples.data());

        for (std::size_t i = 0; i < samples.size(); ++i)
        {
            const auto expected = function (x[i], y[i]);
            EXPECT_NEAR (samples[i], expected, tolerance * std::abs (expected)) << "sample " << i;
        }
    }

    VBufferProvider<float> pool;
    std::vector<float> x, y;
};

TEST (VBufferProvider, RowsAreWholeGroupsApartAndAlignedInBothPrecisions)
{
    VBufferProvider<float> single;
    single.setSize (2, 250);
    EXPECT_EQ (single.getRow (1) - single.getRow (0), 252);
    EXPECT_EQ (single.getCapacitySize(), 252);
    EXPECT_EQ (single.getLength(), 250);
    EXPECT_EQ (reinterpret_cast<std::uintptr_t> (single.getRow (1)) % 16, 0u);

    VBufferProvider<double> twice;
    twice.setSize (2, 251);
    EXPECT_EQ (twice.getRow (1) - twice.getRow (0), 252);
    EXPECT_EQ (reinterpret_cast<std::uintptr_t> (twice.getRow (1)) % 16, 0u);
}

TEST (VBufferProvider, ASmallerSizeKeepsTheBlockAndListsItsOwnRows)
{
    VBufferProvider<float> pool;
    pool.setSize (2, 250);
    const auto* block = pool.getData();
    pool.setSize (1, 100);
    EXPECT_EQ (pool.getData(), block);
    EXPECT_EQ (pool.getCapacityRows(), 2);
    EXPECT_EQ (pool.getCapacitySize(), 252);
    EXPECT_EQ (pool.getNumRows(), 1);
    EXPECT_EQ (pool.getRowSize(), 100);
    EXPECT_EQ (pool.getLength(), 100);
    EXPECT_EQ (pool.getListRows(), 1);
    EXPECT_EQ (pool.getFreeTop(), 0);

    // Outgrown in one direction, the block has exactly the new size in both.
    pool.setSize (1, 253);
    EXPECT_EQ (pool.getCapacityRows(), 1);
    EXPECT_EQ (pool.getCapacitySize(), 256);

    pool.setSize (-3, -5);
    EXPECT_EQ (pool.getCapacityRows(), 1);
    EXPECT_EQ (pool.getFreeTop(), -4);

    pool.release();
    EXPECT_EQ (pool.getData(), nullptr);
    EXPECT_EQ (pool.getCapacityRows() + pool.getCapacitySize() + pool.getNumRows() + pool.getRowSize(), 0);
    EXPECT_EQ (pool.getLength() + pool.getListRows(), 0);
    EXPECT_EQ (pool.getFreeTop(), 0);
}

TEST_F (VBufferValues, TheRowFreedLastIsTakenFirst)
{
    VBuffer<float> first (pool, x.data()), second (pool, x.data());
    EXPECT_EQ (first.getRow(), poolRows - 1);
    EXPECT_EQ (second.getRow(), poolRows - 2);
    EXPECT_EQ (pool.getFreeTop(), poolRows - 3);

    first = VBuffer<float>();
    EXPECT_EQ (pool.getUseCount (poolRows - 1), 0);
    EXPECT_EQ (pool.getFreeListEntry (poolRows - 2), poolRows - 1);
    EXPECT_EQ (VBuffer<float> (pool, x.data()).getRow(), poolRows - 1);
}

TEST_F (VBufferValues, CopiesShareARowUntilOneOfThemChanges)
{
    VBuffer<float> original (pool, x.data());
    {
        auto copy = original;
        EXPECT_EQ (copy.getSamples(), original.getSamples());
        EXPECT_EQ (pool.getUseCount (original.getRow()), 2);

        copy *= 2.0f;
        EXPECT_EQ (pool.getUseCount (original.getRow()), 1);
        expectValues (copy, [] (float a, float) { return 2.0f * a; });
        expectValues (original, [] (float a, float) { return a; });

        const auto* unshared = copy.getSamples();
        copy += copy;
        EXPECT_EQ (copy.getSamples(), unshared) << "a row of its own was given up";
        const auto moved = std::move (copy);
        expectValues (moved, [] (float a, float) { return 4.0f * a; });
    }
    EXPECT_EQ (pool.getFreeTop(), poolRows - 2) << "a row was lost or returned twice";
}

TEST_F (VBufferValues, OperatorsWorkSampleBySampleWithRowsAndScalarsOnEitherSide)
{
    const VBuffer<float> v (pool, x.data()), w (pool, y.data());
    expectValues (v + w, [] (float a, float b) { return a + b; });
    expectValues (v - w, [] (float a, float b) { return a - b; });
    expectValues (v * w, [] (float a, float b) { return a * b; });
    expectValues (v / w, [] (float a, float b) { return a / b; });
    expectValues (v + 0.7f, [] (float a, float) { return a + 0.7f; });
    expectValues (v - 0.7f, [] (float a, float) { return a - 0.7f; });
    expectValues (v * 0.7f, [] (float a, float) { return a * 0.7f; });
    expectValues (v / 0.7f, [] (float a, float) { return a / 0.7f; });
    expectValues (0.7f + v, [] (float a, float) { return 0.7f + a; });
    expectValues (0.7f - v, [] (float a, float) { return 0.7f - a; });
    expectValues (0.7f * v, [] (float a, float) { return 0.7f * a; });
    expectValues (0.7f / w, [] (float, float b) { return 0.7f / b; });
    expectValues ((v * w + v) / (w - 9.0f), [] (float a, float b) { return (a * b + a) / (b - 9.0f); });

    {
        auto changed = v; // v keeps its row: the third
        changed += w;
        changed -= v;
        changed *= v;
        changed /= w;
        expectValues (changed, [] (float a, float b) { return (a + b - a) * a / b; });
    }
    EXPECT_EQ (pool.getFreeTop(), poolRows - 3);
}

TEST_F (VBufferValues, FunctionsWorkSampleBySample)
{
    constexpr auto tolerance = 4.0f * 1.2e-7f; // the rows' functions are good to 3.5 units in the last place
    const VBuffer<float> v (pool, x.data()), w (pool, y.data());
    expectValues (v.abs(), [] (float a, float) { return std::abs (a); });
    expectValues (abs (v), [] (float a, float) { return std::abs (a); });
    expectValues (min (v, w), [] (float a, float b) { return std::min (a, b); });
    expectValues (max (v, w), [] (float a, float b) { return std::max (a, b); });
    expectValues (min (v, 0.3f), [] (float a, float) { return std::min (a, 0.3f); });
    expectValues (max (v, 0.3f), [] (float a, float) { return std::max (a, 0.3f); });
    expectValues (
        vTanh (v), [] (float a, float) { return std::tanh (a); }, tolerance);
    expectValues (
        vExp (v), [] (float a, float) { return std::exp (a); }, tolerance);
    expectValues (
        vLog (w), [] (float, float b) { return std::log (b); }, tolerance);
    expectValues (
        vLog10 (w), [] (float, float b) { return std::log10 (b); }, tolerance);
    expectValues (
        vPow (w, v), [] (float a, float b) { return std::pow (b, a); }, tolerance);
    expectValues (
        vPow (v, 3.0f), [] (float a, float) { return std::pow (a, 3.0f); }, tolerance);
    EXPECT_EQ (pool.getFreeTop(), poolRows - 3);
}
} // namespace
} // namespace tarvik
