// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MultiRateFir.h"

#include <algorithm>

namespace tarvik
{
/** How the upsampler computes its sums; each needs its own order of the taps. */
enum class UpMethod
{
    /** Any filter, any factor: up to four phases in parallel. */
    direct,

    /** Factor 2: two neighbouring samples' two phases in parallel, so that there are four sums for each input that is
        loaded. Even and odd samples are kept apart. */
    pairs,

    /** Symmetric filters at multiples of eight: phases p and factor - p have the same taps in opposite order. Sums and
        differences of the inputs at equal distance from both ends, each with half of the taps' sum or difference,
        give E and O, and the phases are E + O and E - O: half the multiplications. */
    folded
};

/** Phases of the upsampler that are computed in parallel, at most. */
inline constexpr int upPhasesPerGroup = 4;

/** Outputs of the downsampler that are computed in parallel come in multiples of this, and of the group. */
inline constexpr int downOutputsPerStep = 4;

/** One instruction set's upsampler. */
struct UpKernel
{
    /** Samples of the base rate that are computed at once, at most. As many are read after the last input; what
        they hold does not matter. */
    int tile;

    /** The least factor at which the folded method is worth its preparations. */
    int minFoldedFactor;

    /** Computes numIn * factor outputs. `in` is the first new sample, with the tapsPerPhase older ones in front;
        `scratch` has upScratchSize floats. */
    void (*run) (const MultiRateFirSpec& spec, const float* in, float* scratch, float* out, int numIn);
};

/** One instruction set's downsampler. */
struct DownKernel
{
    int lanes; ///< floats of a vector

    /** Computes outputs skip to skip + numOut - 1 and writes them to `out`. `work` is aligned and begins with the
        oldest input of output 0; the first downReach (spec, skip + numOut) floats are the inputs, with zeros for
        those to come. */
    void (*run) (const MultiRateFirSpec& spec, float* work, int skip, float* out, int numOut);
};

/** Those of the best instruction set that is enabled now. */
const UpKernel& upKernel();
const DownKernel& downKernel();

/** Longest run of inputs for one call of UpKernel::run. */
inline constexpr int maxUpPass = 256;

/** Floats that one call needs: the inputs' even and odd samples, or their sums and differences and all E and O; after
    them a tile of outputs for the block's end. */
constexpr int upScratchSize (const MultiRateFirSpec& spec, int tile) noexcept
{
    const auto forPairs = 2 * (spec.tapsPerPhase + maxUpPass + tile);
    const auto forFolded = tile * (spec.tapsPerPhase + spec.factor + 2);
    return std::max (forPairs, forFolded) + tile * spec.factor;
}

/** Floats that the downsampler's work buffer begins with for `numOut` outputs from the beginning of a group, a whole
    number of vectors in each plane: what the kernel reads, and all inputs of the last output, which it does not
    read yet. */
constexpr int downReach (const MultiRateFirSpec& spec, int numOut) noexcept
{
    const auto roundedUp = [] (int n, int step) { return (n + step - 1) / step * step; };
    const auto floatsOfGroup = spec.outputsPerGroup * spec.factor;
    const auto computed = roundedUp (numOut, std::max (spec.outputsPerGroup, downOutputsPerStep));
    const auto lanes = floatsOfGroup / spec.planes;
    const auto read = (computed - spec.outputsPerGroup) * spec.factor + spec.rowsPerGroup * lanes;
    return roundedUp (std::max (read, (spec.tapsPerPhase + numOut) * spec.factor), floatsOfGroup);
}
} // namespace tarvik
