// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/Tarvik41Processor.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace tarvik::test
{

/** A processor as a host makes it, for a main width and with the side chain on or off. */
inline std::unique_ptr<Tarvik41Processor> makeStrip (int mainChannels = 2, bool isSidechainOn = false)
{
    auto strip = std::make_unique<Tarvik41Processor>();
    const auto width = juce::AudioChannelSet::canonicalChannelSet (mainChannels);

    juce::AudioProcessor::BusesLayout layout;
    layout.inputBuses.add (width);
    layout.inputBuses.add (isSidechainOn ? width : juce::AudioChannelSet::disabled());
    layout.outputBuses.add (width);
    EXPECT_TRUE (strip->setBusesLayout (layout));
    return strip;
}

inline juce::RangedAudioParameter& parameter (juce::AudioProcessor& processor, const juce::String& id)
{
    for (auto* const p : processor.getParameters())
        if (auto* const ranged = dynamic_cast<juce::RangedAudioParameter*> (p);
            ranged != nullptr && ranged->paramID == id)
            return *ranged;

    ADD_FAILURE() << "no parameter " << id;
    return *dynamic_cast<juce::RangedAudioParameter*> (processor.getParameters()[0]);
}

/** Sets a parameter to a value in its own unit, as a host does. */
inline void setPlain (juce::AudioProcessor& processor, const juce::String& id, float plain)
{
    auto& p = parameter (processor, id);
    p.setValueNotifyingHost (p.convertTo0to1 (plain));
}

inline float plainOf (juce::AudioProcessor& processor, const juce::String& id)
{
    auto& p = parameter (processor, id);
    return p.convertFrom0to1 (p.getValue());
}

/** Runs whole channels through the processor in blocks whose lengths `nextLength` gives. */
inline std::vector<Signal> process (juce::AudioProcessor& processor, std::vector<Signal> channels,
                                    const std::function<int()>& nextLength, bool isBypassed = false)
{
    const auto numChannels = static_cast<int> (channels.size());
    const auto total = static_cast<int> (channels.front().size());
    juce::MidiBuffer midi;

    for (int position = 0; position < total;)
    {
        const auto n = std::min (nextLength(), total - position);
        std::vector<float*> pointers;

        for (auto& channel : channels)
            pointers.push_back (channel.data() + position);

        juce::AudioBuffer<float> block (pointers.data(), numChannels, n);

        if (isBypassed)
            processor.processBlockBypassed (block, midi);
        else
            processor.processBlock (block, midi);

        position += n;
    }

    return channels;
}

inline std::vector<Signal> process (juce::AudioProcessor& processor, std::vector<Signal> channels, int blockLength,
                                    bool isBypassed = false)
{
    return process (
        processor, std::move (channels), [blockLength] { return blockLength; }, isBypassed);
}

/** The first of several channels, as a value that a loop can hold on to. */
inline Signal firstOf (std::vector<Signal> channels) { return std::move (channels.front()); }

} // namespace tarvik::test
