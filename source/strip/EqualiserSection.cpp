// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/EqualiserSection.h"

#include "dsp/RampTimes.h"
#include "dsp/RowOperations.h"
#include "strip/ToleranceChannel.h"

#include <algorithm>
#include <span>

namespace tarvik
{

EQControls equaliserControls (const ParameterSnapshot& snapshot, int toleranceChannel) noexcept
{
    return { .highFreq = snapshot.highFreq,
             .highGain = snapshot.highGain,
             .midFreq = snapshot.midFreq,
             .midGain = snapshot.midGain,
             .midMode = snapshot.midMode,
             .lowFreq = snapshot.lowFreq,
             .lowGain = snapshot.lowGain,
             .highPass = snapshot.highPass,
             .toleranceChannel = toleranceChannel };
}

void EqualiserSection::prepare (double rateHz, int numChannels, int maxSamples)
{
    numInUse = static_cast<std::size_t> (numChannels);

    while (equalisers.size() < numInUse)
        equalisers.push_back (std::make_unique<ConsoleEQ>());

    for (auto& equaliser : equalisers)
        equaliser->prepare (rateHz, maxSamples);

    fader.prepare (rateHz, numChannels, maxSamples);
    samplesUntilRest = rampSteps (rateHz, secondsUntilRest);
    closedSamples = 0;
}

void EqualiserSection::reset() noexcept
{
    fader.fade.snap();
    closedSamples = 0;

    for (auto& equaliser : equalisers)
        equaliser->reset();
}

void EqualiserSection::update (const ParameterSnapshot& snapshot, bool force) noexcept
{
    bool isAnotherChannel = false;

    for (std::size_t c = 0; c < numInUse; ++c)
    {
        auto& equaliser = *equalisers[c];
        const auto wanted = toleranceChannelOf (snapshot, static_cast<int> (c));
        const auto isChanged = wanted != equaliser.getToleranceChannel();

        equaliser.update (equaliserControls (snapshot, wanted), force || isChanged);
        isAnotherChannel = isAnotherChannel || isChanged;
    }

    const bool equalizer = snapshot.equalizer;

    if (force || isAnotherChannel || equalizer != lastEqualizer)
    {
        lastEqualizer = equalizer;
        fader.fade.request (equalizer ? 1.0 : 0.0);
    }
}

void EqualiserSection::process (float* const* channels, int numSamples) noexcept
{
    const auto inUse = std::span (equalisers).first (numInUse);
    const auto length = static_cast<std::uint32_t> (numSamples);
    fader.fade.takeRequest();

    if (isAtRest())
        return countClosed (length);

    const auto numMoving = std::min (length, fader.fade.get().remaining);
    fader.begin (channels, numSamples);
    ConsoleEQ::process (inUse, channels, numSamples);
    rows::scale (channels, static_cast<int> (numInUse), static_cast<float> (ConsoleEQ::makeupGain), numSamples);
    fader.end (channels, numSamples);
    countClosed (length - numMoving);
}

void EqualiserSection::skip (int numSamples) noexcept { countClosed (static_cast<std::uint32_t> (numSamples)); }

/** Tells the filters at once when the rest begins, so that where a host cuts its blocks makes no difference to their
    return. */
void EqualiserSection::countClosed (std::uint32_t numSamples) noexcept
{
    closedSamples = fader.isClosed() ? std::min (closedSamples + numSamples, samplesUntilRest) : 0;

    if (isAtRest())
        for (const auto& equaliser : std::span (equalisers).first (numInUse))
            equaliser->skip();
}

bool EqualiserSection::isSettled() noexcept
{
    const auto inUse = std::span (equalisers).first (numInUse);
    return fader.fade.isIdle()
           && std::all_of (inUse.begin(), inUse.end(), [] (const auto& equaliser) { return equaliser->isSettled(); });
}

} // namespace tarvik
