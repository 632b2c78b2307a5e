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

    for (auto db = -120.0; db < 40.0; db += 0.371)
    {
        const auto exactLevel = std::pow (10.0, db / 20.0);
        const auto level = static_cast<T> (exactLevel), decibels = static_cast<T> (db);
        T toDb {}, toLevel {}, dbInPlace = level, levelInPlace = decibels;
        DecibelConverter::levelToDB (&level, &toDb, 1);
        DecibelConverter::dBToLevel (&decibels, &toLevel, 1);
        DecibelConverter::levelToDBInPlace (&dbInPlace, 1);
        DecibelConverter::dBToLevelInPlace (&levelInPlace, 1);
        EXPECT_EQ (dbInPlace, toDb);
        EXPECT_EQ (levelInPlace, toLevel);

        const auto exactDb = 20.0 * std::log10 (static_cast<double> (level));
        EXPECT_NEAR (static_cast<double> (toDb), exactDb, 4.0 * lastPlace * std::abs (exactDb));

        // A relative error of the decibel figure weighs ln (10) / 20 = 0.115 times the figure in the level.
        const auto levelBound = lastPlace * (2.5 + 0.5 * std::abs (db));
        EXPECT_NEAR (static_cast<double> (toLevel) / exactLevel, 1.0, levelBound) << db;
    }
}

TEST (DecibelConverter, FollowsTheDefinitionInPlaceAndElsewhere)
{
    expectDefinition<float>();
    expectDefinition<double>();
}

TEST (DecibelConverter, SilenceIsMinusInfinity)
{
    constexpr auto infinity = std::numeric_limits<float>::infinity();
    std::vector<float> row { 0.0f, 1.0f, infinity, -0.5f, 0.1f };
    DecibelConverter::levelToDBInPlace (row.data(), 4);
    EXPECT_EQ (row[0], -infinity);
    EXPECT_EQ (row[1], 0.0f);
    EXPECT_EQ (row[2], infinity);
    EXPECT_TRUE (std::isnan (row[3]));
    EXPECT_EQ (row[4], 0.1f) << "written beyond n";
    DecibelConverter::dBToLevelInPlace (row.data(), 1);
    EXPECT_EQ (row[0], 0.0f);
}

TEST (ippMinMax, HoldsSamplesBelowOrAboveTheLimit)
{
    std::vector<float> single { 0.1f, 0.3f, 0.3f, 0.3f };
    ippMinMax::min (single.data(), 3, 0.2f);
    ippMinMax::max (single.data(), 2, 0.15f);
    EXPECT_EQ (single, (std::vector<float> { 0.15f, 0.2f, 0.2f, 0.3f }));

    std::vector<double> twice { 0.1, 0.3, 0.3 };
    ippMinMax::min (twice.data(), 2, 0.2);
    ippMinMax::max (twice.data(), 2, 0.15);
    EXPECT_EQ (twice, (std::vector<double> { 0.15, 0.2, 0.3 }));
}

TEST (Decibels, SingleConversionsHaveTheirFloorAtMinusHundred)
{
    EXPECT_NEAR (gainFromDb (6.0), 1.9952623149688795, 1e-15);      // 10^0.3
    EXPECT_NEAR (gainFromDb (-99.9), 1.0115794542598986e-5, 1e-19); // 10^-4.995
    EXPECT_EQ (gainFromDb (-100.0), 0.0);
    EXPECT_EQ (gainFromDb (std::nan ("")), 0.0);
    EXPECT_NEAR (dbFromGain (2.0), 6.0205999132796239, 1e-14);

    for (const auto gain : { 1e-6, 0.0, -1.0, std::nan ("") })
        EXPECT_EQ (dbFromGain (gain), -100.0);
}
} // namespace
} // namespace tarvik
