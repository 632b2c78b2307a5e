// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/ConsoleEQ.h"
#include "strip/ParameterSnapshot.h"
#include "strip/WetDryFader.h"

#include <memory>
#include <vector>

namespace tarvik
{

/** The equaliser of all channels of a strip, faded in and out as a whole, with the fixed gain that makes up for the
    loss of its passive network. Each audio channel is the console channel that "TOL Channel" says or, unlinked, that
    one's neighbours in turn.
*/
class EqualiserSection
{
public:
    /** While no audio runs and nothing updates; allocates. The rate is that at which `process` runs, in Hz. */
    void prepare (double rateHz, int numChannels, int maxSamples);

    /** While no audio runs: frees the fade's rows. */
    void release();

    /** While no audio runs: ends all moves, brings in the newest design and clears what the filters remember. */
    void reset() noexcept;

    /** Any thread, the audio thread included, one call at a time: takes over what differs from the values seen last, or
        everything when forced.
    */
    void update (const ParameterSnapshot& snapshot, bool force) noexcept;

    /** Audio thread: n samples of each channel, in place. */
    void process (float* const* channels, int n) noexcept;

private:
    /** Only ever grows: the filters inside may not be destroyed on every thread that prepares. */
    std::vector<std::unique_ptr<ConsoleEQ>> equalisers;
    std::size_t numInUse = 0;
    WetDryFader fader;
    bool lastEqualizer = false;
};

} // namespace tarvik
