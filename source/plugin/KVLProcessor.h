// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/Ramps.h"
#include "plugin/BypassFader.h"
#include "plugin/InstanceBroadcaster.h"
#include "plugin/LatencyDelay.h"
#include "plugin/LicenceCheck.h"
#include "plugin/OversamplerBank.h"
#include "plugin/ProcessorSetting.h"
#include "plugin/SilenceWatch.h"
#include "plugin/StateSchema.h"
#include "plugin/UpdateGate.h"
#include "strip/ParameterSnapshot.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <array>
#include <atomic>

namespace tarvik
{

/** Places of the settings in the processor's array, which `stateSchema::settingKeys` names in the same order. */
namespace settingIndex
{
enum : int
{
    calibration,
    oversampling,
    analog,
    uiZoom,
    limiterSensitivity,
    meterMode
};
} // namespace settingIndex

/** The host-facing side of a strip: buses, parameters, settings, state, programs, and the block loop with input and
    output gain, calibration, oversampling, latency delay and bypass fade. A concrete strip fills in the operations
    named ...Dsp and process....

    Threads: blocks arrive on the host's audio thread. Parameters may change on any thread, on that one too, and reach
    the model through `updateDsp`, one call at a time and without a wait. Preparing, state, slots, programs and settings
    belong to the message thread or the host's own state thread.
*/
class KVLProcessor : public juce::AudioProcessor,
                     public juce::AudioProcessorParameter::Listener,
                     public InstanceBroadcaster::Listener
{
public:
    /** The longest stretch that the strip is given at once, at either rate. */
    static constexpr int sliceSize = 256;

    static constexpr int numSlots = 2;

    ~KVLProcessor() override;

    //==============================================================================
    // Slots, programs and settings.

    /** The record that the model listens to. */
    ParameterSnapshot& currentSnapshot() noexcept { return slots[static_cast<std::size_t> (currentSlot.get())]; }

    const ParameterSnapshot& currentSnapshot() const noexcept
    {
        return slots[static_cast<std::size_t> (currentSlot.get())];
    }

    int getCurrentSlot() const noexcept { return currentSlot; }

    const ParameterSnapshot& getSlot (int index) const noexcept { return slots[static_cast<std::size_t> (index)]; }

    /** Makes slot 0 (A) or 1 (B) the current one and tells the host; any other index does nothing. */
    void selectSlot (int index);

    /** Copies the current slot, with its read-outs and track, to the other one. The audio does not change. */
    void copySlotToOther();

    /** Gives every parameter the snapshot's value, without gestures and only where it differs, and then brings the
        model up to date once. Meters, calibration and track are not touched.
    */
    void applySnapshot (const ParameterSnapshot& snapshot);

    ProcessorSetting<double>& calibrationSetting() const { return settingAt<double> (settingIndex::calibration); }

    ProcessorSetting<int>& oversamplingSetting() const { return settingAt<int> (settingIndex::oversampling); }

    ProcessorSetting<bool>& analogSetting() const { return settingAt<bool> (settingIndex::analog); }

    ProcessorSetting<double>& uiZoomSetting() const { return settingAt<double> (settingIndex::uiZoom); }

    float getCalibrationGain() const noexcept { return calibrationGain; }

    /** Draws a new console channel for this instance, in a gesture, so that unlinked sides both find one. */
    void randomChannel();

    //==============================================================================
    // juce::AudioProcessor.

    void prepareToPlay (double sampleRate, int announcedBlockSize) override;
    void releaseResources() override;
    void processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer&) override;
    void processBlockBypassed (juce::AudioBuffer<float>& buffer, juce::MidiBuffer&) override;
    using juce::AudioProcessor::processBlock;
    using juce::AudioProcessor::processBlockBypassed;

    bool isBusesLayoutSupported (const BusesLayout& layouts) const override;
    void updateTrackProperties (const TrackProperties& properties) override;

    bool acceptsMidi() const override { return false; }

    bool producesMidi() const override { return false; }

    bool isMidiEffect() const override { return false; }

