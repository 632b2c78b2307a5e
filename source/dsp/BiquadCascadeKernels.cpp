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
#include <span>

HWY_BEFORE_NAMESPACE();

namespace tarvik::biquads::HWY_NAMESPACE
{
namespace
{
#if HWY_TARGET != HWY_SCALAR

namespace hn = hwy::HWY_NAMESPACE;

// How the lanes are used: two neighbouring lanes, a pair, are one section of the left and the right channel. A vector
// of four lanes holds a section of the cascade's first half and the one as far along in the second half, so that a
// vector hands its outputs to the next as they are, and only the last one's turn back to the first, moved up by a
// pair. Every section works two samples after the one that feeds it, one with vectors of a single pair: all lanes of a
// step are independent of each other, and what a vector hands on has two steps' time to arrive, so that the only chain
// is a section's own recurrence.
//
// Four rows in parallel, all through equally many sections, fill the same lanes with the same numbers: what would be
// the second half of the cascades are the cascades of the third and fourth row. Only the wires differ: every vector
// hands on to the next as it is, and what enters and leaves are four samples.
//
// At the row's start a section's delay line is put in when the first sample comes to it, and at the end it is taken out
// after the last: the row comes out complete, without delay, and the states agree with the plain form's.

/** Longer rows are cut, so that the one that they are interleaved in stays on the stack. */
constexpr int maxRowLength = 256;

/** The cascades of two rows, then those that follow them in series or that filter two more rows in parallel. */
using Cascades = std::array<BiquadCascade*, 4>;

/** One pass through the first cascades and, if secondSections isn't 0, the second ones. */
template <int firstSections, int secondSections, Wiring wiring>
class LaneFilter
{
    using Order = Layout<firstSections, secondSections, wiring>;
    using NewTag = hn::FixedTag<double, Order::numRows>;
    using New = hn::Vec<NewTag>; ///< a sample of each row
    static constexpr auto numVectors = static_cast<std::size_t> (Order::numVectors);

public:
    /** Rows must be longer than this. */
    static constexpr int delay = Order::delay;

    HWY_INLINE LaneFilter (const Cascades& cascades)
    {
        gather (&BiquadCascade::Sections::b0, cascades, b0);
        gather (&BiquadCascade::Sections::c1, cascades, c1);
        gather (&BiquadCascade::Sections::c2, cascades, c2);
        gather (&BiquadCascade::Sections::a1, cascades, a1);
        gather (&BiquadCascade::Sections::a2, cascades, a2);
        gather (&BiquadCascade::Sections::s1, cascades, outer1);
        gather (&BiquadCascade::Sections::s2, cascades, outer2);
    }

    HWY_INLINE void putStatesBack (const Cascades& cascades) const
    {
        scatter (outer1, &BiquadCascade::Sections::s1, cascades);
        scatter (outer2, &BiquadCascade::Sections::s2, cascades);
    }

    /** Filters n samples of each row, interleaved, in place. */
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

    /** Stage after stage gets its delay line as the first sample reaches it. Vectors after it are still empty. */
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

    /** Stage after stage is read out after the row's last sample. Vectors before it have nothing left to do. */
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
        to before `end` only. */
    template <std::size_t first = 0, std::size_t end = numVectors>
    HWY_INLINE void step (Memory& memory, [[maybe_unused]] New newest) const
    {
        if constexpr (first == 0)
        {
            stepVectors<0, end> (memory, putInFront (newest, memory.fed.back()));
        }
        else
        {
            const auto handedOn = memory.fed[first - 1];
            memory.fed[first - 1] = memory.waiting[first - 1]; // what it made last still has to arrive
            stepVectors<first, end> (memory, handedOn);
        }
    }

    /** x goes into vector v, and what that vector hands on into the next. */
    template <std::size_t v, std::size_t end>
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

        if constexpr (v + 1 < end)
            stepVectors<v + 1, end> (memory, handedOn);
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
    static HWY_INLINE void forEachTwoSections (Member member, const Cascades& cascades, Function function)
    {
        const auto numbers = [member] (BiquadCascade* cascade) { return (cascade->getSections().*member).data(); };

        HWY_UNROLL (2)
        for (std::size_t s = 0; s < firstSections; s += 2)
            function (s, numbers (cascades[0]) + s, numbers (cascades[1]) + s);

        HWY_UNROLL (2)
        for (std::size_t s = 0; s < secondSections; s += 2)
            function (firstSections + s, numbers (cascades[2]) + s, numbers (cascades[3]) + s);
    }

    using Pairs = std::array<Pair, static_cast<std::size_t> (Order::numSections)>;

