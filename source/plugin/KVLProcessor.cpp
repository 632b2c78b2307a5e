// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/KVLProcessor.h"

#include "dsp/Decibels.h"
#include "plugin/EditorInterface.h"
#include "plugin/FactoryPrograms.h"
#include "plugin/HostBuses.h"
#include "plugin/LibraryStart.h"
#include "plugin/ParameterTable.h"
#include "plugin/SettingsFile.h"
#include "plugin/SwitchParameter.h"

#include <cmath>

namespace tarvik
{

KVLProcessor::KVLProcessor() : AudioProcessor (makeBuses())
{
    startLibrary();

    settingsFile.setStorageParameters (settingsFileOptions());
    makeSettings();
    oversamplingChanged (oversamplingSetting().getValue());

    setReadyForBroadcasts (false); // until the concrete strip is complete
    InstanceBroadcaster::get().addListener (*this);
}

juce::AudioProcessor::BusesProperties KVLProcessor::makeBuses()
{
    const auto stereo = juce::AudioChannelSet::stereo();
    return BusesProperties()
        .withInput ("Input", stereo, true)
        .withOutput ("Output", stereo, true)
        .withInput ("Sidechain", stereo, true);
}

KVLProcessor::~KVLProcessor() { InstanceBroadcaster::get().removeListener (*this); }

juce::AudioProcessorEditor* KVLProcessor::createEditor() { return createStripEditor (*this); }

//==============================================================================
bool KVLProcessor::isBusesLayoutSupported (const BusesLayout& layouts) const
{
    const auto main = layouts.getMainInputChannelSet();
    const auto sidechain = layouts.inputBuses[1]; // the empty set if there is no such bus

    if (main != layouts.getMainOutputChannelSet())
        return false;

    if (! isMainBusOffered (main, wrapperType == wrapperType_VST3 ? hostInUse() : juce::PluginHostType::UnknownHost))
        return false;

    if (sidechain == main || sidechain.isDisabled())
        return true;

    // A VST3 host that offers a side chain of another width is refused, and finds the bus at the main width when it
    // looks. The query is const by JUCE's signature, while the adjustment is meant.
    if (wrapperType == wrapperType_VST3)
    {
        auto adjusted = layouts;
        adjusted.inputBuses.getReference (1) = main;
        const_cast<KVLProcessor*> (this)->setBusesLayout (adjusted);
    }

    return false;
}

void KVLProcessor::updateTrackProperties (const TrackProperties& properties)
{
    for (auto& slot : slots)
    {
        slot.trackName = properties.name;
        slot.trackColour = properties.colour.getARGB();
    }
}

//==============================================================================
void KVLProcessor::listenToParameters()
{
    for (auto* const parameter : getParameters())
        if (parameter->getCategory() == juce::AudioProcessorParameter::genericParameter)
            parameter->addListener (this);

    setReadyForBroadcasts (true);
}

void KVLProcessor::parameterValueChanged (int index, float normalisedValue)
{
    auto* const parameter = dynamic_cast<juce::RangedAudioParameter*> (getParameters()[index]);
    const auto field = fieldForParameter (currentSnapshot(), index);

    if (parameter == nullptr || ! field)
        return;

    if (! std::isfinite (normalisedValue))
    {
        parameter->setValue (parameter->convertTo0to1 (field.get()));
        return;
    }

    field.set (parameter->convertFrom0to1 (parameter->getValue()));

    // Either this sees that the flag has gone, or the end of `applySnapshot` sees the field.
    std::atomic_thread_fence (std::memory_order_seq_cst);

    if (! ignoreParameterChanges)
        requestUpdate();
}

void KVLProcessor::applySnapshot (const ParameterSnapshot& snapshot)
{
    // Values first: the parameters write into the current slot, which may be the very snapshot that is applied.
    std::array<float, numParameters> values {};

    for (int index = 0; index < numParameters; ++index)
        values[static_cast<std::size_t> (index)] = plainValueOf (snapshot, index);

    ignoreParameterChanges = true;

    for (auto* const p : getParameters())
    {
        auto* const parameter = dynamic_cast<juce::RangedAudioParameter*> (p);
        const auto index = p->getParameterIndex();

        if (parameter == nullptr || index >= numParameters)
            continue;

        // What a parameter holds lies on its grid, so that is what the wanted value is compared with.
        const auto wanted =
            parameter->getNormalisableRange().snapToLegalValue (values[static_cast<std::size_t> (index)]);
        const auto present = parameter->convertFrom0to1 (parameter->getValue());

        // A host that set a switch to 0.4 may still show that.
        const auto* const asSwitch = dynamic_cast<const SwitchParameter*> (parameter);
        const auto hostKnows = asSwitch == nullptr || ! asSwitch->wasSnapped();

        if (! std::isfinite (wanted) || (wanted == present && hostKnows))
            continue;

        const auto normalised = parameter->convertTo0to1 (wanted);
        parameter->setValue (normalised);
        parameter->sendValueChangedMessageToListeners (normalised);
    }

    ignoreParameterChanges = false;
    std::atomic_thread_fence (std::memory_order_seq_cst);
    requestUpdate();
}

void KVLProcessor::requestUpdate()
{
    // The slice that follows would solve filters for every parameter, of which it hears the last state alone.
    if (audioThread.load (std::memory_order_relaxed) == juce::Thread::getCurrentThreadId())
        updateGate.leaveNote();
    else
        updateGate.request ([this] { update (false); });
}

void KVLProcessor::update (bool force)
{
    const auto& snapshot = currentSnapshot();
    const auto request = [force] (auto& ramp, float& lastDb, float db)
    {
        if (force || db != lastDb)
            ramp.request (gainFromDb (static_cast<double> (lastDb = db)));
    };
    request (inputGainRamp, lastInLevelDb, snapshot.inLevel);
    request (outputGainRamp, lastOutLevelDb, snapshot.outLevel);
    updateDsp (force);
    numUpdates.fetch_add (1, std::memory_order_release);
}

//==============================================================================
void KVLProcessor::randomChannel()
{
    auto* const channel = dynamic_cast<juce::AudioParameterInt*> (getParameters()[parameterIndex::tolChannel]);

    if (channel == nullptr)
        return;

    const auto range = channel->getRange();
    const auto low = range.getStart();
    const auto high = std::max (low, range.getEnd());
    const auto spare = currentSnapshot().tolLink ? 0 : getChannelCountOfBus (true, 0) - 1;

    juce::Random random;
    random.setSeedRandomly();
    const auto drawn = random.nextInt ({ low, std::max (low, high - spare) + 1 });

    channel->beginChangeGesture();
    *channel = drawn;
    channel->endChangeGesture();
}

//==============================================================================
void KVLProcessor::selectSlot (int index)
{
    if (! juce::isPositiveAndBelow (index, static_cast<int> (numSlots)))
        return;

    currentSlot = index;
    applySnapshot (currentSnapshot());
    updateHostDisplay();
}

void KVLProcessor::copySlotToOther()
{
    const auto other = (currentSlot + 1) % numSlots;
    slots[static_cast<std::size_t> (other)] = currentSnapshot();
}

//==============================================================================
int KVLProcessor::getNumPrograms() { return static_cast<int> (factoryPrograms().size()); }

void KVLProcessor::setCurrentProgram (int index)
{
    constexpr juce::uint32 restoreMilliseconds = 500;

    currentProgram = juce::jlimit (0, getNumPrograms() - 1, index);

    // Hosts that restore a project set its program number right after the state, which it must not overwrite.
    if (juce::Time::getMillisecondCounter() - lastStateLoadTime < restoreMilliseconds)
        return;

    applySnapshot (factoryPrograms()[static_cast<std::size_t> (currentProgram.get())].snapshot);
}

const juce::String KVLProcessor::getProgramName (int index)
{
    if (! juce::isPositiveAndBelow (index, getNumPrograms()))
        return {};

    return factoryPrograms()[static_cast<std::size_t> (index)].name;
}

} // namespace tarvik
