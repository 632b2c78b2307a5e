// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/RowOperations.h"

namespace tarvik
{
/** Holds the samples of a row below or above a limit. `n` samples, nothing for n at or below 0; any alignment; any
    thread; allocates nothing. A NaN in the row stays NaN, a NaN as the limit changes nothing. */
class ippMinMax
{
public:
    /** Each sample becomes the smaller of itself and `limit`. */
    template <rows::Sample T>
    static void min (T* row, int n, rows::Scalar<T> limit) noexcept
    {
        rows::minimum (row, limit, n);
    }

    /** Each sample becomes the larger of itself and `limit`. */
    template <rows::Sample T>
    static void max (T* row, int n, rows::Scalar<T> limit) noexcept
    {
        rows::maximum (row, limit, n);
    }
};
} // namespace tarvik
