// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/DetectorFilters.h"

#include "dsp/AnalogBiquad.h"
#include "dsp/StateFloor.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace tarvik
{

namespace
{
/** In silence the delay lines shrink for ever. They are emptied before the processor would have to slow down for their
    smallness, and long after a float has stopped showing it. */
void settle (std::span<BiquadCascade* const> cascades) noexcept
{
    for (auto* const cascade : cascades)
    {
        const auto& sections = cascade->getSections();

        if (std::abs (sections.s1.front()) >= stateFloor)
            continue; // while there is sound: nearly always

        auto sum = 0.0;

        for (std::size_t s = 0; s < sections.s1.size(); ++s)
            sum += std::abs (sections.s1[s]) + std::abs (sections.s2[s]);

        if (sum < stateFloor && sum != 0.0)
            cascade->clear();
    }
}
} // namespace

void DetectorFilters::prepare (double rateHz, int numChannels, int maxSamples)
{
    filters.prepare (rateHz, numChannels, maxSamples);
}

void DetectorFilters::reset() noexcept { filters.reset(); }

void DetectorFilters::setHighPass (float cutoffHz) noexcept
{
    constexpr auto lowestOnHz = 20.01f;
    const auto heldHz = cutoffHz > lowestHighPassHz ? std::min (cutoffHz, highestHighPassHz) : lowestHighPassHz;
    const auto omega = 2.0 * std::numbers::pi * static_cast<double> (heldHz);
    const auto analogue = AnalogBiquad::make (AnalogBiquad::Type::highPass, std::sqrt (0.5), 1.0, 1.0, omega);

    auto& highPass = filters.first;
    highPass.setAnalogue (analogue.numerator, analogue.denominator);
    highPass.bringInCoefficients();
    highPass.setOn (heldHz >= lowestOnHz);
}

void DetectorFilters::process (float* const* rows, int n) noexcept
{
    filters.process (rows, n);
    settle (filters.first.getActiveCascades());
    settle (filters.second.getActiveCascades());
}

} // namespace tarvik
