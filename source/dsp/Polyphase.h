// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MultiRateFir.h"
#include "dsp/PolyphaseDesign.h"

#include <memory>
#include <vector>

namespace tarvik
{
struct PolyphaseFilters;

/** Rate conversion by an integer factor, for channels that are converted together: up before the processing, down after
    it. Movable, not copyable.

    Memory is allocated in `setup` only. One thread at a time; `setup` never while another call runs. */
class Polyphase
{
public:
    /** Delay of both ways together at the base rate, at every factor above 1; at 1 there is none. */
    static constexpr int latencySamples = polyphaseLatencySamples;

    /** Makes as many channels as told (a negative number counts as 0), with filters for the best instruction set, and clears
        their history, also when nothing changes. With a factor of 1 or less there are no filters, and both ways copy.
        Channels that fall away free their memory. Allocates; never while audio is processed. */
    void setup (int channels, int newFactor);

    /** Clears the history of a channel, which is below getNumChannels(). */
    void reset (int channel) noexcept;

    int getFactor() const noexcept { return factor; }

    int getNumChannels() const noexcept { return static_cast<int> (records.size()); }

    /** Reads `numIn` samples (0 or more, of any number) and writes numIn * factor, at the level of the input. `in` and
        `out` do not overlap, but may be the same where the factor is 1 or less. `channel` is below getNumChannels(). */
    void up (int channel, const float* in, float* out, int numIn) noexcept;

    /** Reads numOut * factor samples and writes `numOut`; otherwise as `up`. */
    void down (int channel, const float* in, float* out, int numOut) noexcept;

private:
    struct PolyphaseChannel
    {
        MultiRateFirDelay upDelay, downDelay;
    };

    int factor = 1;
    std::shared_ptr<const PolyphaseFilters> filters; ///< all instances of a factor have the same
    std::vector<PolyphaseChannel> records;
    AlignedFloats work; ///< of whichever way of whichever channel is being converted
};
} // namespace tarvik
