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

    /** The frequency and the level of the highest (or, with sign -1, lowest) point against a flat setting. */
    std::pair<double, double> findPeak (const EQControls& controls, const EQControls& flat, double lowHz, double highHz,
                                        double sign = 1.0) const
    {
        std::pair<double, double> peak { 0.0, -1000.0 };

        for (auto hz = lowHz; hz < highHz; hz *= 1.0005)
            if (const auto level = sign * (getDecibels (controls, hz) - getDecibels (flat, hz)); level > peak.second)
                peak = { hz, level };

        return peak;
    }

    ComponentTable table { equaliserComponents };
};

TEST_F (EqualiserNetworkTest, DegreesAreExactInAllEightTopologies)
{
    struct Degrees
    {
        bool lowBoost, midBoost, highBoost;
        std::size_t numerator, lowest, denominator;
    };

    constexpr Degrees expectations[] = {
        { false, false, false, 3, 1, 4 }, { false, true, false, 3, 1, 4 }, { false, false, true, 4, 1, 4 },
        { false, true, true, 4, 1, 4 },   { true, false, false, 4, 0, 5 }, { true, true, false, 4, 0, 5 },
        { true, false, true, 5, 0, 5 },   { true, true, true, 5, 0, 5 },
    };

    const auto highest = [] (const auto& polynomial)
    {
        const auto first = std::find_if (polynomial.begin(), polynomial.end(), [] (double c) { return c != 0.0; });
        return static_cast<std::size_t> (polynomial.end() - first) - 1;
    };

    for (const auto& e : expectations)
        for (const auto midGain : { 0.0f, 0.37f, 1.0f })
        {
            EQControls controls;
            controls.lowFreq = e.lowBoost ? 2 : 7;
            controls.midMode = e.midBoost ? 1 : 0;
            controls.highGain = e.highBoost ? 8 : 5;
            controls.midGain = midGain; // 0 and 1 take terms away, but never whole powers
            const auto [numerator, denominator] = solve (controls);
            const auto lowest = std::find_if (numerator.rbegin(), numerator.rend(), [] (double c) { return c != 0.0; });

            EXPECT_EQ (highest (numerator), e.numerator);
            EXPECT_EQ (static_cast<std::size_t> (lowest - numerator.rbegin()), e.lowest);
            EXPECT_EQ (highest (denominator), e.denominator);
            EXPECT_GT (denominator.back(), 0.0);
            EXPECT_TRUE (std::all_of (numerator.begin(), numerator.end(), [] (double c) { return c >= 0.0; }));
            EXPECT_TRUE (std::all_of (denominator.begin(), denominator.end(), [] (double c) { return c >= 0.0; }));
        }
}

TEST_F (EqualiserNetworkTest, MidResonancesLieWhereInductorAndCapacitorPutThem)
{
    constexpr std::array inductors { 0.68, 0.68, 0.68, 0.22, 0.22, 0.22, 0.22, 0.22 };
    constexpr std::array capacitors { 78e-9, 36e-9, 18e-9, 32e-9, 12e-9, 10e-9, 4.7e-9, 3.3e-9 };

    for (std::int32_t position = 0; position < 8; ++position)
    {
        EQControls boost, flat;
        boost.midFreq = flat.midFreq = position;
        boost.midGain = 1.0f;
        const auto i = static_cast<std::size_t> (position);
        const auto resonanceHz = 1.0 / (2.0 * std::numbers::pi * std::sqrt (inductors[i] * capacitors[i]));
        const auto peak = findPeak (boost, flat, resonanceHz * 0.8, resonanceHz * 1.25);
        EXPECT_NEAR (peak.first / resonanceHz, 1.0, 0.002);
        EXPECT_NEAR (peak.second, 15.42, 0.02); // the 1 ohm in place of the 25 kohm pot
    }
}

