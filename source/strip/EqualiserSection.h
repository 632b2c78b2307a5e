// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/ConsoleEQ.h"
#include "strip/ParameterSnapshot.h"
#include "strip/WetDryFader.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace tarvik
{

/** Where the snapshot has the equaliser's switches and pots, for one console channel, 0 to 31. Any thread. */
EQControls equaliserControls (const ParameterSnapshot& snapshot, int toleranceChannel) noexcept;

/** The equaliser of all channels of a strip, faded in and out as a whole, with the fixed gain that makes up for the
    loss of its passive network. Each audio channel is the console channel that "TOL Channel" says or, unlinked,
    one of its neighbours.

    Faded out it runs on for some seconds, so that whoever compares by switching hears filters that have never stopped.
    Then it rests, costs nothing, and comes back with clear filters.
*/
class EqualiserSection
{
public:
    // A ControlledStage.
    void prepare (double rateHz, int numChannels, int maxSamples);
    void reset() noexcept;

    void release() { fader.release(); }

    void update (const ParameterSnapshot& snapshot, bool force) noexcept;
    void process (float* const* channels, int numSamples) noexcept;
    bool isSettled() noexcept;

    /** Audio thread: for a settled section, the time of so many samples of silence. */
    void skip (int numSamples) noexcept;

private:
    static constexpr double secondsUntilRest = 5.0;

    bool isAtRest() const noexcept { return fader.isClosed() && closedSamples >= samplesUntilRest; }

    void countClosed (std::uint32_t numSamples) noexcept;

    /** Only ever grows: the filters inside may not be destroyed on every thread that prepares. */
    std::vector<std::unique_ptr<ConsoleEQ>> equalisers;
    std::size_t numInUse = 0;
    WetDryFader fader;
    std::uint32_t samplesUntilRest = 1;
    std::uint32_t closedSamples = 0; ///< since the fade closed, up to the above
    bool lastEqualizer = false;
};

} // namespace tarvik
