// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/DecibelConverter.h"
#include "dsp/Decibels.h"
#include "dsp/InstructionSets.h"
#include "dsp/IppMinMax.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace tarvik
{
namespace
{
constexpr auto infinity = std::numeric_limits<float>::infinity();

template <typename T>
class DecibelRows : public testing::Test
{
};

using SampleTypes = testing::Types<float, double>;
TYPED_TEST_SUITE (DecibelRows, SampleTypes, );

TYPED_TEST (DecibelRows, LevelsComeBackFromDecibelsAndFollowTheDefinition)
{
    using T = TypeParam;
    constexpr auto lastPlace = static_cast<double> (std::numeric_limits<T>::epsilon());
    constexpr double lowestDb = -120.0, highestDb = 40.0, stepDb = 0.0371;
    std::vector<T> levels, decibels;

    for (auto db = lowestDb; db < highestDb; db += stepDb)
    {
        levels.push_back (static_cast<T> (std::pow (10.0, db / 20.0)));
        decibels.push_back (static_cast<T> (db));
    }

    const auto n = static_cast<int> (levels.size());

    for (const auto& set : supportedInstructionSets())
    {
        const ScopedInstructionSet forced (set);
        std::vector<T> toDb (levels.size()), toLevel (levels.size()), inPlace = levels;
        DecibelConverter::levelToDB (levels.data(), toDb.data(), n);
        DecibelConverter::dBToLevel (decibels.data(), toLevel.data(), n);
        DecibelConverter::levelToDBInPlace (inPlace.data(), n);
        EXPECT_EQ (inPlace, toDb) << set.name;
        DecibelConverter::dBToLevelInPlace (inPlace.data(), n);

        for (std::size_t i = 0; i < levels.size(); ++i)
        {
            const auto level = static_cast<double> (levels[i]);
            const auto db = static_cast<double> (decibels[i]);
            const auto exactDb = 20.0 * std::log10 (level), exactLevel = std::pow (10.0, db / 20.0);
            // A relative error of the decibel figure weighs ln (10) / 20 = 0.115 times the figure in the level.
            const auto levelBound = lastPlace * (2.5 + 0.5 * std::abs (db));
            EXPECT_NEAR (static_cast<double> (toDb[i]), exactDb, 4.0 * lastPlace * std::abs (exactDb)) << set.name;
            EXPECT_NEAR (static_cast<double> (toLevel[i]) / exactLevel, 1.0, levelBound) << db << " dB, " << set.name;
            EXPECT_NEAR (static_cast<double> (inPlace[i]) / level, 1.0, levelBound) << db << " dB, " << set.name;
        }
    }
}

TEST (DecibelConverter, SilenceIsMinusInfinityAndReturnsAsSilence)
{
    std::vector<float> row { 0.0f, 1.0f, infinity, -0.5f, 0.1f };
    DecibelConverter::levelToDBInPlace (row.data(), 4);
    EXPECT_EQ (row[0], -infinity);
    EXPECT_EQ (row[1], 0.0f);
    EXPECT_EQ (row[2], infinity);
    EXPECT_TRUE (std::isnan (row[3]));
    EXPECT_EQ (row[4], 0.1f) << "written beyond n";

    DecibelConverter::dBToLevelInPlace (row.data(), 4);
    EXPECT_EQ (row[0], 0.0f);
    EXPECT_EQ (row[1], 1.0f);
    EXPECT_EQ (row[2], infinity);
    EXPECT_TRUE (std::isnan (row[3]));
}

TEST (ippMinMax, HoldsSamplesBelowOrAboveTheLimit)
{
    for (const auto& set : supportedInstructionSets())
    {
        const ScopedInstructionSet forced (set);
        std::vector<float> below { 0.1f, 0.3f, 0.3f, 0.3f }, above { 0.5f, 0.3f, -infinity, 0.3f };
        ippMinMax::min (below.data(), 3, 0.2f);
        ippMinMax::max (above.data(), 3, 0.4f);
        EXPECT_EQ (below, (std::vector<float> { 0.1f, 0.2f, 0.2f, 0.3f })) << set.name;
        EXPECT_EQ (above, (std::vector<float> { 0.5f, 0.4f, 0.4f, 0.3f })) << set.name;

        std::vector<double> wide { 0.1, 0.3, 0.3 };
        ippMinMax::min (wide.data(), 2, 0.2);
        ippMinMax::max (wide.data(), 2, 0.15);
        ippMinMax::max (wide.data(), 0, 9.0);
        EXPECT_EQ (wide, (std::vector<double> { 0.15, 0.2, 0.3 })) << set.name;
    }
}

TEST (Decibels, SingleConversionsHaveTheirFloorAtMinusHundred)
{
    EXPECT_NEAR (gainFromDb (6.0), 1.9952623149688795, 1e-15);      // 10^0.3
    EXPECT_NEAR (gainFromDb (-99.9), 1.0115794542598986e-5, 1e-19); // 10^-4.995
    EXPECT_EQ (gainFromDb (-100.0), 0.0);
    EXPECT_EQ (gainFromDb (std::nan ("")), 0.0);
    EXPECT_NEAR (dbFromGain (2.0), 6.0205999132796239, 1e-14);
    EXPECT_EQ (dbFromGain (1e-6), -100.0);
    EXPECT_EQ (dbFromGain (0.0), -100.0);
    EXPECT_EQ (dbFromGain (-1.0), -100.0);
    EXPECT_EQ (dbFromGain (std::nan ("")), -100.0);
}
} // namespace
} // namespace tarvik
