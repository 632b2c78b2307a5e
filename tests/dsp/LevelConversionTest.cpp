// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/DecibelConverter.h"
#include "dsp/Decibels.h"
#include "dsp/IppMinMax.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace tarvik
{
namespace
{
// The functions underneath have tests of their own, on every instruction set.
template <typename T>
void expectDefinition()
{
    constexpr auto lastPlace = static_cast<double> (std::numeric_limits<T>::epsilon());

    for (auto db = -120.0; db < 40.0; db += 3.71)
    {
        T level[] = { static_cast<T> (std::pow (10.0, db / 20.0)), T (0), T (7) }, decibels[] = { T (8), T (8), T (8) };
        DecibelConverter::levelToDB (level, decibels, 2);
        EXPECT_NEAR (static_cast<double> (decibels[0]), db, lastPlace * (5.0 + 4.0 * std::abs (db)));
        EXPECT_EQ (decibels[1], -std::numeric_limits<T>::infinity()); // no floor
        EXPECT_EQ (decibels[2], T (8)) << "written beyond n";

        T back[3], inPlace[] = { level[0], level[1], level[2] };
        DecibelConverter::dBToLevel (decibels, back, 2);
        DecibelConverter::levelToDBInPlace (inPlace, 2);
        EXPECT_EQ (inPlace[0], decibels[0]);
        DecibelConverter::dBToLevelInPlace (inPlace, 2);
        EXPECT_EQ (inPlace[0], back[0]);

        // A relative error of the decibel figure weighs ln (10) / 20 = 0.115 times the figure in the level.
        EXPECT_NEAR (static_cast<double> (back[0] / level[0]), 1.0, lastPlace * (2.5 + 0.5 * std::abs (db)));
        EXPECT_EQ (back[1], T (0));
    }
}

TEST (DecibelConverter, FollowsTheDefinitionInPlaceAndElsewhere)
{
    expectDefinition<float>();
    expectDefinition<double>();
}

template <typename T>
void expectLimits()
{
    std::vector<T> row { T (0.1), T (0.3), T (0.3), T (0.3) };
    ippMinMax::min (row.data(), 3, T (0.2));
    ippMinMax::max (row.data(), 2, T (0.15));
    EXPECT_EQ (row, (std::vector<T> { T (0.15), T (0.2), T (0.2), T (0.3) }));
}

TEST (ippMinMax, HoldsSamplesBelowOrAboveTheLimit)
{
    expectLimits<float>();
    expectLimits<double>();
}

TEST (Decibels, SingleConversionsHaveTheirFloorAtMinusHundred)
{
    EXPECT_NEAR (gainFromDb (6.0), 1.9952623149688795, 1e-15);      // 10^0.3
    EXPECT_NEAR (gainFromDb (-99.9), 1.0115794542598986e-5, 1e-19); // 10^-4.995
    EXPECT_EQ (gainFromDb (-100.0), 0.0);
    EXPECT_EQ (gainFromDb (std::nan ("")), 0.0);
    EXPECT_NEAR (dbFromGain (2.0), 6.0205999132796239, 1e-14);
    EXPECT_NEAR (dbFromGain (2.0f), 6.0206f, 1e-5f);

    for (const auto gain : { 1e-6, 0.0, -1.0, std::nan ("") })
    {
        EXPECT_EQ (dbFromGain (gain), -100.0);
        EXPECT_EQ (dbFromGain (static_cast<float> (gain)), -100.0f);
    }
}
} // namespace
} // namespace tarvik