    double getTailLengthSeconds() const override { return 0.0; }

    bool hasEditor() const override { return true; }

    juce::AudioProcessorEditor* createEditor() override;

    int getNumPrograms() override;

    int getCurrentProgram() override { return currentProgram; }

    void setCurrentProgram (int index) override;
    const juce::String getProgramName (int index) override; // JUCE's own signature

    void changeProgramName (int, const juce::String&) override {}

    void getStateInformation (juce::MemoryBlock& block) override;
    void setStateInformation (const void* data, int sizeInBytes) override;

    //==============================================================================
    // Listeners.

    /** Any thread: the field follows the parameter, and the model the field. A value that is not a number is undone. */
    void parameterValueChanged (int index, float normalisedValue) override;

    void parameterGestureChanged (int, bool) override {}

    /** Message thread. */
    void handleBroadcast (BroadcastMessage message) override;

protected:
    KVLProcessor();

    //==============================================================================
    // What a concrete strip provides. Channel arrays hold the main channels first, then those of the side chain.

    /** Sizes every stage for sampleRate x oversamplingFactor and for calls of at most maxSamples samples. */
    virtual void prepareDsp (double sampleRate, int oversamplingFactor, int numMainChannels, int maxSamples) = 0;

    /** Ends all moves and clears filters, detectors and delays. */
    virtual void resetDsp() = 0;

    /** Frees the large work buffers. */
    virtual void releaseDsp() = 0;

    /** Host rate, once per slice. */
    virtual void processPreOversampling (float** /*channels*/, int /*numSamples*/, int /*numSidechainChannels*/) {}

    /** Processing rate, at most 256 samples a call. */
    virtual void processOversampledChunk (float** channels, int numSamples, int numSidechainChannels)
    {
        processChunk (channels, numSamples, numSidechainChannels);
    }

    /** The body of the strip; without oversampling it gets the slice itself. */
    virtual void processChunk (float** channels, int numSamples, int numSidechainChannels) = 0;

    /** Host rate, once per slice; the place for meters. */
    virtual void processPostOversampling (float** /*channels*/, int /*numSamples*/, int /*numSidechainChannels*/) {}

    /** A slice in full bypass. */
    virtual void processBypassedChunk (int /*numSamples*/, int /*numSidechainChannels*/, int /*oversamplingFactor*/) {}

    /** Brings the model up to date with the current snapshot; any thread, one call at a time. */
    virtual void updateDsp (bool /*force*/) {}

    /** Whether the current snapshot listens to the side chain. */
    virtual bool isSidechainUsed() const { return false; }

    /** Audio thread: whether a strip without noise, with silent inputs from now on, makes no sound any more. It may then
        sleep: nothing is called but skipDsp().
    */
    virtual bool isDspSettled() { return false; }

    /** Audio thread: so many samples of silence pass for a strip that sleeps, at most SilenceWatch::period. */
    virtual void skipDsp (int /*numSamples*/) {}

    /** The end of a state load, whatever came of it. */
    virtual void onStateRestored() {}

    //==============================================================================
    /** The end of a concrete constructor: listens to all parameters of the generic category, and to broadcasts. */
    void listenToParameters();

    /** Has `update (false)` run: now, or on the thread that is at it, or, asked for by the thread that processes, before
        the next slice. Never waits. */
    void requestUpdate();

    bool isPrepared() const noexcept { return maxSliceSize.get() > 0; }

    template <typename T>
    ProcessorSetting<T>& settingAt (int index) const
    {
        return static_cast<ProcessorSetting<T>&> (*settings[index]);
    }

    template <typename T>
    void addSetting (T fallback, typename ProcessorSetting<T>::Validator validator,
                     typename ProcessorSetting<T>::ChangeAction onChange)
    {
        settings.add (new ProcessorSetting<T> (settingsFile, stateSchema::settingKeys[settings.size()], fallback,
                                               std::move (validator), std::move (onChange)));
    }

