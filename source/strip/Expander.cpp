// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/Expander.h"

#include "dsp/Decibels.h"
#include "dsp/RowMaths.h"
#include "dsp/StateFloor.h"

#include <array>
#include <cstddef>

namespace tarvik
{

namespace
{
constexpr double c1Farads = 0.47e-6;

/** 47 k alone, in parallel with 4.7 k, and with 470; anything else is 47 k in parallel with 1 k. */
constexpr std::array attackOhmsByIndex { 47e3, 4272.727272727273, 465.34653465346537 };
constexpr double otherAttackOhms = 979.1666666666666;

template <std::size_t numChannels>
void followLevels (const Expander& expander, const Expander::Rows* channels, int n) noexcept
{
    // The states in locals, so that both channels' divisions overlap.
    std::array<Expander::State, numChannels> states;

    for (std::size_t c = 0; c < numChannels; ++c)
        states[c] = *channels[c].state;

    for (int i = 0; i < n; ++i)
        for (std::size_t c = 0; c < numChannels; ++c)
            channels[c].attenuationsDb[i] = expander.followLevel (states[c], static_cast<double> (channels[c].keys[i]));

    for (std::size_t c = 0; c < numChannels; ++c)
        *channels[c].state = states[c];
}
} // namespace

void Expander::prepare (double rateHz) noexcept
{
    constexpr double rmsSeconds = 0.00572;
    stepSeconds = 1.0 / rateHz;
    rmsShare = -std::expm1 (-1.0 / (rmsSeconds * rateHz)) * 0.5; // half, since y^2 moves twice as fast as y
    rmsKeep = 1.0 - rmsShare;
    updateShares();
}

void Expander::updateShares() noexcept
{
    chargeShare = stepSeconds / (attackOhms * c1Farads + stepSeconds);
    leakShare = stepSeconds / (stepSeconds + releaseSeconds);
}

void Expander::set (const Controls& controls) noexcept
{
    constexpr double keyReferenceDb = -40.0;
    constexpr double deepestRangeDb = 20.0;
    constexpr auto off = static_cast<int> (Mode::off);
    const auto isKnown = controls.mode >= 0 && controls.mode <= static_cast<int> (Mode::gate);

    mode = static_cast<Mode> (isKnown ? controls.mode : off);
    isHolding = controls.isHolding;
    isInverted = controls.isInverted;
    keyScale = gainFromDb (keyReferenceDb - static_cast<double> (controls.thresholdDb));
    rangeDb = std::clamp (-static_cast<double> (controls.rangeDb), 0.0, deepestRangeDb);
    const auto attack = static_cast<std::size_t> (controls.attack); // below 0 it becomes far too large
    attackOhms = attack < attackOhmsByIndex.size() ? attackOhmsByIndex[attack] : otherAttackOhms;
    releaseSeconds = std::max (static_cast<double> (controls.releaseSeconds), 0.0);
    updateShares();
}

void Expander::makeAttenuations (std::span<const Rows> channels, int n) const noexcept
{
    constexpr double dbPerDecade = 20.0;

    if (channels.size() == 2)
        followLevels<2> (*this, channels.data(), n);
    else
        followLevels<1> (*this, channels.data(), n);

    for (const auto& [state, keys, row] : channels)
    {
        rows::log10 (row, row, n);

        for (int i = 0; i < n; ++i)
            row[i] = attenuationFor (row[i] * dbPerDecade);

        if (isHolding || isInverted)
            for (int i = 0; i < n; ++i)
                row[i] = holdAndInvert (*state, row[i]);
    }
}

double Expander::getActivity (double volts) const noexcept
{
    constexpr double smallestRangeDb = 0.01;
    return mode == Mode::off || rangeDb <= smallestRangeDb ? 0.0 : volts / rangeDb;
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
