// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dsp/MultiRateFirUp.cpp" // this file, compiled once for each instruction set

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
// Lanes are neighbouring samples of the base rate (of the pairs: every second one), a tile is T vectors of them.
constexpr int maxVectors = openSums / upPhasesPerGroup;

// In samples; those of the pairs are the largest.
constexpr int maxTile = 2 * maxVectors * lanes;

// A smaller tile where the sums and differences of the inputs must stay in the innermost cache.
constexpr int maxFoldedVectors = std::min (maxVectors, 4);

// P sums over T vectors each: for `count` taps, every source in turn adds its vectors times the next P numbers of
// `taps`. Each input vector serves P multiply-adds, each tap T of them. The sources move by `step` floats a tap.
template <int P, int T, std::size_t numSources>
HWY_INLINE void accumulate (std::array<const float*, numSources> sources, int step, const float* taps, int count,
                            Vectors<T>* HWY_RESTRICT sums)
{
    const Tag d;

    for (int j = 0; j < count; ++j)
    {
        HWY_UNROLL (2)
        for (auto& source : sources)
        {
            Vectors<T> x;

            HWY_UNROLL (6)
            for (int t = 0; t < T; ++t)
            {
                x[t] = hn::LoadU (d, source + t * lanes);
                keepInRegister (x[t]);
            }

            source += step;

            HWY_UNROLL (4)
            for (int p = 0; p < P; ++p)
            {
                const auto tap = hn::Set (d, taps[p]);

                HWY_UNROLL (6)
                for (int t = 0; t < T; ++t)
                    sums[p][t] = hn::MulAdd (x[t], tap, sums[p][t]);
            }

            taps += P;
        }
    }
}

template <int P, int T>
HWY_INLINE void clear (Vectors<T>* HWY_RESTRICT sums)
{
    HWY_UNROLL (4)
    for (int p = 0; p < P; ++p)
    {
        HWY_UNROLL (6)
        for (int t = 0; t < T; ++t)
            sums[p][t] = hn::Zero (Tag());
    }
}

// The first phase's last tap, on its own.
template <int T>
HWY_INLINE void addLastTap (const float* in, float lastTap, Vectors<T>& sums)
{
    const Tag d;

    HWY_UNROLL (6)
    for (int t = 0; t < T; ++t)
        sums[t] = hn::MulAdd (hn::LoadU (d, in + t * lanes), hn::Set (d, lastTap), sums[t]);
}

// P phases of a tile.
template <int P, int T>
HWY_INLINE void directPhases (const MultiRateFirSpec& spec, const float* in, const float* taps, bool isFirst,
                              float* out)
{
    const Tag d;
    Vectors<T> sums[static_cast<std::size_t> (P)];
    clear<P, T> (sums);
    accumulate<P, T> (std::array { in }, -1, taps, spec.tapsPerPhase, sums);

    if (isFirst)
        addLastTap<T> (in - spec.tapsPerPhase, spec.taps[static_cast<std::size_t> (spec.factor * spec.tapsPerPhase)],
                       sums[0]);

    HWY_UNROLL (6)
    for (int t = 0; t < T; ++t)
    {
        auto* const dst = out + t * lanes * spec.factor;

        if constexpr (P == upPhasesPerGroup)
        {
            storeColumns (sums[0][t], sums[1][t], sums[2][t], sums[3][t], dst, spec.factor);
        }
        else
        {
            HWY_ALIGN float samples[static_cast<std::size_t> (lanes)];

            for (int p = 0; p < P; ++p)
            {
                hn::Store (sums[p][t], d, samples);

                for (int i = 0; i < lanes; ++i)
                    dst[i * spec.factor + p] = samples[i];
            }
        }
    }
}

template <int T>
void directTile (const MultiRateFirSpec& spec, const float* in, float*, float* out)
{
    const auto* taps = spec.taps.get();

    for (int phase = 0; phase < spec.factor; phase += upPhasesPerGroup)
    {
        const auto isFirst = phase == 0;
        const auto phases = std::min (upPhasesPerGroup, spec.factor - phase);

        if (phases == 4)
            directPhases<4, T> (spec, in, taps, isFirst, out + phase);
        else if (phases == 3)
            directPhases<3, T> (spec, in, taps, isFirst, out + phase);
        else if (phases == 2)
            directPhases<2, T> (spec, in, taps, isFirst, out + phase);
        else
            directPhases<1, T> (spec, in, taps, isFirst, out + phase);

        taps += phases * spec.tapsPerPhase;
    }
}

