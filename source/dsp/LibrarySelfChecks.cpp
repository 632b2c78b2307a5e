// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/LibrarySelfChecks.h"

#include "dsp/Polyphase.h"
#include "dsp/RowOperations.h"

#include <algorithm>
#include <array>
#include <vector>

namespace tarvik
{

namespace
{
constexpr const char* libraryCategory = "KVLLib";
}

VBufferTest::VBufferTest() : UnitTest ("VBuffer", libraryCategory) {}

void VBufferTest::runTest()
{
    constexpr int length = 67; // whole vectors of every width, and a rest
    std::array<float, length> a {};
    std::array<float, length> b {};
    auto random = getRandom();

    for (int i = 0; i < length; ++i)
    {
        a[static_cast<std::size_t> (i)] = random.nextFloat() - 0.5f;
        b[static_cast<std::size_t> (i)] = random.nextFloat() - 0.5f;
    }

    beginTest ("Row operations give what plain arithmetic gives");

    auto product = a;
    auto sum = a;
    auto weighted = a;
    constexpr float weight = 0.3f;
    rows::multiply (product.data(), b.data(), length);
    rows::add (sum.data(), b.data(), length);
    rows::multiplyAdd (weighted.data(), b.data(), weight, length);

    for (std::size_t i = 0; i < length; ++i)
    {
        expectEquals (product[i], a[i] * b[i]);
        expectEquals (sum[i], a[i] + b[i]);
        expectEquals (weighted[i], a[i] + b[i] * weight);
    }
}

PolyphaseTest::PolyphaseTest() : UnitTest ("Polyphase", libraryCategory) {}

void PolyphaseTest::runTest()
{
    constexpr int length = 256;

    for (const auto factor : { 2, 4, 8, 16 })
    {
        beginTest ("An impulse comes back at its place and level, factor " + juce::String (factor));

        Polyphase samplers;
        samplers.setup (1, factor);

        std::vector<float> row (length, 0.0f);
        std::vector<float> high (static_cast<std::size_t> (length * factor), 0.0f);
        row[0] = 1.0f;
        samplers.up (0, row.data(), high.data(), length);
        samplers.down (0, high.data(), row.data(), length);

        const auto peak = std::max_element (row.begin(), row.end());
        constexpr float tolerance = 0.1f; // the filter's pass band ends a little below the new Nyquist
        expectEquals (static_cast<int> (peak - row.begin()), Polyphase::latencySamples);
        expectWithinAbsoluteError (*peak, 1.0f, tolerance);
    }
}

} // namespace tarvik
