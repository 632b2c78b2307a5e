// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/RampTimes.h"
#include "dsp/RowOperations.h"
#include "plugin/KVLProcessor.h"

#include <algorithm>
#include <cmath>

namespace tarvik
{

namespace
{
/** +60 dBFS. Audio beyond it, or that is not a number, is held here before any stage can keep it. */
constexpr float highestSample = 1000.0f;

/** A damaged project may calibrate the strip to any gain. Beyond 100 dB the scaled samples are held where every stage
    can still calculate.
*/
constexpr double highestPlainCalibration = 1.0e5;
constexpr float highestScaledSample = 1.0e8f;

/** A host that announces no usable rate gets filters for the commonest one, rather than unstable ones. */
double usableRate (double announcedHz) noexcept
{
    constexpr double commonestHz = 44100.0;
    return std::isfinite (announcedHz) && announcedHz > 0.0 ? announcedHz : commonestHz;
}
} // namespace

//==============================================================================
void KVLProcessor::prepareToPlay (double announcedRate, int)
{
    const juce::ScopedLock lock (preparationLock);
    const UpdateGate::Hold hold (updateGate, [this] { update (false); });

    const auto sampleRate = preparedSampleRate = usableRate (announcedRate);
    const auto numMain = preparedMainChannels = getChannelCountOfBus (true, 0);
    const auto factor = OversamplerBank::usableFactor (oversamplingSetting().getValue());
    latencyInUse = OversamplerBank::latencyOfFactor (factor);
    maxSliceSize = sliceSize;

    prepareDsp (sampleRate, factor, numMain, sliceSize);

    // Slices are cut to 256 whatever the host announces and sends, so that is what the rows hold.
    gainRows.setSize (numGainRows, sliceSize, false, true, true);

    update (true);
    resetDsp();

    oversamplers.prepare (std::max (getTotalNumInputChannels(), 2 * numMain), factor, sliceSize);
    latencyDelay.prepare (numMain);
    inputGainRamp.prepare (rampSteps (sampleRate));
    outputGainRamp.prepare (rampSteps (sampleRate));
    bypassFader.prepare (sampleRate, numMain, sliceSize);
    silence = {};
    isAsleep = false;
}

void KVLProcessor::releaseResources()
{
    const juce::ScopedLock lock (preparationLock);
    const UpdateGate::Hold hold (updateGate, [this] { update (false); });

    maxSliceSize = 0;
    releaseDsp();
    oversamplers.release();
}

//==============================================================================
void KVLProcessor::processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer&)
{
    if (bypassRequested)
    {
        bypassFader.wet.set (activeLevel);
        bypassRequested = false;
    }

    const juce::ScopedNoDenormals noDenormals;

    if (! canProcess (buffer))
        return;

    const auto layout = channelsOf (buffer);
    processSlices (buffer, layout);

    // What came in on the side chain must not reach the host as output.
    for (int c = layout.firstUnheard; c < layout.numInputs; ++c)
        buffer.clear (c, 0, buffer.getNumSamples());
}

void KVLProcessor::processBlockBypassed (juce::AudioBuffer<float>& buffer, juce::MidiBuffer&)
{
    if (! bypassRequested)
    {
        bypassRequested = true;
        bypassFader.wet.set (0.0);
    }

    if (! canProcess (buffer))
        return;

    const auto layout = channelsOf (buffer);

    if (! bypassFader.wet.isIdle()) // asked once for the whole block
    {
        processSlices (buffer, layout);
        return;
    }

    sidechainInUse = 0;
    const auto numDelayed = std::min (latencyDelay.getNumChannels(), buffer.getNumChannels());

    for (int offset = 0; offset < buffer.getNumSamples(); offset += sliceSize)
    {
        const auto n = std::min (static_cast<int> (sliceSize), buffer.getNumSamples() - offset);
        processBypassedChunk (n, layout.numSidechain, oversamplers.getFactor());

        for (int c = 0; c < numDelayed; ++c)
            latencyDelay.process (c, buffer.getWritePointer (c, offset), n, latencyInUse);
    }
}