    RelaxedValue<bool> analogOn = true;

private:
    /** What a block's channels are, taken once per block and held within what was prepared for. */
    struct BlockChannels
    {
        int numMain = 0;      ///< Main channels of the strip.
        int numSidechain = 0; ///< 0 while nothing listens to it.
        int sidechainStart = 0;
        int firstUnheard = 0; ///< Inputs from here to numInputs are none of the host's outputs.
        int numInputs = 0;
    };

    static BusesProperties makeBuses();
    void makeSettings();
    void calibrationChanged (double decibels);
    void oversamplingChanged (int setting);
    void zoomChanged();
    void tellEditorOfZoom();

    /** The level ramps first, then the model. */
    void update (bool force);

    bool canProcess (juce::AudioBuffer<float>& buffer);
    BlockChannels channelsOf (const juce::AudioBuffer<float>& buffer) const;
    void processSlices (juce::AudioBuffer<float>& buffer, const BlockChannels& layout);
    void processSlice (float** channels, int numMain, int numSide, int n);
    int sleepOrProcess (float** channels, int numMain, int numSide, int n);
    bool isSettled();
    bool isDisturbed() const;
    void processPiece (float** channels, int numMain, int numSide, int n);
    void processMiddleSection (float** channels, int numMain, int numSide, int n);

    /** Four pointers are enough: stereo and a stereo side chain. */
    static constexpr int maxChannels = 4;

    enum GainRow : int
    {
        spareRow,
        inputGainRow,
        outputGainRow,
        numGainRows
    };

    /** Takes a change of the zoom to the editor on the message thread, whichever thread loads the state. */
    struct ZoomNotifier final : juce::AsyncUpdater
    {
        explicit ZoomNotifier (KVLProcessor& processorToUse) : processor (processorToUse) {}

        ~ZoomNotifier() override { cancelPendingUpdate(); }

        void handleAsyncUpdate() override { processor.tellEditorOfZoom(); }

        KVLProcessor& processor;
    };

    std::atomic<bool> ignoreParameterChanges { false };
    UpdateGate updateGate;
    std::atomic<juce::Thread::ThreadID> audioThread { nullptr }; ///< The last one that has processed.

    /** Held while the strip is rebuilt or freed, which a host's thread and the message thread may both ask for. Taken
        before JUCE's callback lock, and never on the audio thread.
    */
    juce::CriticalSection preparationLock;
    double preparedSampleRate = 0.0;

    SharedRamp<GeometricRamp> inputGainRamp { 1.0 }, outputGainRamp { 1.0 };
    float lastInLevelDb = 0.0f, lastOutLevelDb = 0.0f; ///< What the ramps were asked for last.
    juce::AudioBuffer<float> gainRows;
    juce::ApplicationProperties settingsFile;
    juce::OwnedArray<AbstractProcessorSetting> settings;
    std::array<ParameterSnapshot, numSlots> slots;
    RelaxedValue<int> currentSlot = 0;
    RelaxedValue<int> currentProgram = 0;
    RelaxedValue<juce::uint32> lastStateLoadTime = 0;
    RelaxedValue<bool> isFirstStateSave = true;

    OversamplerBank oversamplers;
    RelaxedValue<int> maxSliceSize = 0; ///< 256 while prepared, 0 otherwise.
    int preparedMainChannels = 0;
    int sidechainInUse = 0; ///< Channels of it that the last block heard.
    LatencyDelay latencyDelay;
    RelaxedValue<int> latencyInUse = Polyphase::latencySamples;
    BypassFader bypassFader;
    SilenceWatch silence;
    bool isAsleep = false;
    std::atomic<std::uint32_t> numUpdates { 0 }; ///< Of the model, on any thread.
    std::uint32_t numUpdatesBeforeSleep = 0;
    bool bypassRequested = false;
    static constexpr float activeLevel = 1.0f;
    RelaxedValue<float> calibrationGain = static_cast<float> (ParameterSnapshot::defaultCalibration);
    LicenceCheck licence;
    ZoomNotifier zoomNotifier { *this };

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (KVLProcessor)
};

} // namespace tarvik
