// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/DecibelConverter.h"
#include "dsp/Decibels.h"
#include "dsp/IppMinMax.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace tarvik
{
namespace
{
// The functions underneath have tests of their own, on every instruction set.
template <typename T>
void expectDefinition()
{
    const std::array levels { T (2), T (0) };
    auto decibels = levels, back = levels, inPlace = levels;
    DecibelConverter::levelToDB (levels.data(), decibels.data(), 2);
    EXPECT_NEAR (static_cast<double> (decibels[0]), 6.0205999132796239, 1e-6);
    EXPECT_EQ (decibels[1], -std::numeric_limits<T>::infinity()); // no floor

    DecibelConverter::levelToDBInPlace (inPlace.data(), 2);
    EXPECT_EQ (inPlace, decibels);
    DecibelConverter::dBToLevel (decibels.data(), back.data(), 2);
    EXPECT_NEAR (static_cast<double> (back[0]), 2.0, 1e-6);
    EXPECT_EQ (back[1], T (0));
    DecibelConverter::dBToLevelInPlace (inPlace.data(), 2);
    EXPECT_EQ (inPlace, back);

    std::array row { T (0.1), T (0.3), T (0.3) };
    ippMinMax::min (row.data(), 2, T (0.2));
    ippMinMax::max (row.data(), 2, T (0.15));
    EXPECT_EQ (row, (std::array { T (0.15), T (0.2), T (0.3) }));
}

TEST (LevelConversion, RowsFollowTheDefinitionsInPlaceAndElsewhere)
{
    expectDefinition<float>();
    expectDefinition<double>();
}

TEST (Decibels, SingleConversionsHaveTheirFloorAtMinusHundred)
{
    EXPECT_NEAR (gainFromDb (6.0), 1.9952623149688795, 1e-15);      // 10^0.3
    EXPECT_NEAR (gainFromDb (-99.9), 1.0115794542598986e-5, 1e-19); // 10^-4.995
    EXPECT_EQ (gainFromDb (-100.0), 0.0);
    EXPECT_NEAR (dbFromGain (2.0), 6.0205999132796239, 1e-14);
    EXPECT_NEAR (dbFromGain (2.0f), 6.0206f, 1e-5f);

    for (const auto gain : { 1e-6, 0.0, std::nan ("") })
        EXPECT_EQ (dbFromGain (static_cast<float> (gain)), -100.0f);
}
} // namespace
} // namespace tarvik
