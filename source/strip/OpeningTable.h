// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace tarvik
{

/** exp (-1 / volts) without a library call, which would cost the loop around it its vector registers, or a division:
    how far the compressor's attack resistor has opened at an error of so many volts.

    Every octave of volts has its cells, each with a Taylor polynomial around its middle. Within 1e-10 of the true
    value, the same bits on every instruction set. Constant; any thread.
*/
class OpeningTable
{
public:
    static constexpr double lowestVolts = 0.015625; // 2^-6
    static constexpr double highestVolts = 32.0;

    /** For lowestVolts <= volts. */
    static double at (double volts) noexcept
    {
        if (volts < highestVolts) [[likely]]
        {
            const auto& cell = cells[(std::bit_cast<std::uint64_t> (volts) >> bitsWithinCell) - firstCell];
            const auto x = volts - cell.middle;
            const auto& c = cell.coefficients;
            const auto xx = x * x;
            return (c[0] + c[1] * x) + xx * ((c[2] + c[3] * x) + xx * (c[4] + c[5] * x));
        }

        const auto x = -1.0 / volts;
        return 1.0 + x * (1.0 + x * (1.0 / 2.0 + x * (1.0 / 6.0 + x * (1.0 / 24.0 + x * (1.0 / 120.0)))));
    }

private:
    static constexpr std::size_t order = 5;

    struct alignas (64) Cell // one line of the cache
    {
        double middle = 1.0;
        std::array<double, order + 1> coefficients {};
    };

    /** A cell's number is a double's exponent with the uppermost four bits of its fraction: 16 cells to the octave. */
    static constexpr int bitsWithinCell = 48;
    static constexpr auto firstCell = std::bit_cast<std::uint64_t> (lowestVolts) >> bitsWithinCell;
    static constexpr auto numCells = (std::bit_cast<std::uint64_t> (highestVolts) >> bitsWithinCell) - firstCell;

    static std::array<Cell, numCells> makeCells() noexcept;

    static const std::array<Cell, numCells> cells;
};

} // namespace tarvik
