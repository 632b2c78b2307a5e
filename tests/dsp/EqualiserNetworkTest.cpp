// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/EqualiserNetwork.h"

#include "FilterTestTools.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarvik
{
namespace
{
using namespace test;

class EqualiserNetworkTest : public testing::Test
{
protected:
    EqualiserResponse solve (const EQControls& controls) const
    {
        return solveEqualiserNetwork (selectElements (table, controls));
    }

    double getDecibels (const EQControls& controls, double hz) const
    {
        const auto response = solve (controls);
        return toDecibels (std::abs (analogueResponse (response.numerator, response.denominator, hz)));
    }

    /** Where near a frequency, and by how much, the level is highest (with sign -1, lowest) against a flat setting. */
    std::pair<double, double> findPeak (const EQControls& controls, const EQControls& flat, double aroundHz,
                                        double sign = 1.0) const
    {
        std::pair<double, double> peak { 0.0, -1000.0 };

        for (auto hz = aroundHz * 0.75; hz < aroundHz * 1.35; hz *= 1.0005)
            if (const auto level = sign * (getDecibels (controls, hz) - getDecibels (flat, hz)); level > peak.second)
                peak = { hz, level };

        return peak;
    }

    ComponentTable table { equaliserComponents };
};

TEST_F (EqualiserNetworkTest, MidResonancesLieWhereInductorAndCapacitorPutThem)
{
    constexpr std::array inductors { 0.68, 0.68, 0.68, 0.22, 0.22, 0.22, 0.22, 0.22 };
    constexpr std::array capacitors { 78e-9, 36e-9, 18e-9, 32e-9, 12e-9, 10e-9, 4.7e-9, 3.3e-9 };

    for (std::size_t i = 0; i < inductors.size(); ++i)
    {
        EQControls boost, flat;
        boost.midFreq = flat.midFreq = static_cast<std::int32_t> (i);
        boost.midGain = 1.0f;
        const auto resonanceHz = 1.0 / (2.0 * std::numbers::pi * std::sqrt (inductors[i] * capacitors[i]));
        const auto [hz, decibels] = findPeak (boost, flat, resonanceHz);
        EXPECT_NEAR (hz / resonanceHz, 1.0, 0.002);
        EXPECT_NEAR (decibels, 15.42, 0.02); // the 1 ohm in place of the 25 kohm pot
    }
}

// What the nominal circuit gives, in dB; the labels on the panel only come near it.
TEST_F (EqualiserNetworkTest, BoostsAndCutsOfTheNominalCircuit)
{
    EQControls flatBoost, flatCut, cut;
    flatCut.midMode = cut.midMode = 0;
    cut.midGain = 1.0f;
    EXPECT_NEAR (findPeak (cut, flatCut, 1897.0, -1.0).first, 1897.0, 3.0);
    EXPECT_NEAR (findPeak (cut, flatCut, 1897.0, -1.0).second, 18.5, 0.05);
    EXPECT_NEAR (getDecibels (flatBoost, 1000.0) - getDecibels (flatCut, 1000.0), 0.396, 0.001);

    constexpr std::array lowBoostsHz { 339.0, 232.0, 119.0, 61.0 };

    for (const auto& [flat, lowBoostDb] : { std::pair (flatCut, 15.8), std::pair (flatBoost, 15.4) })
    {
        for (std::size_t i = 0; i < lowBoostsHz.size(); ++i)
        {
            auto boost = flat;
            boost.lowFreq = static_cast<std::int32_t> (i);
            boost.lowGain = 1.0f;
            const auto [hz, decibels] = findPeak (boost, flat, lowBoostsHz[i]);
            EXPECT_NEAR (hz / lowBoostsHz[i], 1.0, 0.01);
            EXPECT_NEAR (decibels, lowBoostDb, 0.1);
        }

        // The neutral low cut still cuts, to nothing at 0. The arm behind loads the shunt, which raises the corner.
        EXPECT_EQ (solve (flat).numerator.back(), 0.0);
        EXPECT_GT (getDecibels (flat, 0.36), getDecibels (flat, 100.0) - 3.01);
        EXPECT_LT (getDecibels (flat, 0.30), getDecibels (flat, 100.0) - 3.01);
    }
}

TEST_F (EqualiserNetworkTest, HighFreqDividesTheHighSectionsCapacitorAndLowGainRunsFromAMegohmToAMicrohm)
{
    const auto select = [this] (std::int32_t highFreq, std::int32_t highGain, float lowGain)
    {
        EQControls controls;
        controls.highFreq = highFreq;
        controls.highGain = highGain;
        controls.lowFreq = 0;
        controls.lowGain = lowGain;
        return selectElements (table, controls);
    };

    for (const auto& [position, factor] : { std::pair (0, 0.6), std::pair (1, 1.0), std::pair (2, 1.4) })
    {
        EXPECT_EQ (select (position, 0, 0.0f).highCutCapFarads, 10e-9 / factor);
        EXPECT_EQ (select (position, 5, 0.0f).highCutCapFarads, 1e-12 / factor); // "0 dB" keeps a trace
        EXPECT_EQ (select (position, 6, 0.0f).highBoostCapFarads, 560e-12 / factor);
        EXPECT_EQ (select (position, 10, 0.0f).highBoostCapFarads, 3.3e-9 / factor);
        EXPECT_EQ (select (position, 10, 0.0f).highBoostResOhms, 3300.0);
    }

    EXPECT_NEAR (select (1, 5, 0.0f).lowGainOhms, 1.05e6, 1e-3);
    EXPECT_NEAR (select (1, 5, 0.5f).lowGainOhms, 25001.0, 1e-6);
    EXPECT_NEAR (select (1, 5, 1.0f).lowGainOhms, 1e-6, 1e-12);
}

TEST_F (EqualiserNetworkTest, NoControlMakesItInfinite)
{
    constexpr auto nan = std::numeric_limits<float>::quiet_NaN(), infinity = std::numeric_limits<float>::infinity();

    for (const auto midGain : { nan, infinity, -infinity, 0.5f })
        for (const auto lowGain : { nan, infinity, -infinity, 2.0f })
            for (const auto position : { -100, 3, 100 })
            {
                const auto [numerator, denominator] =
                    solve ({ position, position, position, midGain, position, position, lowGain, position, position });
                const auto isFinite = [] (double x) { return std::isfinite (x); };
                EXPECT_TRUE (std::all_of (numerator.begin(), numerator.end(), isFinite));
                EXPECT_TRUE (std::all_of (denominator.begin(), denominator.end(), isFinite));
            }
}
} // namespace
} // namespace tarvik
