// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/ChannelStrip.h"

#include "dsp/Decibels.h"
#include "dsp/RowOperations.h"
#include "strip/Stage.h"

namespace tarvik
{

static_assert (Stage<NeedleMeter> && Stage<AnalogNoise>);
static_assert (
    ControlledStage<EqualiserSection> && ControlledStage<SaturationSection> && ControlledStage<DynamicsSection>);

void ChannelStrip::prepare (double hostRateHz, int oversamplingFactor, int numChannels, int maxSamples)
{
    const auto processingRateHz = hostRateHz * oversamplingFactor;
    numMain = numChannels;

    padGain.prepare (hostRateHz, maxSamples);
    inputMeter.prepare (hostRateHz, numChannels, maxSamples);
    inputNoise.prepare (hostRateHz, numChannels, maxSamples);
    inputGain.prepare (hostRateHz, maxSamples);
    phase.prepare (hostRateHz, maxSamples);
    gainTimesPhase.assign (static_cast<std::size_t> (maxSamples), 0.0f);

    equaliser.prepare (processingRateHz, numChannels, maxSamples);
    saturation.prepare (processingRateHz, numChannels, maxSamples);
    unityGain.prepare (processingRateHz, maxSamples);
    dynamics.prepare (processingRateHz, numChannels, maxSamples);

    outputNoise.prepare (hostRateHz, numChannels, maxSamples);
    level.prepare (hostRateHz, maxSamples);
    outputMeter.prepare (hostRateHz, numChannels, maxSamples);
}

void ChannelStrip::reset() noexcept
{
    padGain.reset();
    inputMeter.reset();
    inputNoise.reset();
    inputGain.reset();
    phase.reset();
    equaliser.reset();
    saturation.reset();
    unityGain.reset();
    dynamics.reset();
    outputNoise.reset();
    level.reset();
    outputMeter.reset();
}

void ChannelStrip::release()
{
    padGain.release();
    inputMeter.release();
    inputNoise.release();
    inputGain.release();
    phase.release();
    gainTimesPhase = {};
    equaliser.release();
    saturation.release();
    unityGain.release();
    dynamics.release();
    outputNoise.release();
    level.release();
    outputMeter.release();
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
    apply (padGain, channels, numSamples);
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
    apply (unityGain, channels, numSamples);

    if (! isEqPost)
        dynamics.process (channels, numSamples, numSidechain);
}

void ChannelStrip::processPost (float* const* channels, int numSamples, bool isNoiseOn,
                                ParameterSnapshot& readOuts) noexcept
{
    if (isNoiseOn)
        outputNoise.process (channels, numSamples);

    apply (level, channels, numSamples);
    outputMeter.process (channels, numSamples);

    readOuts.inputMeter = inputMeter.getReading();
    readOuts.outputMeter = outputMeter.getReading();
    dynamics.writeReadOuts (readOuts);
}

//==============================================================================
void ChannelStrip::apply (Gain& gain, float* const* channels, int numSamples) noexcept
{
    const auto* const row = gain.advance (numSamples);

    if (! gain.isConstantly (1.0f))
        multiply (channels, row, numSamples);
}

void ChannelStrip::applyGainAndPhase (float* const* channels, int numSamples) noexcept
{
    const auto* const phaseRow = phase.advance (numSamples);

    if (phase.isConstantly (1.0f))
        return apply (inputGain, channels, numSamples);

    rows::multiply (gainTimesPhase.data(), inputGain.advance (numSamples), phaseRow, numSamples);
    multiply (channels, gainTimesPhase.data(), numSamples);
}

void ChannelStrip::multiply (float* const* channels, const float* row, int numSamples) noexcept
{
    for (int c = 0; c < numMain; ++c)
        rows::multiply (channels[c], row, numSamples);
}

} // namespace tarvik
