// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace tarvik
{

/** True if a parameter would not change by being set to a share from 0 to 1. Any thread. */
inline bool isAlreadyAt (const juce::RangedAudioParameter& parameter, float share)
{
    return parameter.getValue() == parameter.convertTo0to1 (parameter.convertFrom0to1 (share));
}

/** Tells the host of a new value, and of an equal one nothing. Message thread. */
inline void setIfNew (juce::RangedAudioParameter& parameter, float share)
{
    if (! isAlreadyAt (parameter, share))
        parameter.setValueNotifyingHost (share);
}

/** A single change as the host records one: a gesture around a value; nothing for an equal one. Message thread. */
inline void setInGesture (juce::RangedAudioParameter& parameter, float share)
{
    if (isAlreadyAt (parameter, share))
        return;

    parameter.beginChangeGesture();
    parameter.setValueNotifyingHost (share);
    parameter.endChangeGesture();
}

} // namespace tarvik
