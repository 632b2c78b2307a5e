// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/ParameterSnapshot.h"

namespace tarvik
{
/** The shape of every stage of the strip. Rates are in Hz, rows have one float per sample.

    - prepare: while no audio runs; allocates for one or two main channels and calls of at most maxSamples. `rateHz`,
      above 0, is the rate at which process() runs. Moves end at their targets.
    - reset: while no audio runs. Ends all moves and clears what the stage remembers.
    - release: while no audio runs. Frees the work rows; prepare() comes before audio again.
    - process: audio thread. `numSamples` samples of each main channel, in place. It neither allocates nor waits. */
template <typename S>
concept Stage = requires (S stage, double rateHz, int number, float* const* channels)
{
    stage.prepare (rateHz, number, number);
    requires noexcept (stage.reset());
    stage.release();
    requires noexcept (stage.process (channels, number));
};

/** A stage with controls.

    - update: any thread while audio runs, the audio thread included, one call at a time; it neither allocates nor waits.
      Takes over what differs from the values seen last, or everything when forced.
    - isSettled: audio thread. Whether no move runs or waits, and after silence at the input nothing more than -140 dBFS
      comes out; the stage may then stand still until there is a signal again, or keeps its time by an operation of its
      own. */
template <typename S>
concept ControlledStage = Stage<S> && requires (S stage, const ParameterSnapshot& snapshot, bool force)
{
    requires noexcept (stage.update (snapshot, force));
    requires noexcept (stage.isSettled());
};
} // namespace tarvik
