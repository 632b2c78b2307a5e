// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/StateSchema.h"

#include <juce_audio_processors/juce_audio_processors.h>
#include <pluginterfaces/vst/ivstcomponent.h>

#include <cmath>
#include <limits>
#include <memory>
#include <mutex>
#include <public.sdk/source/common/memorystream.h>

namespace tarvik::soak
{

using juce::Random;

template <typename Value, std::size_t size>
Value oneOf (const Value (&values)[size], Random& random)
{
    return values[random.nextInt (static_cast<int> (size))];
}

inline bool oneIn (int times, Random& random) { return random.nextInt (times) == 0; }

/** From 1 to 8192, short ones as often as long ones. */
inline int randomLength (Random& random)
{
    const auto longest = 1 << random.nextInt (14);
    return random.nextBool() ? longest : 1 + random.nextInt (longest);
}

/** A project with its settings and current slot at random. */
inline juce::MemoryBlock withOtherSettings (juce::MemoryBlock state, Random& random)
{
    const auto root = juce::AudioProcessor::getXmlFromBinary (state.getData(), static_cast<int> (state.getSize()));
    root->setAttribute (stateSchema::currentSlot, random.nextInt (2));
    root->setAttribute ("Oversampling", 1 << random.nextInt (5));
    root->setAttribute ("Calibration", 16.0 + 8.0 * random.nextDouble());
    root->setAttribute ("Analog", random.nextInt (2));
    root->setAttribute ("UIZoom", 0.8 + 0.7 * random.nextDouble());
    root->setAttribute ("LimiterSensitivity", random.nextInt (3));
    root->setAttribute ("MeterMode", random.nextInt (2));
    juce::AudioProcessor::copyXmlToBinary (*root, state);
    return state;
}

/** A tone in noise at a random level, or what no host should send. */
inline void fillWithAudio (juce::AudioBuffer<float>& block, Random& random, bool isBad = false)
{
    using Limits = std::numeric_limits<float>;
    constexpr float bad[] = { Limits::quiet_NaN(),  Limits::infinity(), -Limits::infinity(),
                              Limits::max(),        -Limits::max(),     1.0e10f,
                              Limits::denorm_min(), -1.0e-40f };
    const auto level = juce::Decibels::decibelsToGain (-60.0f + 66.0f * random.nextFloat());
    const auto step = 3.0f * random.nextFloat();

    for (int c = 0; c < block.getNumChannels(); ++c)
        for (int i = 0; i < block.getNumSamples(); ++i)
            if (isBad)
                block.setSample (c, i, oneIn (16, random) ? oneOf (bad, random) : 0.0f);
            else
                block.setSample (c, i, level * (std::sin (step * static_cast<float> (i)) + random.nextFloat() - 0.5f));
}

/** One instance of the module. Its host promises not to prepare it while it plays; all else may happen at once, with one
    thread for the states.
*/
struct Seat
{
    static constexpr int numChannels = 4; ///< Stereo and a stereo side chain.

    Seat (std::unique_ptr<juce::AudioPluginInstance> hosted, bool mayGetBadAudio)
        : instance (std::move (hosted)), getsBadAudio (mayGetBadAudio)
    {
        struct Visitor final : juce::ExtensionsVisitor
        {
            void visitVST3Client (const VST3Client& client) override { component = client.getIComponentPtr(); }

            Steinberg::Vst::IComponent* component = nullptr;
        };

        Visitor visitor;
        instance->getExtensions (visitor);
        component = visitor.component;
    }

    /** Message thread. */
    void prepare (double rateHz, int longest)
    {
        const std::lock_guard lock (audioLock);
        longestBlock = longest;
        instance->releaseResources();
        instance->prepareToPlay (rateHz, longest);
    }

    /** In place; false if a sample comes out that is not a number. Audio thread, with the lock. */
    bool process (juce::AudioBuffer<float>& block) const
    {
        juce::MidiBuffer noEvents;
        instance->processBlock (block, noEvents);
        auto sum = 0.0f;

        for (int i = 0; i < 2 * block.getNumSamples(); ++i) // of the stereo output
            sum += 0.0f * block.getSample (i % 2, i / 2);

        return sum == 0.0f;
    }

    /** The component's state alone, as a host's own thread saves and loads it. */
    juce::MemoryBlock save() const
    {
        Steinberg::MemoryStream stream;
        component->getState (&stream);
        return { stream.getData(), static_cast<std::size_t> (stream.getSize()) };
    }

    void load (juce::MemoryBlock state) const
    {
        Steinberg::MemoryStream stream (state.getData(), static_cast<Steinberg::TSize> (state.getSize()));
        component->setState (&stream);
    }

    const std::unique_ptr<juce::AudioPluginInstance> instance;
    const bool getsBadAudio;
    Steinberg::Vst::IComponent* component = nullptr; ///< The instance's own.
    std::mutex audioLock;
    int longestBlock = 0;
};

} // namespace tarvik::soak