// `even` and `odd` are where the tile's samples begin in the two rows.
template <int T>
void pairsTile (const MultiRateFirSpec& spec, const float* even, float* odd, float* out)
{
    Vectors<T> sums[static_cast<std::size_t> (upPhasesPerGroup)];
    clear<upPhasesPerGroup, T> (sums);
    accumulate<upPhasesPerGroup, T> (std::array<const float*, 2> { odd, even }, -1, spec.taps.get(),
                                     spec.tapsPerPhase / 2 + 1, sums);

    HWY_UNROLL (6)
    for (int t = 0; t < T; ++t)
        storeColumns (sums[0][t], sums[1][t], sums[2][t], sums[3][t], out + t * lanes * upPhasesPerGroup,
                      upPhasesPerGroup);
}

// E or O of four phases: one plane of the tile's samples each.
template <int T>
HWY_INLINE void storePlanes (const Vectors<T>* sums, float* planes)
{
    HWY_UNROLL (4)
    for (int p = 0; p < upPhasesPerGroup; ++p)
    {
        HWY_UNROLL (6)
        for (int t = 0; t < T; ++t)
            hn::Store (sums[p][t], Tag(), planes + (p * T + t) * lanes);
    }
}

template <int T>
void foldedTile (const MultiRateFirSpec& spec, const float* in, float* scratch, float* out)
{
    const Tag d;
    constexpr auto plane = T * lanes;
    const auto half = spec.tapsPerPhase / 2;
    const auto middlePhase = spec.factor / 2;
    const auto* taps = spec.taps.get();
    const auto* middleTaps = taps + spec.factor * half;

    auto* const sumRows = scratch;
    auto* const differenceRows = sumRows + half * plane;
    auto* const evens = differenceRows + half * plane;
    auto* const odds = evens + (middlePhase + 1) * plane;

    // The phase in the middle is its own mirror image: it takes the sums as they are made and has no O.
    Vectors<T> middle;
    clear<1, T> (&middle);

    for (int j = 0; j < half; ++j)
    {
        const auto tap = hn::Set (d, middleTaps[j]);

        HWY_UNROLL (6)
        for (int t = 0; t < T; ++t)
        {
            const auto recent = hn::LoadU (d, in + t * lanes - j);
            const auto old = hn::LoadU (d, in + t * lanes - (spec.tapsPerPhase - 1) + j);
            const auto sum = hn::Add (recent, old);
            hn::Store (sum, d, sumRows + j * plane + t * lanes);
            hn::Store (hn::Sub (recent, old), d, differenceRows + j * plane + t * lanes);
            middle[t] = hn::MulAdd (sum, tap, middle[t]);
        }
    }

    HWY_UNROLL (6)
    for (int t = 0; t < T; ++t)
    {
        hn::Store (middle[t], d, evens + middlePhase * plane + t * lanes);
        hn::Store (hn::Zero (d), d, odds + middlePhase * plane + t * lanes);
    }

    for (int phase = 0; phase < middlePhase; phase += upPhasesPerGroup)
    {
        Vectors<T> sums[static_cast<std::size_t> (upPhasesPerGroup)];
        clear<upPhasesPerGroup, T> (sums);

        if (phase == 0)
            addLastTap<T> (in - spec.tapsPerPhase, middleTaps[half], sums[0]);

        accumulate<upPhasesPerGroup, T> (std::array<const float*, 1> { sumRows }, plane, taps, half, sums);
        storePlanes<T> (sums, evens + phase * plane);
        taps += upPhasesPerGroup * half;

        clear<upPhasesPerGroup, T> (sums);
        accumulate<upPhasesPerGroup, T> (std::array<const float*, 1> { differenceRows }, plane, taps, half, sums);
        storePlanes<T> (sums, odds + phase * plane);
        taps += upPhasesPerGroup * half;
    }

    for (int i = 0; i < plane; i += lanes)
    {
        for (int phase = 0; phase < spec.factor; phase += upPhasesPerGroup)
        {
            Vectors<upPhasesPerGroup> y;

            HWY_UNROLL (4)
            for (int p = 0; p < upPhasesPerGroup; ++p)
            {
                const auto isMirrored = phase >= middlePhase;
                const auto row = (isMirrored ? spec.factor - phase - p : phase + p) * plane + i;
                const auto e = hn::Load (d, evens + row);
                const auto o = hn::Load (d, odds + row);
                y[p] = isMirrored ? hn::Sub (e, o) : hn::Add (e, o);
            }

            storeColumns (y[0], y[1], y[2], y[3], out + i * spec.factor + phase, spec.factor);
        }
    }
}

