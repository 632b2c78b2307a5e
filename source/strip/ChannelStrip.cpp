// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/ChannelStrip.h"

#include "dsp/Decibels.h"
#include "dsp/RampTimes.h"
#include "dsp/RowOperations.h"

namespace tarvik
{

namespace
{
constexpr double padDb = -20.0;

/** What "Mute" turns the gain and the fader down to; silence is left to the two of them together. */
constexpr double muteDb = -80.0;
} // namespace

void ChannelStrip::prepare (double hostRateHz, int oversamplingFactor, int numChannels, int maxSamples)
{
    const auto processingRateHz = hostRateHz * oversamplingFactor;
    numMain = numChannels;

    padRamp.prepare (rampSteps (hostRateHz));
    phaseRamp.prepare (rampSteps (hostRateHz));
    gainRamp.prepare (rampSteps (hostRateHz));
    levelRamp.prepare (rampSteps (hostRateHz));
    unityRamp.prepare (rampSteps (processingRateHz));

    inputMeter.prepare (hostRateHz);
    inputNoise.prepare (numChannels, maxSamples);
    equaliser.prepare (processingRateHz, numChannels, maxSamples);
    saturation.prepare (processingRateHz, numChannels, maxSamples);
    dynamics.prepare (processingRateHz, numChannels, maxSamples);
    outputNoise.prepare (numChannels, maxSamples);
    outputMeter.prepare (hostRateHz);

    curve.assign (static_cast<std::size_t> (maxSamples), 0.0f);
    phaseCurve.assign (static_cast<std::size_t> (maxSamples), 0.0f);
}

void ChannelStrip::reset() noexcept
{
    padRamp.snap();
    phaseRamp.snap();
    gainRamp.snap();
    unityRamp.snap();
    levelRamp.snap();
    equaliser.reset();
    saturation.reset();
    dynamics.reset();
}

void ChannelStrip::release()
{
    inputNoise.release();
    equaliser.release();
    dynamics.release();
    outputNoise.release();
}

//==============================================================================
void ChannelStrip::update (const ParameterSnapshot& snapshot, bool force) noexcept
{
    const bool pad = snapshot.pad;

    if (force || pad != lastPad)
    {
        lastPad = pad;
        padRamp.request (pad ? gainFromDb (padDb) : 1.0);
    }

    const GainSettings settings { snapshot.gain, snapshot.level, pad, snapshot.unity, snapshot.mute, snapshot.phase };

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
    const auto gainDb = static_cast<double> (settings.gainDb);
    const auto levelDb = static_cast<double> (settings.levelDb);
    const auto compensatedDb = gainDb + (settings.pad ? padDb : 0.0);

    phaseRamp.request (settings.phase ? -1.0 : 1.0);
    gainRamp.request (gainFromDb (settings.mute ? muteDb : gainDb));
    unityRamp.request (settings.unity ? gainFromDb (-compensatedDb) : 1.0);
    levelRamp.request (gainFromDb (settings.mute ? muteDb : levelDb));
}

//==============================================================================
void ChannelStrip::processPre (float* const* channels, int n, bool isNoiseOn) noexcept
{
    applyRamp (padRamp, channels, n);
    inputMeter.process (channels, numMain, n);

    if (isNoiseOn)
        inputNoise.process (channels, numMain, n);

    applyGainAndPhase (channels, n);
}

void ChannelStrip::processMiddle (float* const* channels, int n, int numSidechain, bool isEqPost) noexcept
{
    if (isEqPost)
        dynamics.process (channels, n, numSidechain);

    equaliser.process (channels, n);
    saturation.process (channels, numMain, n);

    applyRamp (unityRamp, channels, n);

    if (! isEqPost)
        dynamics.process (channels, n, numSidechain);
}

void ChannelStrip::processPost (float* const* channels, int n, bool isNoiseOn, ParameterSnapshot& readOuts) noexcept
{
    if (isNoiseOn)
        outputNoise.process (channels, numMain, n);

    applyRamp (levelRamp, channels, n);
    outputMeter.process (channels, numMain, n);

    readOuts.inputMeter = inputMeter.getReading();
    readOuts.outputMeter = outputMeter.getReading();
    dynamics.writeReadOuts (readOuts);
}

//==============================================================================
template <typename RampType>
void ChannelStrip::applyRamp (SharedRamp<RampType>& ramp, float* const* channels, int n) noexcept
{
    if (ramp.isIdleAtOne())
        return;

    if (ramp.get().isIdle())
    {
        rows::scale (channels, numMain, static_cast<float> (ramp.get().current), n);
        return;
    }

    ramp.fillTaken (curve.data(), n);

    for (int c = 0; c < numMain; ++c)
        rows::multiply (channels[c], curve.data(), n);
}

void ChannelStrip::applyGainAndPhase (float* const* channels, int n) noexcept
{
    if (phaseRamp.isIdleAtOne())
    {
        applyRamp (gainRamp, channels, n);
        return;
    }

    gainRamp.fill (curve.data(), n);
    phaseRamp.fill (phaseCurve.data(), n);
    rows::multiply (curve.data(), phaseCurve.data(), n);

    for (int c = 0; c < numMain; ++c)
        rows::multiply (channels[c], curve.data(), n);
}

} // namespace tarvik
