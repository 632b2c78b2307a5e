// SPDX-License-Identifier: GPL-3.0-or-later
#include "FilterTestTools.h"
#include "dsp/AnalogBiquad.h"
#include "dsp/ComponentTable.h"
#include "dsp/EqualiserNetwork.h"
#include "dsp/MZTiCoefs.h"
#include "dsp/PolynomialRoots.h"
#include "tests/support/RealTimeTrap.h"

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

TEST (PolynomialRoots, FindsKnownRootsAndExactZeros)
{
    // (s - 2) (s + 5) (s^2 + 2 s + 26) s
    constexpr std::array polynomial { 1.0, 5.0, 22.0, 58.0, -260.0, 0.0 };
    std::array<Complex, 5> roots;
    ASSERT_TRUE (findPolynomialRoots (polynomial, roots));

    for (const auto expected : { Complex (2.0), Complex (-5.0), Complex (-1.0, 5.0), Complex (-1.0, -5.0) })
        EXPECT_TRUE (
            std::any_of (roots.begin(), roots.end(), [&] (Complex root) { return std::abs (root - expected) < 1e-12; }))
            << expected;

    EXPECT_EQ (std::count (roots.begin(), roots.end(), Complex (0.0)), 1);
}

TEST (PolynomialRoots, RefusesWhatHasNone)
{
    std::array<Complex, 5> roots;
    EXPECT_FALSE (findPolynomialRoots (std::array { 1.0, nan, 1.0 }, roots));
    EXPECT_FALSE (findPolynomialRoots (std::array { 0.0, 1.0, 1.0 }, roots));
    EXPECT_FALSE (findPolynomialRoots (std::array { 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0 }, roots));
}

TEST (FilterDesign, NeutralPrototypeIsOneSectionWithEqualHalves)
{
    const auto coefs = design<SecondOrder> ({ 1.0, 0.0, 0.0 }, { 1.0, 0.0, 0.0 });
    const SecondOrder::Taps expected { 1.0, -2.0, 1.0, 1.0, -2.0, 1.0, 1.0, 0.0, 0.0, 1.0, 0.0, 0.0 };
    EXPECT_EQ (coefs->taps, expected);
}

TEST (FilterDesign, ConstantIsAGainInTheLastSection)
{
    const auto coefs = design<FifthOrder> ({ 0.0, 0.0, 0.0, 0.0, 0.0, 0.5 }, { 0.0, 0.0, 0.0, 0.0, 0.0, 2.0 });
    auto expected = FifthOrder::makeNeutralTaps();
    expected[expected.size() - 6] = 0.25;
    EXPECT_EQ (coefs->taps, expected);
    EXPECT_EQ (coefs->numerator.back(), 0.25); // divided by the denominator's first coefficient
    EXPECT_EQ (coefs->denominator.back(), 1.0);
}

TEST (FilterDesign, HighPassKeepsItsZeroAtDcAndItsPolesInPlace)
{
    constexpr auto omega0 = 684.8671984825748, q = 1.05;
    const auto prototype = AnalogBiquad::make (AnalogBiquad::Type::highPass, q, 1.0, 1.0, omega0);

    for (const auto sampleRate : { 44100.0, 96000.0, 3072000.0 })
    {
        const auto coefs = design<SecondOrder> (prototype.numerator, prototype.denominator, sampleRate);
        const auto decay = std::exp (-omega0 / (2.0 * q) / sampleRate);
        const auto angle = omega0 * std::sqrt (1.0 - 1.0 / (4.0 * q * q)) / sampleRate;
        EXPECT_EQ (coefs->taps[1], -2.0);
        EXPECT_EQ (coefs->taps[2], 1.0);
        EXPECT_NEAR (coefs->taps[4], -2.0 * decay * std::cos (angle), 1e-14);
        EXPECT_NEAR (coefs->taps[5], decay * decay, 1e-14);
        EXPECT_EQ (std::abs (digitalResponse (coefs->taps, 0.0)), 0.0);
    }
}

TEST (FilterDesign, MagnitudeIsExactAtTheFitPoints)
{
    constexpr auto third = std::numbers::pi / 3.0;
    std::mt19937 random (3);
    int plainGains = 0;

    for (int trial = 0; trial < 300; ++trial)
    {
        const auto type = static_cast<AnalogBiquad::Type> (trial % 7);
        const auto omega0 = 100.0 * std::pow (1500.0, static_cast<double> (random() % 1000) / 1000.0);
        const auto q = 0.3 + static_cast<double> (random() % 100) / 20.0;
        auto prototype = AnalogBiquad::make (type, q, 0.2, 1.7, omega0);

        for (auto& coefficient : prototype.numerator)
            coefficient *= 0.3; // so that the gain at 0 is 1 for no type

        const auto coefs = design<SecondOrder> (prototype.numerator, prototype.denominator);
        const auto isPlainGain = coefs->taps[7] == 0.0 && coefs->taps[8] == 0.0;
        plainGains += isPlainGain;

        // Types that pass nothing at 0 are fitted a millionth of half the rate above it.
        const auto first = std::abs (prototype.numerator[2]) > 0.0 ? 0.0 : std::numbers::pi * 1e-6;

        for (const auto omega : { first, third, 2.0 * third })
        {
            const auto wanted = std::abs (
                analogueResponse (coefs->numerator, coefs->denominator, omega * rate / (2.0 * std::numbers::pi)));
            const auto got = std::abs (digitalResponse (coefs->taps, omega));

            // Without a solution only the first point holds. Next to 0 the zeros at z = 1 leave few digits of the taps'
            // response.
            if (omega == first || ! isPlainGain)
            {
                EXPECT_NEAR (got / wanted, 1.0, omega > 0.0 && omega < 1.0 ? 1e-4 : 1e-9)
                    << "trial " << trial << " at " << omega;
            }
        }
    }

    EXPECT_GT (plainGains, 0); // otherwise the fall-back was never seen
    EXPECT_LT (plainGains, 150);
}

