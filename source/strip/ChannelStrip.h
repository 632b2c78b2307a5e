// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/Ramps.h"
#include "strip/AnalogNoise.h"
#include "strip/DynamicsSection.h"
#include "strip/EqualiserSection.h"
#include "strip/NeedleMeter.h"
#include "strip/ParameterSnapshot.h"
#include "strip/SaturationSection.h"

#include <vector>

namespace tarvik
{

/** One channel strip of the console: every stage in the order in which a sample meets it, in three sections.

    The pre and post sections run at the host's rate, once per slice; the middle section runs at the processing rate, as
    often as the slice needs. The channel arrays hold the main channels first and the side chain channels behind them;
    only the dynamics look at the latter, and only main channels are changed.

    `update` may come from any thread while audio runs, one call at a time: it leaves requests that the audio thread
    takes up at its next slice. Everything else but `process...` is called while no audio runs.
*/
class ChannelStrip
{
public:
    /** Sizes every stage for numChannels main channels and calls of at most maxSamples samples, and ends all moves. */
    void prepare (double hostRateHz, int oversamplingFactor, int numChannels, int maxSamples);

    /** Brings all ramps to their targets and clears what the stages remember. */
    void reset() noexcept;

    /** Frees the work buffers; `prepare` must come before audio again. */
    void release();

    /** Takes over what differs from the values seen last, or everything when forced. */
    void update (const ParameterSnapshot& snapshot, bool force) noexcept;

    /** Pad, input meter, first noise, gain and phase. */
    void processPre (float* const* channels, int n, bool isNoiseOn) noexcept;

    /** Equaliser, saturation and unity gain, with the dynamics in front of them or behind. */
    void processMiddle (float* const* channels, int n, int numSidechain, bool isEqPost) noexcept;

    /** Second noise, fader and output meter; the read-outs go to `readOuts`. */
    void processPost (float* const* channels, int n, bool isNoiseOn, ParameterSnapshot& readOuts) noexcept;

private:
    /** The last values of the group that decides gain, unity gain, level and phase. */
    struct GainSettings
    {
        float gainDb = 0.0f;
        float levelDb = 0.0f;
        bool pad = false;
        bool unity = false;
        bool mute = false;
        bool phase = false;

        bool operator== (const GainSettings&) const = default;
    };

    template <typename RampType>
    void applyRamp (SharedRamp<RampType>& ramp, float* const* channels, int n) noexcept;

    void applyGainAndPhase (float* const* channels, int n) noexcept;
    void requestGains (const GainSettings& settings) noexcept;

    int numMain = 0;

    SharedRamp<GeometricRamp> padRamp;
    SharedRamp<LinearRamp> phaseRamp;
    SharedRamp<GeometricRamp> gainRamp;
    SharedRamp<GeometricRamp> unityRamp;
    SharedRamp<GeometricRamp> levelRamp;

    NeedleMeter inputMeter;
    AnalogNoise inputNoise { AnalogNoise::inputRange };
    EqualiserSection equaliser;
    SaturationSection saturation;
    DynamicsSection dynamics;
    AnalogNoise outputNoise { AnalogNoise::outputRange };
    NeedleMeter outputMeter;

    std::vector<float> curve;
    std::vector<float> phaseCurve;

    bool lastPad = false;
    GainSettings lastGainSettings;
};

} // namespace tarvik