/** False if the block has no samples, or is silenced because nothing may run. */
bool KVLProcessor::canProcess (juce::AudioBuffer<float>& buffer)
{
    if (const auto thisThread = juce::Thread::getCurrentThreadId();
        audioThread.load (std::memory_order_relaxed) != thisThread)
        audioThread.store (thisThread, std::memory_order_relaxed);

    if (! licence.permitsAudio() || ! isPrepared())
    {
        buffer.clear();
        return false;
    }

    return buffer.getNumSamples() > 0;
}

//==============================================================================
KVLProcessor::BlockChannels KVLProcessor::channelsOf (const juce::AudioBuffer<float>& buffer) const
{
    const auto inBuffer = buffer.getNumChannels();
    const auto* const sidechain = getBus (true, 1);
    const auto isListening = sidechain != nullptr && sidechain->getNumberOfChannels() > 0 && isSidechainUsed();

    BlockChannels layout;
    layout.numMain = std::min (preparedMainChannels, static_cast<int> (maxChannels));
    layout.sidechainStart = std::min (getChannelCountOfBus (true, 0), inBuffer);
    layout.firstUnheard = getChannelCountOfBus (false, 0);
    layout.numInputs = std::min (getTotalNumInputChannels(), inBuffer);

    if (isListening)
    {
        // A host may change the layout under a running strip; what was prepared for bounds what is used.
        const auto offered = layout.numInputs - layout.sidechainStart;
        const auto room = std::min (oversamplers.getNumChannels(), static_cast<int> (maxChannels)) - layout.numMain;
        layout.numSidechain = std::max (0, std::min (offered, room));
    }

    return layout;
}

void KVLProcessor::processSlices (juce::AudioBuffer<float>& buffer, const BlockChannels& layout)
{
    // A side chain that begins to be heard begins with silence, not with what its samplers kept from the last time.
    for (int c = sidechainInUse; c < layout.numSidechain; ++c)
        oversamplers.clear (layout.numMain + c);

    sidechainInUse = layout.numSidechain;
    const auto numSamples = buffer.getNumSamples();

    for (int offset = 0; offset < numSamples; offset += sliceSize)
    {
        const auto n = std::min (static_cast<int> (sliceSize), numSamples - offset);
        float* channels[maxChannels] = {};

        for (int c = 0; c < layout.numMain; ++c)
        {
            if (c < layout.sidechainStart)
            {
                channels[c] = buffer.getWritePointer (c, offset);
            }
            else
            {
                // A main channel that the host has left out is silent, and goes nowhere.
                channels[c] = gainRows.getWritePointer (spareRow);
                rows::fill (channels[c], 0.0f, n);
            }
        }

        for (int c = 0; c < layout.numSidechain; ++c)
            channels[layout.numMain + c] = buffer.getWritePointer (layout.sidechainStart + c, offset);

        processSlice (channels, layout.numMain, layout.numSidechain, n);
    }
}

void KVLProcessor::processSlice (float** channels, int numMain, int numSide, int n)
{
    updateGate.catchUp ([this] { update (false); });

    for (int length = 0; n > 0; n -= length)
    {
        length = sleepOrProcess (channels, numMain, numSide, n);

        for (int c = 0; c < numMain + numSide; ++c)
            channels[c] += length;
    }
}

