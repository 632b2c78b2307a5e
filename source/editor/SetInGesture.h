// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace tarvik
{

/** A single change as the host records one: a gesture around a value of 0 to 1. Message thread. */
inline void setInGesture (juce::AudioProcessorParameter& parameter, float value)
{
    parameter.beginChangeGesture();
    parameter.setValueNotifyingHost (value);
    parameter.endChangeGesture();
}

} // namespace tarvik
