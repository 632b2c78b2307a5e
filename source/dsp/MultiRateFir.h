// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <hwy/aligned_allocator.h>

#include <span>

namespace tarvik
{
// FIR filters that change the sample rate by an integer factor F. Upsampling computes no product with the zeros that
// interpolation puts between the samples, downsampling no output that decimation drops:
//
//   up:   out[F t + p] = sum over j of taps[p + F j] * in[t - j],  p from 0 to F - 1
//   down: out[t]       = sum over n of taps[n] * in[F t - n]
//
// Each sum is taken in the same order wherever a block begins or ends, so any cutting into blocks gives the same bits.
// (Only a sample that is not finite can tell: it may reach a few outputs more or less.)
//
// Three parts, which the owner keeps together: the layout, MultiRateFirSpec (the taps in the order that the kernels need), the
// delay line (the signal's history), and the work buffer, which holds nothing between calls.

/** Floats aligned for the widest vectors. */
using AlignedFloats = hwy::AlignedFreeUniquePtr<float[]>;

/** The code of one instruction set; see MultiRateFirKernels.h. */
struct UpKernel;
struct DownKernel;
enum class UpMethod;

struct MultiRateFirSpec
{
    int factor = 1;
    int tapsPerPhase = 0; ///< the first phase has one more

    /** One of the two, the other is null. */
    const UpKernel* upKernel = nullptr;
    const DownKernel* downKernel = nullptr;

    /** Up: how the sums are computed. */
    UpMethod upMethod {};

    /** Down: `outputsPerGroup` neighbouring outputs begin `planes` whole vectors after the previous group, so that
        their inputs share one alignment. A group's inputs are `rowsPerGroup` rows of one vector each. Row i of the
        signal is kept in plane i modulo `planes`, so that the groups stand one vector apart and loads spread over
        the cache's banks. */
    int outputsPerGroup = 1;
    int planes = 1;
    int planeSize = 0; ///< floats
    int rowsPerGroup = 0;

    /** Up: in the order that the method needs. Down: plane after plane, row after row, the taps that the row's inputs have in
        each of the group's outputs, zero outside the filter. */
    AlignedFloats taps;

    int delaySize = 0; ///< floats
    int workSize = 0;  ///< floats
};

struct MultiRateFirDelay
{
    AlignedFloats samples;
    int size = 0;     ///< floats
    int position = 0; ///< down: outputs of the current group that are already written

    /** The history becomes silence. */
    void clear() noexcept;
};

/** Lay out a filter of tapsPerPhase * factor + 1 taps for the best instruction set that is enabled now; the result
    keeps to it. `factor` is 2 or more. Allocate; not for the audio thread. */
MultiRateFirSpec makeUpSpec (std::span<const float> taps, int factor);
MultiRateFirSpec makeDownSpec (std::span<const float> taps, int factor);

/** A silent delay line and a work buffer. Allocate. */
MultiRateFirDelay makeDelay (const MultiRateFirSpec& spec);
AlignedFloats makeWork (const MultiRateFirSpec& spec);

/** Read numIn samples and write numIn * factor; read numOut * factor and write numOut. Counts from 0 up, at any size.
    Buffers need no alignment and do not overlap. For the audio thread. */
void runUp (const MultiRateFirSpec& spec, MultiRateFirDelay& delay, float* work, const float* in, float* out,
            int numIn) noexcept;
void runDown (const MultiRateFirSpec& spec, MultiRateFirDelay& delay, float* work, const float* in, float* out,
              int numOut) noexcept;
} // namespace tarvik
