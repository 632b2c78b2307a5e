// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dsp/RampRows.cpp" // this file, compiled once for each instruction set

#include "dsp/RampRows.h"

#include "dsp/Dispatch.h"

// foreach_target.h comes before highway.h.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();

namespace tarvik::rows::HWY_NAMESPACE
{
namespace
{
namespace hn = hwy::HWY_NAMESPACE;

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

void toTwo (float* toFirst, float* toSecond, const float* x, const float* share, int n)
{
    const hn::ScalableTag<float> d;
    const auto lanes = static_cast<int> (hn::Lanes (d));
    const auto one = hn::Set (d, 1.0f);
    int i = 0;

    for (; n - i >= lanes; i += lanes)
    {
        const auto s = hn::LoadU (d, share + i), sample = hn::LoadU (d, x + i);
        hn::StoreU (hn::Mul (hn::Sub (one, s), sample), d, toFirst + i);
        hn::StoreU (hn::Mul (s, sample), d, toSecond + i);
    }

    for (; i < n; ++i)
    {
        toFirst[i] = (1 - share[i]) * x[i];
        toSecond[i] = share[i] * x[i];
    }
}
} // namespace
} // namespace tarvik::rows::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tarvik::rows
{
HWY_EXPORT (line);
HWY_EXPORT (groupsOfPowers);
HWY_EXPORT (toTwo);

void fillLine (float* dst, double target, double increment, int remaining, int n) noexcept
{
    TARVIK_DISPATCH (line) (dst, target, increment, remaining, n);
}

double fillPowers (float* dst, double before, std::span<const double> powers, int groups) noexcept
{
    return TARVIK_DISPATCH (groupsOfPowers) (dst, before, powers.data(), powers.size(), groups);
}

void distribute (float* toFirst, float* toSecond, const float* x, const float* share, int n) noexcept
{
    TARVIK_DISPATCH (toTwo) (toFirst, toSecond, x, share, n);
}
} // namespace tarvik::rows
#endif