TEST (FilterDesign, RealRootsArePairedInAscendingOrder)
{
    // Five poles in krad/s; the odd one shares its section with a pole at z = 0. The solver tends to
    // find the largest first, which the last row's unstable pole turns round.
    for (auto krads : { std::array { 1.0, 2.0, 3.0, 5.0, 9.0 }, std::array { 0.1, 3.0, 3.3, 20.0, 21.0 },
                        std::array { 1.0, 40.0, 50.0, 60.0, 70.0 }, std::array { 0.01, 0.1, 1.0, 10.0, 100.0 },
                        std::array { -50.0, 1.0, 2.0, 3.0, 4.0 } })
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
    // mid boost at 6 kHz under a high cut at 14 kHz. Most settings stay within 0.03, 0.26 and 0.75 dB.
    // Part of the Nyquist frequency, and dB. At the two lowest rates the highest resonances come closest to it.
    using Bounds = std::array<std::pair<double, double>, 3>;
    constexpr Bounds boundsFrom88200 { { { 0.5, 0.03 }, { 0.8, 0.26 }, { 0.9, 0.75 } } };
    constexpr Bounds boundsBelow { { { 0.5, 0.03 }, { 0.8, 0.27 }, { 0.9, 0.85 } } };
    constexpr auto numFrequencies = 90;
    ComponentTable table (equaliserComponents);
    std::mt19937 random (4);

    for (int trial = 0; trial < 200; ++trial)
        for (const auto sampleRate : { 44100.0, 48000.0, 88200.0, 96000.0, 192000.0, 384000.0 })
        {
            const auto controls = trial == 0 ? EQControls { 2, 1, 7, 1.0f, 1, 7, 0.0f, 0, 18 } : drawControls (random);
            const auto& bounds = sampleRate < 88200.0 ? boundsBelow : boundsFrom88200;
            table.setActiveChannel (controls.toleranceChannel);
            const auto response = solveEqualiserNetwork (selectElements (table, controls));
            const auto coefs = design<FifthOrder> (response.numerator, response.denominator, sampleRate);

            for (int i = 1; i <= numFrequencies; ++i)
            {
                const auto part = 0.9 * i / numFrequencies;
                const auto wanted =
                    std::abs (analogueResponse (response.numerator, response.denominator, part * sampleRate / 2.0));
                const auto got = std::abs (digitalResponse (coefs->taps, part * std::numbers::pi));
                const auto bound =
                    std::find_if (bounds.begin(), bounds.end(), [part] (auto b) { return part <= b.first + 1e-9; });
                ASSERT_LT (std::abs (toDecibels (got / wanted)), bound->second)
                    << "trial " << trial << ", rate " << sampleRate << ", part of half the rate " << part;
            }
        }
}

TEST (FilterDesign, EndsOnNonsenseAndLeavesAGain)
{
    constexpr FifthOrder::Polynomial one { 0.0, 0.0, 0.0, 0.0, 0.0, 1.0 }, zero {};
    constexpr FifthOrder::Polynomial allNan { nan, nan, nan, nan, nan, nan },
        partlyNan { 1.0, 2.0, nan, 1.0, 1.0, 1.0 };
    constexpr auto infinity = std::numeric_limits<double>::infinity();
    const auto neutral = FifthOrder::makeNeutralTaps();

    EXPECT_EQ (design<FifthOrder> (one, zero)->taps, neutral);
    EXPECT_EQ (design<FifthOrder> (allNan, one)->taps, neutral);
    EXPECT_EQ (design<FifthOrder> (one, partlyNan)->taps, neutral);
    EXPECT_EQ (design<FifthOrder> ({ 0.0, 0.0, 0.0, 0.0, 1.0, 1.0 }, { 0.0, 0.0, 0.0, 1.0, infinity, 1.0 })->taps,
               neutral);
    EXPECT_EQ (std::abs (digitalResponse (design<FifthOrder> (zero, one)->taps, 1.0)), 0.0); // no signal, no gain

    for (const auto sampleRate : { nan, infinity, 0.0, -1.0, 1e-300 })
    {
        const auto coefs =
            design<FifthOrder> ({ 0.0, 0.0, 0.0, 0.0, 1.0, 1.0 }, { 0.0, 0.0, 0.0, 1.0, 1.0, 1.0 }, sampleRate);

        for (const auto tap : coefs->taps)
            EXPECT_TRUE (std::isfinite (tap)) << sampleRate;
    }
}

TEST (FilterDesign, TakesNoMemoryAndNoLock)
{
    const ComponentTable table (equaliserComponents);
    std::mt19937 random (5);
    FifthOrder coefs;
    coefs.sampleRate = rate;
    const test::RealTimeTrap trap;

    for (int trial = 0; trial < 300; ++trial)
    {
        const auto response = solveEqualiserNetwork (selectElements (table, drawControls (random)));
        coefs.numerator = response.numerator;
        coefs.denominator = response.denominator;
        coefs.design();
    }

    EXPECT_EQ (trap.allocations(), 0);
    EXPECT_EQ (trap.locks(), 0);
}
} // namespace
} // namespace tarvik
