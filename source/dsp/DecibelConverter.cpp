// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/DecibelConverter.h"

#include "dsp/RowMaths.h"
#include "dsp/RowOperations.h"

#include <numbers>

namespace tarvik
{
namespace
{
constexpr double dbPerDecade = 20.0;
constexpr double nepersPerDb = std::numbers::ln10 / dbPerDecade;

template <typename T>
void toDb (const T* src, T* dst, int n) noexcept
{
    rows::log10 (dst, src, n);
    rows::scale (dst, static_cast<T> (dbPerDecade), n);
}

template <typename T>
void toLevel (const T* src, T* dst, int n) noexcept
{
    rows::scale (dst, src, static_cast<T> (nepersPerDb), n);
    rows::exp (dst, dst, n);
}
} // namespace

void DecibelConverter::levelToDB (const float* src, float* dst, int n) noexcept { toDb (src, dst, n); }

void DecibelConverter::levelToDB (const double* src, double* dst, int n) noexcept { toDb (src, dst, n); }

void DecibelConverter::levelToDBInPlace (float* row, int n) noexcept { toDb (row, row, n); }

void DecibelConverter::levelToDBInPlace (double* row, int n) noexcept { toDb (row, row, n); }

void DecibelConverter::dBToLevel (const float* src, float* dst, int n) noexcept { toLevel (src, dst, n); }

void DecibelConverter::dBToLevel (const double* src, double* dst, int n) noexcept { toLevel (src, dst, n); }

void DecibelConverter::dBToLevelInPlace (float* row, int n) noexcept { toLevel (row, row, n); }

void DecibelConverter::dBToLevelInPlace (double* row, int n) noexcept { toLevel (row, row, n); }
} // namespace tarvik
