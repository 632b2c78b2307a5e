// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MultiRateFir.h"
#include "dsp/PolyphaseDesign.h"

#include <vector>

namespace tarvik
{
/** Rate conversion of one audio channel by an integer factor: up before the processing, down after it.

    Memory is allocated in `setup` only. One thread at a time; `setup` never while another call runs. */
class PolyphaseChannel
{
public:
    /** Builds both filters anew, for the best instruction set, and clears their history, also when `newFactor` is the
        old one. With 1 or less there are no filters, and both ways copy. Allocates. */
    void setup (int newFactor);

    /** Clears the history of both ways. */
    void reset() noexcept;

    /** Reads `numIn` samples (0 or more, of any number) and writes numIn * factor, at the level of the input. `in` and
        `out` do not overlap, but may be the same where the factor is 1 or less. */
    void up (const float* in, float* out, int numIn) noexcept;

    /** Reads numOut * factor samples and writes `numOut`; otherwise as `up`. */
    void down (const float* in, float* out, int numOut) noexcept;

private:
    MultiRateFirSpec upSpec;
    MultiRateFirDelay upDelay;
    AlignedFloats upWork;

    MultiRateFirSpec downSpec;
    MultiRateFirDelay downDelay;
    AlignedFloats downWork;

    int factor = 1;
    int length = 0; ///< taps of the filter
};

/** The channels that are converted together. Movable, not copyable. */
class Polyphase
{
public:
    /** Delay of both ways together at the base rate, at every factor above 1; at 1 there is none. */
    static constexpr int latencySamples = polyphaseLatencySamples;

    /** Makes as many channels as told (a negative number counts as 0) and, with a factor above 1, builds all their
        filters anew, which clears the history. Channels that fall away free their memory. Allocates; never while
        audio is processed. */
    void setup (int channels, int newFactor);

    /** Clears the history of a channel, which is below getNumChannels(). */
    void reset (int channel) noexcept { records[static_cast<std::size_t> (channel)].reset(); }

    int getFactor() const noexcept { return factor; }

    int getNumChannels() const noexcept { return static_cast<int> (records.size()); }

    /** As PolyphaseChannel; `channel` is below getNumChannels(). */
    void up (int channel, const float* in, float* out, int numIn) noexcept;
    void down (int channel, const float* in, float* out, int numOut) noexcept;

private:
    int factor = 1;
    std::vector<PolyphaseChannel> records;
};
} // namespace tarvik
