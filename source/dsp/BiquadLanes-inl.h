// SPDX-License-Identifier: GPL-3.0-or-later
// Rows of samples as 64-bit lanes, which section of which cascade works in which lane, and pairs of lanes as parts of
// vectors. Read once for each instruction set, hence the guard that toggles.
#if defined(TARVIK_BIQUAD_LANES) == defined(HWY_TARGET_TOGGLE)
#ifdef TARVIK_BIQUAD_LANES
#undef TARVIK_BIQUAD_LANES
#else
#define TARVIK_BIQUAD_LANES
#endif

#include <hwy/highway.h>

#include <array>
#include <cstddef>

HWY_BEFORE_NAMESPACE();

namespace tarvik::biquads::HWY_NAMESPACE
{
namespace
{
#if HWY_TARGET != HWY_SCALAR

namespace hn = hwy::HWY_NAMESPACE;

constexpr int channels = 2;
constexpr int vectorLanes = HWY_MAX_BYTES >= 32 ? 4 : 2;

using D = hn::FixedTag<double, vectorLanes>;
using V = hn::Vec<D>;
using PairTag = hn::FixedTag<double, channels>;
using Pair = hn::Vec<PairTag>;

/** How the second cascades are fed: by the first ones, or by rows of their own. */
enum class Wiring
{
    series,
    parallel
};

/** Where the sections are: section s in vector s % numVectors, in its lower pair as long as s < numVectors. */
template <int firstSections, int secondSections, Wiring wiring>
struct Layout
{
    static constexpr int numSections = firstSections + secondSections;
    static constexpr int numVectors = numSections * channels / vectorLanes;
    static_assert (firstSections % 2 == 0 && secondSections % 2 == 0);

    /** Rows in parallel fill a vector's lanes. */
    static constexpr int numRows = wiring == Wiring::series ? channels : 2 * channels;
    static_assert (wiring == Wiring::series || (numRows == vectorLanes && firstSections == secondSections));

    /** How many samples a section works after the one that feeds it. */
    static constexpr int samplesApart = numRows == vectorLanes ? 1 : 2;

    /** A stage is what works equally many samples after the first section: a section, or one of each pair of rows. */
    static constexpr auto numStages = static_cast<std::size_t> (wiring == Wiring::series ? numSections : firstSections);

    /** Stage s is in vector s % numVectors: all of it, or one pair of its lanes, first the lower ones. */
    static constexpr bool isWholeVector = numStages == static_cast<std::size_t> (numVectors);

