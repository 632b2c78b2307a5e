// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/ChannelStrip.h"

#include "dsp/Decibels.h"
#include "dsp/RowOperations.h"
#include "strip/Stage.h"

namespace tarvik
{

namespace
{
template <Stage... Stages>
void prepareAll (std::tuple<Stages&...> stages, double rateHz, int numChannels, int maxSamples)
{
    std::apply ([&] (auto&... stage) { (stage.prepare (rateHz, numChannels, maxSamples), ...); }, stages);
}

static_assert (
    ControlledStage<EqualiserSection> && ControlledStage<SaturationSection> && ControlledStage<DynamicsSection>);
} // namespace

void ChannelStrip::prepare (double hostRateHz, int oversamplingFactor, int numChannels, int maxSamples)
{
    numMain = numChannels;
    factor = oversamplingFactor;
    gainTimesPhase.assign (static_cast<std::size_t> (maxSamples), 0.0f);
    prepareAll (getStagesAtHostRate(), hostRateHz, numChannels, maxSamples);
    prepareAll (getStagesAtProcessingRate(), hostRateHz * oversamplingFactor, numChannels, maxSamples);
}

void ChannelStrip::reset() noexcept
{
    const auto resetAll = [] (auto&... stage) { (stage.reset(), ...); };
    std::apply (resetAll, getStagesAtHostRate());
    std::apply (resetAll, getStagesAtProcessingRate());
}

void ChannelStrip::release()
{
    const auto releaseAll = [] (auto&... stage) { (stage.release(), ...); };
    std::apply (releaseAll, getStagesAtHostRate());
    std::apply (releaseAll, getStagesAtProcessingRate());
    gainTimesPhase = {};
}

//==============================================================================
void ChannelStrip::update (const ParameterSnapshot& snapshot, bool force) noexcept
{
    const GainSettings settings { snapshot.gain,  snapshot.level, snapshot.pad,
                                  snapshot.unity, snapshot.mute,  snapshot.phase };

    if (force || settings != lastGainSettings)
    {
        lastGainSettings = settings;
        requestGains (settings);
    }

    equaliser.update (snapshot, force);
    dynamics.update (snapshot, force);
    saturation.update (snapshot, force);
}

void ChannelStrip::requestGains (const GainSettings& settings) noexcept
{
    constexpr double muteDb = -80.0; // twice: gain and fader
    const auto padDb = settings.pad ? -20.0 : 0.0;
    const auto gainDb = static_cast<double> (settings.gainDb);
    const auto levelDb = static_cast<double> (settings.levelDb);

    padGain.request (gainFromDb (padDb));
    inputGain.request (gainFromDb (settings.mute ? muteDb : gainDb));
    phase.request (settings.phase ? -1.0 : 1.0);
    unityGain.request (settings.unity ? gainFromDb (-(gainDb + padDb)) : 1.0);
    level.request (gainFromDb (settings.mute ? muteDb : levelDb));
}

//==============================================================================
void ChannelStrip::processPre (float* const* channels, int numSamples, bool isNoiseOn) noexcept
{
    padGain.process (channels, numSamples);
    inputMeter.process (channels, numSamples);

    if (isNoiseOn)
        inputNoise.process (channels, numSamples);

    applyGainAndPhase (channels, numSamples);
}

void ChannelStrip::processMiddle (float* const* channels, int numSamples, int numSidechain, bool isEqPost) noexcept
{
    if (isEqPost)
        dynamics.process (channels, numSamples, numSidechain);

    equaliser.process (channels, numSamples);
    saturation.process (channels, numSamples);
    unityGain.process (channels, numSamples);

    if (! isEqPost)
        dynamics.process (channels, numSamples, numSidechain);
}

void ChannelStrip::processPost (float* const* channels, int numSamples, bool isNoiseOn,
                                ParameterSnapshot& readOuts) noexcept
{
    if (isNoiseOn)
        outputNoise.process (channels, numSamples);

    level.process (channels, numSamples);
    outputMeter.process (channels, numSamples);
    writeReadOuts (readOuts);
}

void ChannelStrip::writeReadOuts (ParameterSnapshot& readOuts) const noexcept
{
    readOuts.inputMeter = inputMeter.getReading();
    readOuts.outputMeter = outputMeter.getReading();
    dynamics.writeReadOuts (readOuts);
}

//==============================================================================
bool ChannelStrip::isSettled() noexcept
{
    return padGain.isSettled() && inputGain.isSettled() && phase.isSettled() && unityGain.isSettled()
           && level.isSettled() && dynamics.isSettled() && saturation.isSettled() && equaliser.isSettled();
}

void ChannelStrip::skip (int numSamples, ParameterSnapshot& readOuts) noexcept
{
    inputMeter.skip (numSamples);
    equaliser.skip (numSamples * factor);
    dynamics.skip (numSamples * factor);
    outputMeter.skip (numSamples);
    writeReadOuts (readOuts);
}

//==============================================================================
void ChannelStrip::applyGainAndPhase (float* const* channels, int numSamples) noexcept
{
    const auto* const phaseRow = phase.advance (numSamples);

    if (phase.isConstantly (1.0f))
        return inputGain.process (channels, numSamples);

    rows::multiply (gainTimesPhase.data(), inputGain.advance (numSamples), phaseRow, numSamples);

    for (int c = 0; c < numMain; ++c)
        rows::multiply (channels[c], gainTimesPhase.data(), numSamples);
}

} // namespace tarvik
