// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/EqualiserNetwork.h"

#include "dsp/Impedance.h"

#include <cstddef>

namespace tarvik
{
namespace
{
// The same on every channel: these two do not follow the component table.
constexpr double inductorResOhms = 1.0;
constexpr double lowInductorHenries = 10.0;

/** Highest power first. */
std::array<double, 6> toCoefficients (const CircuitPolynomial& polynomial) noexcept
{
    std::array<double, 6> coefficients {};

    for (std::size_t power = 0; power < coefficients.size(); ++power)
        coefficients[coefficients.size() - 1 - power] = polynomial[power];

    return coefficients;
}
} // namespace

EqualiserResponse solveEqualiserNetwork (const EqualiserElements& e) noexcept
{
    constexpr auto resistor = &Impedance::resistor;
    constexpr auto inductor = &Impedance::inductor;
    constexpr auto capacitor = &Impedance::capacitor;

    const auto midBranch = resistor (inductorResOhms) + inductor (e.midInductorHenries) + capacitor (e.midCapFarads);
    const auto midPot = resistor (e.midPotRestOhms) + (resistor (e.midPotAcrossOhms) | midBranch);

    auto seriesArm = e.midBoost ? midPot : resistor (e.seriesResOhms);

    if (e.highBoost)
        seriesArm = seriesArm | (resistor (e.highBoostResOhms) + capacitor (e.highBoostCapFarads));

    if (e.lowBoost)
        seriesArm =
            seriesArm | (resistor (e.lowGainOhms) + inductor (lowInductorHenries) + capacitor (e.lowBoostCapFarads));

    auto shuntArm = resistor (e.outputShuntOhms);

    if (! e.highBoost)
        shuntArm = shuntArm | capacitor (e.highCutCapFarads);

    if (! e.midBoost)
        shuntArm = shuntArm | (resistor (e.cutArmResOhms) + midPot);

    Ladder ladder;

    if (! e.lowBoost)
    {
        ladder.addSeries (capacitor (e.lowCutCapFarads));
        ladder.addShunt (resistor (e.lowCutShuntOhms));
    }

    ladder.addSeries (seriesArm);
    ladder.addShunt (shuntArm);

    return { toCoefficients (ladder.getNumerator()), toCoefficients (ladder.getDenominator()) };
}
} // namespace tarvik
