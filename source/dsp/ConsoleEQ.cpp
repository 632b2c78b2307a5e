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

bool ConsoleEQ::beginSlice() noexcept
{
    const auto highPassRests = highPass.beginSlice();
    const auto networkRests = network.beginSlice();
    return highPassRests && networkRests && ! network.getActiveCascades().empty();
}

// At rest the samples between the two filters keep their 64 bits, in a move they don't. So what rests goes by itself,
// and it rests from the sample at which the last move ends.

void ConsoleEQ::process (float* row, int n) noexcept
{
    for (int length = 0; n > 0; row += length, n -= length)
    {
        if (beginSlice())
            return processInTurn (highPass.getActiveCascades(), network.getActiveCascades(), &row, n);

        length = getPieceLength (n);
        highPass.process (&row, length);
        network.process (&row, length);
    }
}

void ConsoleEQ::processPair (ConsoleEQ& left, ConsoleEQ& right, float* leftRow, float* rightRow, int n) noexcept
{
    for (int length = 0; n > 0; leftRow += length, rightRow += length, n -= length)
    {
        const std::array<float*, 2> rows { leftRow, rightRow };
        const auto leftRests = left.beginSlice(), rightRests = right.beginSlice();

        if (leftRests && rightRests)
        {
            const auto first = [] (auto& filter) { return filter.getActiveCascades().front(); };
            return processInTurn (std::array { first (left.highPass), first (right.highPass) },
                                  std::array { first (left.network), first (right.network) }, rows.data(), n);
        }

        length = right.getPieceLength (left.getPieceLength (n));

        if (leftRests || rightRests)
        {
            left.process (leftRow, length);
            right.process (rightRow, length);
            continue;
        }

        using HighPass = decltype (left.highPass);
        using Network = decltype (left.network);
        HighPass::processTogether (std::array { &left.highPass, &right.highPass }, rows.data(), length);
        Network::processTogether (std::array { &left.network, &right.network }, rows.data(), length);
    }
}
} // namespace tarvik
