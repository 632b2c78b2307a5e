// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/Polyphase.h"

#include <juce_audio_basics/juce_audio_basics.h>

namespace tarvik
{

/** The way up to the processing rate and back, for all channels of a strip. Audio thread, except
    `prepare` and `release`. */
class OversamplerBank
{
public:
    /** The factors that make sense; a setting beyond them counts as the nearest. */
    static constexpr int lowestFactor = 1, highestFactor = 16;

    static int usableFactor (int setting) noexcept { return juce::jlimit (lowestFactor, highestFactor, setting); }

    /** Samples at the host's rate that the way up and back delays by. */
    static int latencyOfFactor (int factor) noexcept { return factor > lowestFactor ? Polyphase::latencySamples : 0; }

    /** While no audio runs: sizes the samplers for `channels` channels, clears them, and makes room for slices of at
        most maxSliceSize samples.
    */
    void prepare (int channels, int factor, int maxSliceSize)
    {
        samplers.setup (channels, factor);

        if (factor > lowestFactor)
            oversampledBuffer.setSize (channels, factor * maxSliceSize, false, true, true);
        else
            release();
    }

    /** While no audio runs: frees the room at the processing rate. */
    void release() { oversampledBuffer.setSize (0, 0); }

    int getFactor() const noexcept { return samplers.getFactor(); }

    int getNumChannels() const noexcept { return samplers.getNumChannels(); }

    /** Forgets what the channel has heard. */
    void clear (int channel) noexcept { samplers.reset (channel); }

    /** Takes n samples of a channel up to the processing rate, at their level; the factor must be above 1. */
    void upsample (int channel, const float* row, int n) noexcept
    {
        samplers.up (channel, row, processingRow (channel), n);
    }

    /** Brings the channel back: n samples at the host's rate. */
    void downsample (int channel, float* row, int n) noexcept
    {
        samplers.down (channel, processingRow (channel), row, n);
    }

    /** The channel's samples at the processing rate: factor x n of the slice. */
    float* processingRow (int channel) noexcept { return oversampledBuffer.getWritePointer (channel); }

private:
    Polyphase samplers;
    juce::AudioBuffer<float> oversampledBuffer;
};

} // namespace tarvik
