// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>
#include <pluginterfaces/vst/ivstcomponent.h>

#include <memory>
#include <mutex>
#include <public.sdk/source/common/memorystream.h>

namespace tarvik::soak
{

/** One instance of the module, and what its host promises: it is not prepared while it plays, and gets one state at a
    time. All else may happen at once.
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
        bool isFinite = true;

        for (int c = 0; c < instance->getTotalNumOutputChannels(); ++c)
            for (int i = 0; i < block.getNumSamples(); ++i)
                isFinite = isFinite && std::isfinite (block.getSample (c, i));

        return isFinite;
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
    juce::MemoryBlock project;                       ///< The last that its user saved.
    std::mutex audioLock, stateLock;
    int longestBlock = 0;
};

} // namespace tarvik::soak
