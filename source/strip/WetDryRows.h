// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/RowOperations.h"

#include <cstddef>
#include <vector>

namespace tarvik
{

/** The arithmetic of a blend around something that works in place: `split` keeps each channel's dry share, `join` takes
    the wet share of what has become of the channel and adds the dry share back. The two shares add up to 1 at every
    sample, as floats do. Audio thread, but for `prepare` and `release`.
*/
class WetDryRows
{
public:
    /** While no audio runs: room for channels of at most maxSamples samples, cleared. */
    void prepare (int channels, int maxSamples)
    {
        numChannels = channels;
        rowLength = static_cast<std::size_t> (maxSamples);
        storage.assign (static_cast<std::size_t> (numChannels + firstDryRow) * rowLength, 0.0f);
    }

    /** While no audio runs. */
    void release()
    {
        numChannels = 0;
        storage = {};
    }

    int getNumChannels() const noexcept { return numChannels; }

    /** The dry share that is kept of a channel. */
    float* dryRow (int channel) noexcept { return rowAt (firstDryRow + channel); }

    /** Fills the wet share, 0 to 1, from a ramp, and keeps the rest of the channels. */
    template <typename RampType>
    void split (RampType& wetShare, const float* const* channels, int n) noexcept
    {
        wetShare.fill (rowAt (wetShareRow), n);
        rows::fill (rowAt (dryShareRow), 1.0f, n);
        rows::subtract (rowAt (dryShareRow), rowAt (wetShareRow), n);

        for (int c = 0; c < numChannels; ++c)
            rows::multiply (dryRow (c), channels[c], rowAt (dryShareRow), n);
    }

    void join (float* const* channels, int n) noexcept
    {
        for (int c = 0; c < numChannels; ++c)
        {
            rows::multiply (channels[c], rowAt (wetShareRow), n);
            rows::add (channels[c], dryRow (c), n);
        }
    }

private:
    float* rowAt (int index) noexcept { return storage.data() + static_cast<std::size_t> (index) * rowLength; }

    static constexpr int wetShareRow = 0;
    static constexpr int dryShareRow = 1;
    static constexpr int firstDryRow = 2;

    std::vector<float> storage;
    std::size_t rowLength = 0;
    int numChannels = 0;
};

} // namespace tarvik
