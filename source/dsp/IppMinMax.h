// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik
{
/** Holds the samples of a row below or above a limit. `n` samples, nothing for n at or below 0; any alignment; any
    thread; allocates nothing. A NaN in the row stays NaN, a NaN as the limit changes nothing. */
class ippMinMax
{
public:
    /** Each sample becomes the smaller of itself and `limit`. */
    static void min (float* row, int n, float limit) noexcept;
    static void min (double* row, int n, double limit) noexcept;

    /** Each sample becomes the larger of itself and `limit`. */
    static void max (float* row, int n, float limit) noexcept;
    static void max (double* row, int n, double limit) noexcept;
};
} // namespace tarvik
