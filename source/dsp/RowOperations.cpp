// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dsp/RowOperations.cpp" // this file, compiled once for each instruction set

#include "dsp/RowOperations.h"

#include "dsp/Dispatch.h"

#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

#include <limits>

HWY_BEFORE_NAMESPACE();

namespace tarvik::rows::HWY_NAMESPACE
{
namespace
{
namespace hn = hwy::HWY_NAMESPACE;

// Calls step (d, i) for every vector of d's length from sample i on, and returns where these end.
template <typename D, typename Step>
HWY_INLINE int walk (D d, Step step, int i, int n)
{
    const auto lanes = static_cast<int> (hn::Lanes (d));

    for (; n - i >= lanes; i += lanes)
        step (d, i);

    return i;
}

// The processor's widest vectors first, then groups of four, then single samples: lanes never mix, so that the width
// that a sample happens to be computed in cannot change its value.
template <typename T, typename Step>
HWY_INLINE void forRow (Step step, int n)
{
    int i = walk (hn::ScalableTag<T>(), step, 0, n);
    i = walk (hn::CappedTag<T, 4>(), step, i, n);
    walk (hn::CappedTag<T, 1>(), step, i, n);
}

template <typename T, typename Operation>
HWY_INLINE void forTwoRows (Operation operation, T* dst, const T* a, const T* b, int n)
{
    forRow<T> ([=] (auto d, int i) HWY_ATTR
               { hn::StoreU (operation (hn::LoadU (d, a + i), hn::LoadU (d, b + i)), d, dst + i); },
               n);
}

template <typename T, typename Operation>
HWY_INLINE void forOneRow (Operation operation, T* dst, const T* src, int n)
{
    forRow<T> ([=] (auto d, int i) HWY_ATTR { hn::StoreU (operation (d, hn::LoadU (d, src + i)), d, dst + i); }, n);
}

// Comparing and choosing instead of the processors' own minimum and maximum, which differ among each other on NaN.
template <typename V>
HWY_INLINE V smaller (V x, V y)
{
    return hn::IfThenElse (hn::Lt (y, x), y, x);
}

template <typename V>
HWY_INLINE V larger (V x, V y)
{
    return hn::IfThenElse (hn::Gt (y, x), y, x);
}

// Comparisons with NaN are false, so a NaN is neither in range nor finite. The samples in range pass through a
// bitwise choice only and thus keep their bits even where the processor reads subnormals as 0.
template <typename D, typename V>
HWY_INLINE V clampedToFinite (D d, V x, V limit)
{
    const auto magnitude = hn::Abs (x);
    const auto infinity = hn::Set (d, std::numeric_limits<hn::TFromD<D>>::infinity());
    const auto held = hn::IfThenElseZero (hn::Lt (magnitude, infinity), hn::CopySign (limit, x));
    return hn::IfThenElse (hn::And (hn::Le (magnitude, limit), hn::Lt (magnitude, infinity)), x, held);
}

template <typename T>
HWY_INLINE void rowLoop (RowOperation operation, T* dst, const T* a, const T* b, int n)
{
    switch (operation)
    {
        case RowOperation::add:
            return forTwoRows ([] (auto x, auto y) HWY_ATTR { return hn::Add (x, y); }, dst, a, b, n);
        case RowOperation::subtract:
            return forTwoRows ([] (auto x, auto y) HWY_ATTR { return hn::Sub (x, y); }, dst, a, b, n);
        case RowOperation::multiply:
            return forTwoRows ([] (auto x, auto y) HWY_ATTR { return hn::Mul (x, y); }, dst, a, b, n);
        case RowOperation::divide:
            return forTwoRows ([] (auto x, auto y) HWY_ATTR { return hn::Div (x, y); }, dst, a, b, n);
        case RowOperation::minimum:
            return forTwoRows ([] (auto x, auto y) HWY_ATTR { return smaller (x, y); }, dst, a, b, n);
        case RowOperation::maximum:
            return forTwoRows ([] (auto x, auto y) HWY_ATTR { return larger (x, y); }, dst, a, b, n);
    }
}

template <typename T>
HWY_INLINE void scalarLoop (ScalarOperation operation, T* dst, const T* src, T s, int n)
{
    switch (operation)
    {
        case ScalarOperation::fill:
            return forOneRow ([s] (auto d, auto) HWY_ATTR { return hn::Set (d, s); }, dst, src, n);
        case ScalarOperation::add:
            return forOneRow ([s] (auto d, auto x) HWY_ATTR { return hn::Add (x, hn::Set (d, s)); }, dst, src, n);
        case ScalarOperation::subtractFrom:
            return forOneRow ([s] (auto d, auto x) HWY_ATTR { return hn::Sub (hn::Set (d, s), x); }, dst, src, n);
        case ScalarOperation::multiply:
            return forOneRow ([s] (auto d, auto x) HWY_ATTR { return hn::Mul (x, hn::Set (d, s)); }, dst, src, n);
        case ScalarOperation::divide:
            return forOneRow ([s] (auto d, auto x) HWY_ATTR { return hn::Div (x, hn::Set (d, s)); }, dst, src, n);
        case ScalarOperation::divideInto:
            return forOneRow ([s] (auto d, auto x) HWY_ATTR { return hn::Div (hn::Set (d, s), x); }, dst, src, n);
        case ScalarOperation::minimum:
            return forOneRow ([s] (auto d, auto x) HWY_ATTR { return smaller (x, hn::Set (d, s)); }, dst, src, n);
        case ScalarOperation::maximum:
            return forOneRow ([s] (auto d, auto x) HWY_ATTR { return larger (x, hn::Set (d, s)); }, dst, src, n);
        case ScalarOperation::absolute:
            return forOneRow ([] (auto, auto x) HWY_ATTR { return hn::Abs (x); }, dst, src, n);
        case ScalarOperation::clampToFinite:
            return forOneRow ([s] (auto d, auto x) HWY_ATTR { return clampedToFinite (d, x, hn::Set (d, s)); }, dst,
                              src, n);
    }
}

template <typename T>
HWY_INLINE void multiplyAddLoop (T* dst, const T* src, T s, int n)
{
    const auto sum = [s] (auto x, auto y) HWY_ATTR
    { return hn::Add (x, hn::Mul (y, hn::Set (hn::DFromV<decltype (y)>(), s))); };

    forTwoRows (sum, dst, dst, src, n);
}

void clampedProductFloat (float* dst, const float* a, const float* b, float limit, int n)
{
    const auto product = [limit] (auto x, auto y) HWY_ATTR
    {
        const hn::DFromV<decltype (x)> d;
        return clampedToFinite (d, hn::Mul (x, y), hn::Set (d, limit));
    };

    forTwoRows (product, dst, a, b, n);
}

void scaleByMixFloat (float* row, float limit, const float* dry, const float* wet, const float* gain, int n)
{
    const auto scaled = [=] (auto d, int i) HWY_ATTR
    {
        const auto clamped = clampedToFinite (d, hn::LoadU (d, row + i), hn::Set (d, limit));
        const auto wetGain = hn::Mul (hn::LoadU (d, wet + i), hn::LoadU (d, gain + i));
        hn::StoreU (hn::Mul (clamped, hn::Add (hn::LoadU (d, dry + i), wetGain)), d, row + i);
    };

    forRow<float> (scaled, n);
}

void meanMagnitudeFloat (float* dst, const float* const* sources, int numSources, int n)
{
    const auto magnitudeOfMean = [=] (auto d, int i) HWY_ATTR
    {
        const auto share = hn::Set (d, 1.0f / static_cast<float> (numSources));
        const auto infinity = hn::Set (d, std::numeric_limits<float>::infinity());
        auto mean = hn::Mul (hn::LoadU (d, sources[0] + i), share);

        for (int c = 1; c < numSources; ++c)
            mean = hn::Add (mean, hn::Mul (hn::LoadU (d, sources[c] + i), share));

        const auto magnitude = hn::Abs (mean);
        hn::StoreU (hn::IfThenElseZero (hn::Lt (magnitude, infinity), magnitude), d, dst + i);
    };

    forRow<float> (magnitudeOfMean, n);
}

/** The doubles of a vector, rounded to as many floats. */
template <typename V>
HWY_INLINE void storeAsFloats (V x, float* dst)
{
    const hn::Rebind<float, hn::DFromV<V>> floats;
    hn::StoreU (hn::DemoteTo (floats, x), floats, dst);
}

void line (float* dst, double target, double increment, int remaining, int n)
{
    const hn::ScalableTag<double> d;
    const auto lanes = static_cast<int> (hn::Lanes (d));
    const auto countUp = hn::Iota (d, 0.0);
    int i = 0;

    for (; n - i >= lanes; i += lanes)
    {
        const auto left = hn::Sub (hn::Set (d, static_cast<double> (remaining - 1 - i)), countUp);
        storeAsFloats (hn::Sub (hn::Set (d, target), hn::Mul (hn::Set (d, increment), left)), dst + i);
    }

    for (; i < n; ++i)
        dst[i] = static_cast<float> (target - increment * (remaining - 1 - i));
}

double groupsOfPowers (float* dst, double before, const double* powers, std::size_t groupLength, int groups)
{
    const hn::ScalableTag<double> d;
    const auto lanes = hn::Lanes (d);

    for (int g = 0; g < groups; ++g, dst += groupLength)
    {
        std::size_t k = 0;

        for (; groupLength - k >= lanes; k += lanes)
            storeAsFloats (hn::Mul (hn::Set (d, before), hn::LoadU (d, powers + k)), dst + k);

        for (; k < groupLength; ++k)
            dst[k] = static_cast<float> (before * powers[k]);

        before *= powers[groupLength - 1];
    }

    return before;
}

// The dispatch tables below hold plain functions, one set for each sample type.
void rowsFloat (RowOperation operation, float* dst, const float* a, const float* b, int n)
{
    rowLoop (operation, dst, a, b, n);
}

void rowsDouble (RowOperation operation, double* dst, const double* a, const double* b, int n)
{
    rowLoop (operation, dst, a, b, n);
}

void scalarFloat (ScalarOperation operation, float* dst, const float* src, float s, int n)
{
    scalarLoop (operation, dst, src, s, n);
}

void scalarDouble (ScalarOperation operation, double* dst, const double* src, double s, int n)
{
    scalarLoop (operation, dst, src, s, n);
}

void scalarFloatRows (ScalarOperation operation, float* const* rows, int numRows, float s, int n)
{
    for (int row = 0; row < numRows; ++row)
        scalarLoop (operation, rows[row], rows[row], s, n);
}

void multiplyAddFloat (float* dst, const float* src, float s, int n) { multiplyAddLoop (dst, src, s, n); }

void multiplyAddDouble (double* dst, const double* src, double s, int n) { multiplyAddLoop (dst, src, s, n); }
} // namespace
} // namespace tarvik::rows::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tarvik::rows
{
HWY_EXPORT (rowsFloat);
HWY_EXPORT (rowsDouble);
HWY_EXPORT (scalarFloat);
HWY_EXPORT (scalarDouble);
HWY_EXPORT (scalarFloatRows);
HWY_EXPORT (multiplyAddFloat);
HWY_EXPORT (multiplyAddDouble);
HWY_EXPORT (clampedProductFloat);
HWY_EXPORT (scaleByMixFloat);
HWY_EXPORT (meanMagnitudeFloat);
HWY_EXPORT (line);
HWY_EXPORT (groupsOfPowers);

void combine (RowOperation operation, float* dst, const float* a, const float* b, int n) noexcept
{
    TARVIK_DISPATCH (rowsFloat) (operation, dst, a, b, n);
}

void combine (RowOperation operation, double* dst, const double* a, const double* b, int n) noexcept
{
    TARVIK_DISPATCH (rowsDouble) (operation, dst, a, b, n);
}

void combine (ScalarOperation operation, float* dst, const float* src, float s, int n) noexcept
{
    TARVIK_DISPATCH (scalarFloat) (operation, dst, src, s, n);
}

void combine (ScalarOperation operation, double* dst, const double* src, double s, int n) noexcept
{
    TARVIK_DISPATCH (scalarDouble) (operation, dst, src, s, n);
}

void combine (ScalarOperation operation, float* const* rows, int numRows, float s, int n) noexcept
{
    TARVIK_DISPATCH (scalarFloatRows) (operation, rows, numRows, s, n);
}

void multiplyAdd (float* dst, const float* src, float s, int n) noexcept
{
    TARVIK_DISPATCH (multiplyAddFloat) (dst, src, s, n);
}

void multiplyAdd (double* dst, const double* src, double s, int n) noexcept
{
    TARVIK_DISPATCH (multiplyAddDouble) (dst, src, s, n);
}

void clampedProduct (float* dst, const float* a, const float* b, float limit, int n) noexcept
{
    TARVIK_DISPATCH (clampedProductFloat) (dst, a, b, limit, n);
}

void scaleByMix (float* row, float limit, const float* dry, const float* wet, const float* gain, int n) noexcept
{
    TARVIK_DISPATCH (scaleByMixFloat) (row, limit, dry, wet, gain, n);
}

void meanMagnitude (float* dst, const float* const* sources, int numSources, int n) noexcept
{
    TARVIK_DISPATCH (meanMagnitudeFloat) (dst, sources, numSources, n);
}

void fillLine (float* dst, double target, double increment, int remaining, int n) noexcept
{
    TARVIK_DISPATCH (line) (dst, target, increment, remaining, n);
}

double fillPowers (float* dst, double before, std::span<const double> powers, int groups) noexcept
{
    return TARVIK_DISPATCH (groupsOfPowers) (dst, before, powers.data(), powers.size(), groups);
}
} // namespace tarvik::rows
#endif
