// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "benchmarks/MultiplyAddPeak.cpp" // this file, compiled once for each instruction set

#include "benchmarks/MultiplyAddPeak.h"

#include "benchmarks/Yardstick.h"

// In this order, which sorting would undo.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

#include <algorithm>

HWY_BEFORE_NAMESPACE();

namespace tarvik::benchmarks::HWY_NAMESPACE
{
namespace
{
namespace hn = hwy::HWY_NAMESPACE;

// Does `rounds` * 12 multiply-adds of whole vectors, and returns how many floats that were. Twelve sums keep two
// multipliers of up to six cycles busy.
double multiplyAdd (int rounds, float* result)
{
    const hn::ScalableTag<float> d;
    const auto factor = hn::Set (d, result[0]);
    const auto addend = hn::Set (d, result[1]);

    // Each its own value: equal sums would be computed once.
    auto s0 = hn::Iota (d, 0.0f), s1 = hn::Iota (d, 1.0f), s2 = hn::Iota (d, 2.0f), s3 = hn::Iota (d, 3.0f);
    auto s4 = hn::Iota (d, 4.0f), s5 = hn::Iota (d, 5.0f), s6 = hn::Iota (d, 6.0f), s7 = hn::Iota (d, 7.0f);
    auto s8 = hn::Iota (d, 8.0f), s9 = hn::Iota (d, 9.0f), s10 = hn::Iota (d, 10.0f), s11 = hn::Iota (d, 11.0f);

    for (int round = 0; round < rounds; ++round)
    {
        s0 = hn::MulAdd (s0, factor, addend);
        s1 = hn::MulAdd (s1, factor, addend);
        s2 = hn::MulAdd (s2, factor, addend);
        s3 = hn::MulAdd (s3, factor, addend);
        s4 = hn::MulAdd (s4, factor, addend);
        s5 = hn::MulAdd (s5, factor, addend);
        s6 = hn::MulAdd (s6, factor, addend);
        s7 = hn::MulAdd (s7, factor, addend);
        s8 = hn::MulAdd (s8, factor, addend);
        s9 = hn::MulAdd (s9, factor, addend);
        s10 = hn::MulAdd (s10, factor, addend);
        s11 = hn::MulAdd (s11, factor, addend);
    }

    const auto sum =
        hn::Add (hn::Add (hn::Add (s0, s1), hn::Add (s2, s3)), hn::Add (hn::Add (s4, s5), hn::Add (s6, s7)));
    const auto total = hn::Add (sum, hn::Add (hn::Add (s8, s9), hn::Add (s10, s11)));
    result[0] = hn::GetLane (total);
    return 12.0 * rounds * static_cast<double> (hn::Lanes (d));
}
} // namespace
} // namespace tarvik::benchmarks::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tarvik::benchmarks
{
HWY_EXPORT (multiplyAdd);

double measureMultiplyAddPeak()
{
    constexpr int rounds = 100000;
    constexpr int repetitions = 20;
    double best = 0.0;

    for (int i = 0; i < repetitions; ++i)
    {
        float numbers[] = { 0.5f, 0.25f };
        const auto begin = threadSeconds();
        const auto done = HWY_DYNAMIC_DISPATCH (multiplyAdd) (rounds, numbers);
        const auto seconds = threadSeconds() - begin;
        benchmark::DoNotOptimize (numbers);
        best = std::max (best, done / seconds);
    }

    return best;
}
} // namespace tarvik::benchmarks
#endif
