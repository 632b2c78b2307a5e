// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>

namespace tarvik
{
/** What the console's stage adds to a sine: measured at eight amplitudes, 4 dB apart.

    Between two rows every column is taken in a straight line over the level in decibels. For the sample loop the
    table also exists as polynomials. With the harmonics h2 to h7 of one level, the sum of h_k T_k (u) over the
    Chebyshev polynomials T_k turns u = cos (t) into the harmonics h_k cos (k t) and nothing else; sorted by powers of
    u it has the coefficients c0 to c7 (c1 without the fundamental itself). */
class HarmonicTable
{
public:
    static constexpr std::size_t numRows = 8;
    static constexpr int firstHarmonic = 2;

    /** Level of the first row, and how much lower each next one is. */
    static constexpr double highestDb = -2.0;
    static constexpr double dbPerRow = 4.0;

    struct Row
    {
        float amplitude;                ///< linear
        std::array<float, 6> harmonics; ///< the 2nd to the 7th, linear, signed
    };

    static const std::array<Row, numRows> rows;

    /** Columns of the polynomial form. c0 and c1 are not kept: the even powers leave no constant and the odd ones no
        fundamental, which determines them,

            c0 = -(c2 / 2 + 3 c4 / 8 + 5 c6 / 16),  c1 = -(3 c3 / 4 + 5 c5 / 8 + 35 c7 / 64),

        with the mean of cos (t)^k, and of cos (t)^k times 2 cos (t), as factors. */
    enum Column : std::size_t
    {
        amplitude,
        c2,
        c3,
        c4,
        c5,
        c6,
        c7,
        numColumns
    };

    static constexpr std::size_t columnsWithPadding = 8;

    /** Multiplies amplitudes and coefficients by `unit`, the size of amplitude 1 in samples. */
    explicit HarmonicTable (double unit) noexcept;

    // The same numbers in the two orders that vectors need. A value at a position between rows i and i + 1 is
    // value + fraction * step, both of row i.
    alignas (32) std::array<std::array<float, numRows>, columnsWithPadding> valueColumns {};
    alignas (32) std::array<std::array<float, numRows>, columnsWithPadding> stepColumns {};
    alignas (32) std::array<std::array<float, columnsWithPadding>, numRows> valueRows {};
    alignas (32) std::array<std::array<float, columnsWithPadding>, numRows> stepRows {};
};
} // namespace tarvik
