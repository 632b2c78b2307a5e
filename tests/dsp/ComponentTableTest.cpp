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
// Hashes of the rows' bits, printed by: python3 tests/dsp/componentTables.py
constexpr std::array<std::uint64_t, 50> equaliserHashes {
    0x8b8a5f7d29955e24, 0xe46a5fe953d4b0f5, 0x4f0770f4c56c29ea, 0xed11bef057f7881f, 0x08c9d54a95632fd3,
    0x8c5aa8d0144d5bd7, 0x030a1bfbce7f8e42, 0xe8ef61c02ae4f086, 0xe8cf5fdde4761aad, 0xac1e08e1bbcb59d4,
    0x71460411fa167512, 0xf5e470f930ac23b9, 0xe2e38e55ded34873, 0xa4d5a82f259c6ffa, 0xd273102277fd5efd,
    0xeb3ac23a8e5c238c, 0x2890b7adde49841c, 0x9cdb1f6b9ec189c5, 0xb2f98ac004009d84, 0x2792f7a9d3c124d7,
    0x7cf1dd75e7e3374b, 0xbfde66fdcbf2d80f, 0xb2138e047fbad14a, 0xe86a98b641d7d0b8, 0x1658280564871671,
    0xe0b3610ad454db5d, 0x9abdc71871f2456f, 0x543a08b7826bc0e2, 0xe868e0fbbbd64c05, 0xb922e89baeb3163b,
    0x5ae35b1c3d1d55e2, 0x88b3ae495049a836, 0xa20d0c55c9be9346, 0x158a7ed9e4ad58ef, 0x343eb0f1b6d728f4,
    0x0af592f5fc189a7e, 0xd6ca503e7ce2c7d3, 0xbfdd111daa077c02, 0xa8790ffcecc4abed, 0x935fc83d68f0f807,
    0x02edff9b90e43fff, 0x128276e73fead903, 0xbb208108afb73437, 0x610092e64ecec49b, 0x64a9e805ddd9a454,
    0x986fdaffd7768df4, 0x238dc716b9bcfa3d, 0x60e67dd605a31bb8, 0x93ba75af21c84604, 0x071baeeb3d7822d5,
};

constexpr std::array<std::uint64_t, 5> saturationHashes {
    0xfc3376a22700f46a, 0x5c4e4be35517ff26, 0x57d63dd17280e938, 0x2af197a07a8f9448, 0x5a736b12e189c968,
};

constexpr std::array<Component, 5> saturationComponents {
    { { "", 6.0, 0.03 }, { "", 0.5, 0.03 }, { "", 35e3, 0.03 }, { "", 0.55, 0.03 }, { "", 1.0, 0.01 } }
};

/** 64-bit FNV-1a over whole numbers instead of bytes. */
std::uint64_t hashRow (const ComponentTable& table, std::size_t row)
{
    std::uint64_t hash = 0xcbf29ce484222325;

    for (int channel = 0; channel < ComponentTable::numChannels; ++channel)
        hash = (hash ^ std::bit_cast<std::uint64_t> (table.get (row, channel))) * 0x100000001b3;

    return hash;
}

TEST (ComponentTable, EveryRowHasTheIndependentlyComputedBits)
{
    const ComponentTable equaliser (equaliserComponents), saturation (saturationComponents);
    ASSERT_EQ (equaliser.getNumRows(), equaliserHashes.size());

    for (std::size_t row = 0; row < equaliserHashes.size(); ++row)
        EXPECT_EQ (hashRow (equaliser, row), equaliserHashes[row]) << "equaliser, row " << row;

    for (std::size_t row = 0; row < saturationHashes.size(); ++row)
        EXPECT_EQ (hashRow (saturation, row), saturationHashes[row]) << "saturation, row " << row;
}

TEST (ComponentTable, ChannelZeroIsNominalAndOthersLieWithinAFewTolerances)
{
    constexpr auto outermost = 4.5; // standard deviations; one draw in 150000 lies further out
    const ComponentTable table (equaliserComponents);

    for (std::size_t row = 0; row < table.getNumRows(); ++row)
    {
        const auto [name, nominal, tolerance] = equaliserComponents[row];
        EXPECT_EQ (table.get (row, 0), nominal) << name;

        for (int channel = 1; channel < ComponentTable::numChannels; ++channel)
            EXPECT_NEAR (table.get (row, channel) / nominal, 1.0, outermost * tolerance) << name << ", " << channel;
    }
}

TEST (ComponentTable, ActiveChannelIsLimitedToTheTable)
{
    ComponentTable table (equaliserComponents);
    table.setActiveChannel (32);
    EXPECT_EQ (table.getActiveChannel(), 31);
    EXPECT_EQ (table.getActive (7), table.get (7, 31));
    table.setActiveChannel (-1);
    EXPECT_EQ (table.getActiveChannel(), 0);
}
} // namespace
} // namespace tarvik
