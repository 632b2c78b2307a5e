// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dsp/BiquadCascadeKernels.cpp" // this file, compiled once for each instruction set

#include "dsp/BiquadCascadeKernels.h"

#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <cstddef>

HWY_BEFORE_NAMESPACE();

namespace tarvik::biquads::HWY_NAMESPACE
{
namespace
{
#if HWY_TARGET == HWY_SCALAR

template <int, int>
void filterRows (const CascadePair& first, const CascadePair* second, float* left, float* right, int n)
{
    const std::array<float*, 2> rows { left, right };

    for (std::size_t c = 0; c < rows.size() && rows[c] != nullptr; ++c)
    {
        first[c]->processPlain (rows[c], n);

        if (second != nullptr)
            (*second)[c]->processPlain (rows[c], n);
    }
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// How the lanes are used: two neighbouring lanes, a pair, are one section of the left and the right channel, and the
// sections follow one another, two to a vector of four lanes. Every section works one sample behind the section that
// feeds it. So all lanes of a step are independent of each other, and the only chain is a section's own recurrence.
// Before a step the outputs of the step before move up by one pair, and the new samples enter at the bottom.
//
// The samples that a section has not seen yet (at the row's start), or must not see any more (at its end), are left
// out by keeping its state: the row comes out complete, without delay, and the states agree with the plain form's.

constexpr int channels = 2;
constexpr int vectorLanes = HWY_MAX_BYTES >= 32 ? 4 : 2;

using D = hn::FixedTag<double, vectorLanes>;
using V = hn::Vec<D>;
using PairTag = hn::FixedTag<double, channels>;
using Pair = hn::Vec<PairTag>;
using FloatPairTag = hn::FixedTag<float, channels>;

/** Longer rows are cut, so that the one that they are interleaved in stays on the stack. */
constexpr int maxRowLength = 256;

HWY_INLINE Pair loadPair (const float* samples)
{
    return hn::PromoteTo (PairTag(), hn::LoadU (FloatPairTag(), samples));
}

HWY_INLINE void storePair (Pair pair, float* samples)
{
    hn::StoreU (hn::DemoteTo (FloatPairTag(), pair), FloatPairTag(), samples);
}

HWY_INLINE Pair roundToFloat (Pair pair) { return hn::PromoteTo (PairTag(), hn::DemoteTo (FloatPairTag(), pair)); }

// The vector's type is a parameter of the next two, so that only the branch that suits it is compiled.

/** The pair that begins at `lane`. */
template <int lane, typename Vector>
HWY_INLINE Pair getPair (Vector v)
{
    if constexpr (hn::MaxLanes (hn::DFromV<Vector>()) == channels)
        return v;
    else if constexpr (lane == 0)
        return hn::LowerHalf (v);
    else
        return hn::UpperHalf (PairTag(), v);
}

/** Moves the lanes of v up by one pair. */
template <typename Vector>
HWY_INLINE Vector moveUp (Pair before, Vector v)
{
    if constexpr (hn::MaxLanes (hn::DFromV<Vector>()) == channels)
        return before;
    else
        return hn::Combine (hn::DFromV<Vector>(), hn::LowerHalf (v), before);
}

/** One pass through a first cascade and, if secondSections isn't 0, a second one. */
template <int firstSections, int secondSections>
class LaneFilter
{
    static_assert (firstSections * channels % vectorLanes == 0); // the second cascade begins with a vector of its own
    static constexpr int numSections = firstSections + secondSections;
    static constexpr int numLanes = numSections * channels;

public:
    HWY_INLINE LaneFilter (const CascadePair& first, const CascadePair* second)
    {
        gather (&BiquadCascade::Sections::b0, first, second, b0);
        gather (&BiquadCascade::Sections::b1, first, second, b1);
        gather (&BiquadCascade::Sections::b2, first, second, b2);
        gather (&BiquadCascade::Sections::a1, first, second, a1);
        gather (&BiquadCascade::Sections::a2, first, second, a2);
        gather (&BiquadCascade::Sections::s1, first, second, s1);
        gather (&BiquadCascade::Sections::s2, first, second, s2);
        std::fill (y.begin(), y.end(), hn::Zero (D()));
    }

    HWY_INLINE void putStatesBack (const CascadePair& first, const CascadePair* second) const
    {
        scatter (s1, &BiquadCascade::Sections::s1, first, second);
        scatter (s2, &BiquadCascade::Sections::s2, first, second);
    }

    /** Filters n pairs of samples in place. */
    HWY_INLINE void run (float* samples, int n)
    {
        constexpr int delay = numSections - 1;

        for (int t = 0; t < delay; ++t)
            step<true> (samples, t, n);

        for (int t = delay; t < n; ++t)
            step<false> (samples, t, n);

        for (int t = std::max (n, delay); t < n + delay; ++t)
            step<true> (samples, t, n);
    }

private:
    using Vectors = std::array<V, static_cast<std::size_t> (numLanes / vectorLanes)>;
    using Lanes = std::array<double, static_cast<std::size_t> (numLanes)>;
    using Member = BiquadCascade::PerSection BiquadCascade::Sections::*;

    template <bool withIdleSections>
    HWY_INLINE void step (float* samples, int t, int n)
    {
        constexpr std::size_t firstVectors = firstSections * channels / vectorLanes;
        constexpr int lastPair = vectorLanes - channels;
        Vectors x;
        x[0] = moveUp (loadPair (samples + (withIdleSections && t >= n ? 0 : t) * channels), y[0]);

        HWY_UNROLL (6)
        for (std::size_t v = 1; v < x.size(); ++v)
        {
            // Rounding happens on the way between two vectors. Inside one it would lie on the way from a vector's output
            // to its next input, and its latency would double the time of a step.
            const auto before = getPair<lastPair> (y[v - 1]);
            x[v] = moveUp (v == firstVectors ? roundToFloat (before) : before, y[v]);
        }

        HWY_UNROLL (6)
        for (std::size_t v = 0; v < x.size(); ++v)
        {
            y[v] = hn::Add (hn::Mul (b0[v], x[v]), s1[v]);
            const auto next1 = hn::Sub (hn::Add (hn::Mul (b1[v], x[v]), s2[v]), hn::Mul (a1[v], y[v]));
            const auto next2 = hn::Sub (hn::Mul (b2[v], x[v]), hn::Mul (a2[v], y[v]));

            if constexpr (withIdleSections)
            {
                const auto busy = getBusyLanes (static_cast<int> (v), t, n);
                s1[v] = hn::IfThenElse (busy, next1, s1[v]);
                s2[v] = hn::IfThenElse (busy, next2, s2[v]);
            }
            else
            {
                s1[v] = next1;
                s2[v] = next2;
            }
        }

        if (! withIdleSections || t >= numSections - 1)
            storePair (getPair<lastPair> (y.back()), samples + (t - (numSections - 1)) * channels);
    }

    /** The lanes of vector v whose section has a sample of the row before it at step t: sample t - section. */
    static HWY_INLINE hn::Mask<D> getBusyLanes (int v, int t, int n)
    {
        const auto lane = hn::Iota (D(), v * vectorLanes);
        const auto end = hn::Set (D(), (t + 1) * channels);
        const auto begin = hn::Set (D(), (t - n + 1) * channels);
        return hn::And (hn::Ge (lane, begin), hn::Lt (lane, end));
    }

    template <typename Function>
    static HWY_INLINE void forEachLane (Member member, const CascadePair& first, const CascadePair* second,
                                        Function function)
    {
        std::size_t lane = 0;

        for (std::size_t s = 0; s < firstSections; ++s)
            for (auto* const cascade : first)
                function (lane++, (cascade->getSections().*member)[s]);

        for (std::size_t s = 0; s < secondSections; ++s)
            for (auto* const cascade : *second)
                function (lane++, (cascade->getSections().*member)[s]);
    }

    static HWY_INLINE void gather (Member member, const CascadePair& first, const CascadePair* second, Vectors& vectors)
    {
        HWY_ALIGN Lanes lanes;
        forEachLane (member, first, second, [&] (std::size_t lane, double& value) { lanes[lane] = value; });

        for (std::size_t v = 0; v < vectors.size(); ++v)
            vectors[v] = hn::Load (D(), lanes.data() + v * vectorLanes);
    }

    static HWY_INLINE void scatter (const Vectors& vectors, Member member, const CascadePair& first,
                                    const CascadePair* second)
    {
        HWY_ALIGN Lanes lanes;

        for (std::size_t v = 0; v < vectors.size(); ++v)
            hn::Store (vectors[v], D(), lanes.data() + v * vectorLanes);

        forEachLane (member, first, second, [&] (std::size_t lane, double& value) { value = lanes[lane]; });
    }

    Vectors b0, b1, b2, a1, a2, s1, s2, y;
};

/** Writes the two rows into one, sample by sample; a missing right row counts as silent. */
HWY_INLINE void interleave (const float* left, const float* right, float* pairs, int n)
{
    const hn::FixedTag<float, 4> d;
    int i = 0;

    for (; i + 4 <= n; i += 4)
        hn::StoreInterleaved2 (hn::LoadU (d, left + i), right != nullptr ? hn::LoadU (d, right + i) : hn::Zero (d), d,
                               pairs + 2 * i);

    for (; i < n; ++i)
    {
        pairs[2 * i] = left[i];
        pairs[2 * i + 1] = right != nullptr ? right[i] : 0.0f;
    }
}

HWY_INLINE void separate (const float* pairs, float* left, float* right, int n)
{
    const hn::FixedTag<float, 4> d;
    int i = 0;

    for (; i + 4 <= n; i += 4)
    {
        auto ofLeft = hn::Zero (d), ofRight = hn::Zero (d);
        hn::LoadInterleaved2 (d, pairs + 2 * i, ofLeft, ofRight);
        hn::StoreU (ofLeft, d, left + i);

        if (right != nullptr)
            hn::StoreU (ofRight, d, right + i);
    }

    for (; i < n; ++i)
    {
        left[i] = pairs[2 * i];

        if (right != nullptr)
            right[i] = pairs[2 * i + 1];
    }
}

template <int firstSections, int secondSections>
HWY_NOINLINE void filterRows (const CascadePair& first, const CascadePair* second, float* left, float* right, int n)
{
    HWY_ALIGN std::array<float, static_cast<std::size_t> (channels * maxRowLength)> pairs;

    for (int done = 0; done < n; done += maxRowLength)
    {
        const auto length = std::min (n - done, maxRowLength);
        auto* const rightPart = right != nullptr ? right + done : nullptr;
        interleave (left + done, rightPart, pairs.data(), length);

        LaneFilter<firstSections, secondSections> filter (first, second);
        filter.run (pairs.data(), length);
        filter.putStatesBack (first, second);

        separate (pairs.data(), left + done, rightPart, length);
    }
}

#endif

/** The template for the cascades' lengths, if there is one. */
bool filter (const CascadePair& first, const CascadePair* second, float* left, float* right, int n)
{
    const auto firstLength = first[0]->getNumSections();
    const auto secondLength = second != nullptr ? (*second)[0]->getNumSections() : 0;

    if (firstLength == 2 && secondLength == 4)
        filterRows<2, 4> (first, second, left, right, n);
    else if (firstLength == 2 && secondLength == 2)
        filterRows<2, 2> (first, second, left, right, n);
    else if (firstLength == 2 && second == nullptr)
        filterRows<2, 0> (first, nullptr, left, right, n);
    else if (firstLength == 4 && second == nullptr)
        filterRows<4, 0> (first, nullptr, left, right, n);
    else
        return false;

    return true;
}
} // namespace
} // namespace tarvik::biquads::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tarvik
{
namespace biquads
{
namespace
{
HWY_EXPORT (filter);

bool filterOnBestSet (const CascadePair& first, const CascadePair* second, float* left, float* right, int n)
{
    return HWY_DYNAMIC_DISPATCH (filter) (first, second, left, right, n);
}
} // namespace
} // namespace biquads

bool filterInVectors (const CascadePair& first, const CascadePair* second, float* left, float* right, int n) noexcept
{
    return biquads::filterOnBestSet (first, second, left, right, n);
}
} // namespace tarvik

#endif