    static constexpr int delay = (static_cast<int> (numStages) - 1) * samplesApart;
};

// The vector's type is a parameter of the next functions, so that only the branch that suits it is compiled.

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

/** A vector of these pairs; the lower one alone where a vector has a single pair. */
template <typename Vector>
HWY_INLINE Vector join (Pair lower, [[maybe_unused]] Pair upper)
{
    if constexpr (hn::MaxLanes (hn::DFromV<Vector>()) == channels)
        return lower;
    else
        return hn::Combine (hn::DFromV<Vector>(), upper, lower);
}

/** `old` with the lanes of `from`: all of them, or the lower or upper half. */
template <bool isWholeVector, std::size_t half, typename Vector>
HWY_INLINE Vector replaceStage ([[maybe_unused]] Vector old, Vector from)
{
    if constexpr (isWholeVector)
        return from;
    else if constexpr (half == 0)
        return hn::ConcatUpperLower (hn::DFromV<Vector>(), old, from);
    else
        return hn::ConcatUpperLower (hn::DFromV<Vector>(), from, old);
}

/** v itself, as the result of an operation: g++ 12 leaves vectors that are only ever copied whole in memory, even in a
    loop. */
template <typename Vector>
HWY_INLINE Vector copyOf (Vector v)
{
    return hn::BitCast (hn::DFromV<Vector>(), v);
}

/** A vector that begins with what is new and, where that doesn't fill it, goes on with the beginning of `last`. */
template <typename Vector, typename New>
HWY_INLINE Vector putInFront (New newest, [[maybe_unused]] Vector last)
{
    if constexpr (hn::MaxLanes (hn::DFromV<New>()) == hn::MaxLanes (hn::DFromV<Vector>()))
        return newest;
    else
        return hn::Combine (hn::DFromV<Vector>(), hn::LowerHalf (last), newest);
}

/** As many lanes as the tag has, from the vector's end. */
template <typename Tag, typename Vector>
HWY_INLINE hn::Vec<Tag> getEnd (Tag tag, Vector v)
{
    if constexpr (hn::MaxLanes (tag) == hn::MaxLanes (hn::DFromV<Vector>()))
        return v;
    else
        return hn::UpperHalf (tag, v);
}

constexpr int floats = 4;
using Floats = hn::FixedTag<float, floats>;
using HalfFloats = hn::Half<Floats>;

/** Four samples as 64 bits, in one vector or two. */
template <typename Vector>
HWY_INLINE void storePromoted (Vector v, double* to)
{
    if constexpr (vectorLanes == floats)
    {
        hn::Store (hn::PromoteTo (D(), v), D(), to);
    }
    else
    {
        hn::Store (hn::PromoteTo (PairTag(), hn::LowerHalf (v)), PairTag(), to);
        hn::Store (hn::PromoteTo (PairTag(), hn::UpperHalf (HalfFloats(), v)), PairTag(), to + channels);
    }
}

template <typename Tag>
HWY_INLINE hn::Vec<Floats> loadDemoted (Tag tag, const double* from)
{
    if constexpr (hn::MaxLanes (tag) == floats)
        return hn::DemoteTo (Floats(), hn::Load (tag, from));
    else
        return hn::Combine (Floats(), hn::DemoteTo (HalfFloats(), hn::Load (PairTag(), from + channels)),
                            hn::DemoteTo (HalfFloats(), hn::Load (PairTag(), from)));
}

/** Writes the two rows into one, sample by sample; a missing right row counts as silent. */
HWY_INLINE void interleave (const std::array<float*, 2>& rows, double* pairs, int n)
{
    const auto *const left = rows[0], *const right = rows[1];
    int i = 0;

    for (; i + floats <= n; i += floats)
    {
        const auto ofLeft = hn::LoadU (Floats(), left + i);
        const auto ofRight = right != nullptr ? hn::LoadU (Floats(), right + i) : hn::Zero (Floats());
        storePromoted (hn::InterleaveLower (ofLeft, ofRight), pairs + 2 * i);
        storePromoted (hn::InterleaveUpper (Floats(), ofLeft, ofRight), pairs + 2 * i + floats);
    }

    for (; i < n; ++i)
    {
        pairs[2 * i] = static_cast<double> (left[i]);
        pairs[2 * i + 1] = right != nullptr ? static_cast<double> (right[i]) : 0.0;
    }
}

HWY_INLINE void separate (const double* pairs, const std::array<float*, 2>& rows, int n)
{
    auto *const left = rows[0], *const right = rows[1];
    int i = 0;

    for (; i + floats <= n; i += floats)
    {
        const auto lower = loadDemoted (D(), pairs + 2 * i), upper = loadDemoted (D(), pairs + 2 * i + floats);
        hn::StoreU (hn::ConcatEven (Floats(), upper, lower), Floats(), left + i);

        if (right != nullptr)
            hn::StoreU (hn::ConcatOdd (Floats(), upper, lower), Floats(), right + i);
    }

    for (; i < n; ++i)
    {
        left[i] = static_cast<float> (pairs[2 * i]);

        if (right != nullptr)
            right[i] = static_cast<float> (pairs[2 * i + 1]);
    }
}

/** Four rows, sample by sample. */
using FourSamples = std::array<hn::Vec<Floats>, floats>;

/** Rows become columns. */
HWY_INLINE FourSamples turn (const FourSamples& rows)
{
    const auto evenLower = hn::InterleaveLower (rows[0], rows[2]), oddLower = hn::InterleaveLower (rows[1], rows[3]);
    const auto evenUpper = hn::InterleaveUpper (Floats(), rows[0], rows[2]);
    const auto oddUpper = hn::InterleaveUpper (Floats(), rows[1], rows[3]);
    return { hn::InterleaveLower (evenLower, oddLower), hn::InterleaveUpper (Floats(), evenLower, oddLower),
             hn::InterleaveLower (evenUpper, oddUpper), hn::InterleaveUpper (Floats(), evenUpper, oddUpper) };
}

HWY_INLINE void interleave (const std::array<float*, 4>& rows, double* fours, int n)
{
    int i = 0;

    for (; i + floats <= n; i += floats)
    {
        const auto samples = turn ({ hn::LoadU (Floats(), rows[0] + i), hn::LoadU (Floats(), rows[1] + i),
                                     hn::LoadU (Floats(), rows[2] + i), hn::LoadU (Floats(), rows[3] + i) });

        for (int k = 0; k < floats; ++k)
            storePromoted (samples[static_cast<std::size_t> (k)], fours + (i + k) * floats);
    }

    for (; i < n; ++i)
        for (std::size_t row = 0; row < rows.size(); ++row)
            fours[static_cast<std::size_t> (i) * rows.size() + row] = static_cast<double> (rows[row][i]);
}

HWY_INLINE void separate (const double* fours, const std::array<float*, 4>& rows, int n)
{
    int i = 0;

    for (; i + floats <= n; i += floats)
    {
        const auto* const from = fours + i * floats;
        const auto parts = turn ({ loadDemoted (D(), from), loadDemoted (D(), from + floats),
                                   loadDemoted (D(), from + 2 * floats), loadDemoted (D(), from + 3 * floats) });

        for (std::size_t row = 0; row < rows.size(); ++row)
            hn::StoreU (parts[row], Floats(), rows[row] + i);
    }

    for (; i < n; ++i)
        for (std::size_t row = 0; row < rows.size(); ++row)
            rows[row][i] = static_cast<float> (fours[static_cast<std::size_t> (i) * rows.size() + row]);
}

#endif
} // namespace
} // namespace tarvik::biquads::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
