// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/RowMaths.h"
#include "dsp/RowOperations.h"

#include <numbers>

namespace tarvik
{
/** Rows between linear level and decibels: dB = 20 log10 (level), level = 10^(dB / 20), computed in the row's own
    precision. `n` samples, nothing for n at or below 0; `dst` may be `src`; any alignment; any thread; allocates
    nothing. There is no floor: a level of 0 gives minus infinity, which comes back as 0; negative levels and NaN give
    NaN; a level beyond the type's range is infinity.

    With 32-bit samples the way to dB and back keeps a level within 3e-7 relative, plus 6e-8 for each dB of
    distance from 0 dB, since the decibel figure itself is rounded to 32 bits. */
class DecibelConverter
{
public:
    template <rows::Sample T>
    static void levelToDB (const T* src, T* dst, int n) noexcept
    {
        rows::log10 (dst, src, n);
        rows::scale (dst, static_cast<T> (dbPerDecade), n);
    }

    template <rows::Sample T>
    static void levelToDBInPlace (T* row, int n) noexcept
    {
        levelToDB (row, row, n);
    }

    template <rows::Sample T>
    static void dBToLevel (const T* src, T* dst, int n) noexcept
    {
        rows::scale (dst, src, static_cast<T> (nepersPerDb), n);
        rows::exp (dst, dst, n);
    }

    template <rows::Sample T>
    static void dBToLevelInPlace (T* row, int n) noexcept
    {
        dBToLevel (row, row, n);
    }

private:
    static constexpr double dbPerDecade = 20.0;
    static constexpr double nepersPerDb = std::numbers::ln10 / dbPerDecade;
};
} // namespace tarvik
