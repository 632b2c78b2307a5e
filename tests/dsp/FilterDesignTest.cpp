// SPDX-License-Identifier: GPL-3.0-or-later
#include "FilterTestTools.h"
#include "dsp/AnalogBiquad.h"
#include "dsp/ComponentTable.h"
#include "dsp/EqualiserComponents.h"
#include "dsp/EqualiserNetwork.h"
#include "dsp/MZTiCoefs.h"
#include "dsp/PolynomialRoots.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace tarvik
{
namespace
{
using namespace test;
using SecondOrder = MZTiCoefs<double, 2, 2>;
using FifthOrder = MZTiCoefs<double, 5, 5>;

constexpr double rate = 48000.0;
constexpr auto nan = std::numeric_limits<double>::quiet_NaN();

template <typename Coefs>
std::unique_ptr<Coefs> design (const typename Coefs::Polynomial& numerator,
                               const typename Coefs::Polynomial& denominator, double sampleRate = rate)
{
    auto coefs = std::make_unique<Coefs>();
    coefs->numerator = numerator;
    coefs->denominator = denominator;
    coefs->sampleRate = sampleRate;
    coefs->design();
    return coefs;
}

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

TEST (PolynomialRoots, FindsKnownRootsAndRefusesWhatHasNone)
{
    // (s - 2) (s + 5) (s^2 + 2 s + 26) s
    std::array<Complex, 5> roots;
    ASSERT_TRUE (findPolynomialRoots (std::array { 1.0, 5.0, 22.0, 58.0, -260.0, 0.0 }, roots));

    for (const auto expected : { Complex (2.0), Complex (-5.0), Complex (-1.0, 5.0), Complex (-1.0, -5.0) })
        EXPECT_TRUE (
            std::any_of (roots.begin(), roots.end(), [&] (Complex root) { return std::abs (root - expected) < 1e-12; }))
            << expected;

    EXPECT_EQ (std::count (roots.begin(), roots.end(), Complex (0.0)), 1); // exactly

    EXPECT_FALSE (findPolynomialRoots (std::array { 1.0, nan, 1.0 }, roots));
    EXPECT_FALSE (findPolynomialRoots (std::array { 0.0, 1.0, 1.0 }, roots));
    EXPECT_FALSE (findPolynomialRoots (std::array { 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0 }, roots));
}

TEST (FilterDesign, NeutralPrototypesAndConstantsAreExact)
{
    const SecondOrder::Taps equalHalves { 1.0, -2.0, 1.0, 1.0, -2.0, 1.0, 1.0, 0.0, 0.0, 1.0, 0.0, 0.0 };
    EXPECT_EQ (design<SecondOrder> ({ 1.0, 0.0, 0.0 }, { 1.0, 0.0, 0.0 })->taps, equalHalves);

    auto quarter = FifthOrder::makeNeutralTaps();
    quarter[quarter.size() - 6] = 0.25; // the last section's b0
    EXPECT_EQ (design<FifthOrder> ({ 0.0, 0.0, 0.0, 0.0, 0.0, 0.5 }, { 0.0, 0.0, 0.0, 0.0, 0.0, 2.0 })->taps, quarter);
}

TEST (FilterDesign, MagnitudeIsExactAtTheFitPointsOrTheFirstAlone)
{
    constexpr auto third = std::numbers::pi / 3.0;
    std::mt19937 random (3);
    int plainGains = 0;

    for (int trial = 0; trial < 300; ++trial)
    {
        const auto omega0 = 100.0 * std::pow (1500.0, static_cast<double> (random() % 1000) / 1000.0);
        const auto q = 0.3 + static_cast<double> (random() % 100) / 20.0;
        auto prototype = AnalogBiquad::make (static_cast<AnalogBiquad::Type> (trial % 7), q, 0.2, 1.7, omega0);

        for (auto& coefficient : prototype.numerator)
            coefficient *= 0.3; // so that the gain at 0 is 1 for no type

        const auto coefs = design<SecondOrder> (prototype.numerator, prototype.denominator);
        const auto errorAt = [&] (double omega)
        {
            const auto hz = omega * rate / (2.0 * std::numbers::pi);
            const auto wanted = std::abs (analogueResponse (coefs->numerator, coefs->denominator, hz));
            return std::abs (digitalResponse (coefs->taps, omega)) / wanted - 1.0;
        };

        // Types that pass nothing at 0 are fitted a millionth of half the rate above it, where the zeros at z = 1 leave
        // few digits of the taps' response.
        const auto hasNothingAtZero = prototype.numerator[2] == 0.0;
        EXPECT_NEAR (errorAt (hasNothingAtZero ? std::numbers::pi * 1e-6 : 0.0), 0.0, hasNothingAtZero ? 1e-4 : 1e-9);

        if (coefs->taps[7] == 0.0 && coefs->taps[8] == 0.0)
        {
            ++plainGains; // the equations have no solution
            continue;
        }

        EXPECT_NEAR (errorAt (third), 0.0, 1e-9) << trial;
        EXPECT_NEAR (errorAt (2.0 * third), 0.0, 1e-9) << trial;
    }

    EXPECT_GT (plainGains, 0); // otherwise the fall-back was never seen
    EXPECT_LT (plainGains, 150);
}

TEST (FilterDesign, RealRootsArePairedInAscendingOrder)
{
    // Five poles in krad/s; the odd one shares its section with a pole at z = 0. The solver tends to
    // find the largest first, which the last row's unstable pole turns round.
    for (auto krads : { std::array { 1.0, 2.0, 3.0, 5.0, 9.0 }, std::array { -50.0, 1.0, 2.0, 3.0, 4.0 } })
    {
        FifthOrder::Polynomial denominator { 0.0, 0.0, 0.0, 0.0, 0.0, 1.0 };

        for (const auto krad : krads)
            for (std::size_t i = 0; i < denominator.size(); ++i)
                denominator[i] = denominator[i] * krad * 1e3 + (i + 1 < denominator.size() ? denominator[i + 1] : 0.0);

        const auto coefs = design<FifthOrder> ({ 0.0, 0.0, 0.0, 0.0, 0.0, 1.0 }, denominator);
        const auto z = [&krads] (std::size_t i) { return std::exp (-krads[i] * 1e3 / rate); };
        const auto& taps = coefs->taps;
        EXPECT_NEAR (taps[4], -z (4) - z (3), 1e-6);
        EXPECT_NEAR (taps[5], z (4) * z (3), 1e-6);
        EXPECT_NEAR (taps[10], -z (2) - z (1), 1e-6);
        EXPECT_NEAR (taps[11], z (2) * z (1), 1e-6);
        EXPECT_NEAR (taps[16], -z (0), 1e-6);
        EXPECT_EQ (taps[17], 0.0);
    }
}

TEST (FilterDesign, FollowsTheNetworkUpToNearlyHalfTheRate)
{
    // Bounds in dB up to these parts of half the rate. The first setting comes nearest to them, at 44.1 kHz: all of the
    // mid boost at 6 kHz under a high cut at 14 kHz.
    constexpr std::pair<double, double> bounds[] = { { 0.5, 0.03 }, { 0.8, 0.27 }, { 0.9, 0.85 } };
    ComponentTable table (equaliserComponents);
    std::mt19937 random (4);

    for (int trial = 0; trial < 100; ++trial)
        for (const auto sampleRate : { 44100.0, 96000.0, 384000.0 })
        {
            const auto controls = trial == 0 ? EQControls { 2, 1, 7, 1.0f, 1, 7, 0.0f, 0, 18 } : drawControls (random);
            table.setActiveChannel (controls.toleranceChannel);
            const auto [numerator, denominator] = solveEqualiserNetwork (table, controls);
            const auto coefs = design<FifthOrder> (numerator, denominator, sampleRate);
            auto part = 0.01;

            for (const auto& [end, bound] : bounds)
                for (; part <= end; part += 0.01)
                {
                    const auto wanted = std::abs (analogueResponse (numerator, denominator, part * sampleRate / 2.0));
                    const auto got = std::abs (digitalResponse (coefs->taps, part * std::numbers::pi));
                    ASSERT_LT (std::abs (toDecibels (got / wanted)), bound)
                        << "trial " << trial << ", rate " << sampleRate << ", part of half the rate " << part;
                }
        }
}

TEST (FilterDesign, EndsOnNonsenseAndLeavesAGain)
{
    constexpr auto infinity = std::numeric_limits<double>::infinity();
    constexpr FifthOrder::Polynomial one { 0.0, 0.0, 0.0, 0.0, 0.0, 1.0 }, zero {},
        allNan { nan, nan, nan, nan, nan, nan }, partlyNan { 1.0, 2.0, nan, 1.0, 1.0, 1.0 },
        line { 0.0, 0.0, 0.0, 0.0, 1.0, 1.0 }, endless { 0.0, 0.0, 0.0, 1.0, infinity, 1.0 };
    const auto neutral = FifthOrder::makeNeutralTaps();

    EXPECT_EQ (design<FifthOrder> (one, zero)->taps, neutral);
    EXPECT_EQ (design<FifthOrder> (allNan, one)->taps, neutral);
    EXPECT_EQ (design<FifthOrder> (one, partlyNan)->taps, neutral);
    EXPECT_EQ (design<FifthOrder> (line, endless)->taps, neutral);
    EXPECT_EQ (std::abs (digitalResponse (design<FifthOrder> (zero, one)->taps, 1.0)), 0.0); // no signal, no gain

    for (const auto sampleRate : { nan, infinity, 0.0, -1.0, 1e-300 })
    {
        const auto designed = design<FifthOrder> (line, { 0.0, 0.0, 0.0, 1.0, 1.0, 1.0 }, sampleRate);

        for (const auto tap : designed->taps)
            EXPECT_TRUE (std::isfinite (tap)) << sampleRate;
    }
}
} // namespace
} // namespace tarvik
