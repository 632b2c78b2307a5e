// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/SaturationChannel.h"

#include "dsp/AnalogBiquad.h"
#include "dsp/Decibels.h"
#include "dsp/RampTimes.h"
#include "dsp/RowMaths.h"
#include "dsp/RowOperations.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <numbers>

namespace tarvik
{
namespace
{
/** The rows of the component table; a row's number is part of its random seed. */
enum Part : std::size_t
{
    highPassHz,
    highPassQ,
    lowPassHz,
    lowPassQ,
    outputGain
};

constexpr std::array<Component, 5> outputFilters { {
    { "high pass, Hz", 6.0, 0.03 },
    { "high pass, Q", 0.5, 0.03 },
    { "low pass, Hz", 35000.0, 0.03 },
    { "low pass, Q", 0.55, 0.03 },
    { "gain", 1.0, 0.01 },
} };

/** Share of the overdriven signal for each unit of gain above 1 that "THD" asks for. */
constexpr double overdrivePerGain = 0.002;

/** Where on the hyperbolic tangent the signal's zero lies: off its middle, which makes even harmonics. */
constexpr float overdriveBias = 0.5f;

constexpr std::size_t maxTogether = 2;
} // namespace

SaturationChannel::SaturationChannel() : components (outputFilters) {}

void SaturationChannel::setThd (double thdDb) noexcept
{
    const auto gain = gainFromDb (thdDb);
    harmonicScale.request (std::min (gain, 1.0));
    overdriveMix.request (std::max (gain - 1.0, 0.0) * overdrivePerGain);
}

void SaturationChannel::setVariant (int variant) noexcept
{
    if (variant == components.getActiveChannel())
        return;

    components.setActiveChannel (variant);
    designFilters();
    filters.first.bringInCoefficients();
    filters.second.bringInCoefficients();
}

/** H(s) = s^2 / (s^2 + s w0 / Q + w0^2), then H(s) = gain w0^2 / (s^2 + s w0 / Q + w0^2). */
void SaturationChannel::designFilters() noexcept
{
    constexpr auto unused = 1.0;
    const auto make = [&] (AnalogBiquad::Type type, Part frequency, Part q)
    {
        const auto omega0 = 2.0 * std::numbers::pi * components.getActive (frequency);
        return AnalogBiquad::make (type, components.getActive (q), unused, unused, omega0);
    };

    const auto high = make (AnalogBiquad::Type::highPass, highPassHz, highPassQ);
    auto low = make (AnalogBiquad::Type::lowPass, lowPassHz, lowPassQ);

    for (auto& coefficient : low.numerator)
        coefficient *= components.getActive (outputGain);

    filters.first.setAnalogue (high.numerator, high.denominator);
    filters.second.setAnalogue (low.numerator, low.denominator);
}

void SaturationChannel::prepare (double rateHz, int maxSamples)
{
    designFilters();
    filters.prepare (rateHz, 1, maxSamples);
    harmonicScale.prepare (rateHz, maxSamples);
    overdriveMix.prepare (rateHz, maxSamples);
    bent.assign (static_cast<std::size_t> (std::max (maxSamples, 0)), 0.0f);
    shaper.reset();
}

void SaturationChannel::reset() noexcept
{
    harmonicScale.snap();
    overdriveMix.snap();
    shaper.reset();
    filters.reset();
}

//==============================================================================
void SaturationChannel::process (std::span<SaturationChannel* const> channels, float* const* rows, int n) noexcept
{
    const auto together = channels.first (std::min (channels.size(), maxTogether));
    std::array<SaturationShaper*, maxTogether> shapers {};
    std::array<const float*, maxTogether> scales {};

    for (std::size_t c = 0; c < together.size(); ++c)
    {
        shapers[c] = &together[c]->shaper;
        scales[c] = together[c]->harmonicScale.advance (n);
    }

    SaturationShaper::process (std::span (shapers.data(), together.size()), rows, scales.data(), n);

    for (std::size_t c = 0; c < together.size(); ++c)
        together[c]->overdrive (rows[c], n);

    decltype (filters)::process (
        together, [](auto& channel) -> auto& { return channel.filters; }, rows, n);
}

/** out (1 - k) - tanh (0.5 - out) k, as out + k (tanh (out - 0.5) - out). */
void SaturationChannel::overdrive (float* row, int n) noexcept
{
    const auto* const mix = overdriveMix.advance (n);

    if (overdriveMix.restsAtZero())
        return;

    rows::combine (rows::ScalarOperation::add, bent.data(), row, -overdriveBias, n);
    rows::tanh (bent.data(), bent.data(), n);
    rows::subtract (bent.data(), row, n);
    rows::multiply (bent.data(), mix, n);
    rows::add (row, bent.data(), n);
}

//==============================================================================
void SaturationChannel::RampRow::prepare (double rateHz, int maxSamples)
{
    ramp.prepare (rampSteps (rateHz));
    row.assign (static_cast<std::size_t> (std::max (maxSamples, 1)), 0.0f);
    isConstant = false;
}

const float* SaturationChannel::RampRow::write (int n) noexcept
{
    ramp.takeRequest();
    isConstant = ramp.get().isIdle();

    if (isConstant)
        std::fill (row.begin(), row.end(), static_cast<float> (ramp.get().current));
    else
        ramp.fillTaken (row.data(), n);

    return row.data();
}
} // namespace tarvik
