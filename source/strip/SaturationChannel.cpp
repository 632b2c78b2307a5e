// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/SaturationChannel.h"

#include "dsp/AnalogBiquad.h"

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
} // namespace

SaturationChannel::SaturationChannel() : components (outputFilters) {}

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
    shaper.reset();
}

void SaturationChannel::reset() noexcept
{
    shaper.reset();
    filters.reset();
}

//==============================================================================
void SaturationChannel::filter (std::span<SaturationChannel* const> channels, float* const* rows, int n) noexcept
{
    decltype (filters)::process (channels, &SaturationChannel::filters, rows, n);
}
} // namespace tarvik
