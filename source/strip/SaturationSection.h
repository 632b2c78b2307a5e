// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/ParameterSnapshot.h"
#include "strip/SaturationChannel.h"

#include <memory>
#include <vector>

namespace tarvik
{
/** The harmonic stage behind the equaliser, for all channels of the strip. Every audio channel is the console channel
    that "TOL Channel" says or, unlinked, that one's neighbours in turn. */
class SaturationSection
{
public:
    /** While no audio runs and nothing updates; allocates. */
    void prepare (double rateHz, int numChannels, int maxSamples);

    /** While no audio runs: ends all moves and clears what the channels remember. */
    void reset() noexcept;

    /** Any thread, the audio thread included, one call at a time: takes over "THD" and the console channels where they
        differ from what was seen last, "THD" also when forced. */
    void update (const ParameterSnapshot& snapshot, bool force) noexcept;

    /** Audio thread: n samples of each channel, in place. */
    void process (float* const* channels, int numChannels, int n) noexcept;

private:
    /** Only ever grows: the filters inside may not be destroyed on every thread that prepares. */
    std::vector<std::unique_ptr<SaturationChannel>> channelObjects;
    std::vector<SaturationChannel*> inUse;
    float lastThdDb = 0.0f;
};
} // namespace tarvik
