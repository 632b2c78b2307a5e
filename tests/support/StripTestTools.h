// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/ParameterTable.h"
#include "plugin/Tarvik41Processor.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace tarvik::test
{

inline juce::AudioProcessor::BusesLayout layoutOf (const juce::AudioChannelSet& in, const juce::AudioChannelSet& out,
                                                   const juce::AudioChannelSet& sidechain)
{
    return { { in, sidechain }, { out } };
}

/** A processor as a host makes it, for a main width and with the side chain on or off. */
template <typename Strip = Tarvik41Processor>
std::unique_ptr<Strip> makeStrip (int mainChannels = 2, bool isSidechainOn = false)
{
    auto strip = std::make_unique<Strip>();
    const auto width = juce::AudioChannelSet::canonicalChannelSet (mainChannels);
    EXPECT_TRUE (
        strip->setBusesLayout (layoutOf (width, width, isSidechainOn ? width : juce::AudioChannelSet::disabled())));
    return strip;
}

/** Without noise, two strips with the same settings are alike to the last bit. */
inline std::unique_ptr<Tarvik41Processor> makeNoiselessStrip (int mainChannels = 2, int factor = 2,
                                                              bool isSidechainOn = false)
{
    auto strip = makeStrip (mainChannels, isSidechainOn);
    strip->analogSetting().setValue (false);
    strip->oversamplingSetting().setValue (factor);
    return strip;
}

/** A processor as one plug-in format makes it. */
inline std::unique_ptr<Tarvik41Processor> makeStripFor (juce::AudioProcessor::WrapperType format)
{
    juce::AudioProcessor::setTypeOfNextNewPlugin (format);
    auto strip = std::make_unique<Tarvik41Processor>();
    juce::AudioProcessor::setTypeOfNextNewPlugin (juce::AudioProcessor::wrapperType_Undefined);
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

using PlainValues = std::vector<std::pair<const char*, float>>;

inline void setPlain (juce::AudioProcessor& processor, const PlainValues& values)
{
    for (const auto& [id, plain] : values)
        setPlain (processor, id, plain);
}

inline float plainOf (juce::AudioProcessor& processor, const juce::String& id)
{
    auto& p = parameter (processor, id);
    return p.convertFrom0to1 (p.getValue());
}

/** From 0 to 1, by a parameter's ID and a number: a new parameter changes nothing for the others. */
inline float drawFor (const juce::AudioProcessorParameter& p, std::uint64_t number)
{
    return juce::Random (static_cast<juce::int64> (number) ^ parameterID (p).hashCode64()).nextFloat();
}

/** Each parameter anywhere on its travel. */
inline void setRandomly (juce::AudioProcessor& processor, std::mt19937& random)
{
    const auto number = random();

    for (auto* const p : processor.getParameters())
        p->setValueNotifyingHost (drawFor (*p, number));
}

/** Counts what a host would hear of one processor. */
class HostEars final : public juce::AudioProcessorListener
{
public:
    explicit HostEars (juce::AudioProcessor& processorToHear) : processor (processorToHear)
    {
        processor.addListener (this);
    }

    ~HostEars() override { processor.removeListener (this); }

    void audioProcessorParameterChanged (juce::AudioProcessor*, int index, float) override { note ("v", index); }

    void audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int index) override { note ("(", index); }

    void audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int index) override { note (")", index); }

    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails& details) override
    {
        const auto isAll = details.programChanged && details.parameterInfoChanged && details.latencyChanged;
        log << (isAll ? "all " : details.latencyChanged ? "latency " : "no latency ");
        onChange();
    }

    /** What was heard since the last call: "(" and ")" around a gesture, "v" for a value, each with the index;
        "latency" and "all" for what the host is to look at again.
    */
    juce::String heard() { return std::exchange (log, {}); }

    std::function<void()> onChange = [] {}; ///< What else the host does when it is to look at something again.

private:
    void note (const char* what, int index) { log << what << index << " "; }

    juce::AudioProcessor& processor;
    juce::String log;
};

/** Runs whole channels through the processor in blocks whose lengths `nextLength` gives. */
inline std::vector<Signal> process (juce::AudioProcessor& processor, std::vector<Signal> channels,
                                    const std::function<int()>& nextLength, bool isBypassed = false)
{
    const auto total = static_cast<int> (channels.front().size());
    juce::MidiBuffer midi;

    for (int position = 0; position < total;)
    {
        const auto n = std::min (nextLength(), total - position);
        std::vector<float*> pointers;

        for (auto& channel : channels)
            pointers.push_back (channel.data() + position);

        juce::AudioBuffer<float> block (pointers.data(), static_cast<int> (channels.size()), n);

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

/** How many samples after an impulse its peak leaves the first of two channels. */
inline std::ptrdiff_t delayOfImpulse (juce::AudioProcessor& processor, int blockLength)
{
    Signal impulse (300);
    impulse[0] = 0.5f;
    const auto output = process (processor, { impulse, impulse }, blockLength)[0];
    return std::max_element (output.begin(), output.end()) - output.begin();
}

/** The first of several channels, as a value that a loop can hold on to. */
inline Signal firstOf (std::vector<Signal> channels) { return std::move (channels.front()); }

} // namespace tarvik::test
