// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ConsoleEQ.h"

#include "dsp/AnalogBiquad.h"
#include "dsp/EqualiserComponents.h"
#include "dsp/EqualiserNetwork.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarvik
{
namespace
{
/** Corner and Q of the high pass, measured values that differ from the labels on the panel. */
struct HighPassPosition
{
    double omega0; ///< rad/s
    double q;
};

constexpr std::array<HighPassPosition, 2> highPassPositions { {
    { 339.29200658769764, 1.04 }, // "40 Hz": 54 Hz
    { 684.8671984825748, 1.05 },  // "80 Hz": 109 Hz
} };

bool hasSameNetwork (const EQControls& a, const EQControls& b) noexcept
{
    return a.highFreq == b.highFreq && a.highGain == b.highGain && a.midFreq == b.midFreq && a.midGain == b.midGain
           && a.midMode == b.midMode && a.lowFreq == b.lowFreq && a.lowGain == b.lowGain; // NaN differs from itself
}
} // namespace

ConsoleEQ::ConsoleEQ() : components (equaliserComponents) {}

void ConsoleEQ::update (const EQControls& controls, bool force) noexcept
{
    components.setActiveChannel (controls.toleranceChannel);

    const auto networkChanges = force || ! hasSameNetwork (controls, last);
    const auto highPassChanges = force || controls.highPass != last.highPass;
    last = controls;

    if (networkChanges)
    {
        const auto response = solveEqualiserNetwork (components, controls);
        filters.second.setAnalogue (response.numerator, response.denominator);
        filters.second.bringInCoefficients();
    }

    if (highPassChanges)
        updateHighPass (controls.highPass);
}

/** "OFF" is s^2 / s^2, which comes out as a section that returns its input bit for bit. */
void ConsoleEQ::updateHighPass (int position) noexcept
{
    AnalogBiquad prototype;

    if (position > 0)
    {
        const auto& values =
            highPassPositions[std::min (static_cast<std::size_t> (position), highPassPositions.size()) - 1];
        prototype = AnalogBiquad::make (AnalogBiquad::Type::highPass, values.q, 1.0, 1.0, values.omega0);
    }

    filters.first.setAnalogue (prototype.numerator, prototype.denominator);
    filters.first.bringInCoefficients();
}

void ConsoleEQ::prepare (double sampleRate, int maxSamples) { filters.prepare (sampleRate, 1, maxSamples); }

void ConsoleEQ::reset() noexcept { filters.reset(); }

void ConsoleEQ::process (std::span<const std::unique_ptr<ConsoleEQ>> channels, float* const* rows, int n) noexcept
{
    decltype (filters)::process (channels, &ConsoleEQ::filters, rows, n);
}
} // namespace tarvik
