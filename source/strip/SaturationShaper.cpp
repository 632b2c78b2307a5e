// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "strip/SaturationShaper.cpp" // this file, compiled once for each instruction set

#include "strip/SaturationShaper.h"

#include "dsp/Dispatch.h"
#include "strip/HarmonicTable.h"

// foreach_target.h comes before highway.h.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
#include "strip/HarmonicLookUp-inl.h"
// clang-format on

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#ifndef TARVIK_SATURATION_CONSTANTS // the file is read once for each instruction set
#define TARVIK_SATURATION_CONSTANTS

namespace tarvik::saturation
{
constexpr std::size_t maxChannels = 2;

/** Rows longer than this are cut, so that the scratch rows stay on the stack. */
constexpr int maxRowLength = 256;

/** Amplitude of the tone that keeps silence away from subnormal numbers, its square included. */
constexpr float toneLevel = 1e-15f;

/** Where the envelope is held, just inside the table's ends. */
constexpr double lowestEnvelope = 0.0316259;
constexpr double highestEnvelope = 0.7943282;

constexpr std::array<float, 9> alternatingSigns { 1.0f, -1.0f, 1.0f, -1.0f, 1.0f, -1.0f, 1.0f, -1.0f, 1.0f };

constexpr double squared (double x) { return x * x; }

constexpr auto clipSample = static_cast<float> (SaturationShaper::clipLevel * SaturationShaper::unit);
constexpr auto lowestEnergy = static_cast<float> (squared (lowestEnvelope * SaturationShaper::unit));
constexpr auto highestEnergy = static_cast<float> (squared (highestEnvelope * SaturationShaper::unit));

/** Rows per octave of energy, and the position of a sample energy of 1:
    position = (highestDb - 10 log10 (energy / unit^2)) / dbPerRow. */
const auto rowsPerOctave = static_cast<float> (10.0 * std::log10 (2.0) / HarmonicTable::dbPerRow);
const auto positionOfOne = static_cast<float> ((HarmonicTable::highestDb + 20.0 * std::log10 (SaturationShaper::unit))
                                               / HarmonicTable::dbPerRow);

const HarmonicTable table (SaturationShaper::unit);
} // namespace tarvik::saturation

#endif

HWY_BEFORE_NAMESPACE();

namespace tarvik::saturation::HWY_NAMESPACE
{
namespace
{
namespace hn = hwy::HWY_NAMESPACE;

HWY_INLINE V constant (double value) { return hn::Set (D(), static_cast<float> (value)); }

/** Within 1e-7 for normal numbers. With x = 2^e m, m from sqrt (1/2) to sqrt (2), and z = (m - 1) / (m + 1):
    ln m = 2 artanh z = 2 (z + z^3 / 3 + z^5 / 5 + z^7 / 7 + ...). */
HWY_INLINE V log2 (V x)
{
    constexpr int rootOfHalf = 0x3f3504f3, mantissaBits = 23;
    const Integers i;
    const auto bits = hn::BitCast (i, x);
    const auto exponent = hn::ShiftRight<mantissaBits> (hn::Sub (bits, hn::Set (i, rootOfHalf)));
    const auto m = hn::BitCast (D(), hn::Sub (bits, hn::ShiftLeft<mantissaBits> (exponent)));

    const auto one = constant (1.0);
    const auto z = hn::Div (hn::Sub (m, one), hn::Add (m, one));
    const auto z2 = hn::Mul (z, z);
    constexpr auto scale = 2.0 * std::numbers::log2e;
    auto series = hn::MulAdd (z2, constant (scale / 7.0), constant (scale / 5.0));
    series = hn::MulAdd (z2, series, constant (scale / 3.0));
    series = hn::MulAdd (z2, series, constant (scale));
    return hn::MulAdd (z, series, hn::ConvertTo (D(), exponent));
}

/** Where the envelope stands between the table's rows. */
HWY_INLINE V positionOf (V x, V square)
{
    const auto energy = hn::Max (hn::Mul (x, x), square);
    const auto held = hn::Clamp (energy, hn::Set (D(), lowestEnergy), hn::Set (D(), highestEnergy));
    const auto position = hn::NegMulAdd (hn::Set (D(), rowsPerOctave), log2 (held), hn::Set (D(), positionOfOne));
    return hn::Max (position, hn::Zero (D())); // the other end is half a thousandth of a row away
}

HWY_INLINE V shape (V x, V position, V scale)
{
    using Table = HarmonicTable;

    // A number this large has no binary places left, and an integer in its last bits: the row. On a row itself it may
    // be that row or the one before, which is the same.
    constexpr double roundToInteger = 3 << 22;
    const auto rounded = hn::Add (hn::Sub (position, constant (0.5)), constant (roundToInteger));
    const auto row = hn::And (hn::BitCast (Integers(), rounded), hn::Set (Integers(), HarmonicTable::numRows - 1));
    const auto c = lookUp (table, row, hn::Sub (position, hn::Sub (rounded, constant (roundToInteger))));

    const auto u = hn::Div (x, c[Table::amplitude]);
    const auto v = hn::Mul (u, scale);

    auto c0 = hn::MulAdd (c[Table::c6], constant (-5.0 / 16.0), x);
    c0 = hn::MulAdd (c[Table::c4], constant (-3.0 / 8.0), c0);
    c0 = hn::MulAdd (c[Table::c2], constant (-1.0 / 2.0), c0);
    auto c1 = hn::Mul (c[Table::c7], constant (-35.0 / 64.0));
    c1 = hn::MulAdd (c[Table::c5], constant (-5.0 / 8.0), c1);
    c1 = hn::MulAdd (c[Table::c3], constant (-3.0 / 4.0), c1);

    auto powers = hn::MulAdd (c[Table::c7], v, c[Table::c6]);
    powers = hn::MulAdd (powers, v, c[Table::c5]);
    powers = hn::MulAdd (powers, v, c[Table::c4]);
    powers = hn::MulAdd (powers, v, c[Table::c3]);
    powers = hn::MulAdd (powers, v, c[Table::c2]);
    return hn::MulAdd (hn::Mul (powers, v), v, hn::MulAdd (c1, u, c0));
}

/** Work rows of a channel. Whole vectors are read and written, so there is room after the last sample. */
struct Scratch
{
    static constexpr int margin = 8;
    static_assert (margin >= lanes && margin >= QuadraturePair::margin);

