// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ComponentTable.h"

#include "dsp/EqualiserComponents.h"
#include "tests/support/Golden.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <random>

namespace tarvik
{
namespace
{
TEST (ComponentTable, EveryPartScattersAroundItsNominalValueByItsOwnSeed)
{
    const ComponentTable table (equaliserComponents);
    juce::String parts;

    for (std::size_t row = 0; row < equaliserComponents.size(); ++row)
    {
        const auto& part = equaliserComponents[row];
        parts << part.nominal << " " << part.tolerance << "\n";
        EXPECT_EQ (table.get (row, 0), part.nominal);

        // libstdc++ draws by the same method, but hands out a pair's second number first.
        const auto bits = std::bit_cast<std::uint64_t> (static_cast<double> (row) * part.nominal);
        std::mt19937 generator (static_cast<std::uint32_t> (bits >> 32) ^ static_cast<std::uint32_t> (bits));
        std::normal_distribution<double> normal (part.nominal, part.nominal * part.tolerance);

        for (int channel = 1; channel < ComponentTable::numChannels; channel += 2)
        {
            const auto second = normal (generator), first = normal (generator);
            EXPECT_DOUBLE_EQ (table.get (row, channel), first) << row;

            if (const auto next = channel + 1; next < ComponentTable::numChannels)
            {
                EXPECT_DOUBLE_EQ (table.get (row, next), second) << row;
            }
        }
    }

    test::expectGolden ("components.txt", parts);
}
} // namespace
} // namespace tarvik
