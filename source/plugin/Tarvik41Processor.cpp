// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/Tarvik41Processor.h"

#include "dsp/Decibels.h"
#include "plugin/ParameterTable.h"

namespace tarvik
{

Tarvik41Processor::Tarvik41Processor() : readOuts (*this)
{
    constexpr int defaultMeterMode = 0;

    addSetting<int> (
        ParameterSnapshot::defaultLimiterSensitivity, [] (const int& level) { return level >= 0 && level <= 2; },
        [this] (const int& level) { limiterSensitivityChanged (level); });
    addSetting<int> (defaultMeterMode, [] (const int& mode) { return mode == 0 || mode == 1; }, {});

    for (int index = 0; index < numParameters; ++index)
        addParameter (createParameter (index).release());

    if (wrapperType == wrapperType_AAX)
    {
        gainReductionParameter = createGainReductionParameter().release();
        addParameter (gainReductionParameter);
    }

    listenToParameters();
}

Tarvik41Processor::~Tarvik41Processor()
{
    // A broadcast that comes now must find nobody, rather than half of one.
    InstanceBroadcaster::get().removeListener (*this);
}

//==============================================================================
void Tarvik41Processor::limiterSensitivityChanged (int sensitivity)
{
    limiterSensitivity = sensitivity;
    currentSnapshot().limiterSensitivity = sensitivity;

    if (isPrepared())
        requestUpdate();
}

void Tarvik41Processor::handleBroadcast (BroadcastMessage message)
{
    KVLProcessor::handleBroadcast (message);

    if (message.type == BroadcastMessage::limiterSensitivity)
        limiterSensitivitySetting().setValue (message.value);
}

std::int32_t Tarvik41Processor::queryIAudioProcessor (const Steinberg::TUID interfaceID, void** object)
{
    return readOuts.queryInterface (interfaceID, object);
}

//==============================================================================
void Tarvik41Processor::prepareDsp (double sampleRate, int oversamplingFactor, int numMainChannels, int maxSamples)
{
    strip.prepare (sampleRate, oversamplingFactor, numMainChannels, maxSamples);
}

void Tarvik41Processor::resetDsp() { strip.reset(); }

void Tarvik41Processor::releaseDsp() { strip.release(); }

void Tarvik41Processor::updateDsp (bool force)
{
    auto& snapshot = currentSnapshot();

    // The slot that has just become current may hold a sensitivity from before the setting changed.
    snapshot.limiterSensitivity = limiterSensitivity;
    strip.update (snapshot, force);
}

bool Tarvik41Processor::isSidechainUsed() const
{
    const auto& snapshot = currentSnapshot();
    return snapshot.compExtSideChain || snapshot.expExtSideChain;
}

//==============================================================================
void Tarvik41Processor::processPreOversampling (float** channels, int numSamples, int)
{
    strip.processPre (channels, numSamples, analogOn);
}

void Tarvik41Processor::processChunk (float** channels, int numSamples, int numSidechainChannels)
{
    strip.processMiddle (channels, numSamples, numSidechainChannels, currentSnapshot().eqPost);
}

void Tarvik41Processor::processPostOversampling (float** channels, int numSamples, int)
{
    strip.processPost (channels, numSamples, analogOn, currentSnapshot());
    showGainReduction();
}

bool Tarvik41Processor::isDspSettled() { return strip.isSettled(); }

void Tarvik41Processor::skipDsp (int numSamples)
{
    strip.skip (numSamples, currentSnapshot());
    showGainReduction();
}

void Tarvik41Processor::showGainReduction()
{
    if (gainReductionParameter != nullptr)
        gainReductionParameter->setValueNotifyingHost (
            1.0f - static_cast<float> (gainFromDb (static_cast<double> (currentSnapshot().gainReductionDb))));
}

} // namespace tarvik

//==============================================================================
// What JUCE's wrapper, which declares it, calls for each instance that a host creates.
juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter() { return new tarvik::Tarvik41Processor(); }
