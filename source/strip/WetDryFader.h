// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/Ramps.h"

#include <cstddef>
#include <vector>

namespace tarvik
{

/** Blends a stage in and out around what it does: `begin` keeps the dry share of each channel, the stage works in
   place, `end` takes its wet share and adds the dry share back.

    While the fade rests at 1 both calls return at once. The two shares add up to 1 at every sample, as floats do.
*/
class WetDryFader
{
public:
    /** The way in for the wet share, 0 to 1; any thread. */
    SharedRamp<LinearRamp> fade;

    /** While no audio runs. rateHz is the rate at which the stage runs; a full fade lasts 100 ms of it. */
    void prepare (double rateHz, int numChannels, int maxSamples);

    /** While no audio runs: frees the rows. */
    void release();

    /** Audio thread; n is at most maxSamples, and there are at most numChannels channels. */
    void begin (const float* const* channels, int numChannels, int n) noexcept;

    /** Audio thread, behind `begin` with the same arguments. */
    void end (float* const* channels, int numChannels, int n) noexcept;

private:
    float* rowAt (int index) noexcept { return storage.data() + static_cast<std::size_t> (index) * rowLength; }

    static constexpr int wetRow = 0;
    static constexpr int dryShareRow = 1;
    static constexpr int firstDryRow = 2;

    std::vector<float> storage;
    std::size_t rowLength = 0;
    bool isActive = false;
};

} // namespace tarvik
