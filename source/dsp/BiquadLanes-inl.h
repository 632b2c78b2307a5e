// SPDX-License-Identifier: GPL-3.0-or-later
// Two rows of samples as pairs of 64-bit lanes, and pairs as parts of vectors. Read once for each instruction set, hence
// the guard that toggles.
#if defined(TARVIK_BIQUAD_LANES) == defined(HWY_TARGET_TOGGLE)
#ifdef TARVIK_BIQUAD_LANES
#undef TARVIK_BIQUAD_LANES
#else
#define TARVIK_BIQUAD_LANES
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

namespace tarvik::biquads::HWY_NAMESPACE
{
namespace
{
#if HWY_TARGET != HWY_SCALAR

namespace hn = hwy::HWY_NAMESPACE;

constexpr int channels = 2;
constexpr int vectorLanes = HWY_MAX_BYTES >= 32 ? 4 : 2;

/** How many samples a section works behind the one that feeds it. */
constexpr int samplesApart = vectorLanes == channels ? 1 : 2;

using D = hn::FixedTag<double, vectorLanes>;
using V = hn::Vec<D>;
using PairTag = hn::FixedTag<double, channels>;
using Pair = hn::Vec<PairTag>;

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

/** A vector of these pairs; the lower one alone where a vector has a single pair. */
template <typename Vector>
HWY_INLINE Vector join (Pair lower, [[maybe_unused]] Pair upper)
{
    if constexpr (hn::MaxLanes (hn::DFromV<Vector>()) == channels)
        return lower;
    else
        return hn::Combine (hn::DFromV<Vector>(), upper, lower);
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
HWY_INLINE void interleave (const float* left, const float* right, double* pairs, int n)
{
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

HWY_INLINE void separate (const double* pairs, float* left, float* right, int n)
{
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

#endif
} // namespace
} // namespace tarvik::biquads::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
