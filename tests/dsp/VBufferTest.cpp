// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/VBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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

    // Compares with function (x, y); the rows' functions are good to 3.5 units in the last place.
    void expectValues (const VBuffer<float>& result, float (*function) (float, float))
    {
        std::vector<float> samples (poolLength);
        result.copyToSamples (samples.data());

        for (std::size_t i = 0; i < samples.size(); ++i)
        {
            const auto expected = function (x[i], y[i]);
            EXPECT_NEAR (samples[i], expected, 4.0f * 1.2e-7f * std::abs (expected)) << "sample " << i;
        }
    }

    VBufferProvider<float> pool;
    std::vector<float> x, y;
};

TEST (VBufferProvider, RowsAreAlignedAndABlockOnlyGrows)
{
    VBufferProvider<double> twice;
    twice.setSize (2, 251);
    EXPECT_EQ (twice.getRow (1) - twice.getRow (0), 252);

    VBufferProvider<float> single;
    const auto resize = [&single] (int rows, int size)
    {
        single.setSize (rows, size);
        return std::array { single.getCapacityRows(), single.getCapacitySize(), single.getLength(),
                            single.getListRows(), static_cast<int> (single.getFreeTop()) };
    };

    EXPECT_EQ (resize (2, 250), (std::array { 2, 252, 250, 2, 1 }));
    EXPECT_EQ (reinterpret_cast<std::uintptr_t> (single.getRow (1)) % 16, 0u);
    EXPECT_EQ (resize (1, 100), (std::array { 2, 252, 100, 1, 0 }));
    EXPECT_EQ (resize (3, 8), (std::array { 3, 8, 8, 3, 2 })) << "outgrown, a block has exactly the new size";
    EXPECT_EQ (resize (-3, -5), (std::array { 3, 8, -5, -3, -4 }));
    single.release();
    EXPECT_EQ (single.getCapacityRows() + single.getCapacitySize() + single.getLength() + single.getListRows(), 0);
}

TEST_F (VBufferValues, CopiesShareARowUntilOneOfThemChanges)
{
    VBuffer<float> original (pool, x.data());
    {
        auto copy = original;
        EXPECT_EQ (copy.getSamples(), original.getSamples());
        copy *= 2.0f;
        expectValues (copy, [] (float a, float) { return 2.0f * a; });
        expectValues (original, [] (float a, float) { return a; });

        const auto* unshared = copy.getSamples();
        copy += copy;
        EXPECT_EQ (copy.getSamples(), unshared) << "a row of its own was given up";
        const auto moved = std::move (copy);
        expectValues (moved, [] (float a, float) { return 4.0f * a; });
    }
    EXPECT_EQ (pool.getFreeTop(), poolRows - 2) << "a row was lost or returned twice";

    const VBuffer<float> next (pool, x.data());
    original = VBuffer<float>();
    EXPECT_EQ (pool.getUseCount (poolRows - 1), 0);
    EXPECT_EQ (VBuffer<float> (pool, x.data()).getRow(), poolRows - 1) << "the row freed last is taken first";
}

TEST_F (VBufferValues, OperatorsAndFunctionsWorkSampleBySample)
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
    expectValues (0.7f - v, [] (float a, float) { return 0.7f - a; });
    expectValues (0.7f / w, [] (float, float b) { return 0.7f / b; });
    expectValues (abs (v), [] (float a, float) { return std::abs (a); });
    expectValues (min (v, w), [] (float a, float b) { return std::min (a, b); });
    expectValues (max (v, w), [] (float a, float b) { return std::max (a, b); });
    expectValues (min (v, 0.3f), [] (float a, float) { return std::min (a, 0.3f); });
    expectValues (max (v, 0.3f), [] (float a, float) { return std::max (a, 0.3f); });
    expectValues (vTanh (v), [] (float a, float) { return std::tanh (a); });
    expectValues (vExp (v), [] (float a, float) { return std::exp (a); });
    expectValues (vLog (w), [] (float, float b) { return std::log (b); });
    expectValues (vLog10 (w), [] (float, float b) { return std::log10 (b); });
    expectValues (vPow (w, v), [] (float a, float b) { return std::pow (b, a); });
    expectValues (vPow (v, 3.0f), [] (float a, float) { return std::pow (a, 3.0f); });
    EXPECT_EQ (pool.getFreeTop(), poolRows - 3) << "a row was lost or returned twice";
}
} // namespace
} // namespace tarvik
