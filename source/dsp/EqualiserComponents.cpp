// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/EqualiserComponents.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace tarvik
{
namespace
{
// Rows of equaliserComponents. Where a switch selects, the row of its first position.
constexpr std::size_t lowCutShunt = 0;
constexpr std::size_t outputShunt = 1;
constexpr std::size_t lowGainPot = 2;
constexpr std::size_t lowFreqCaps = 13; // counted downwards: first those of the boost, then those of the cut
constexpr std::size_t seriesRes = 14;
constexpr std::size_t cutArmRes = 15;
constexpr std::size_t midGainPot = 16;
constexpr std::size_t midInductors = 18;
constexpr std::size_t midCaps = 26;
constexpr std::size_t highCutCaps = 34;
constexpr std::size_t highBoostCaps = 40;
constexpr std::size_t highBoostRess = 45;

constexpr std::int32_t numHighFreqs = 3;
constexpr std::int32_t numHighGains = 11;
constexpr std::int32_t numMidFreqs = 8;
constexpr std::int32_t numLowFreqs = 10;
constexpr std::size_t firstLowCut = 4;    // of the positions of lowFreq
constexpr std::size_t firstHighBoost = 6; // of the positions of highGain

/** What highFreq divides the capacitors of the high section by. */
constexpr std::array<double, numHighFreqs> highFreqFactors { 0.6, 1.0, 1.4 };

std::size_t limitPosition (std::int32_t position, std::int32_t numPositions) noexcept
{
    return static_cast<std::size_t> (std::clamp (position, 0, numPositions - 1));
}

double limitPot (float position) noexcept
{
    return position > 0.0f ? std::min (static_cast<double> (position), 1.0) : 0.0;
}

/** A fixed part that falls from a megohm to a microhm, and the pot in series. */
double getLowGainOhms (double lowGain, double potOhms) noexcept
{
    constexpr auto largestOhms = 1000000.0;
    const auto exponent = std::log10 (largestOhms) * -2.0 * (lowGain - 0.5);
    return std::pow (10.0, exponent) + (1.0 - lowGain) * potOhms;
}
} // namespace

EqualiserElements selectElements (const ComponentTable& table, const EQControls& controls) noexcept
{
    const auto lowFreq = limitPosition (controls.lowFreq, numLowFreqs);
    const auto midFreq = limitPosition (controls.midFreq, numMidFreqs);
    const auto highGain = limitPosition (controls.highGain, numHighGains);
    const auto highFreqFactor = highFreqFactors[limitPosition (controls.highFreq, numHighFreqs)];
    const auto midPotOhms = table.getActive (midGainPot);

    EqualiserElements elements;
    elements.lowBoost = lowFreq < firstLowCut;
    elements.midBoost = controls.midMode == 1;
    elements.highBoost = highGain >= firstHighBoost;

    elements.lowCutShuntOhms = table.getActive (lowCutShunt);
    elements.outputShuntOhms = table.getActive (outputShunt);
    elements.seriesResOhms = table.getActive (seriesRes);
    elements.cutArmResOhms = table.getActive (cutArmRes);

    elements.midPotAcrossOhms = limitPot (controls.midGain) * midPotOhms;
    elements.midPotRestOhms = midPotOhms - elements.midPotAcrossOhms;
    elements.midInductorHenries = table.getActive (midInductors + midFreq);
    elements.midCapFarads = table.getActive (midCaps + midFreq);

    if (elements.lowBoost)
    {
        elements.lowBoostCapFarads = table.getActive (lowFreqCaps - lowFreq);
        elements.lowGainOhms = getLowGainOhms (limitPot (controls.lowGain), table.getActive (lowGainPot));
    }
    else
    {
        elements.lowCutCapFarads = table.getActive (lowFreqCaps - lowFreq);
    }

    if (elements.highBoost)
    {
        const auto position = highGain - firstHighBoost;
        elements.highBoostCapFarads = table.getActive (highBoostCaps + position) / highFreqFactor;
        elements.highBoostResOhms = table.getActive (highBoostRess + position);
    }
    else
    {
        elements.highCutCapFarads = table.getActive (highCutCaps + highGain) / highFreqFactor;
    }

    return elements;
}
} // namespace tarvik
