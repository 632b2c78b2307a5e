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
    highPass.prepare (rateHz, numChannels, maxSamples);
    niveau.prepare (rateHz, numChannels, maxSamples);
    pieces.assign (static_cast<std::size_t> (std::max (numChannels, 0)), nullptr);
}

void DetectorFilters::reset() noexcept
{
    highPass.reset();
    niveau.reset();
}

void DetectorFilters::setHighPass (float cutoffHz) noexcept
{
    constexpr auto lowestOnHz = 20.01f;
    const auto heldHz = cutoffHz > lowestHighPassHz ? std::min (cutoffHz, highestHighPassHz) : lowestHighPassHz;
    const auto omega = 2.0 * std::numbers::pi * static_cast<double> (heldHz);
    const auto analogue = AnalogBiquad::make (AnalogBiquad::Type::highPass, std::sqrt (0.5), 1.0, 1.0, omega);

    highPass.setAnalogue (analogue.numerator, analogue.denominator);
    highPass.bringInCoefficients();
    highPass.setOn (heldHz >= lowestOnHz);
}

void DetectorFilters::process (float* const* rows, int n) noexcept
{
    std::copy_n (rows, pieces.size(), pieces.begin());

    // Cut where a fade ends: at rest the samples between the filters keep 64 bits, and a filter that has faded out is
    // not heard any more.
    for (int length = 0; n > 0; n -= length)
    {
        const auto highPassRests = highPass.beginSlice();
        const auto niveauRests = niveau.beginSlice();

        if (highPassRests && niveauRests)
        {
            length = n;
            processInTurn (highPass.getActiveCascades(), niveau.getCascades(), pieces.data(), length);
        }
        else
        {
            length = niveau.getPieceLength (highPass.getPieceLength (n));
            highPass.process (pieces.data(), length);
            niveau.process (pieces.data(), length);
        }

        for (auto& piece : pieces)
            piece += length;
    }

    settle (highPass.getActiveCascades());
    settle (niveau.getCascades());
}

} // namespace tarvik
