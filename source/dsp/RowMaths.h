// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** Exponential, logarithms, powers and hyperbolic tangent of rows, sample by sample.

    Rules as in RowOperations.h: `n` at or below 0 changes nothing, any alignment, `dst` may be a source, any
    thread, no allocation. NaN, infinities, zeros and arguments outside the domain give what the standard library
    gives, but for the sign and payload of a NaN. A sample's result depends on the sample alone, not on its place in
    the row.

    Unlike the plain row operations these use fused multiply-adds where the processor has them, so instruction sets
    may differ in the last digits. Distance from the exact result, in units in the last place of the row's type, on
    every instruction set: exp 1.2, log 1.2, log10 2.5, tanh 3.5. Powers are the standard library's own. Where the
    thread flushes subnormals to 0, logarithms take them for 0 and exp gives 0 in their place. */
namespace tarvik::rows
{
void exp (float* dst, const float* src, int n) noexcept;
void exp (double* dst, const double* src, int n) noexcept;

/** Natural logarithm: minus infinity of 0, NaN below. */
void log (float* dst, const float* src, int n) noexcept;
void log (double* dst, const double* src, int n) noexcept;

/** Decimal logarithm: minus infinity of 0, NaN below. */
void log10 (float* dst, const float* src, int n) noexcept;
void log10 (double* dst, const double* src, int n) noexcept;

void tanh (float* dst, const float* src, int n) noexcept;
void tanh (double* dst, const double* src, int n) noexcept;

/** base[i] to the power of exponent[i]. */
void pow (float* dst, const float* base, const float* exponent, int n) noexcept;
void pow (double* dst, const double* base, const double* exponent, int n) noexcept;

/** The same with one exponent for all samples. */
void pow (float* dst, const float* base, float exponent, int n) noexcept;
void pow (double* dst, const double* base, double exponent, int n) noexcept;
} // namespace tarvik::rows
