// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ConsoleEQ.h"

#include "dsp/AnalogBiquad.h"
#include "dsp/BiquadCascade.h"
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

/** Whether both filters are at rest in this slice; their cascades then. */
template <typename Filter>
bool findResting (Filter& left, Filter& right, std::array<BiquadCascade*, 2>& cascades) noexcept
{
    const auto leftRests = left.beginSlice(), rightRests = right.beginSlice();
    const auto ofLeft = left.getActiveCascades(), ofRight = right.getActiveCascades();

    if (! leftRests || ! rightRests || ofLeft.empty() || ofRight.empty())
        return false;

    cascades = { ofLeft.front(), ofRight.front() };
    return true;
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
        const auto response = solveEqualiserNetwork (selectElements (components, controls));
        network.setAnalogue (response.numerator, response.denominator);
        network.bringInCoefficients();
    }

    if (highPassChanges)
        updateHighPass (controls.highPass);
}

/** "OFF" is s^2 / s^2, which comes out as a section that hands its input through bit for bit. */
void ConsoleEQ::updateHighPass (int position) noexcept
{
    AnalogBiquad prototype;

    if (position > 0)
    {
        const auto& values =
            highPassPositions[std::min (static_cast<std::size_t> (position), highPassPositions.size()) - 1];
        prototype = AnalogBiquad::make (AnalogBiquad::Type::highPass, values.q, 1.0, 1.0, values.omega0);
    }

    highPass.setAnalogue (prototype.numerator, prototype.denominator);
    highPass.bringInCoefficients();
}

void ConsoleEQ::prepare (double sampleRate, int maxSamples)
{
    highPass.prepare (sampleRate, 1, maxSamples);
    network.prepare (sampleRate, 1, maxSamples);
}

void ConsoleEQ::reset() noexcept
{
    highPass.reset();
    network.reset();
}

void ConsoleEQ::process (float* row, int n) noexcept
{
    const auto highPassRests = highPass.beginSlice();
    const auto networkRests = network.beginSlice();

    if (highPassRests && networkRests)
        return processInTurn (highPass.getActiveCascades(), network.getActiveCascades(), &row, n);

    highPass.process (&row, n);
    network.process (&row, n);
}

void ConsoleEQ::processPair (ConsoleEQ& left, ConsoleEQ& right, float* leftRow, float* rightRow, int n) noexcept
{
    const std::array<float*, 2> rows { leftRow, rightRow };
    std::array<BiquadCascade*, 2> highPasses {};
    std::array<BiquadCascade*, 2> networks {};
    const auto doHighPassesRest = findResting (left.highPass, right.highPass, highPasses);
    const auto doNetworksRest = findResting (left.network, right.network, networks);

    if (doHighPassesRest && doNetworksRest)
        return processInTurn (highPasses, networks, rows.data(), n);

    left.process (leftRow, n);
    right.process (rightRow, n);
}
} // namespace tarvik
