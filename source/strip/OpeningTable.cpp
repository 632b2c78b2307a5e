// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/OpeningTable.h"

#include <cmath>

namespace tarvik
{

std::array<OpeningTable::Cell, OpeningTable::numCells> OpeningTable::makeCells() noexcept
{
    std::array<Cell, numCells> made;

    for (std::size_t i = 0; i < numCells; ++i)
    {
        const auto lower = std::bit_cast<double> ((firstCell + i) << bitsWithinCell);
        const auto upper = std::bit_cast<double> ((firstCell + i + 1) << bitsWithinCell);
        const auto u = 0.5 * (lower + upper);
        auto& c = made[i].coefficients;
        made[i].middle = u;

        // f (u) = exp (-1 / u) fulfils u^2 f' = f. Put in as a power series around u, that gives
        // u^2 (k + 1) c[k + 1] = c[k] (1 - 2 u k) - (k - 1) c[k - 1].
        c[0] = std::exp (-1.0 / u);
        c[1] = c[0] / (u * u);

        for (std::size_t n = 1; n < order; ++n)
        {
            const auto k = static_cast<double> (n);
            c[n + 1] = (c[n] * (1.0 - 2.0 * u * k) - (k - 1.0) * c[n - 1]) / (u * u * (k + 1.0));
        }
    }

    return made;
}

const std::array<OpeningTable::Cell, OpeningTable::numCells> OpeningTable::cells = makeCells();

} // namespace tarvik