/** Takes as many of n samples as the strip sleeps or is awake for, and returns their number. */
int KVLProcessor::sleepOrProcess (float** channels, int numMain, int numSide, int n)
{
    if (analogOn && ! isAsleep)
    {
        silence.restart();
        processPiece (channels, numMain, numSide, n);
        return n;
    }

    const auto numChannels = numMain + numSide;
    const auto silent = SilenceWatch::countAtStart (channels, numChannels, n);

    if (isAsleep && (silent == 0 || isDisturbed()))
    {
        isAsleep = false;

        if (const auto slept = silence.restart(); slept > 0)
            skipDsp (slept);
    }

    if (isAsleep)
    {
        const auto length = silence.getPieceLength (silent, silent);

        for (int c = 0; c < numMain; ++c)
            std::fill_n (channels[c], length, 0.0f); // there may be -0

        if (silence.endPiece (length, length))
            skipDsp (SilenceWatch::period);

        return length;
    }

    const auto length = silence.getPieceLength (n, silent);
    const auto silentAtEnd =
        silent >= length ? length : SilenceWatch::countAtEnd (channels, numChannels, length); // before work in place
    processPiece (channels, numMain, numSide, length);

    if (silence.endPiece (length, silentAtEnd))
        isAsleep = isSettled();

    return length;
}

bool KVLProcessor::isSettled()
{
    numUpdatesBeforeSleep = numUpdates.load (std::memory_order_acquire); // first: what comes from now on disturbs
    return ! isDisturbed() && inputGainRamp.isIdle() && outputGainRamp.isIdle() && isDspSettled();
}

bool KVLProcessor::isDisturbed() const
{
    return numUpdates.load (std::memory_order_acquire) != numUpdatesBeforeSleep || analogOn
           || ! bypassFader.isSettled();
}

void KVLProcessor::processPiece (float** channels, int numMain, int numSide, int n)
{
    const auto numChannels = numMain + numSide;
    auto* const inputGain = gainRows.getWritePointer (inputGainRow);
    auto* const outputGain = gainRows.getWritePointer (outputGainRow);
    const double calibration = currentSnapshot().calibration;

    rows::clampToFinite (channels, numChannels, highestSample, n);
    bypassFader.beginSlice (channels, n, latencyDelay, latencyInUse);

    // Both look at their requests now, so that one change of both gains is heard in one slice. A gain of 1 costs
    // nothing.
    const auto changesInput = ! inputGainRamp.isIdleAtOne(), changesOutput = ! outputGainRamp.isIdleAtOne();

    if (changesInput)
    {
        inputGainRamp.fillTaken (inputGain, n);

        for (int c = 0; c < numChannels; ++c)
            rows::multiply (channels[c], inputGain, n);
    }

    if (changesOutput)
        outputGainRamp.fillTaken (outputGain, n);

    rows::scale (channels, numChannels, static_cast<float> (calibration), n);

    if (calibration > highestPlainCalibration)
        rows::clampToFinite (channels, numChannels, highestScaledSample, n);

    processPreOversampling (channels, n, numSide);
    processMiddleSection (channels, numMain, numSide, n);
    processPostOversampling (channels, n, numSide);

    rows::scale (channels, numMain, static_cast<float> (1.0 / calibration), n);

    if (changesOutput)
        for (int c = 0; c < numMain; ++c)
            rows::multiply (channels[c], outputGain, n);

    bypassFader.endSlice (channels, n);
}

void KVLProcessor::processMiddleSection (float** channels, int numMain, int numSide, int n)
{
    const auto factor = oversamplers.getFactor();

    if (factor <= 1)
    {
        processChunk (channels, n, numSide);
        return;
    }

    const auto numChannels = numMain + numSide;

    for (int c = 0; c < numChannels; ++c)
        oversamplers.upsample (c, channels[c], n);

    for (int position = 0; position < factor * n; position += sliceSize)
    {
        float* chunk[maxChannels] = {};

        for (int c = 0; c < numChannels; ++c)
            chunk[c] = oversamplers.processingRow (c) + position;

        processOversampledChunk (chunk, std::min (static_cast<int> (sliceSize), factor * n - position), numSide);
    }

    for (int c = 0; c < numMain; ++c)
        oversamplers.downsample (c, channels[c], n);
}

} // namespace tarvik
