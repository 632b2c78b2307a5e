// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/RowOperations.h"

#include "dsp/InstructionSets.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <set>
#include <span>
#include <vector>

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
    using L = std::numeric_limits<T>;
    const T special[] = { T (0),       -T (0),        L::denorm_min(), L::max(),
                          L::lowest(), L::infinity(), -L::infinity(),  L::quiet_NaN() };
    std::mt19937 random (seed);
    std::uniform_real_distribution<T> level (-2, 2);
    std::vector<T> samples (count);

    for (auto& sample : samples)
        sample = random() % 4 == 0 ? special[random() % std::size (special)] : level (random);

    return samples;
}

template <typename T>
T clamped (T x, T limit)
{
    return std::isfinite (x) ? std::clamp (x, -limit, limit) : T (0);
}

template <typename T>
struct OperationCase
{
    const char* name;
    void (*rows) (T* dst, const T* a, const T* b, T s, int n);
    T (*plain) (T dst, T a, T b, T s);
};

template <typename T>
constexpr OperationCase<T> operations[] = {
    { "absolute", [] (T* d, auto* a, auto*, T, int n) { rows::absolute (d, a, n); },
      [] (T, T a, T, T) { return std::abs (a); } },
    { "multiply in place", [] (T* d, auto* a, auto*, T, int n) { rows::multiply (d, a, n); },
      [] (T d, T a, T, T) { return d * a; } },
    { "multiply", [] (T* d, auto* a, auto* b, T, int n) { rows::multiply (d, a, b, n); },
      [] (T, T a, T b, T) { return a * b; } },
    { "scale in place", [] (T* d, auto*, auto*, T s, int n) { rows::scale (d, s, n); },
      [] (T d, T, T, T s) { return d * s; } },
    { "scale", [] (T* d, auto* a, auto*, T s, int n) { rows::scale (d, a, s, n); },
      [] (T, T a, T, T s) { return a * s; } },
    { "multiplyAdd", [] (T* d, auto* a, auto*, T s, int n) { rows::multiplyAdd (d, a, s, n); },
      [] (T d, T a, T, T s) { return d + a * s; } },
    { "add", [] (T* d, auto* a, auto*, T, int n) { rows::add (d, a, n); }, [] (T d, T a, T, T) { return d + a; } },
    { "subtract", [] (T* d, auto* a, auto*, T, int n) { rows::subtract (d, a, n); },
      [] (T d, T a, T, T) { return d - a; } },
    { "fill", [] (T* d, auto*, auto*, T s, int n) { rows::fill (d, s, n); }, [] (T, T, T, T s) { return s; } },
    { "minimum", [] (T* d, auto*, auto*, T s, int n) { rows::minimum (d, s, n); },
      [] (T d, T, T, T s) { return std::min (d, s); } },
    { "maximum", [] (T* d, auto*, auto*, T s, int n) { rows::maximum (d, s, n); },
      [] (T d, T, T, T s) { return std::max (d, s); } },
    { "clampToFinite", [] (T* d, auto*, auto*, T s, int n) { rows::clampToFinite (d, s, n); },
      [] (T d, T, T, T s) { return clamped (d, s); } },
};

constexpr OperationCase<float> floatOperations[] = {
    { "clampedProduct", [] (float* d, auto* a, auto* b, float s, int n) { rows::clampedProduct (d, a, b, s, n); },
      [] (float, float a, float b, float s) { return clamped (a * b, s); } },
    { "scale, two rows",
      [] (float* d, auto*, auto*, float s, int n)
      {
          rows::scale (std::array { d, d + n / 2 }.data(), 2, s, n / 2);
          rows::scale (d + n - 1, s, n % 2);
      },
      [] (float d, float, float, float s) { return d * s; } },
    { "scaleByMix", [] (float* d, auto* a, auto* b, float s, int n) { rows::scaleByMix (d, s, a, b, a, n); },
      [] (float d, float a, float b, float s) { return clamped (d, s) * (a + b * a); } },
    { "meanMagnitude",
      [] (float* d, auto* a, auto* b, float, int n) {
          rows::meanMagnitude (d, std::array { a, b }.data(), 2, n);
      },
      [] (float, float a, float b, float)
      { return clamped (std::abs (a * 0.5f + b * 0.5f), std::numeric_limits<float>::infinity()); } },
};

template <typename T>
void expectPlainBits (std::span<const OperationCase<T>> cases)
{
    constexpr auto room = static_cast<std::size_t> (longestRow + misalignments + 2 * guard);
    const auto a = difficultSamples<T> (room, 1), b = difficultSamples<T> (room, 2),
               before = difficultSamples<T> (room, 3);
    const auto s = T (0.7);

    for (const auto& set : supportedInstructionSets())
    {
        const ScopedInstructionSet forced (set);

        for (const auto& operation : cases)
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
                        const auto isInside = i >= start && i < start + n;
                        const auto expected =
                            isInside ? operation.plain (before[at], firstA[i - start], firstB[i - start], s)
                                     : before[at];
                        ASSERT_TRUE (sameBits (row[at], expected))
                            << operation.name << " on " << set.name << ", n " << n << ", shift " << shift << ", sample "
                            << i - start << ": " << row[at] << " instead of " << expected;
                    }
                }
    }
}

TEST (RowOperations, AnyLengthAndAlignmentGivesThePlainBitsOnEverySet)
{
    expectPlainBits<float> (operations<float>);
    expectPlainBits<double> (operations<double>);
    expectPlainBits<float> (floatOperations);
}

TEST (InstructionSets, ForcingReachesTheDispatcherAndEndsWithTheScope)
{
    selectInstructionSet();
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
