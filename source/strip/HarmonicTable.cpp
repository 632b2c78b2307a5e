// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/HarmonicTable.h"

#include <algorithm>

namespace tarvik
{
// Measured. The harmonics' signs are those of cos (k t) for a fundamental cos (t).
const std::array<HarmonicTable::Row, HarmonicTable::numRows> HarmonicTable::rows { {
    { 0.794328f, { 0.000749894f, -0.00027227f, 4.89779e-05f, 7.67361e-05f, -3.67282e-06f, -5.49541e-05f } },
    { 0.501187f, { 0.000263027f, -9.22571e-05f, 8.81049e-06f, 7.32825e-05f, -2.98538e-06f, -3.9355e-05f } },
    { 0.316228f, { 0.0001f, -4.4157e-05f, 4.9545e-06f, 5.95662e-05f, -6.16595e-06f, -1.65959e-05f } },
    { 0.199526f, { 3.9355e-05f, -3.80189e-05f, 4.89779e-06f, 2.39883e-05f, -2.31739e-06f, -5.37032e-06f } },
    { 0.125893f, { 1.62181e-05f, -1.31826e-05f, 1.04713e-06f, 4.31519e-06f, -8.51138e-07f, -1.7378e-06f } },
    { 0.0794328f, { 6.30957e-06f, -2.81838e-06f, 6.30957e-07f, 1.41254e-06f, -3.12608e-07f, -5.62341e-07f } },
    { 0.0501187f, { 2.5704e-06f, -9.12011e-07f, 3.80189e-07f, 4.62381e-07f, -1.14815e-07f, -1.8197e-07f } },
    { 0.0316228f, { 1e-06f, -2.95121e-07f, 2.29087e-07f, 1.51356e-07f, -4.21696e-08f, -5.88844e-08f } },
} };

HarmonicTable::HarmonicTable (double unit) noexcept
{
    std::array<std::array<double, columnsWithPadding>, numRows> exact {};

    // T2 = 2 u^2 - 1, T3 = 4 u^3 - 3 u, T4 = 8 u^4 - 8 u^2 + 1, T5 = 16 u^5 - 20 u^3 + 5 u,
    // T6 = 32 u^6 - 48 u^4 + 18 u^2 - 1, T7 = 64 u^7 - 112 u^5 + 56 u^3 - 7 u.
    for (std::size_t r = 0; r < numRows; ++r)
    {
        std::array<double, 6> h {};
        std::copy (rows[r].harmonics.begin(), rows[r].harmonics.end(), h.begin());
        const auto [h2, h3, h4, h5, h6, h7] = h;

        exact[r][amplitude] = static_cast<double> (rows[r].amplitude);
        exact[r][c2] = 2.0 * h2 - 8.0 * h4 + 18.0 * h6;
        exact[r][c3] = 4.0 * h3 - 20.0 * h5 + 56.0 * h7;
        exact[r][c4] = 8.0 * h4 - 48.0 * h6;
        exact[r][c5] = 16.0 * h5 - 112.0 * h7;
        exact[r][c6] = 32.0 * h6;
        exact[r][c7] = 64.0 * h7;
    }

    for (std::size_t r = 0; r < numRows; ++r)
        for (std::size_t column = 0; column < numColumns; ++column)
        {
            const auto next = exact[std::min (r + 1, numRows - 1)][column];
            const auto value = static_cast<float> (unit * exact[r][column]);
            const auto step = static_cast<float> (unit * (next - exact[r][column]));

            valueColumns[column][r] = valueRows[r][column] = value;
            stepColumns[column][r] = stepRows[r][column] = step;
        }
}
} // namespace tarvik
