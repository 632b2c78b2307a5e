// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/EqualiserNetwork.h"

#include "dsp/Impedance.h"

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

// The same on every channel: these two do not follow the component table.
constexpr double inductorResOhms = 1.0;
constexpr double lowInductorHenries = 10.0;

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

/** Highest power first. */
std::array<double, 6> toCoefficients (const CircuitPolynomial& polynomial) noexcept
{
    std::array<double, 6> coefficients {};

    for (std::size_t power = 0; power < coefficients.size(); ++power)
        coefficients[coefficients.size() - 1 - power] = polynomial[power];

    return coefficients;
}
} // namespace

EqualiserResponse solveEqualiserNetwork (const ComponentTable& table, const EQControls& controls) noexcept
{
    const auto lowFreq = limitPosition (controls.lowFreq, numLowFreqs);
    const auto midFreq = limitPosition (controls.midFreq, numMidFreqs);
    const auto highGain = limitPosition (controls.highGain, numHighGains);
    const auto highFreqFactor = highFreqFactors[limitPosition (controls.highFreq, numHighFreqs)];
    const auto isLowBoost = lowFreq < firstLowCut;
    const auto isMidBoost = controls.midMode == 1;
    const auto isHighBoost = highGain >= firstHighBoost;

    const auto ohms = [] (double value) { return Impedance::resistor (value); };
    const auto resistor = [&table] (std::size_t row) { return Impedance::resistor (table.getActive (row)); };
    const auto inductor = [&table] (std::size_t row) { return Impedance::inductor (table.getActive (row)); };
    const auto capacitor = [&table] (std::size_t row, double divisor = 1.0)
    { return Impedance::capacitor (table.getActive (row) / divisor); };

    const auto midBranch = ohms (inductorResOhms) + inductor (midInductors + midFreq) + capacitor (midCaps + midFreq);
    const auto midPotOhms = table.getActive (midGainPot);
    const auto acrossOhms = limitPot (controls.midGain) * midPotOhms;
    const auto midPot = ohms (midPotOhms - acrossOhms) + (ohms (acrossOhms) | midBranch);

    auto seriesArm = isMidBoost ? midPot : resistor (seriesRes);
    auto shuntArm = resistor (outputShunt);

    if (isHighBoost)
    {
        const auto position = highGain - firstHighBoost;
        seriesArm =
            seriesArm | (resistor (highBoostRess + position) + capacitor (highBoostCaps + position, highFreqFactor));
    }
    else
    {
        shuntArm = shuntArm | capacitor (highCutCaps + highGain, highFreqFactor);
    }

    if (isLowBoost)
    {
        const auto lowGainOhms = getLowGainOhms (limitPot (controls.lowGain), table.getActive (lowGainPot));
        seriesArm =
            seriesArm
            | (ohms (lowGainOhms) + Impedance::inductor (lowInductorHenries) + capacitor (lowFreqCaps - lowFreq));
    }

    if (! isMidBoost)
        shuntArm = shuntArm | (resistor (cutArmRes) + midPot);

    Ladder ladder;

    if (! isLowBoost)
    {
        ladder.addSeries (capacitor (lowFreqCaps - lowFreq));
        ladder.addShunt (resistor (lowCutShunt));
    }

    ladder.addSeries (seriesArm);
    ladder.addShunt (shuntArm);

    return { toCoefficients (ladder.getNumerator()), toCoefficients (ladder.getDenominator()) };
}
} // namespace tarvik
