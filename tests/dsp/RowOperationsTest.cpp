// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/RowOperations.h"

#include "dsp/InstructionSets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <span>
#include <vector>

namespace tarvik
{
namespace
{
constexpr int longestRow = 67; // four of the widest vectors (16 floats) and every kind of rest
constexpr int guard = 16;      // samples around each row that nobody may write

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
struct Row
{
    T* d;
    const T *a, *b;
    T s;
    int n;
};

template <typename T>
struct OperationCase
{
    const char* name;
    void (*rows) (Row<T>);
    T (*plain) (Row<T>); // of the first sample
};

template <typename T, typename R = Row<T>>
constexpr OperationCase<T> operations[] = {
    { "absolute", [] (R r) { rows::absolute (r.d, r.a, r.n); }, [] (R r) { return std::abs (*r.a); } },
    { "multiply in place", [] (R r) { rows::multiply (r.d, r.a, r.n); }, [] (R r) { return *r.d * *r.a; } },
    { "multiply", [] (R r) { rows::multiply (r.d, r.a, r.b, r.n); }, [] (R r) { return *r.a * *r.b; } },
    { "scale in place", [] (R r) { rows::scale (r.d, r.s, r.n); }, [] (R r) { return *r.d * r.s; } },
    { "scale", [] (R r) { rows::scale (r.d, r.a, r.s, r.n); }, [] (R r) { return *r.a * r.s; } },
    { "multiplyAdd", [] (R r) { rows::multiplyAdd (r.d, r.a, r.s, r.n); }, [] (R r) { return *r.d + *r.a * r.s; } },
    { "add", [] (R r) { rows::add (r.d, r.a, r.n); }, [] (R r) { return *r.d + *r.a; } },
    { "subtract", [] (R r) { rows::subtract (r.d, r.a, r.n); }, [] (R r) { return *r.d - *r.a; } },
    { "fill", [] (R r) { rows::fill (r.d, r.s, r.n); }, [] (R r) { return r.s; } },
    { "minimum", [] (R r) { rows::minimum (r.d, r.s, r.n); }, [] (R r) { return std::min (*r.d, r.s); } },
    { "maximum", [] (R r) { rows::maximum (r.d, r.s, r.n); }, [] (R r) { return std::max (*r.d, r.s); } },
    { "clampToFinite", [] (R r) { rows::clampToFinite (r.d, r.s, r.n); }, [] (R r) { return clamped (*r.d, r.s); } },
};

using R = Row<float>;
constexpr OperationCase<float> floatOperations[] = {
    { "clampedProduct", [] (R r) { rows::clampedProduct (r.d, r.a, r.b, r.s, r.n); },
      [] (R r) { return clamped (*r.a * *r.b, r.s); } },
    { "scale, two rows",
      [] (R r)
      {
          rows::scale (std::array { r.d, r.d + r.n / 2 }.data(), 2, r.s, r.n / 2);
          rows::scale (r.d + r.n - 1, r.s, r.n % 2);
      },
      [] (R r) { return *r.d * r.s; } },
    { "scaleByMix", [] (R r) { rows::scaleByMix (r.d, r.s, r.a, r.b, r.a, r.n); },
      [] (R r) { return clamped (*r.d, r.s) * (*r.a + *r.b * *r.a); } },
    { "meanMagnitude",
      [] (R r) {
          rows::meanMagnitude (r.d, std::array { r.a, r.b }.data(), 2, r.n);
      },
      [] (R r) { return clamped (std::abs (*r.a * 0.5f + *r.b * 0.5f), std::numeric_limits<float>::infinity()); } },
};

template <typename T>
void expectPlainBits (std::span<const OperationCase<T>> cases)
{
    constexpr auto room = static_cast<std::size_t> (longestRow + 2 * guard);
    const auto a = difficultSamples<T> (room, 1), b = difficultSamples<T> (room, 2);
    auto before = difficultSamples<T> (room, 3);
    const auto* const firstA = a.data() + 1;
    const auto* const firstB = b.data() + 2; // all three misaligned apart
    const auto s = T (0.7);

    for (const auto& set : supportedInstructionSets())
    {
        const ScopedInstructionSet forced (set);

        for (const auto& operation : cases)
            for (int n = -1; n <= longestRow; ++n)
            {
                auto row = before;
                operation.rows ({ row.data() + guard, firstA, firstB, s, n });

                for (int i = -guard; i < longestRow + guard; ++i)
                {
                    const auto at = static_cast<std::size_t> (guard + i);
                    const auto expected =
                        i >= 0 && i < n ? operation.plain ({ &before[at], firstA + i, firstB + i, s, 1 }) : before[at];
                    ASSERT_TRUE (sameBits (row[at], expected))
                        << operation.name << " on " << set.name << ", n " << n << ", sample " << i << ": " << row[at]
                        << " instead of " << expected;
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
} // namespace
} // namespace tarvik