    float* clipped() { return early.data() + margin; }

    HWY_ALIGN std::array<float, margin + maxRowLength + margin> early;
    HWY_ALIGN std::array<float, maxRowLength + margin> squares; ///< of the envelope; then positions in the table
};

/** The samples within the clip level, NaN as 0, and the tone added. Fills up to whole vectors. */
HWY_INLINE void clip (const float* row, float* clipped, float toneSign, int n)
{
    const auto limit = hn::Set (D(), clipSample);
    const auto tone = hn::Set (D(), toneSign * toneLevel);
    const auto process = [&] (const float* from, int i) HWY_ATTR
    {
        const auto x = hn::LoadU (D(), from);
        const auto held = hn::Clamp (hn::IfThenElseZero (hn::Eq (x, x), x), hn::Neg (limit), limit);
        const auto signs = hn::LoadU (D(), alternatingSigns.data() + (lanes > 1 ? 0 : i % 2));
        hn::Store (hn::MulAdd (tone, signs, held), D(), clipped + i);
    };

    int i = 0;

    for (; n - i >= lanes; i += lanes)
        process (row + i, i);

    if (i < n)
    {
        std::fill_n (clipped + i, lanes, 0.0f);
        std::copy (row + i, row + n, clipped + i);
        process (clipped + i, i);
    }
}

/** Two short loops instead of a long one: each lets the processor work on many vectors at once. */
HWY_INLINE void shapeRow (Scratch& scratch, float* row, const float* scale, int n)
{
    const auto* const clipped = scratch.clipped();
    auto* const positions = scratch.squares.data();
    int i = 0;

    for (; i < n; i += lanes)
        hn::Store (positionOf (hn::Load (D(), clipped + i), hn::Load (D(), positions + i)), D(), positions + i);

    const auto process = [&] (int at, const float* factors) HWY_ATTR
    { return shape (hn::Load (D(), clipped + at), hn::Load (D(), positions + at), hn::LoadU (D(), factors)); };

    for (i = 0; n - i >= lanes; i += lanes)
        hn::StoreU (process (i, scale + i), D(), row + i);

    if (i < n)
    {
        HWY_ALIGN std::array<float, lanes> rest {};
        std::copy (scale + i, scale + n, rest.begin());
        hn::Store (process (i, rest.data()), D(), rest.data());
        std::copy_n (rest.begin(), n - i, row + i);
    }
}

void shapeRows (std::span<SaturationShaper* const> shapers, float* const* rows, const float* scale, int n)
{
    std::array<Scratch, maxChannels> scratch;
    std::array<QuadraturePair*, maxChannels> pairs {};
    std::array<float*, maxChannels> clipped {}, squares {};

    for (std::size_t c = 0; c < shapers.size(); ++c)
    {
        pairs[c] = &shapers[c]->getQuadraturePair();
        clipped[c] = scratch[c].clipped();
        squares[c] = scratch[c].squares.data();
        clip (rows[c], clipped[c], shapers[c]->takeToneSign (n), n);

        if (n % lanes != 0)
            std::fill_n (squares[c] + n / lanes * lanes, lanes, 0.0f); // the last vector reads beyond the row
    }

    QuadraturePair::process (std::span (pairs).first (shapers.size()), clipped.data(), squares.data(), n);

    for (std::size_t c = 0; c < shapers.size(); ++c)
        shapeRow (scratch[c], rows[c], scale, n);
}
} // namespace
} // namespace tarvik::saturation::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tarvik
{
namespace saturation
{
HWY_EXPORT (shapeRows);
}

void SaturationShaper::reset() noexcept
{
    quadraturePair.clear();
    isOddSample = false;
}

float SaturationShaper::takeToneSign (int n) noexcept
{
    const auto sign = isOddSample ? -1.0f : 1.0f;
    isOddSample = isOddSample != (n % 2 != 0);
    return sign;
}

void SaturationShaper::process (std::span<SaturationShaper* const> shapers, float* const* rows, const float* scale,
                                int n) noexcept
{
    using saturation::maxChannels, saturation::maxRowLength;
    std::array<float*, maxChannels> pieces {};

    for (int done = 0; done < n; done += maxRowLength)
    {
        std::transform (rows, rows + shapers.size(), pieces.begin(), [done] (float* row) { return row + done; });
        TARVIK_DISPATCH (saturation::shapeRows)
        (shapers, pieces.data(), scale + done, std::min (n - done, maxRowLength));
    }
}
} // namespace tarvik

#endif
