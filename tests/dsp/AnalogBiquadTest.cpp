// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/AnalogBiquad.h"

#include "FilterTestTools.h"

#include <gtest/gtest.h>

namespace tarvik
{
namespace
{
using Type = AnalogBiquad::Type;

struct Expected
{
    Type type;
    double shelf;
    double atZero, atCentre, atInfinity; // gains
};

// Amplitude 3, Q 0.7, 1 kHz. A shelf whose far end is A^2 passes A at its centre; another far end moves that end only,
// which the centre follows in no simple way (checked at the ends alone, hence -1).
constexpr double a = 3.0;
constexpr double q = 0.7;
constexpr Expected expectations[] = {
    { Type::lowPass, 1.0, 1.0, q, 0.0 },        { Type::highPass, 1.0, 0.0, q, 1.0 },
    { Type::peak, 1.0, 1.0, a* a, 1.0 },        { Type::allPass, 1.0, 1.0, 1.0, 1.0 },
    { Type::bandPass, 1.0, 0.0, 1.0, 0.0 },     { Type::lowShelf, a* a, a* a, a, 1.0 },
    { Type::highShelf, a* a, 1.0, a, a* a },    { Type::lowShelf, 0.25, 0.25, -1.0, 1.0 },
    { Type::highShelf, 0.25, 1.0, -1.0, 0.25 },
};

TEST (AnalogBiquad, HasTheGainsOfItsTypeAtZeroCentreAndInfinity)
{
    constexpr auto centreHz = 1000.0;
    constexpr auto tolerance = 1e-6; // the ends are taken a factor of 10^6 away

    for (const auto& [type, shelf, atZero, atCentre, atInfinity] : expectations)
    {
        const auto prototype = AnalogBiquad::make (type, q, shelf, a, 2.0 * std::numbers::pi * centreHz);
        const auto gain = [&] (double hz)
        { return std::abs (test::analogueResponse (prototype.numerator, prototype.denominator, hz)); };

        SCOPED_TRACE (static_cast<int> (type));
        EXPECT_NEAR (gain (0.0), atZero, tolerance);
        EXPECT_NEAR (gain (centreHz * 1e6), atInfinity, 10.0 * tolerance);

        if (atCentre >= 0.0)
        {
            EXPECT_NEAR (gain (centreHz), atCentre, tolerance);
        }
    }
}

TEST (AnalogBiquad, AllPassTurnsThePhaseRound)
{
    const auto prototype = AnalogBiquad::make (Type::allPass, q, 1.0, 1.0, 100.0);
    const auto atCentre =
        test::evaluate (prototype.numerator, { 0.0, 100.0 }) / test::evaluate (prototype.denominator, { 0.0, 100.0 });
    EXPECT_NEAR (atCentre.real(), -1.0, 1e-12);
}
} // namespace
} // namespace tarvik