    static HWY_INLINE void gather (Member member, const Cascades& cascades, Vectors& vectors)
    {
        Pairs pairs;
        forEachTwoSections (member, cascades,
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

    static HWY_INLINE void scatter (const Vectors& vectors, Member member, const Cascades& cascades)
    {
        Pairs pairs;

        HWY_UNROLL (6)
        for (std::size_t v = 0; v < numVectors; ++v)
        {
            pairs[pairs.size() - numVectors + v] = getPair<vectorLanes - channels> (vectors[v]);
            pairs[v] = getPair<0> (vectors[v]);
        }

        forEachTwoSections (member, cascades,
                            [&] (std::size_t s, double* left, double* right) HWY_ATTR
                            {
                                hn::StoreU (hn::InterleaveLower (pairs[s], pairs[s + 1]), PairTag(), left);
                                hn::StoreU (hn::InterleaveUpper (PairTag(), pairs[s], pairs[s + 1]), PairTag(), right);
                            });
    }

    Vectors b0, c1, c2, a1, a2;
    Vectors outer1, outer2; ///< the delay lines before and after the row
};

/** Filters as many rows as the pass takes; of two rows the second one may have no samples, and its cascades keep what
    they have if their delay lines are clear. */
template <int firstSections, int secondSections, Wiring wiring = Wiring::series>
HWY_NOINLINE void filterTogether (const CascadeRow* rows, int n)
{
    constexpr auto numRows = static_cast<std::size_t> (Layout<firstSections, secondSections, wiring>::numRows);
    using Filter = LaneFilter<firstSections, secondSections, wiring>;

    Cascades cascades { rows[0].first, rows[1].first, rows[0].second, rows[1].second };

    if constexpr (wiring == Wiring::parallel)
        cascades = { rows[0].first, rows[1].first, rows[2].first, rows[3].first };

    HWY_ALIGN std::array<double, numRows* static_cast<std::size_t> (maxRowLength)> samples;
    std::array<float*, numRows> parts {};

    for (int done = 0; done < n; done += maxRowLength)
    {
        const auto length = std::min (n - done, maxRowLength);

        for (std::size_t row = 0; row < numRows; ++row)
            parts[row] = rows[row].samples != nullptr ? rows[row].samples + done : nullptr;

        if (length <= Filter::delay)
        {
            for (std::size_t row = 0; row < numRows && parts[row] != nullptr; ++row)
                filterPlainly ({ parts[row], rows[row].first, rows[row].second }, length);

            continue;
        }

        interleave (parts, samples.data(), length);

        Filter filter (cascades);
        filter.run (samples.data(), length);
        filter.putStatesBack (cascades);

        separate (samples.data(), parts, length);
    }
}

int firstLength (const CascadeRow& row) { return row.first->getNumSections(); }

int secondLength (const CascadeRow& row) { return row.second != nullptr ? row.second->getNumSections() : 0; }

/** How many of the rows have cascades as long as those of the first one; counts up to four. */
std::size_t countAlike (std::span<const CascadeRow> rows)
{
    std::size_t count = 1;

    while (count < std::min<std::size_t> (rows.size(), 4) && firstLength (rows[count]) == firstLength (rows[0])
           && secondLength (rows[count]) == secondLength (rows[0]))
        ++count;

    return count;
}

using Pass = void (*) (const CascadeRow*, int);

/** The pass for two rows of these lengths, or null. */
Pass choosePass (int first, int second)
{
    if (first == 4 && second == 0)
        return &filterTogether<4, 0>;

    if (first != 2)
        return nullptr;

    return second == 0   ? &filterTogether<2, 0>
           : second == 2 ? &filterTogether<2, 2>
           : second == 4 ? &filterTogether<2, 4>
                         : nullptr;
}

#endif

std::size_t filter ([[maybe_unused]] std::span<const CascadeRow> rows, [[maybe_unused]] int n)
{
#if HWY_TARGET == HWY_SCALAR
    return 0;
#else
    const auto first = firstLength (rows[0]), second = secondLength (rows[0]);
    const auto numAlike = countAlike (rows);

#if HWY_MAX_BYTES >= 32
    if (numAlike == 4 && second == 0 && (first == 2 || first == 4))
    {
        first == 2 ? filterTogether<2, 2, Wiring::parallel> (rows.data(), n)
                   : filterTogether<4, 4, Wiring::parallel> (rows.data(), n);
        return 4;
    }
#endif

    const auto pass = choosePass (first, second);

    if (pass == nullptr)
        return 0;

    BiquadCascade silent; // in the lanes of a missing second row
    const std::array<CascadeRow, 2> single { rows[0], { nullptr, &silent, &silent } };
    pass (numAlike >= 2 ? rows.data() : single.data(), n);
    return std::min<std::size_t> (numAlike, 2);
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
HWY_EXPORT (filter);
}

std::size_t filterInVectors (std::span<const CascadeRow> rows, int n) noexcept
{
    return TARVIK_DISPATCH (biquads::filter) (rows, n);
}
} // namespace tarvik

#endif
