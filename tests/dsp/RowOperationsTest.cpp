// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/RowOperations.h"

#include "dsp/InstructionSets.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <set>
#include <type_traits>
#include <vector>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace tarvik
{
namespace
{
constexpr int longestRow = 67; // four of the widest vectors (16 floats) and every kind of rest
constexpr int guard = 16;      // samples around each row that nobody may write
constexpr int misalignments = 4;

template <typename T>
bool sameBits (T a, T b)
{
    return std::memcmp (&a, &b, sizeof (T)) == 0 || (std::isnan (a) && std::isnan (b));
}

// Ordinary levels, mixed with everything that may be read differently: zeros, subnormals, infinities, NaN, extremes.
template <typename T>
std::vector<T> difficultSamples (std::size_t count, unsigned seed)
{
    using Limits = std::numeric_limits<T>;
    const T special[] = { T (0),
                          -T (0),
                          Limits::denorm_min(),
                          -Limits::min() / 2,
                          Limits::infinity(),
                          T (1.5),
                          Limits::quiet_NaN(),
                          -Limits::quiet_NaN(),
                          Limits::max(),
                          Limits::lowest(),
                          -Limits::infinity() };
    std::mt19937 random (seed);
    std::uniform_real_distribution<T> level (-2, 2);
    std::vector<T> samples (count);

    for (auto& sample : samples)
        sample = random() % 4 == 0 ? special[random() % std::size (special)] : level (random);

    return samples;
}

template <typename T>
struct OperationCase
{
    const char* name;
    std::function<void (T* dst, const T* a, const T* b, T s, int n)> rows;
    std::function<T (T dst, T a, T b, T s)> plain;
};

template <typename T>
constexpr T noLimit = std::numeric_limits<T>::infinity();

template <typename T>
T clamped (T x, T limit)
{
    return std::isfinite (x) ? std::clamp (x, -limit, limit) : T (0);
}

template <typename T>
std::vector<OperationCase<T>> operationCases()
{
    using Row = const T*;
    std::vector<OperationCase<T>> cases {
        { "absolute", [] (T* d, Row a, Row, T, int n) { rows::absolute (d, a, n); },
          [] (T, T a, T, T) { return std::abs (a); } },
        { "multiply in place", [] (T* d, Row a, Row, T, int n) { rows::multiply (d, a, n); },
          [] (T d, T a, T, T) { return d * a; } },
        { "multiply", [] (T* d, Row a, Row b, T, int n) { rows::multiply (d, a, b, n); },
          [] (T, T a, T b, T) { return a * b; } },
        { "scale in place", [] (T* d, Row, Row, T s, int n) { rows::scale (d, s, n); },
          [] (T d, T, T, T s) { return d * s; } },
        { "scale", [] (T* d, Row a, Row, T s, int n) { rows::scale (d, a, s, n); },
          [] (T, T a, T, T s) { return a * s; } },
        { "multiplyAdd", [] (T* d, Row a, Row, T s, int n) { rows::multiplyAdd (d, a, s, n); },
          [] (T d, T a, T, T s) { return d + a * s; } },
        { "add", [] (T* d, Row a, Row, T, int n) { rows::add (d, a, n); }, [] (T d, T a, T, T) { return d + a; } },
        { "subtract", [] (T* d, Row a, Row, T, int n) { rows::subtract (d, a, n); },
          [] (T d, T a, T, T) { return d - a; } },
        { "divide", [] (T* d, Row a, Row, T, int n) { rows::divide (d, a, n); },
          [] (T d, T a, T, T) { return d / a; } },
        { "fill", [] (T* d, Row, Row, T s, int n) { rows::fill (d, s, n); }, [] (T, T, T, T s) { return s; } },
        { "copy", [] (T* d, Row a, Row, T, int n) { rows::copy (d, a, n); }, [] (T, T a, T, T) { return a; } },
        { "minimum", [] (T* d, Row, Row, T s, int n) { rows::minimum (d, s, n); },
          [] (T d, T, T, T s) { return std::min (d, s); } },
        { "maximum", [] (T* d, Row, Row, T s, int n) { rows::maximum (d, s, n); },
          [] (T d, T, T, T s) { return std::max (d, s); } },
        { "clampToFinite", [] (T* d, Row, Row, T s, int n) { rows::clampToFinite (d, s, n); },
          [] (T d, T, T, T s) { return clamped (d, s); } },
        { "clampToFinite, no limit", [] (T* d, Row, Row, T, int n) { rows::clampToFinite (d, noLimit<T>, n); },
          [] (T d, T, T, T) { return clamped (d, noLimit<T>); } },
    };

    if constexpr (std::is_same_v<T, float>)
    {
        cases.push_back ({ "clampedProduct",
                           [] (T* d, Row a, Row b, T s, int n) { rows::clampedProduct (d, a, b, s, n); },
                           [] (T, T a, T b, T s) { return clamped (a * b, s); } });
        cases.push_back ({ "meanMagnitude",
                           [] (T* d, Row a, Row b, T, int n) {
                               rows::meanMagnitude (d, std::array { a, b }.data(), 2, n);
                           },
                           [] (T, T a, T b, T) { return clamped (std::abs (a * 0.5f + b * 0.5f), noLimit<float>); } });
    }

    return cases;
}

template <typename T>
class RowOperations : public testing::Test
{
};

using SampleTypes = testing::Types<float, double>;
TYPED_TEST_SUITE (RowOperations, SampleTypes, );

TYPED_TEST (RowOperations, EveryLengthAndAlignmentGivesThePlainLoopsBitsOnEveryInstructionSet)
{
    using T = TypeParam;
    constexpr auto room = static_cast<std::size_t> (longestRow + misalignments + 2 * guard);
    const auto a = difficultSamples<T> (room, 1), b = difficultSamples<T> (room, 2),
               before = difficultSamples<T> (room, 3);
    const auto s = T (0.7);

    for (const auto& set : supportedInstructionSets())
    {
        const ScopedInstructionSet forced (set);

        for (const auto& operation : operationCases<T>())
            for (int n = -1; n <= longestRow; ++n)
                for (int shift = 0; shift < misalignments; ++shift)
                {
                    auto row = before;
                    const auto* firstA = a.data() + shift;
                    const auto* firstB = b.data() + (3 * shift) % misalignments;
                    const auto start = guard + (shift * shift) % misalignments; // dst, a and b misaligned apart
                    operation.rows (row.data() + start, firstA, firstB, s, n);

                    for (int i = 0; i < static_cast<int> (room); ++i)
                    {
                        const auto at = static_cast<std::size_t> (i);
                        const auto inside = i >= start && i < start + n;
                        const auto expected =
                            inside ? operation.plain (before[at], firstA[i - start], firstB[i - start], s) : before[at];
                        ASSERT_TRUE (sameBits (row[at], expected))
                            << operation.name << " on " << set.name << ", n " << n << ", shift " << shift << ", sample "
                            << i - start << ": " << row[at] << " instead of " << expected;
                    }
                }
    }
}

#if defined(__SSE2__)
// The audio thread flushes subnormals; the guard of a filter's input still may not alter what it lets through.
TYPED_TEST (RowOperations, ClampingKeepsSubnormalBitsWhileTheThreadFlushesThem)
{
    using T = TypeParam;
    constexpr unsigned flushAndZero = 0x8040; // both flags of the control register
    constexpr T limit = 8;
    const std::vector<T> before (longestRow, std::numeric_limits<T>::denorm_min());

    for (const auto& set : supportedInstructionSets())
    {
        const ScopedInstructionSet forced (set);
        auto row = before;
        const auto previous = _mm_getcsr();
        _mm_setcsr (previous | flushAndZero);
        rows::clampToFinite (row.data(), limit, longestRow);
        _mm_setcsr (previous);
        EXPECT_EQ (std::memcmp (row.data(), before.data(), row.size() * sizeof (T)), 0) << set.name;
    }
}
#endif

TEST (InstructionSets, ForcingReachesTheDispatcherAndEndsWithTheScope)
{
    hwy::SetSupportedTargetsForTest (0); // whatever ran before
    selectInstructionSet();
    ASSERT_TRUE (hwy::GetChosenTarget().IsInitialized());
    const auto best = hwy::GetChosenTarget().GetIndex();
    const auto sets = supportedInstructionSets();
    std::set<std::size_t> indices;

    for (const auto& set : sets)
    {
        const ScopedInstructionSet forced (set);
        indices.insert (hwy::GetChosenTarget().GetIndex());
    }

    EXPECT_EQ (indices.size(), sets.size());
    EXPECT_EQ (hwy::GetChosenTarget().GetIndex(), best);
    EXPECT_EQ (*indices.begin(), best) << "the best set is not the one chosen";
}
} // namespace
} // namespace tarvik
