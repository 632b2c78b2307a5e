// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dsp/RowMaths.cpp" // this file, compiled once for each instruction set

#include "dsp/RowMaths.h"

#include "dsp/Dispatch.h"

// foreach_target.h comes before highway.h.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
#include <hwy/contrib/math/math-inl.h>
// clang-format on

#include <algorithm>
#include <cmath>
#include <limits>

HWY_BEFORE_NAMESPACE();

namespace tarvik::rows::HWY_NAMESPACE
{
namespace
{
namespace hn = hwy::HWY_NAMESPACE;

// Highway's approximations are good on the finite part of their domain; the functions below add the rest.

// exp is 0 below the lower end and infinite above the upper one in either precision, and Highway's steps stay within
// their integers in between.
template <typename D, typename V>
HWY_INLINE V exponential (D d, V x)
{
    using T = hn::TFromD<D>;
    const auto lowerEnd = hn::Set (d, static_cast<T> (sizeof (T) == sizeof (float) ? -104.0 : -750.0));
    const auto upperEnd = hn::Set (d, static_cast<T> (sizeof (T) == sizeof (float) ? 90.0 : 720.0));
    const auto held = hn::Min (hn::Max (x, lowerEnd), upperEnd);
    return hn::IfThenElse (hn::IsNaN (x), x, hn::Exp (d, held));
}

// `y` where x is finite and above 0, else what a logarithm gives there.
template <typename D, typename V>
HWY_INLINE V orEdgeOfLogarithm (D d, V x, V y)
{
    using T = hn::TFromD<D>;
    const auto zero = hn::Zero (d);
    const auto infinity = hn::Set (d, std::numeric_limits<T>::infinity());
    const auto nan = hn::Set (d, std::numeric_limits<T>::quiet_NaN());

    auto edge = hn::IfThenElse (hn::Eq (x, zero), hn::Neg (infinity), nan);
    edge = hn::IfThenElse (hn::Eq (x, infinity), infinity, edge);
    return hn::IfThenElse (hn::And (hn::Gt (x, zero), hn::Lt (x, infinity)), y, edge);
}

// Calls `operation` with vectors; the last, incomplete one is filled up with ones, so that each sample passes through
// the same arithmetic wherever it is.
template <typename T, typename Operation>
HWY_INLINE void forRow (Operation operation, T* dst, const T* src, int n)
{
    const hn::ScalableTag<T> d;
    const auto lanes = static_cast<int> (hn::Lanes (d));
    int i = 0;

    for (; n - i >= lanes; i += lanes)
        hn::StoreU (operation (d, hn::LoadU (d, src + i)), d, dst + i);

    if (i < n)
    {
        HWY_ALIGN T rest[hn::MaxLanes (d)];
        hn::Store (hn::Set (d, T (1)), d, rest);
        std::copy (src + i, src + n, rest);
        hn::Store (operation (d, hn::Load (d, rest)), d, rest);
        std::copy (rest, rest + (n - i), dst + i);
    }
}

template <typename T>
HWY_INLINE void expRow (T* dst, const T* src, int n)
{
    forRow ([] (auto d, auto x) HWY_ATTR { return exponential (d, x); }, dst, src, n);
}

template <typename T>
HWY_INLINE void logRow (T* dst, const T* src, int n)
{
    forRow ([] (auto d, auto x) HWY_ATTR { return orEdgeOfLogarithm (d, x, hn::Log (d, x)); }, dst, src, n);
}

template <typename T>
HWY_INLINE void log10Row (T* dst, const T* src, int n)
{
    forRow ([] (auto d, auto x) HWY_ATTR { return orEdgeOfLogarithm (d, x, hn::Log10 (d, x)); }, dst, src, n);
}

template <typename T>
HWY_INLINE void tanhRow (T* dst, const T* src, int n)
{
    forRow ([] (auto d, auto x) HWY_ATTR { return hn::Tanh (d, x); }, dst, src, n);
}

// The dispatch tables below hold plain functions, one set for each sample type.
void expFloat (float* dst, const float* src, int n) { expRow (dst, src, n); }

void expDouble (double* dst, const double* src, int n) { expRow (dst, src, n); }

void logFloat (float* dst, const float* src, int n) { logRow (dst, src, n); }

void logDouble (double* dst, const double* src, int n) { logRow (dst, src, n); }

void log10Float (float* dst, const float* src, int n) { log10Row (dst, src, n); }

void log10Double (double* dst, const double* src, int n) { log10Row (dst, src, n); }

void tanhFloat (float* dst, const float* src, int n) { tanhRow (dst, src, n); }

void tanhDouble (double* dst, const double* src, int n) { tanhRow (dst, src, n); }
} // namespace
} // namespace tarvik::rows::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tarvik::rows
{
HWY_EXPORT (expFloat);
HWY_EXPORT (expDouble);
HWY_EXPORT (logFloat);
HWY_EXPORT (logDouble);
HWY_EXPORT (log10Float);
HWY_EXPORT (log10Double);
HWY_EXPORT (tanhFloat);
HWY_EXPORT (tanhDouble);

void exp (float* dst, const float* src, int n) noexcept { TARVIK_DISPATCH (expFloat) (dst, src, n); }

void exp (double* dst, const double* src, int n) noexcept { TARVIK_DISPATCH (expDouble) (dst, src, n); }

void log (float* dst, const float* src, int n) noexcept { TARVIK_DISPATCH (logFloat) (dst, src, n); }

void log (double* dst, const double* src, int n) noexcept { TARVIK_DISPATCH (logDouble) (dst, src, n); }

void log10 (float* dst, const float* src, int n) noexcept { TARVIK_DISPATCH (log10Float) (dst, src, n); }

void log10 (double* dst, const double* src, int n) noexcept { TARVIK_DISPATCH (log10Double) (dst, src, n); }

void tanh (float* dst, const float* src, int n) noexcept { TARVIK_DISPATCH (tanhFloat) (dst, src, n); }

void tanh (double* dst, const double* src, int n) noexcept { TARVIK_DISPATCH (tanhDouble) (dst, src, n); }

// The powers are the library's, sample by sample: at the precision asked for, which needs 64-bit vectors of logarithm
// and exponential, vectors are no faster.
template <typename T>
static void powEach (T* dst, const T* base, const T* exponents, int exponentStep, int n) noexcept
{
    for (int i = 0; i < n; ++i)
        dst[i] = std::pow (base[i], exponents[i * exponentStep]);
}

void pow (float* dst, const float* base, const float* exponent, int n) noexcept { powEach (dst, base, exponent, 1, n); }

void pow (double* dst, const double* base, const double* exponent, int n) noexcept
{
    powEach (dst, base, exponent, 1, n);
}

void pow (float* dst, const float* base, float exponent, int n) noexcept { powEach (dst, base, &exponent, 0, n); }

void pow (double* dst, const double* base, double exponent, int n) noexcept { powEach (dst, base, &exponent, 0, n); }
} // namespace tarvik::rows
#endif
