// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/StateFloor.h"
#include "strip/DynamicsChannel.h"

// Compiled once, for what every processor has. highway.h comes before the steps.
// clang-format off
#include <hwy/highway.h>
#include "strip/DynamicsSteps-inl.h"
// clang-format on

#include <algorithm>
#include <cmath>

namespace tarvik
{

namespace
{
namespace steps = dynamics::HWY_NAMESPACE;

constexpr double floorDb = -50.0; // of Expander::floorSquare

bool isSettled (const Expander& expander, const Expander::State& state) noexcept
{
    constexpr double closeDb = 1e-6, closeRatio = 1e-8;

    if (expander.getMode() == Expander::Mode::off)
        return state.volts <= 0.0; // else it falls

    const auto& k = expander.getCoefficients();
    return std::abs (state.rms * state.rms / Expander::floorSquare - 1.0) < closeRatio
           && (! k.isHolding || std::abs (state.heldDb - steps::attenuationFor (k, floorDb)) < closeDb);
}

/** The capacitor leaks until the attenuation is above it, and comes to rest below that. */
void skipSilence (const Expander& expander, Expander::State& state, int n) noexcept
{
    if (expander.getMode() == Expander::Mode::off)
        return;

    const auto& k = expander.getCoefficients();
    const auto curveDb = steps::attenuationFor (k, floorDb);
    const auto attenuationDb = k.isInverted ? k.rangeDb - curveDb : curveDb;
    auto left = static_cast<double> (n);

    if (state.volts > attenuationDb)
    {
        const auto toMeeting = std::log (attenuationDb / state.volts) / std::log1p (-k.leakShare);
        const auto leaking = std::clamp (std::ceil (toMeeting), 1.0, left);
        state.volts *= std::pow (1.0 - k.leakShare, leaking);
        left -= leaking;
    }

    const auto rest = attenuationDb * k.chargeShare / (k.chargeShare + k.leakShare);
    state.volts = rest + (state.volts - rest) * std::pow (1.0 - k.chargeShare - k.leakShare, left);
    Expander::settle (state);
}
} // namespace

//==============================================================================
bool isSettled (const DynamicsCircuits& circuits, const DynamicsChannel& channel) noexcept
{
    return isSettled (circuits.expander, channel.expander) && circuits.compressor.isSettled (channel.compressor);
}

void skipSilence (const DynamicsCircuits& circuits, DynamicsChannel& channel, int n) noexcept
{
    circuits.compressor.skipSilence (channel.compressor, n);
    skipSilence (circuits.expander, channel.expander, n);
    channel.limiterVolts *= std::pow (1.0 - circuits.limiter.getCoefficients().leakShare, n);

    if (channel.limiterVolts < stateFloor)
        channel.limiterVolts = 0.0;

    constexpr double doubled = 2.0; // as the limiter's meets the expander's
    const auto otherVolts = std::max (doubled * channel.limiterVolts, channel.expander.volts);
    const auto held = channel.compressor.c1Volts;
    channel.gain = steps::gainFor<double> (channel.line, { held, held }, steps::controlVolts (otherVolts, doubled));
}

} // namespace tarvik
