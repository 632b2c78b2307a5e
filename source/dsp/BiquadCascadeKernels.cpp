// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dsp/BiquadCascadeKernels.cpp" // this file, compiled once for each instruction set

#include "dsp/BiquadCascadeKernels.h"

// foreach_target.h comes before everything else of Highway.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
#include "dsp/BiquadLanes-inl.h"
// clang-format on

#include <algorithm>
#include <array>
#include <cstddef>

HWY_BEFORE_NAMESPACE();

namespace tarvik::biquads::HWY_NAMESPACE
{
namespace
{
void filterPlain (const CascadePair& first, const CascadePair* second, float* left, float* right, int n)
{
    const std::array<float*, 2> rows { left, right };

    for (std::size_t c = 0; c < rows.size() && rows[c] != nullptr; ++c)
        processPlainInTurn (*first[c], second != nullptr ? (*second)[c] : nullptr, rows[c], n);
}

#if HWY_TARGET == HWY_SCALAR

template <int, int>
void filterRows (const CascadePair& first, const CascadePair* second, float* left, float* right, int n)
{
    filterPlain (first, second, left, right, n);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// How the lanes are used: two neighbouring lanes, a pair, are one section of the left and the right channel. A vector of
// four lanes holds a section of the cascade's first half and the one as far along in the second half, so that a vector
// hands its outputs to the next as they stand, and only the last one's turn back to the first, moved up by a pair.
// Every section works two samples behind the one that feeds it, one with vectors of a single pair: all lanes of a step
// are independent of each other, and what a vector hands on has two steps' time to arrive, so that the only chain is a
// section's own recurrence.
//
// Four rows beside each other, all through equally many sections, fill the same lanes with the same numbers: what would be
// the second half of the cascades are the cascades of the third and fourth row. Only the wires differ: every vector hands
// on to the next as it stands, and what enters and leaves are four samples.
//
// At the row's start a section's delay line is put in when the first sample comes to it, and at the end it is taken out
// behind the last: the row comes out complete, without delay, and the states agree with the plain form's.

/** Longer rows are cut, so that the one that they are interleaved in stays on the stack. */
constexpr int maxRowLength = 256;

/** One pass through a first cascade and, if secondSections isn't 0, a second one, or beside one. */
template <int firstSections, int secondSections, Wiring wiring = Wiring::inTurn>
class LaneFilter
{
    using Order = Layout<firstSections, secondSections, wiring>;
    using NewTag = hn::FixedTag<double, Order::numRows>;
    using New = hn::Vec<NewTag>; ///< a sample of each row
    static constexpr auto numVectors = static_cast<std::size_t> (Order::numVectors);

public:
    /** Rows must be longer than this. */
    static constexpr int delay = Order::delay;

    HWY_INLINE LaneFilter (const CascadePair& first, const CascadePair* second)
    {
        gather (&BiquadCascade::Sections::b0, first, second, b0);
        gather (&BiquadCascade::Sections::c1, first, second, c1);
        gather (&BiquadCascade::Sections::c2, first, second, c2);
        gather (&BiquadCascade::Sections::a1, first, second, a1);
        gather (&BiquadCascade::Sections::a2, first, second, a2);
        gather (&BiquadCascade::Sections::s1, first, second, outer1);
        gather (&BiquadCascade::Sections::s2, first, second, outer2);
    }

    HWY_INLINE void putStatesBack (const CascadePair& first, const CascadePair* second) const
    {
        scatter (outer1, &BiquadCascade::Sections::s1, first, second);
        scatter (outer2, &BiquadCascade::Sections::s2, first, second);
    }

    /** Filters n samples of each row, which stand sample by sample, in place. */
    HWY_INLINE void run (double* samples, int n)
    {
        const auto zero = hn::Zero (D());
        s1.fill (zero);
        s2.fill (zero);
        fed.fill (zero);
        waiting.fill (zero);

        for (int t = 0; t < delay; ++t)
        {
            if (t % Order::samplesApart == 0) // there is no section with the other delays
                moveStates (outer1, s1, outer2, s2, t);

            step (hn::Load (NewTag(), samples + t * Order::numRows));
        }

        moveStates (outer1, s1, outer2, s2, delay);

        for (int t = delay; t < n; ++t)
        {
            const auto y = step (hn::Load (NewTag(), samples + t * Order::numRows));
            hn::Store (y, NewTag(), samples + (t - delay) * Order::numRows);
        }

        for (int k = 0; k < delay; ++k)
        {
            if (k % Order::samplesApart == 0)
                moveStates (s1, outer1, s2, outer2, k);

            hn::Store (step (hn::Zero (NewTag())), NewTag(), samples + (n + k - delay) * Order::numRows);
        }

        moveStates (s1, outer1, s2, outer2, delay);
    }

private:
    using Vectors = std::array<V, numVectors>;
    using Member = BiquadCascade::PerSection BiquadCascade::Sections::*;

    /** A sample into each section; what comes out of the last. */
    HWY_INLINE New step (New newest)
    {
        Vectors x, y;
        x[0] = putInFront (newest, fed.back());

        HWY_UNROLL (6)
        for (std::size_t v = 1; v < numVectors; ++v)
            x[v] = fed[v - 1];

        HWY_UNROLL (6)
        for (std::size_t v = 0; v < numVectors; ++v)
        {
            const auto last1 = s1[v];
            s1[v] = hn::Sub (hn::Add (hn::Mul (c1[v], x[v]), s2[v]), hn::Mul (a1[v], last1));
            s2[v] = hn::Sub (hn::Mul (c2[v], x[v]), hn::Mul (a2[v], last1));
            y[v] = hn::Add (hn::Mul (b0[v], x[v]), last1);

            fed[v] = Order::samplesApart == 1 ? y[v] : waiting[v];
            waiting[v] = y[v];
        }

        return getEnd (NewTag(), y.back());
    }

    /** The delay line of the section that works `behind` samples behind the first. */
    static HWY_INLINE void moveStates (const Vectors& from1, Vectors& to1, const Vectors& from2, Vectors& to2,
                                       int behind)
    {
        const hn::RebindToUnsigned<D> bits;

        HWY_UNROLL (6)
        for (std::size_t v = 0; v < numVectors; ++v)
        {
            const auto* const lanes = Order::lanesByDelay[static_cast<std::size_t> (behind)].data() + v * vectorLanes;
            const auto chosen = hn::MaskFromVec (hn::BitCast (D(), hn::LoadU (bits, lanes)));
            to1[v] = hn::IfThenElse (chosen, from1[v], to1[v]);
            to2[v] = hn::IfThenElse (chosen, from2[v], to2[v]);
        }
    }

    /** Calls function (s, left, right) for each even section s with the member's numbers of sections s and s + 1. */
    template <typename Function>
    static HWY_INLINE void forEachTwoSections (Member member, const CascadePair& first, const CascadePair* second,
                                               Function function)
    {
        const auto numbers = [member] (BiquadCascade* cascade) { return (cascade->getSections().*member).data(); };

        HWY_UNROLL (2)
        for (std::size_t s = 0; s < firstSections; s += 2)
            function (s, numbers (first[0]) + s, numbers (first[1]) + s);

        HWY_UNROLL (2)
        for (std::size_t s = 0; s < secondSections; s += 2)
            function (firstSections + s, numbers ((*second)[0]) + s, numbers ((*second)[1]) + s);
    }

    using Pairs = std::array<Pair, static_cast<std::size_t> (Order::numSections)>;

    static HWY_INLINE void gather (Member member, const CascadePair& first, const CascadePair* second, Vectors& vectors)
    {
        Pairs pairs;
        forEachTwoSections (member, first, second,
                            [&] (std::size_t s, const double* left, const double* right) HWY_ATTR
                            {
                                const auto ofLeft = hn::LoadU (PairTag(), left);
                                const auto ofRight = hn::LoadU (PairTag(), right);
                                pairs[s] = hn::InterleaveLower (ofLeft, ofRight);
                                pairs[s + 1] = hn::InterleaveUpper (PairTag(), ofLeft, ofRight);
                            });

        HWY_UNROLL (6)
        for (std::size_t v = 0; v < numVectors; ++v)
            vectors[v] = join<V> (pairs[v], pairs[pairs.size() - numVectors + v]);
    }

    static HWY_INLINE void scatter (const Vectors& vectors, Member member, const CascadePair& first,
                                    const CascadePair* second)
    {
        Pairs pairs;

        HWY_UNROLL (6)
        for (std::size_t v = 0; v < numVectors; ++v)
        {
            pairs[pairs.size() - numVectors + v] = getPair<vectorLanes - channels> (vectors[v]);
            pairs[v] = getPair<0> (vectors[v]);
        }

        forEachTwoSections (member, first, second,
                            [&] (std::size_t s, double* left, double* right) HWY_ATTR
                            {
                                hn::StoreU (hn::InterleaveLower (pairs[s], pairs[s + 1]), PairTag(), left);
                                hn::StoreU (hn::InterleaveUpper (PairTag(), pairs[s], pairs[s + 1]), PairTag(), right);
                            });
    }

    Vectors b0, c1, c2, a1, a2;
    Vectors outer1, outer2; ///< the delay lines before and after the row
    Vectors s1, s2;         ///< while it runs
    Vectors fed;            ///< what each vector hands on at the next step
    Vectors waiting;        ///< what the slow one hands on at the step after
};

template <int firstSections, int secondSections>
HWY_NOINLINE void filterRows (const CascadePair& first, const CascadePair* second, float* left, float* right, int n)
{
    HWY_ALIGN std::array<double, static_cast<std::size_t> (channels * maxRowLength)> pairs;

    for (int done = 0; done < n; done += maxRowLength)
    {
        const auto length = std::min (n - done, maxRowLength);
        auto* const rightPart = right != nullptr ? right + done : nullptr;

        if (length <= LaneFilter<firstSections, secondSections>::delay)
        {
            filterPlain (first, second, left + done, rightPart, length);
            continue;
        }

        interleave (left + done, rightPart, pairs.data(), length);

        LaneFilter<firstSections, secondSections> filter (first, second);
        filter.run (pairs.data(), length);
        filter.putStatesBack (first, second);

        separate (pairs.data(), left + done, rightPart, length);
    }
}

#if HWY_MAX_BYTES >= 32

template <int sections>
HWY_NOINLINE void filterFourRows (const CascadePair& first, const CascadePair& second, float* const* rows, int n)
{
    using Filter = LaneFilter<sections, sections, Wiring::sideBySide>;
    HWY_ALIGN std::array<double, static_cast<std::size_t> (2 * channels * maxRowLength)> samples;

    for (int done = 0; done < n; done += maxRowLength)
    {
        const auto length = std::min (n - done, maxRowLength);
        const std::array parts { rows[0] + done, rows[1] + done, rows[2] + done, rows[3] + done };

        if (length <= Filter::delay)
        {
            filterPlain (first, nullptr, parts[0], parts[1], length);
            filterPlain (second, nullptr, parts[2], parts[3], length);
            continue;
        }

        interleaveFour (parts.data(), samples.data(), length);

        Filter filter (first, &second);
        filter.run (samples.data(), length);
        filter.putStatesBack (first, &second);

        separateFour (samples.data(), parts.data(), length);
    }
}

#endif
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

bool filterFour ([[maybe_unused]] const CascadePair& first, [[maybe_unused]] const CascadePair& second,
                 [[maybe_unused]] float* const* rows, [[maybe_unused]] int n)
{
#if HWY_TARGET != HWY_SCALAR && HWY_MAX_BYTES >= 32
    const auto length = first[0]->getNumSections();

    if (length == 2)
        filterFourRows<2> (first, second, rows, n);
    else if (length == 4)
        filterFourRows<4> (first, second, rows, n);

    return length == 2 || length == 4;
#else
    return false; // vectors of two lanes would only go through them one after the other
#endif
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

HWY_EXPORT (filterFour);

bool filterFourOnBestSet (const CascadePair& first, const CascadePair& second, float* const* rows, int n)
{
    return HWY_DYNAMIC_DISPATCH (filterFour) (first, second, rows, n);
}
} // namespace
} // namespace biquads

bool filterInVectors (const CascadePair& first, const CascadePair* second, float* left, float* right, int n) noexcept
{
    return biquads::filterOnBestSet (first, second, left, right, n);
}

bool filterFourInVectors (const CascadePair& first, const CascadePair& second, float* const* rows, int n) noexcept
{
    return biquads::filterFourOnBestSet (first, second, rows, n);
}
} // namespace tarvik

#endif
