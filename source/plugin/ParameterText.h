// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik
{

/** How a parameter's plain value is shown, and how a typed text becomes a plain value again; a text without a number
    reads as 0, as everywhere in JUCE. Any thread.
*/
struct TextRule
{
    juce::String (*toText) (float value) = nullptr;
    float (*fromText) (const juce::String& text) = nullptr;
    bool writesUnit = false; ///< Whether the text carries its unit.
};

namespace textRules
{
/** Mid gain: the boost in dB that the potentiometer's position (0 to 1) gives at resonance. */
extern const TextRule midGain;

/** Low gain: the boost in dB at the potentiometer's position (0 to 1); a straight line over its first fifth. */
extern const TextRule lowGain;

/** Mix: whole per cent of a share from 0 to 1. */
extern const TextRule percent;

/** Frequency in Hz with one decimal; at the lower end, where the filter is out of circuit, "Off". */
extern const TextRule highPassHz;
} // namespace textRules

/** A number with a fixed count of decimals and never a negative zero. */
juce::String decimalText (float value, int decimals);

/** How many decimals a range of this step needs; 7 without a step. */
int decimalsOfStep (float step);

} // namespace tarvik