// A tile of T vectors: where its inputs begin, scratch memory (of the pairs: the other row), and its outputs.
using TileFunction = void (*) (const MultiRateFirSpec&, const float*, float*, float*);

template <UpMethod method, int... T>
constexpr std::array<TileFunction, sizeof...(T)> tileFunctions (std::integer_sequence<int, T...>)
{
    if constexpr (method == UpMethod::pairs)
        return { &pairsTile<T + 1>... };
    else if constexpr (method == UpMethod::folded)
        return { &foldedTile<T + 1>... };
    else
        return { &directTile<T + 1>... };
}

// Walks through the block in tiles of up to maxT vectors of `samplesPerVector` samples. The call
// tile (function, position, out) computes one.
template <UpMethod method, int maxT, typename Call>
HWY_INLINE void forTiles (int samplesPerVector, int factor, float* bounce, float* out, int numIn, Call call)
{
    static constexpr auto functions = tileFunctions<method> (std::make_integer_sequence<int, maxT>());

    for (int pos = 0; pos < numIn;)
    {
        // Tiles of about equal size, since a small one keeps the multipliers waiting.
        const auto left = (numIn - pos + samplesPerVector - 1) / samplesPerVector;
        const auto tilesLeft = (left + maxT - 1) / maxT;
        const auto vectors = (left + tilesLeft - 1) / tilesLeft;
        const auto samples = std::min (vectors * samplesPerVector, numIn - pos);
        const auto isWhole = samples == vectors * samplesPerVector;
        auto* const dst = out + pos * factor;

        call (functions[static_cast<std::size_t> (vectors - 1)], pos, isWhole ? dst : bounce);

        if (! isWhole)
            std::copy_n (bounce, samples * factor, dst);

        pos += samples;
    }
}

void runPairs (const MultiRateFirSpec& spec, const float* in, float* scratch, float* bounce, float* out, int numIn)
{
    const auto history = spec.tapsPerPhase / 2;
    const auto pairs = history + (numIn + 1) / 2;
    auto* const even = scratch;
    auto* const odd = even + spec.tapsPerPhase + maxUpPass + maxTile;

    // An odd number of inputs leaves a sample after the last one; its outputs are computed and dropped.
    for (int i = 0; i < pairs; ++i)
    {
        even[i] = in[2 * (i - history)];
        odd[i] = in[2 * (i - history) + 1];
    }

    forTiles<UpMethod::pairs, maxVectors> (2 * lanes, spec.factor, bounce, out, numIn,
                                           [&] (TileFunction tile, int pos, float* dst) HWY_ATTR
                                           { tile (spec, even + history + pos / 2, odd + history + pos / 2, dst); });
}

void run (const MultiRateFirSpec& spec, const float* in, float* scratch, float* out, int numIn)
{
    auto* const bounce = scratch + upScratchSize (spec, maxTile) - maxTile * spec.factor; // its end
    const auto compute = [&] (TileFunction tile, int pos, float* dst) HWY_ATTR { tile (spec, in + pos, scratch, dst); };

    if (spec.upMethod == UpMethod::pairs)
        runPairs (spec, in, scratch, bounce, out, numIn);
    else if (spec.upMethod == UpMethod::folded)
        forTiles<UpMethod::folded, maxFoldedVectors> (lanes, spec.factor, bounce, out, numIn, compute);
    else
        forTiles<UpMethod::direct, maxVectors> (lanes, spec.factor, bounce, out, numIn, compute);
}

const UpKernel* kernel()
{
    static constexpr UpKernel table { maxTile, lanes >= 16 ? 16 : 8, &run };
    return &table;
}
} // namespace
} // namespace tarvik::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tarvik
{
HWY_EXPORT (kernel);

const UpKernel& upKernel() { return *TARVIK_DISPATCH (kernel)(); }
} // namespace tarvik
#endif
