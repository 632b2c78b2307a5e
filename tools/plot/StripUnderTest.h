// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/ModuleHost.h"
#include "tools/plot/ScratchSettings.h"

#include <vector>

namespace tarvik::plot
{

using Samples = std::vector<float>;

/** One mono instance of the built module on the bench: without noise, at a given rate and oversampling factor, with its
    parameters set as a host sets them. Message thread.
*/
class StripUnderTest
{
public:
    /** Throws `ToolError` if the module cannot be loaded. */
    StripUnderTest (const juce::File& bundle, double sampleRate, int oversamplingFactor);

    double rateHz() const noexcept { return rate; }

    /** Every parameter to its default, equaliser and dynamics out, and then the assignments, each ID=TEXT in the
        parameter's own units. Throws `ToolError` if one has no meaning.
    */
    void set (const juce::StringArray& assignments);

    /** What a strip that starts at rest makes of the input: as long as the input, with the latency taken out. Throws
        `Interrupted`.
    */
    Samples run (const Samples& input);

private:
    void processBlock (const float* input, int numSamples);

    const double rate;
    const ScratchSettings settings;
    ModuleHost host;
    juce::AudioBuffer<float> block;
};

/** An assignment that turns a parameter's knob to a place in its own range, for those that show decibels instead. */
juce::String knobAt (const char* id, double plainValue);

/** An assignment that puts a switch to one of its positions, counted from 0. */
juce::String switchAt (const char* id, std::size_t position);

/** What a switch shows in each of its positions. */
juce::StringArray positionsOf (const char* id);

inline std::size_t countOf (const juce::StringArray& positions) { return static_cast<std::size_t> (positions.size()); }

} // namespace tarvik::plot
