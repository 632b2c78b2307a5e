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

/** 47 k alone, beside 4.7 k, and beside 470. */
constexpr std::array attackOhmsByIndex { 47e3, 4272.727272727273, 465.34653465346537 };

/** 47 k beside 1 k, for anything else. */
constexpr double otherAttackOhms = 979.1666666666666;

double attackOhmsFor (int attack) noexcept
{
    const auto isListed = attack >= 0 && attack < static_cast<int> (attackOhmsByIndex.size());
    return isListed ? attackOhmsByIndex[static_cast<std::size_t> (attack)] : otherAttackOhms;
}

template <int numChannels>
void followLevels (const Expander& expander, Expander::State* const* states, const float* const* keys,
                   double* const* levels, int n) noexcept
{
    // The states in locals, so that both channels' divisions overlap.
    std::array<Expander::State, static_cast<std::size_t> (numChannels)> local;

    for (std::size_t c = 0; c < local.size(); ++c)
        local[c] = *states[c];

    for (int i = 0; i < n; ++i)
        for (std::size_t c = 0; c < local.size(); ++c)
            levels[c][i] = expander.followLevel (local[c], expander.scaleKey (static_cast<double> (keys[c][i])));

    for (std::size_t c = 0; c < local.size(); ++c)
        *states[c] = local[c];
}
} // namespace

void Expander::prepare (double rateHz) noexcept
{
    constexpr double rmsSeconds = 0.00572;
    stepSeconds = 1.0 / rateHz;
    rmsShare = -std::expm1 (-1.0 / (rmsSeconds * rateHz)) * 0.5; // half, since y^2 moves twice as fast as y
    rmsKeep = 1.0 - rmsShare;
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
    attackOhms = attackOhmsFor (controls.attack);
    releaseSeconds = std::max (static_cast<double> (controls.releaseSeconds), 0.0);
    chargeShare = stepSeconds / (attackOhms * c1Farads + stepSeconds);
    leakShare = stepSeconds / (stepSeconds + releaseSeconds);
}

void Expander::makeAttenuations (State* const* states, const float* const* keys, double* const* attenuationsDb,
                                 int numChannels, int n) const noexcept
{
    constexpr double dbPerDecade = 20.0;

    if (numChannels == 2)
        followLevels<2> (*this, states, keys, attenuationsDb, n);
    else
        followLevels<1> (*this, states, keys, attenuationsDb, n);

    for (int c = 0; c < numChannels; ++c)
    {
        auto* const row = attenuationsDb[c];
        rows::log10 (row, row, n);

        for (int i = 0; i < n; ++i)
            row[i] = attenuationFor (row[i] * dbPerDecade);

        if (isHolding || isInverted)
            for (int i = 0; i < n; ++i)
                row[i] = holdAndInvert (*states[c], row[i]);
    }
}

double Expander::getActivity (double volts) const noexcept
{
    constexpr double smallestRangeDb = 0.01;
    return mode == Mode::off || rangeDb <= smallestRangeDb ? 0.0 : volts / rangeDb;
}

void Expander::restDetector (State& state) noexcept
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
