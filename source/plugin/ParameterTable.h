// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/ParameterRows.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>
#include <optional>

namespace tarvik
{

/** A field of one snapshot, with the way it is stored. */
struct ParameterFieldRef
{
    std::variant<std::monostate, ParameterSnapshot::Bool*, ParameterSnapshot::Int*, ParameterSnapshot::Float*> field;
    ParameterFieldKind kind = ParameterFieldKind::None;

    explicit operator bool () const noexcept { return kind != ParameterFieldKind::None; }

    /** The plain value as a number: 0 or 1, an index, or the value itself. Any thread. */
    float get() const noexcept;

    /** Stores a plain value: at or above a half is true, an int is rounded; what is not finite is ignored. Any thread.
    */
    void set (float plainValue) const noexcept;
};

/** The field of the parameter at a host index, the gain reduction's included; kind None for any other. Any thread. */
ParameterFieldRef fieldForParameter (ParameterSnapshot& snapshot, int index) noexcept;

/** The same for reading. */
float plainValueOf (const ParameterSnapshot& snapshot, int index) noexcept;

/** The JUCE parameter that a row of the table describes; the index must be one of the table's. Message thread. */
std::unique_ptr<juce::RangedAudioParameter> createParameter (int index);

/** The read-out that one host format takes as a parameter: a share from 0 to 1, in the category of such meters. */
std::unique_ptr<juce::RangedAudioParameter> createGainReductionParameter();

/** The share from 0 to 1 that a typed text means, or nothing if it is not a value of the parameter. It takes what the hosts'
    text entry takes, a decimal comma, and a choice without its unit or in other letters; what lies beyond the range is
    limited to it. Message thread.
*/
std::optional<float> typedValue (const juce::RangedAudioParameter& parameter, const juce::String& text);

/** The ID of a parameter that has one, otherwise its name cut to 50 characters. */
juce::String parameterID (const juce::AudioProcessorParameter& parameter);

} // namespace tarvik
