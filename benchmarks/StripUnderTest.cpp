// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/StripUnderTest.h"

#include "plugin/ParameterTable.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <algorithm>
#include <random>

namespace tarvik::benchmarks
{
juce::AudioProcessorParameter& parameterOf (Tarvik41Processor& strip, std::string_view id)
{
    const auto& all = strip.getParameters();
    return **std::find_if (all.begin(), all.end(),
                           [&] (auto* p) { return parameterID (*p) == juce::String (id.data()); });
}

std::unique_ptr<Tarvik41Processor> makeStrip (int factor, int numChannels)
{
    constexpr int longestBlock = 1024;
    auto strip = std::make_unique<Tarvik41Processor>();
    strip->oversamplingSetting().setValue (factor);
    strip->analogSetting().setValue (true);

    const auto channels = juce::AudioChannelSet::canonicalChannelSet (numChannels);
    strip->setBusesLayout ({ { channels, channels }, { channels } });

    for (const auto* const id : { "compLimit", "compNiveau" })
        parameterOf (*strip, id).setValueNotifyingHost (1.0f);

    for (const auto* const id : { "highGain", "midGain", "lowGain", "highPass", "compHPF" })
        parameterOf (*strip, id).setValueNotifyingHost (0.6f);

    strip->prepareToPlay (stripRateHz, longestBlock);
    return strip;
}

juce::AudioBuffer<float> makeNoise (int channels)
{
    constexpr int length = 1 << 15;
    juce::AudioBuffer<float> noise (channels, length);
    std::mt19937 random (1);
    std::uniform_real_distribution<float> uniform (-0.25f, 0.25f);

    for (int c = 0; c < channels; ++c)
        for (int i = 0; i < length; ++i)
            noise.setSample (c, i, uniform (random));

    return noise;
}

std::optional<juce::AudioBuffer<float>> readDrums (int channels)
{
    const juce::File file ("/usr/share/sonic-pi/samples/loop_breakbeat.flac");
    const std::unique_ptr<juce::AudioFormatReader> reader (
        juce::FlacAudioFormat().createReaderFor (file.createInputStream().release(), true));

    if (reader == nullptr)
        return std::nullopt;

    const auto length = static_cast<int> (reader->lengthInSamples);
    juce::AudioBuffer<float> drums (channels, length);
    drums.clear();
    reader->read (drums.getArrayOfWritePointers(), std::min (channels, 2), 0, length);
    return drums;
}
} // namespace tarvik::benchmarks
