// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/Tarvik41Processor.h"

#include <memory>
#include <optional>
#include <string_view>

// The plug-in as the benchmarks time it, and what they feed it.
namespace tarvik::benchmarks
{
constexpr double stripRateHz = 48000.0;

/** The parameter with this ID, which must be one of the table's. */
juce::AudioProcessorParameter& parameterOf (Tarvik41Processor& strip, std::string_view id);

/** Everything on but the expander: limiter, detector filters, noise and all equaliser sections. Prepared; the settings of
    a user do not decide what is measured. Main bus and side chain have as many channels as told. */
std::unique_ptr<Tarvik41Processor> makeStrip (int factor, int numChannels = 2);

/** Noise at -12 dBFS, the same every time. */
juce::AudioBuffer<float> makeNoise (int channels);

/** The drum loop that `./run` takes, sample by sample as in the file, whose rate is not looked at. The first two channels
    have it, the others (the side chain) are silent. Nothing if Debian's sonic-pi-samples is not installed. */
std::optional<juce::AudioBuffer<float>> readDrums (int channels);
} // namespace tarvik::benchmarks
