// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/KVLProcessor.h"
#include "plugin/StripReadOuts.h"
#include "strip/ChannelStrip.h"

namespace tarvik
{

/** The Tarvik 41: its parameters, two settings of its own, and its channel strip. */
class Tarvik41Processor : public KVLProcessor, public juce::VST3ClientExtensions
{
public:
    Tarvik41Processor();
    ~Tarvik41Processor() override;

    const juce::String getName() const override { return JucePlugin_Name; } // JUCE's own signature

    ProcessorSetting<int>& limiterSensitivitySetting() const
    {
        return settingAt<int> (settingIndex::limiterSensitivity);
    }

    ProcessorSetting<int>& meterModeSetting() const { return settingAt<int> (settingIndex::meterMode); }

    void handleBroadcast (BroadcastMessage message) override;

    /** Gives a VST3 host that asks for it the strip's read-outs. */
    std::int32_t queryIAudioProcessor (const Steinberg::TUID interfaceID, void** object) override;

protected:
    void prepareDsp (double sampleRate, int oversamplingFactor, int numMainChannels, int maxSamples) override;
    void resetDsp() override;
    void releaseDsp() override;
    void processPreOversampling (float** channels, int numSamples, int numSidechainChannels) override;
    void processChunk (float** channels, int numSamples, int numSidechainChannels) override;
    void processPostOversampling (float** channels, int numSamples, int numSidechainChannels) override;
    void updateDsp (bool force) override;
    bool isSidechainUsed() const override;
    bool isDspSettled() override;
    void skipDsp (int numSamples) override;

private:
    void limiterSensitivityChanged (int sensitivity);
    void showGainReduction();

    ChannelStrip strip;
    juce::RangedAudioParameter* gainReductionParameter = nullptr; ///< Only in the one format that shows it as such.
    RelaxedValue<int> limiterSensitivity = ParameterSnapshot::defaultLimiterSensitivity;
    StripReadOuts readOuts;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (Tarvik41Processor)
};

} // namespace tarvik
