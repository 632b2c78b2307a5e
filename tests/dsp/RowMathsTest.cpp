// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/RowMaths.h"

#include "dsp/InstructionSets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace tarvik
{
namespace
{
template <typename T>
struct Function
{
    const char* name;
    void (*rows) (T*, const T*, int) noexcept;
    T (*standard) (T);
    long double (*exact) (long double);
    double bound;              // units in the last place, as promised in RowMaths.h
    double lowest, highest;    // of the argument, or of its logarithm
    bool logarithmicArguments; // spread evenly in the exponent
};

template <typename T>
std::vector<Function<T>> functions()
{
    const auto decades = sizeof (T) == sizeof (float) ? 85.0 : 700.0; // almost the range of the type, in nepers
    return { { "exp", rows::exp, std::exp, std::exp, 1.2, -decades, decades, false },
             { "log", rows::log, std::log, std::log, 1.2, -decades, decades, true },
             { "log near 1", rows::log, std::log, std::log, 1.2, -0.5, 0.5, true },
             { "log10", rows::log10, std::log10, std::log10, 2.5, -decades, decades, true },
             { "log10 near 1", rows::log10, std::log10, std::log10, 2.5, -0.5, 0.5, true },
             { "tanh", rows::tanh, std::tanh, std::tanh, 3.5, -2.0, 2.0, false },
             { "tanh of little", rows::tanh, std::tanh, std::tanh, 3.5, -decades, 2.0, true } };
}

template <typename T>
double unitsInLastPlace (T value, long double exact)
{
    int exponent = 0;
    std::frexp (std::max (std::abs (static_cast<T> (exact)), std::numeric_limits<T>::min()), &exponent);
    const auto unit = std::ldexp (1.0L, exponent - std::numeric_limits<T>::digits);
    return static_cast<double> (std::abs ((static_cast<long double> (value) - exact) / unit));
}

template <typename T>
class RowMaths : public testing::Test
{
};

using SampleTypes = testing::Types<float, double>;
TYPED_TEST_SUITE (RowMaths, SampleTypes, );

TYPED_TEST (RowMaths, StaysWithinThePromisedDistanceOfTheExactResult)
{
    using T = TypeParam;
    constexpr int n = 20003;

    for (const auto& function : functions<T>())
    {
        std::mt19937 random (7);
        std::uniform_real_distribution<double> spread (function.lowest, function.highest);
        std::vector<T> x (n), result (n);

        for (auto& sample : x)
            sample = static_cast<T> (function.logarithmicArguments ? std::exp (spread (random)) : spread (random));

        for (const auto& set : supportedInstructionSets())
        {
            const ScopedInstructionSet forced (set);
            function.rows (result.data(), x.data(), n);

            for (std::size_t i = 0; i < n; ++i)
                ASSERT_LE (unitsInLastPlace (result[i], function.exact (x[i])), function.bound)
                    << function.name << " of " << x[i] << " on " << set.name;
        }
    }
}

TYPED_TEST (RowMaths, ArgumentsOutsideTheDomainGiveWhatTheStandardLibraryGives)
{
    using T = TypeParam;
    constexpr auto infinity = std::numeric_limits<T>::infinity();
    const std::vector<T> edges { T (0),    -T (0),    infinity, -infinity, std::numeric_limits<T>::quiet_NaN(),
                                 T (-1),   T (-1e30), T (1e30), T (1),     std::numeric_limits<T>::lowest(),
                                 T (-1e4), T (1e4) };
    std::vector<T> result (edges.size());

    for (const auto& set : supportedInstructionSets())
    {
        const ScopedInstructionSet forced (set);

        for (const auto& function : functions<T>())
        {
            function.rows (result.data(), edges.data(), static_cast<int> (edges.size()));

            for (std::size_t i = 0; i < edges.size(); ++i)
            {
                const auto expected = function.standard (edges[i]);
                const auto where = testing::Message() << function.name << " of " << edges[i] << " on " << set.name;

                if (std::isnan (expected))
                    EXPECT_TRUE (std::isnan (result[i])) << where;
                else if (std::isinf (expected) || expected == T (0))
                    EXPECT_EQ (result[i], expected) << where;
                else
                    EXPECT_LE (unitsInLastPlace (result[i], static_cast<long double> (expected)), function.bound + 1.0)
                        << where;
            }
        }
    }
}

TYPED_TEST (RowMaths, ASamplesResultDoesNotDependOnItsPlaceInTheRow)
{
    using T = TypeParam;
    constexpr int longest = 37;
    std::vector<T> x, whole (longest);

    for (int i = 0; i < longest; ++i)
        x.push_back (T (0.37) + T (0.09) * static_cast<T> (i));

    x[5] = T (-2); // outside the logarithms' domain, among others that aren't

    for (const auto& set : supportedInstructionSets())
        for (const auto& function : functions<T>())
        {
            SCOPED_TRACE (testing::Message() << function.name << " on " << set.name);
            const ScopedInstructionSet forced (set);
            function.rows (whole.data(), x.data(), longest);

            for (int n = 0; n <= longest; ++n)
            {
                const auto isSame = [] (T a, T b) { return a == b || (std::isnan (a) && std::isnan (b)); };
                std::vector<T> part (longest + 1, T (-7));
                function.rows (part.data(), x.data() + longest - n, n);
                ASSERT_TRUE (std::equal (part.begin(), part.begin() + n, whole.end() - n, isSame)) << n;
                ASSERT_EQ (part[static_cast<std::size_t> (n)], T (-7)) << "written beyond the row";
            }
        }
}
} // namespace
} // namespace tarvik
