// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/Expander.h"

#include "dsp/Decibels.h"
#include "dsp/StateFloor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace tarvik
{

namespace
{
constexpr double c1Farads = 0.47e-6;

/** 47 k alone, in parallel with 4.7 k, and with 470; anything else is 47 k in parallel with 1 k. */
constexpr std::array attackOhmsByIndex { 47e3, 4272.727272727273, 465.34653465346537 };
constexpr double otherAttackOhms = 979.1666666666666;
} // namespace

void Expander::prepare (double rateHz) noexcept
{
    constexpr double rmsSeconds = 0.00572;
    k.stepSeconds = 1.0 / rateHz;
    k.rmsShare = -std::expm1 (-1.0 / (rmsSeconds * rateHz)) * 0.5; // half, since y^2 moves twice as fast as y
    k.rmsKeep = 1.0 - k.rmsShare;
    updateShares();
}

void Expander::updateShares() noexcept
{
    k.chargeShare = k.stepSeconds / (attackOhms * c1Farads + k.stepSeconds);
    k.leakShare = k.stepSeconds / (k.stepSeconds + releaseSeconds);
}

void Expander::set (const Controls& controls) noexcept
{
    constexpr double keyReferenceDb = -40.0;
    constexpr double deepestRangeDb = 20.0;
    constexpr auto off = static_cast<int> (Mode::off);
    const auto isKnown = controls.mode >= 0 && controls.mode <= static_cast<int> (Mode::gate);

    mode = static_cast<Mode> (isKnown ? controls.mode : off);
    k.isHolding = controls.isHolding;
    k.isInverted = controls.isInverted;
    k.keyScale = gainFromDb (keyReferenceDb - static_cast<double> (controls.thresholdDb));
    k.rangeDb = std::clamp (-static_cast<double> (controls.rangeDb), 0.0, deepestRangeDb);
    const auto attack = static_cast<std::size_t> (controls.attack); // below 0 it becomes far too large
    attackOhms = attack < attackOhmsByIndex.size() ? attackOhmsByIndex[attack] : otherAttackOhms;
    releaseSeconds = std::max (static_cast<double> (controls.releaseSeconds), 0.0);
    updateShares();
}

double Expander::getActivity (double volts) const noexcept
{
    constexpr double smallestRangeDb = 0.01;
    return mode == Mode::off || k.rangeDb <= smallestRangeDb ? 0.0 : volts / k.rangeDb;
}

void Expander::clearDetector (State& state) noexcept
{
    state.rms = std::sqrt (floorSquare);
    state.anchorDb = std::log (state.rms) * dbPerNeper;
    state.perAnchor = 1.0 / state.rms;
    state.heldDb = 0.0;
    state.holdSeconds = 0.0;
}

void Expander::settle (State& state) noexcept
{
    if (std::abs (state.volts) < stateFloor)
        state.volts = 0.0;
}

} // namespace tarvik
