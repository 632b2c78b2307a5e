// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/ParameterSnapshot.h"
#include "strip/WetDryFader.h"

namespace tarvik
{

/** The equaliser of all channels, faded in and out as a whole, and the fixed gain that makes up for the loss of its
   passive network. The network itself is not here yet: what remains is the fade and the gain.
*/
class EqualiserSection
{
public:
    void prepare (double rateHz, int numChannels, int maxSamples);
    void release();
    void reset() noexcept;

    /** Any thread, one at a time. */
    void update (const ParameterSnapshot& snapshot, bool force) noexcept;

    /** Audio thread: n samples of each channel, in place. */
    void process (float* const* channels, int numChannels, int n) noexcept;

private:
    WetDryFader fader;
    bool lastEqualizer = false;
};

} // namespace tarvik
