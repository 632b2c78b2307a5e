// SPDX-License-Identifier: GPL-3.0-or-later
#include "FilterTestTools.h"
#include "dsp/AnalogBiquad.h"
#include "dsp/Armadillo.h"
#include "dsp/PolynomialRoots.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <limits>
#include <random>

namespace tarvik
{
namespace
{
using namespace test;

constexpr double rate = 48000.0;

TEST (AnalogBiquad, HasTheGainsOfItsTypeAtZeroCentreAndInfinity)
{
    using Type = AnalogBiquad::Type;
    using Case = std::pair<Type, std::array<double, 3>>;
    constexpr auto a = 3.0, q = 0.7, centreHz = 1000.0;
    constexpr Case cases[] = { { Type::lowPass, { 1.0, q, 0.0 } },    { Type::highPass, { 0.0, q, 1.0 } },
                               { Type::peak, { 1.0, a * a, 1.0 } },   { Type::allPass, { 1.0, 1.0, 1.0 } },
                               { Type::bandPass, { 0.0, 1.0, 0.0 } }, { Type::lowShelf, { a * a, a, 1.0 } },
                               { Type::highShelf, { 1.0, a, a * a } } };

    for (const auto& [type, gains] : cases)
    {
        const auto prototype = AnalogBiquad::make (type, q, a * a, a, 2.0 * std::numbers::pi * centreHz);
        const auto gainAt = [&p = prototype] (double hz)
        { return std::abs (analogueResponse (p.numerator, p.denominator, hz)); };

        SCOPED_TRACE (static_cast<int> (type));
        EXPECT_NEAR (gainAt (0.0), gains[0], 1e-6);
        EXPECT_NEAR (gainAt (centreHz), gains[1], 1e-6);
        EXPECT_NEAR (gainAt (centreHz * 1e6), gains[2], 1e-5);
    }
}

TEST (FilterDesign, NeutralPrototypesAndConstantsAreExact)
{
    const std::array equalHalves { 1.0, -2.0, 1.0, 1.0, -2.0, 1.0, 1.0, 0.0, 0.0, 1.0, 0.0, 0.0 };
    EXPECT_EQ (designTaps<2> ({ 1.0, 0.0, 0.0 }, { 1.0, 0.0, 0.0 }, rate), equalHalves);

    auto quarter = MZTiCoefs<double, 5, 5>::makeNeutralTaps();
    quarter[quarter.size() - 6] = 0.25; // the last section's b0
    EXPECT_EQ (designTaps<5> ({ 0.0, 0.0, 0.0, 0.0, 0.0, 0.5 }, { 0.0, 0.0, 0.0, 0.0, 0.0, 2.0 }, rate), quarter);
}

TEST (FilterDesign, RootsAreArmadillosToTheBit)
{
    std::mt19937 random (5);

    for (int trial = 0; trial < 5000; ++trial)
    {
        arma::vec polynomial (2 + random() % maxPolynomialDegree);

        for (auto& c : polynomial)
            c = random() % 8 == 0
                    ? 0.0
                    : std::ldexp (static_cast<double> (random() % 2001) - 1000.0, static_cast<int> (random() % 60));

        arma::cx_vec expected;
        std::array<std::complex<double>, maxPolynomialDegree> roots;

        if (polynomial[0] == 0.0 || ! arma::roots (expected, polynomial))
            continue;

        ASSERT_TRUE (findPolynomialRoots ({ polynomial.memptr(), polynomial.n_elem }, roots)) << polynomial;
        ASSERT_TRUE (std::equal (expected.begin(), expected.end(), roots.begin())) << polynomial;
    }
}

TEST (FilterDesign, MagnitudeIsExactAtTheFitPointsOrTheFirstAlone)
{
    constexpr auto third = std::numbers::pi / 3.0;
    std::mt19937 random (3);
    bool hasFallenBack = false;

    for (int trial = 0; trial < 300; ++trial)
    {
        const auto omega0 = 100.0 * std::pow (1500.0, static_cast<double> (random() % 1000) / 1000.0);
        const auto q = 0.3 + static_cast<double> (random() % 100) / 20.0;
        auto prototype = AnalogBiquad::make (static_cast<AnalogBiquad::Type> (trial % 7), q, 0.2, 1.7, omega0);

        for (auto& coefficient : prototype.numerator)
            coefficient *= 0.3; // so that the gain at 0 is 1 for no type

        const auto taps = designTaps<2> (prototype.numerator, prototype.denominator, rate);
        const auto expectExact = [&] (double omega, double bound)
        {
            const auto hz = omega * rate / (2.0 * std::numbers::pi);
            const auto wanted = std::abs (analogueResponse (prototype.numerator, prototype.denominator, hz));
            EXPECT_NEAR (std::abs (digitalResponse (taps, omega)) / wanted, 1.0, bound) << trial;
        };

        // Types that pass nothing at 0 are fitted a millionth of half the rate above it, where the zeros at z = 1 leave
        // few digits of the taps' response.
        const auto hasNothingAtZero = prototype.numerator[2] == 0.0;
        expectExact (hasNothingAtZero ? std::numbers::pi * 1e-6 : 0.0, hasNothingAtZero ? 1e-4 : 1e-9);

        if (taps[7] == 0.0 && taps[8] == 0.0)
            hasFallenBack = true; // the equations have no solution
        else
            for (const auto omega : { third, 2.0 * third })
                expectExact (omega, 1e-9);
    }

    EXPECT_TRUE (hasFallenBack);
}

TEST (FilterDesign, EndsOnNonsenseAndLeavesAGain)
{
    constexpr auto nan = std::numeric_limits<double>::quiet_NaN(), infinity = std::numeric_limits<double>::infinity();
    using Polynomial = std::array<double, 6>;
    constexpr Polynomial zero {}, one { 0.0, 0.0, 0.0, 0.0, 0.0, 1.0 };
    const auto neutral = MZTiCoefs<double, 5, 5>::makeNeutralTaps();

    for (const auto& denominator : { zero, { 1.0, 2.0, nan, 1.0, 1.0, 1.0 }, { 0.0, 0.0, 0.0, 1.0, infinity, 1.0 } })
        EXPECT_EQ (designTaps<5> (one, denominator, rate), neutral);

    EXPECT_EQ (std::abs (digitalResponse (designTaps<5> (zero, one, rate), 1.0)), 0.0); // no signal, no gain

    for (const auto rateHz : { nan, infinity, 0.0, -1.0, 1e-300 })
        for (const auto tap : designTaps<5> (one, { 0.0, 0.0, 0.0, 1.0, 1.0, 1.0 }, rateHz))
            EXPECT_TRUE (std::isfinite (tap)) << rateHz;
}
} // namespace
} // namespace tarvik
