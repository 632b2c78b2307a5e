// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ComponentTable.h"

#include "dsp/EqualiserComponents.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>

namespace tarvik
{
namespace
{
// Hashes of the tables' bits, printed by: python3 tests/dsp/componentTables.py
constexpr std::uint64_t equaliserHash = 0x262494881d98d06c;
constexpr std::uint64_t saturationHash = 0x21bd7480f82608d0;

constexpr std::array<Component, 5> saturationComponents {
    { { "", 6.0, 0.03 }, { "", 0.5, 0.03 }, { "", 35e3, 0.03 }, { "", 0.55, 0.03 }, { "", 1.0, 0.01 } }
};

/** 64-bit FNV-1a over whole numbers instead of bytes. */
std::uint64_t hashOf (const ComponentTable& table)
{
    std::uint64_t hash = 0xcbf29ce484222325;

    for (std::size_t row = 0; row < table.getNumRows(); ++row)
        for (int channel = 0; channel < ComponentTable::numChannels; ++channel)
            hash = (hash ^ std::bit_cast<std::uint64_t> (table.get (row, channel))) * 0x100000001b3;

    return hash;
}

TEST (ComponentTable, HasTheIndependentlyComputedBits)
{
    EXPECT_EQ (hashOf (ComponentTable (equaliserComponents)), equaliserHash);
    EXPECT_EQ (hashOf (ComponentTable (saturationComponents)), saturationHash);
}
} // namespace
} // namespace tarvik
