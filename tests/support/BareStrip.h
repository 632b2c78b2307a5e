// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/Decibels.h"
#include "plugin/KVLProcessor.h"
#include "plugin/ParameterTable.h"
#include "strip/ChannelStrip.h"

#include <memory>

namespace tarvik::test
{

/** The real strip without its middle section: what is left is arithmetic that a test can do again exactly. */
class BareStrip final : public KVLProcessor
{
public:
    BareStrip()
    {
        for (int index = 0; index < numParameters; ++index)
            addParameter (createParameter (index).release());

        listenToParameters();
        analogSetting().setValue (false);
    }

    const juce::String getName() const override { return "Bare"; } // NOLINT: JUCE's own signature

    void prepareDsp (double rate, int factor, int numMain, int maxSamples) override
    {
        strip.prepare (rate, factor, numMain, maxSamples);
    }

    void resetDsp() override { strip.reset(); }

    void releaseDsp() override { strip.release(); }

    void updateDsp (bool force) override
    {
        const auto& snapshot = currentSnapshot();
        inputGainRamp.request (gainFromDb (static_cast<double> (snapshot.inLevel)));
        outputGainRamp.request (gainFromDb (static_cast<double> (snapshot.outLevel)));
        strip.update (snapshot, force);
    }

    void processPreOversampling (float** channels, int n, int) override { strip.processPre (channels, n, analogOn); }

    void processChunk (float**, int, int) override {}

    void processPostOversampling (float** channels, int n, int) override
    {
        strip.processPost (channels, n, analogOn, currentSnapshot());
    }

private:
    ChannelStrip strip;
};

/** With a main width, the side chain off, and an oversampling factor. */
inline std::unique_ptr<BareStrip> makeBareStrip (int mainChannels = 2, int factor = 1)
{
    auto strip = std::make_unique<BareStrip>();
    const auto width = juce::AudioChannelSet::canonicalChannelSet (mainChannels);

    juce::AudioProcessor::BusesLayout layout;
    layout.inputBuses.add (width);
    layout.inputBuses.add (juce::AudioChannelSet::disabled());
    layout.outputBuses.add (width);
    strip->setBusesLayout (layout);
    strip->oversamplingSetting().setValue (factor);
    return strip;
}

} // namespace tarvik::test
