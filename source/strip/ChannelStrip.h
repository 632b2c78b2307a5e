// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/AnalogNoise.h"
#include "strip/DynamicsSection.h"
#include "strip/EqualiserSection.h"
#include "strip/NeedleMeter.h"
#include "strip/ParameterSnapshot.h"
#include "strip/RampRow.h"
#include "strip/SaturationSection.h"

#include <tuple>
#include <vector>

namespace tarvik
{

/** One channel strip of the console: every stage in the order in which a sample meets it, in three sections.

    The pre and post sections run at the host's rate, once per slice; the middle section runs at the processing rate, as
    often as the slice needs. The channel arrays hold the main channels first, then the side chain channels; only the
    dynamics look at the latter, and only main channels are changed. Threads and operations as in Stage.h; a call's
    maxSamples counts for all three sections.
*/
class ChannelStrip
{
public:
    void prepare (double hostRateHz, int oversamplingFactor, int numChannels, int maxSamples);
    void reset() noexcept;
    void release();
    void update (const ParameterSnapshot& snapshot, bool force) noexcept;

    /** Pad, input meter, first noise, gain and phase. */
    void processPre (float* const* channels, int numSamples, bool isNoiseOn) noexcept;

    /** Equaliser, saturation and unity gain, with the dynamics before or after them. */
    void processMiddle (float* const* channels, int numSamples, int numSidechain, bool isEqPost) noexcept;

    /** Second noise, fader and output meter; the read-outs go to `readOuts`. */
    void processPost (float* const* channels, int numSamples, bool isNoiseOn, ParameterSnapshot& readOuts) noexcept;

    /** Audio thread: whether nothing moves or waits, and silence at the input has no other sequel than capacitors and
        needles that fall. Noise is not looked at. */
    bool isSettled() noexcept;

    /** In place of all three sections, for a settled strip: capacitors, needles and the equaliser's rest keep their time while
        so many samples of silence pass, at the host's rate and at most 1024. Everything else stands still. */
    void skip (int numSamples, ParameterSnapshot& readOuts) noexcept;

private:
    /** The last values of the group that decides pad, gain, unity gain, level and phase. */
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

    using Gain = RampRow<GeometricRamp>;

    auto getStagesAtHostRate() noexcept
    {
        return std::tie (padGain, inputMeter, inputNoise, inputGain, phase, outputNoise, level, outputMeter);
    }

    auto getStagesAtProcessingRate() noexcept { return std::tie (equaliser, saturation, unityGain, dynamics); }

    void applyGainAndPhase (float* const* channels, int numSamples) noexcept;
    void requestGains (const GainSettings& settings) noexcept;
    void writeReadOuts (ParameterSnapshot& readOuts) const noexcept;

    Gain padGain;
    NeedleMeter inputMeter;
    AnalogNoise inputNoise { AnalogNoise::inputRange };
    Gain inputGain;
    RampRow<LinearRamp> phase;
    EqualiserSection equaliser;
    SaturationSection saturation;
    Gain unityGain;
    DynamicsSection dynamics;
    AnalogNoise outputNoise { AnalogNoise::outputRange };
    Gain level;
    NeedleMeter outputMeter;

    int numMain = 0;
    int factor = 1; ///< of the processing rate
    std::vector<float> gainTimesPhase;
    GainSettings lastGainSettings;
};

} // namespace tarvik
