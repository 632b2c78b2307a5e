// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/RelaxedValue.h"

#include <juce_core/juce_core.h>

namespace tarvik
{

/** Everything the strip is told, and everything it tells: one typed field per parameter, the calibration, and the
    meters' read-outs. The strip reads nothing else.

    Two of these are the A and B slots, and each factory program is one. Single fields may be read and written from any
    thread. The record as a whole is copied on the message thread only, since `trackName` is a counted string. An int
    that belongs to a choice holds its index in the list.
*/
struct ParameterSnapshot
{
    using Bool = RelaxedValue<bool>;
    using Int = RelaxedValue<int>;
    using Float = RelaxedValue<float>;
    using Double = RelaxedValue<double>;

    /** The calibration of an instance that nothing has changed: +18 dB times the square root of 1.2. */
    static constexpr double defaultCalibration = 8.70143032;

    static constexpr int defaultLimiterSensitivity = 2;

    // Read-outs, written by the audio thread at the end of each slice.
    Float inputMeter = -50.0f;    ///< Linear, 1 is 0 VU; below zero before the first slice, which reads as no level.
    Float outputMeter = -50.0f;   ///< As the input meter.
    Float gainReductionDb = 0.0f; ///< 0 or below.
    Bool limiterActive = false;
    Float expanderAmount = 0.0f;

    // What the host and the settings say.
    Double calibration = defaultCalibration; ///< Linear gain on the way in; its reciprocal on the way out.
    juce::String trackName;
    RelaxedValue<juce::uint32> trackColour = 0; ///< ARGB.

    // Input section.
    Float thd = 0.0f;  ///< dB
    Float gain = 0.0f; ///< dB
    Bool pad = false;
    Bool unity = false;

    // Equaliser.
    Int highFreq = 1;
    Int highGain = 5;
    Int midFreq = 4;
    Float midGain = 0.0f; ///< 0 to 1, position of the potentiometer.
    Int midMode = 1;
    Int lowFreq = 4;
    Float lowGain = 0.0f; ///< 0 to 1, position of the potentiometer.
    Bool equalizer = true;
    Bool eqPost = false;
    Int highPass = 0;
    Int reserved = 1; ///< Kept and copied; nothing reads it.

    // Compressor and limiter.
    Float compMix = 1.0f;       ///< 0 dry to 1 compressed.
    Float compHPF = 20.0f;      ///< Hz
    Float compThreshold = 0.0f; ///< dB
    Int compRatio = 1;
    Int compAttack = 0;
    Int compRelease = 1;
    Float compInput = 2.5f;  ///< 0 to 5, position of the potentiometer.
    Float compOutput = 2.5f; ///< 0 to 5, position of the potentiometer.
    Bool compLimit = false;
    Bool compIn = true;
    Bool compNiveau = false;
    Bool compNuke = false;
    Bool compExtSideChain = false;
    Int limiterSensitivity = defaultLimiterSensitivity; ///< 0 normal, 1 mid, 2 low; a setting, not a parameter.

    // Expander and gate.
    Float expThreshold = -30.0f; ///< dB
    Float expRange = -20.0f;     ///< dB
    Int expAttack = 1;
    Float expRelease = 0.3f; ///< seconds
    Int expMode = 1;
    Bool expHold = false;
    Bool expInverted = false;
    Bool expExtSideChain = false;

    // Output section.
    Bool mute = false;
    Bool phase = false;
    Float level = 0.0f; ///< dB

    // Console channel.
    Int tolChannel = 1; ///< 1 to 32
    Bool tolLink = false;

    // Level pots around the whole strip.
    Float inLevel = 0.0f;  ///< dB
    Float outLevel = 0.0f; ///< dB
};

} // namespace tarvik