// What the nominal circuit gives, in dB; the labels on the panel only come near it.
TEST_F (EqualiserNetworkTest, BoostsAndCutsOfTheNominalCircuit)
{
    EQControls flatBoost, flatCut, cut;
    flatCut.midMode = cut.midMode = 0;
    cut.midGain = 1.0f;
    EXPECT_NEAR (findPeak (cut, flatCut, 1500.0, 2500.0, -1.0).second, 18.5, 0.05);
    EXPECT_NEAR (findPeak (cut, flatBoost, 1500.0, 2500.0, -1.0).second, 18.9, 0.05);
    EXPECT_NEAR (findPeak (cut, flatCut, 1500.0, 2500.0, -1.0).first, 1897.0, 3.0);
    EXPECT_NEAR (getDecibels (flatBoost, 1000.0) - getDecibels (flatCut, 1000.0), 0.396, 0.001);

    constexpr std::array lowBoostsHz { 339.0, 232.0, 119.0, 61.0 };

    for (std::size_t i = 0; i < lowBoostsHz.size(); ++i)
        for (const auto& [midMode, expected] : { std::pair (0, 15.8), std::pair (1, 15.4) })
        {
            EQControls boost;
            boost.lowFreq = static_cast<std::int32_t> (i);
            boost.midMode = midMode;
            boost.lowGain = 1.0f;
            const auto& flat = midMode == 0 ? flatCut : flatBoost;
            const auto peak = findPeak (boost, flat, lowBoostsHz[i] * 0.7, lowBoostsHz[i] * 1.4);
            EXPECT_NEAR (peak.first / lowBoostsHz[i], 1.0, 0.01);
            EXPECT_NEAR (peak.second, expected, 0.1);
        }
}

TEST_F (EqualiserNetworkTest, NeutralLowCutStillHasItsZeroAtDc)
{
    for (const auto midMode : { 0, 1 })
    {
        EQControls controls;
        controls.midMode = midMode;
        EXPECT_EQ (solve (controls).numerator.back(), 0.0);

        // The arm behind loads the shunt, which raises the corner.
        const auto passband = getDecibels (controls, 100.0);
        EXPECT_GT (getDecibels (controls, 0.36), passband - 3.01);
        EXPECT_LT (getDecibels (controls, 0.30), passband - 3.01);
    }
}

TEST_F (EqualiserNetworkTest, IdlePotsHaveNoSay)
{
    for (const auto midMode : { 0, 1 })
        for (std::int32_t position = 1; position < 8; ++position)
            for (const auto hz : { 50.0, 900.0, 3000.0, 12000.0 })
            {
                EQControls first, other;
                first.midMode = other.midMode = midMode;
                first.midFreq = 0;
                other.midFreq = position; // the mid pot is at 0
                other.lowGain = 0.8f;     // a low cut has no gain
                EXPECT_NEAR (getDecibels (first, hz), getDecibels (other, hz), 1e-9);
            }
}

TEST_F (EqualiserNetworkTest, HighFreqMovesTheHighSectionByItsCapacitorAlone)
{
    for (const auto highGain : { 0, 5, 6, 10 })
        for (const auto& [position, factor] : { std::pair (0, 0.6), std::pair (2, 1.4) })
        {
            EQControls controls;
            controls.highGain = highGain;
            const auto reference = selectElements (table, controls);
            controls.highFreq = position;
            const auto moved = selectElements (table, controls);
            EXPECT_EQ (moved.highCutCapFarads, reference.highCutCapFarads / factor);
            EXPECT_EQ (moved.highBoostCapFarads, reference.highBoostCapFarads / factor);
            EXPECT_EQ (moved.highBoostResOhms, reference.highBoostResOhms);
            EXPECT_GT (moved.highCutCapFarads + moved.highBoostCapFarads, 0.0); // "0 dB" keeps a trace
        }
}

TEST_F (EqualiserNetworkTest, LowGainPotRunsFromAMegohmToAMicrohm)
{
    const auto getOhms = [this] (float lowGain)
    {
        EQControls controls;
        controls.lowFreq = 0;
        controls.lowGain = lowGain;
        return selectElements (table, controls).lowGainOhms;
    };

    EXPECT_NEAR (getOhms (0.0f), 1.05e6, 1e-3);
    EXPECT_NEAR (getOhms (0.5f), 25001.0, 1e-6);
    EXPECT_NEAR (getOhms (1.0f), 1e-6, 1e-12);
}

TEST_F (EqualiserNetworkTest, NoControlMakesItInfinite)
{
    constexpr auto nan = std::numeric_limits<float>::quiet_NaN(), infinity = std::numeric_limits<float>::infinity();

    for (const auto midGain : { nan, infinity, -infinity, 0.5f })
        for (const auto lowGain : { nan, infinity, -infinity, 2.0f })
            for (const auto position : { -100, 3, 100 })
            {
                const auto response =
                    solve ({ position, position, position, midGain, position, position, lowGain, position, position });
                for (std::size_t i = 0; i < response.numerator.size(); ++i)
                {
                    EXPECT_TRUE (std::isfinite (response.numerator[i]));
                    EXPECT_TRUE (std::isfinite (response.denominator[i]));
                }
            }
}
} // namespace
} // namespace tarvik
