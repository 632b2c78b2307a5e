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
    long double (*exact) (long double);
    double bound;              // units in the last place, as promised in RowMaths.h
    double lowest, highest;    // of the argument, or of its logarithm
    bool logarithmicArguments; // spread evenly in the exponent
};

template <typename T>
std::vector<Function<T>> functions()
{
    const auto decades = sizeof (T) == sizeof (float) ? 85.0 : 700.0; // almost the range of the type, in nepers
    return { { "exp", rows::exp, std::exp, 1.2, -decades, decades, false },
             { "log", rows::log, std::log, 1.2, -decades, decades, true },
             { "log near 1", rows::log, std::log, 1.2, -0.5, 0.5, true },
             { "log10", rows::log10, std::log10, 2.5, -decades, decades, true },
             { "log10 near 1", rows::log10, std::log10, 2.5, -0.5, 0.5, true },
             { "tanh", rows::tanh, std::tanh, 3.5, -2.0, 2.0, false },
             { "tanh of little", rows::tanh, std::tanh, 3.5, -decades, 2.0, true } };
}

template <typename T>
bool isWithin (T value, long double exact, double bound)
{
    const auto nearest = static_cast<T> (exact), magnitude = std::abs (nearest);

    if (! std::isfinite (nearest) || nearest == T (0))
        return value == nearest || (std::isnan (value) && std::isnan (nearest));

    const auto unit = std::nextafter (magnitude, std::numeric_limits<T>::infinity()) - magnitude;
    return std::abs (static_cast<long double> (value) - exact) <= static_cast<long double> (bound) * unit;
}

template <typename T>
void expectPromisedDistances()
{
    constexpr auto infinity = std::numeric_limits<T>::infinity();
    const std::vector<T> edges { T (0), -T (0), infinity, -infinity, T (-1), T (1), T (-1e30), T (1e30) };
    constexpr std::size_t numOrdinary = 20003, longestCut = 37;

    for (const auto& function : functions<T>())
    {
        std::mt19937 random (7);
        std::uniform_real_distribution<double> spread (function.lowest, function.highest);
        std::vector<T> x (numOrdinary);

        for (auto& sample : x)
            sample = static_cast<T> (function.logarithmicArguments ? std::exp (spread (random)) : spread (random));

        x.insert (x.end(), edges.begin(), edges.end());

        for (const auto& set : supportedInstructionSets())
        {
            SCOPED_TRACE (testing::Message() << function.name << " on " << set.name);
            const ScopedInstructionSet forced (set);
            std::vector<T> result (x.size());
            function.rows (result.data(), x.data(), static_cast<int> (x.size()));

            for (std::size_t i = 0; i < x.size(); ++i)
                ASSERT_TRUE (isWithin (result[i], function.exact (x[i]), function.bound))
                    << result[i] << " of " << x[i];

            for (std::size_t n = 0; n <= longestCut; ++n)
            {
                std::vector<T> part (n + 1, T (-7));
                function.rows (part.data(), x.data(), static_cast<int> (n));
                ASSERT_TRUE (std::equal (part.begin(), part.end() - 1, result.begin())) << n;
                ASSERT_EQ (part[n], T (-7)) << "written beyond the row";
            }
        }
    }
}

TEST (RowMaths, IsWithinThePromisedDistanceWhereverASampleStands)
{
    expectPromisedDistances<float>();
    expectPromisedDistances<double>();
}
} // namespace
} // namespace tarvik
