// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dsp/BiquadCascadeKernels.cpp" // this file, compiled once for each instruction set

#include "dsp/BiquadCascadeKernels.h"

#include "dsp/Dispatch.h"

// foreach_target.h comes before highway.h.
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

// How the lanes are used: two neighbouring lanes, a pair, are one section of the left and the right channel. A vector
// of four lanes holds a section of the cascade's first half and the one as far along in the second half, so that a
// vector hands its outputs to the next as they stand, and only the last one's turn back to the first, moved up by a
// pair. Every section works two samples behind the one that feeds it, one with vectors of a single pair: all lanes of a
// step are independent of each other, and what a vector hands on has two steps' time to arrive, so that the only chain
// is a section's own recurrence.
//
// Four rows beside each other, all through equally many sections, fill the same lanes with the same numbers: what would
// be the second half of the cascades are the cascades of the third and fourth row. Only the wires differ: every vector
// hands on to the next as it stands, and what enters and leaves are four samples.
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
        Memory memory;

        for (auto* const vectors : { &memory.s1, &memory.s2, &memory.fed, &memory.waiting })
            vectors->fill (hn::Zero (D()));

        begin (memory, samples);

        for (int t = delay; t < n; ++t)
        {
            step (memory, hn::Load (NewTag(), samples + t * Order::numRows));
            storeNewest (memory, samples + (t - delay) * Order::numRows);
        }

        end (memory, samples + (n - delay) * Order::numRows);
    }

private:
    using Vectors = std::array<V, numVectors>;
    using Member = BiquadCascade::PerSection BiquadCascade::Sections::*;

    /** What the vectors remember from step to step. */
    struct Memory
    {
        Vectors s1, s2;  ///< the delay lines
        Vectors fed;     ///< what each vector hands on at the next step
        Vectors waiting; ///< what each made at the last step; two samples apart, it is handed on a step later
    };

    /** Stage after stage gets its delay line as the first sample reaches it. Vectors behind it are still empty. */
    template <std::size_t stage = 0>
    HWY_INLINE void begin (Memory& memory, const double* samples) const
    {
        moveStates<stage> (outer1, memory.s1, outer2, memory.s2);

        if constexpr (stage + 1 < Order::numStages)
        {
            for (int k = 0; k < Order::samplesApart; ++k, samples += Order::numRows)
                step<0, std::min (stage + 1, numVectors)> (memory, hn::Load (NewTag(), samples));

            begin<stage + 1> (memory, samples);
        }
    }

    /** Stage after stage is read out behind the row's last sample. Vectors before it have nothing left to do. */
    template <std::size_t stage = 0>
    HWY_INLINE void end (Memory& memory, double* samples)
    {
        moveStates<stage> (memory.s1, outer1, memory.s2, outer2);

        if constexpr (stage + 1 < Order::numStages)
        {
            constexpr auto inUpperHalves = Order::numStages - numVectors;
            constexpr auto firstAtWork = stage < inUpperHalves ? 0 : stage + 1 - inUpperHalves;

            for (int k = 0; k < Order::samplesApart; ++k, samples += Order::numRows)
            {
                step<firstAtWork> (memory, hn::Zero (NewTag()));
                storeNewest (memory, samples);
            }

            end<stage + 1> (memory, samples);
        }
    }

    /** A sample into the first section, and what the others have been handed into them; of the vectors from `first` up
        to `behind` only. */
    template <std::size_t first = 0, std::size_t behind = numVectors>
    HWY_INLINE void step (Memory& memory, [[maybe_unused]] New newest) const
    {
        if constexpr (first == 0)
        {
            stepVectors<0, behind> (memory, putInFront (newest, memory.fed.back()));
        }
        else
        {
            const auto handedOn = memory.fed[first - 1];
            memory.fed[first - 1] = memory.waiting[first - 1]; // what it made last still has to arrive
            stepVectors<first, behind> (memory, handedOn);
        }
    }

    /** x goes into vector v, and what that vector hands on into the next. */
    template <std::size_t v, std::size_t behind>
    HWY_INLINE void stepVectors (Memory& memory, V x) const
    {
        const auto handedOn = copyOf (memory.fed[v]);
        const auto last1 = memory.s1[v];
        memory.s1[v] = hn::Sub (hn::Add (hn::Mul (c1[v], x), memory.s2[v]), hn::Mul (a1[v], last1));
        memory.s2[v] = hn::Sub (hn::Mul (c2[v], x), hn::Mul (a2[v], last1));
        const auto y = hn::Add (hn::Mul (b0[v], x), last1);

        if constexpr (Order::samplesApart == 1)
            memory.fed[v] = y;
        else
            memory.fed[v] = copyOf (memory.waiting[v]);

        memory.waiting[v] = copyOf (y);

        if constexpr (v + 1 < behind)
            stepVectors<v + 1, behind> (memory, handedOn);
    }

    /** What the last step made come out of the last section. */
    static HWY_INLINE void storeNewest (const Memory& memory, double* sample)
    {
        hn::Store (getEnd (NewTag(), memory.waiting.back()), NewTag(), sample);
    }

    /** The delay lines of a stage. */
    template <std::size_t stage>
    static HWY_INLINE void moveStates (const Vectors& from1, Vectors& to1, const Vectors& from2, Vectors& to2)
    {
        constexpr auto v = stage % numVectors, half = stage / numVectors;
        to1[v] = replaceStage<Order::isWholeVector, half> (to1[v], from1[v]);
        to2[v] = replaceStage<Order::isWholeVector, half> (to2[v], from2[v]);
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
    return TARVIK_DISPATCH (filter) (first, second, left, right, n);
}

HWY_EXPORT (filterFour);

bool filterFourOnBestSet (const CascadePair& first, const CascadePair& second, float* const* rows, int n)
{
    return TARVIK_DISPATCH (filterFour) (first, second, rows, n);
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
