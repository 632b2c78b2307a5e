// SPDX-License-Identifier: GPL-3.0-or-later
// Rows of the harmonic table for a vector of positions. Read once for each instruction set, hence the guard that
// toggles.
#if defined(TARVIK_HARMONIC_LOOK_UP) == defined(HWY_TARGET_TOGGLE)
#ifdef TARVIK_HARMONIC_LOOK_UP
#undef TARVIK_HARMONIC_LOOK_UP
#else
#define TARVIK_HARMONIC_LOOK_UP
#endif

#include "strip/HarmonicTable.h"

#include <hwy/highway.h>

#include <array>
#include <cstddef>

HWY_BEFORE_NAMESPACE();

namespace tarvik::saturation::HWY_NAMESPACE
{
namespace
{
namespace hn = hwy::HWY_NAMESPACE;

/** Eight lanes hold a column of the table; wider vectors are not used. */
constexpr int lanes = HWY_MAX_BYTES >= 32 ? 8 : HWY_MAX_BYTES >= 16 ? 4 : 1;
using D = hn::FixedTag<float, lanes>;
using Integers = hn::RebindToSigned<D>;
using V = hn::Vec<D>;
using Columns = std::array<V, HarmonicTable::columnsWithPadding>;

#if HWY_MAX_BYTES >= 32

/** Every column at its lane's row and fraction: a column is one register, and picking from it one instruction. */
HWY_INLINE Columns lookUp (const HarmonicTable& table, hn::Vec<Integers> row, V fraction)
{
    const auto indices = hn::IndicesFromVec (D(), row);
    Columns columns;

    HWY_UNROLL (7)
    for (std::size_t column = 0; column < HarmonicTable::numColumns; ++column)
    {
        const auto value = hn::TableLookupLanes (hn::Load (D(), table.valueColumns[column].data()), indices);
        const auto step = hn::TableLookupLanes (hn::Load (D(), table.stepColumns[column].data()), indices);
        columns[column] = hn::MulAdd (fraction, step, value);
    }

    return columns;
}

#elif HWY_MAX_BYTES < 16

/** The same for processors without any vectors that we know of. */
HWY_INLINE Columns lookUp (const HarmonicTable& table, hn::Vec<Integers> row, V fraction)
{
    const auto r = static_cast<std::size_t> (hn::GetLane (row));
    Columns columns;

    for (std::size_t column = 0; column < columns.size(); ++column)
        columns[column] =
            hn::MulAdd (fraction, hn::Set (D(), table.stepRows[r][column]), hn::Set (D(), table.valueRows[r][column]));

    return columns;
}

#else

/** Turns four rows of four columns into four columns. */
HWY_INLINE void transpose (V a, V b, V c, V d, V* columns)
{
    const hn::RepartitionToWide<D> wide;
    const auto low = [] (V x, V y) HWY_ATTR { return hn::InterleaveLower (D(), x, y); };
    const auto high = [] (V x, V y) HWY_ATTR { return hn::InterleaveUpper (D(), x, y); };
    const auto ab = hn::BitCast (wide, low (a, b)), cd = hn::BitCast (wide, low (c, d));
    const auto abHigh = hn::BitCast (wide, high (a, b)), cdHigh = hn::BitCast (wide, high (c, d));
    columns[0] = hn::BitCast (D(), hn::InterleaveLower (wide, ab, cd));
    columns[1] = hn::BitCast (D(), hn::InterleaveUpper (wide, ab, cd));
    columns[2] = hn::BitCast (D(), hn::InterleaveLower (wide, abHigh, cdHigh));
    columns[3] = hn::BitCast (D(), hn::InterleaveUpper (wide, abHigh, cdHigh));
}

/** Every column at its lane's row and fraction: each lane fetches and interpolates a whole row, four columns at a time,
    and the rows are then turned into columns. */
HWY_INLINE Columns lookUp (const HarmonicTable& table, hn::Vec<Integers> row, V fraction)
{
    HWY_ALIGN std::array<int, lanes> rows;
    hn::Store (row, Integers(), rows.data());
    const std::array<V, lanes> fractions { hn::Broadcast<0> (fraction), hn::Broadcast<1> (fraction),
                                           hn::Broadcast<2> (fraction), hn::Broadcast<3> (fraction) };
    Columns columns;

    HWY_UNROLL (2)
    for (std::size_t first = 0; first < columns.size(); first += lanes)
    {
        std::array<V, lanes> interpolated;

        HWY_UNROLL (4)
        for (std::size_t lane = 0; lane < lanes; ++lane)
        {
            const auto r = static_cast<std::size_t> (rows[lane]);
            interpolated[lane] = hn::MulAdd (fractions[lane], hn::Load (D(), table.stepRows[r].data() + first),
                                             hn::Load (D(), table.valueRows[r].data() + first));
        }

        transpose (interpolated[0], interpolated[1], interpolated[2], interpolated[3], columns.data() + first);
    }

    return columns;
}

#endif
} // namespace
} // namespace tarvik::saturation::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
