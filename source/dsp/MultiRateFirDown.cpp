// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dsp/MultiRateFirDown.cpp" // this file, compiled once for each instruction set

#include "dsp/Dispatch.h"
#include "dsp/MultiRateFirKernels.h"

// In this order, which sorting would undo.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
#include "dsp/MultiRateFirVectors-inl.h"
// clang-format on

#include <algorithm>
#include <array>
#include <utility>

HWY_BEFORE_NAMESPACE();

namespace tarvik::HWY_NAMESPACE
{
namespace
{
// Lanes are neighbouring inputs, gathered into one sum at the end. The groups' inputs stand one vector apart.

// One row of M groups with R outputs each: each input vector serves R multiply-adds, each tap vector M of them.
template <int R, int M>
HWY_INLINE void addRow (const float* in, const float* taps, Vector* HWY_RESTRICT sums)
{
    const Tag d;
    Vectors<M> x;

    HWY_UNROLL (24)
    for (int m = 0; m < M; ++m)
        x[m] = hn::Load (d, in + m * lanes);

    HWY_UNROLL (16)
    for (int r = 0; r < R; ++r)
    {
        const auto tap = hn::Load (d, taps + r * lanes);

        HWY_UNROLL (24)
        for (int m = 0; m < M; ++m)
            sums[m * R + r] = hn::MulAdd (x[m], tap, sums[m * R + r]);
    }
}

// Two neighbouring rows: all inputs but the first and the last serve both.
template <int R, int M>
HWY_INLINE void addTwoRows (const float* in, const float* taps, Vector* HWY_RESTRICT sums)
{
    const Tag d;
    Vectors<R> tap, nextTap;

    HWY_UNROLL (2)
    for (int r = 0; r < R; ++r)
    {
        tap[r] = hn::Load (d, taps + r * lanes);
        nextTap[r] = hn::Load (d, taps + (R + r) * lanes);
    }

    HWY_UNROLL (25)
    for (int m = 0; m <= M; ++m)
    {
        auto x = hn::Load (d, in + m * lanes);
        keepInRegister (x);

        HWY_UNROLL (2)
        for (int r = 0; r < R; ++r)
        {
            if (m < M)
                sums[m * R + r] = hn::MulAdd (x, tap[r], sums[m * R + r]);

            if (m > 0)
                sums[(m - 1) * R + r] = hn::MulAdd (x, nextTap[r], sums[(m - 1) * R + r]);
        }
    }
}

// All outputs of M groups. `in` is where their inputs begin in the first plane.
template <int R, int M>
void downGroups (const MultiRateFirSpec& spec, const float* in, float* out)
{
    const auto* taps = spec.taps.get();
    Vectors<M * R> sums;

    HWY_UNROLL (24)
    for (int i = 0; i < M * R; ++i)
        sums[i] = hn::Zero (Tag());

    for (int plane = 0; plane < spec.planes; ++plane, in += spec.planeSize)
    {
        const auto rows = (spec.rowsPerGroup - plane + spec.planes - 1) / spec.planes;
        auto row = 0;

        if constexpr (R <= 2)
        {
            for (; row + 2 <= rows; row += 2, taps += 2 * R * lanes)
                addTwoRows<R, M> (in + row * lanes, taps, sums);
        }

        for (; row < rows; ++row, taps += R * lanes)
            addRow<R, M> (in + row * lanes, taps, sums);
    }

    HWY_UNROLL (6)
    for (int i = 0; i < M * R; i += lanesPerBlock)
        storeSums (sums[i], sums[i + 1], sums[i + 2], sums[i + 3], out + i);
}

template <int R>
constexpr int outputsPerStep = R < downOutputsPerStep ? downOutputsPerStep : R;

template <int R, int... steps>
constexpr auto downTable (std::integer_sequence<int, steps...>)
{
    using Function = void (*) (const MultiRateFirSpec&, const float*, float*);
    return std::array<Function, sizeof...(steps)> { &downGroups<R, (steps + 1) * outputsPerStep<R> / R>... };
}

template <int R>
void downBlock (const MultiRateFirSpec& spec, const float* in, int skip, float* out, int numOut)
{
    constexpr auto maxSteps = openSums / outputsPerStep<R>;
    static constexpr auto functions = downTable<R> (std::make_integer_sequence<int, maxSteps>());

    // The next output to compute, and the end; `out` takes those from 0 on.
    const auto end = numOut;
    int output = -skip;

    while (output < end)
    {
        const auto left = (end - output + outputsPerStep<R> - 1) / outputsPerStep<R>;
        const auto callsLeft = (left + maxSteps - 1) / maxSteps;
        const auto steps = (left + callsLeft - 1) / callsLeft;
        const auto computed = steps * outputsPerStep<R>;
        const auto function = functions[static_cast<std::size_t> (steps - 1)];

        if (output >= 0 && output + computed <= end)
        {
            function (spec, in, out + output);
        }
        else
        {
            std::array<float, openSums> samples;
            function (spec, in, samples.data());
            const auto first = std::max (output, 0);
            const auto last = std::min (output + computed, end);
            std::copy (samples.begin() + (first - output), samples.begin() + (last - output), out + first);
        }

        output += computed;
        in += computed / R * lanes;
    }
}

// Deals the vectors of the inputs out to the planes, and returns these.
const float* splitIntoPlanes (const MultiRateFirSpec& spec, float* work, int numOut)
{
    const Tag d;
    auto* const planes = work + spec.planes * spec.planeSize;
    const auto vectors = downReach (spec, numOut) / lanes;

    for (int plane = 0; plane < spec.planes; ++plane)
    {
        auto* dst = planes + plane * spec.planeSize;

        for (int i = plane; i < vectors; i += spec.planes, dst += lanes)
            hn::Store (hn::Load (d, work + i * lanes), d, dst);
    }

    return planes;
}

void run (const MultiRateFirSpec& spec, float* work, int skip, float* out, int numOut)
{
    const float* const in = spec.planes == 1 ? work : splitIntoPlanes (spec, work, skip + numOut);

    if (spec.outputsPerGroup == 1)
        downBlock<1> (spec, in, skip, out, numOut);

    if constexpr (lanes >= 4)
    {
        if (spec.outputsPerGroup == 2)
            downBlock<2> (spec, in, skip, out, numOut);
        else if (spec.outputsPerGroup == 4)
            downBlock<4> (spec, in, skip, out, numOut);
    }

    if constexpr (lanes >= 8)
    {
        if (spec.outputsPerGroup == 8)
            downBlock<8> (spec, in, skip, out, numOut);
    }

    if constexpr (lanes >= 16)
    {
        if (spec.outputsPerGroup == 16)
            downBlock<16> (spec, in, skip, out, numOut);
    }
}

const DownKernel* kernel()
{
    static constexpr DownKernel table { lanes, &run };
    return &table;
}
} // namespace
} // namespace tarvik::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tarvik
{
HWY_EXPORT (kernel);

const DownKernel& downKernel() { return *TARVIK_DISPATCH (kernel)(); }
} // namespace tarvik
#endif
