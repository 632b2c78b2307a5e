// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

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
    static void levelToDB (const float* src, float* dst, int n) noexcept;
    static void levelToDB (const double* src, double* dst, int n) noexcept;
    static void levelToDBInPlace (float* row, int n) noexcept;
    static void levelToDBInPlace (double* row, int n) noexcept;

    static void dBToLevel (const float* src, float* dst, int n) noexcept;
    static void dBToLevel (const double* src, double* dst, int n) noexcept;
    static void dBToLevelInPlace (float* row, int n) noexcept;
    static void dBToLevelInPlace (double* row, int n) noexcept;
};
} // namespace tarvik
