// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>
#include <pluginterfaces/base/funknown.h>

// The interface has no virtual destructor, by the rules of such interfaces: nobody deletes through it.
JUCE_BEGIN_IGNORE_WARNINGS_GCC_LIKE ("-Wnon-virtual-dtor")

namespace tarvik
{

class KVLProcessor;

/** What a VST3 host without a window may ask the component for: the read-outs that the editor shows. Any thread; a
    value may be as old as one slice.
*/
class IStripReadOuts : public Steinberg::FUnknown
{
public:
    /** The gain reduction of the channel that is reduced most, in dB, at most 0. */
    virtual float PLUGIN_API getGainReductionDb() = 0;

    static const Steinberg::FUID iid;
};

/** Belongs to the processor and lives as long: its reference count keeps nothing alive. */
class StripReadOuts final : public IStripReadOuts
{
public:
    explicit StripReadOuts (const KVLProcessor& owner) : processor (owner) {}

    virtual ~StripReadOuts() = default;

    float PLUGIN_API getGainReductionDb() override;
    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID interfaceID, void** object) override;

    Steinberg::uint32 PLUGIN_API addRef() override { return 1; }

    Steinberg::uint32 PLUGIN_API release() override { return 1; }

private:
    const KVLProcessor& processor;
};

} // namespace tarvik

JUCE_END_IGNORE_WARNINGS_GCC_LIKE
