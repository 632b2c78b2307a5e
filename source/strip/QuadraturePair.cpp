// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "strip/QuadraturePair.cpp" // this file, compiled once for each instruction set

#include "strip/QuadraturePair.h"

#include "dsp/Dispatch.h"

#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <utility>

HWY_BEFORE_NAMESPACE();

namespace tarvik::quadrature::HWY_NAMESPACE
{
namespace
{
namespace hn = hwy::HWY_NAMESPACE;

// Coefficients k of the two chains, section by section, for the lanes of a channel. Fitted to the phase; close to the
// poles, alternating between the chains, of an elliptic half-band filter of order 33.
constexpr QuadraturePair::Lanes lanesOf (float chainOne, float chainTwo)
{
    return { chainOne, chainOne, chainTwo, chainTwo };
}

alignas (16) constexpr std::array<QuadraturePair::Lanes, QuadraturePair::numSections> coefficients {
    lanesOf (0.9995336f, 0.9984784f),   lanesOf (0.9970231f, 0.9947861f),   lanesOf (0.99118406f, 0.9852872f),
    lanesOf (0.9755971f, 0.9597163f),   lanesOf (0.93388945f, 0.8924666f),  lanesOf (0.82755935f, 0.72967243f),
    lanesOf (0.59095794f, 0.41320083f), lanesOf (0.21985206f, 0.06199008f),
};

constexpr std::size_t lanesPerChannel = 4;

#if HWY_TARGET == HWY_SCALAR

/** The chains of one channel, for processors without any vectors that we know of. */
template <std::size_t channels>
class Chains
{
    static_assert (channels == 1);

public:
    using Inputs = std::array<const float*, channels>;
    using Outputs = std::array<float*, channels>;

    explicit Chains (QuadraturePair* const* pairs) : points (pairs[0]->getMemory().points) {}

    void putBack (QuadraturePair* const* pairs) const { pairs[0]->getMemory().points = points; }

    template <bool isAlone>
    void step (const Inputs& rows, const Outputs& squares, int i)
    {
        const auto* const row = rows[0] + i;
        QuadraturePair::Lanes x { row[-1], row[0], row[0], row[1] };

        for (std::size_t s = 0; s < coefficients.size(); ++s)
        {
            QuadraturePair::Lanes y {};

            for (std::size_t lane = 0; lane < lanesPerChannel; ++lane)
            {
                const auto k = coefficients[s][lane];
                y[lane] = k * x[lane] + (k * points[s + 1][lane] - points[s][lane]);
            }

            remember<isAlone> (s, x);
            x = y;
        }

        remember<isAlone> (coefficients.size(), x);

        for (std::size_t sample = 0; sample < 2; ++sample)
            squares[0][static_cast<std::size_t> (i) + sample] = x[sample] * x[sample] + x[sample + 2] * x[sample + 2];
    }

private:
    template <bool isAlone>
    void remember (std::size_t point, const QuadraturePair::Lanes& x)
    {
        auto& lanes = points[point];
        lanes = isAlone ? QuadraturePair::Lanes { lanes[1], x[0], lanes[3], x[2] } : x;
    }

    std::array<QuadraturePair::Lanes, QuadraturePair::numSections + 1> points;
};

#else

/** Calls function (0), ..., function (count - 1), with constants: the vectors of an array then live in registers. */
template <std::size_t count, typename Function>
HWY_INLINE void unrolled (Function function)
{
    [&]<std::size_t... index> (std::index_sequence<index...>) HWY_ATTR
    {
        (function (std::integral_constant<std::size_t, index>()), ...);
    }
    (std::make_index_sequence<count>());
}

/** The chains of one or two channels, held in registers for the length of a row. */
template <std::size_t channels>
class Chains
{
    using D = hn::FixedTag<float, lanesPerChannel * channels>;
    using V = hn::Vec<D>;
    using Channel = hn::FixedTag<float, lanesPerChannel>;
    using Pair = hn::FixedTag<float, 2>;

public:
    using Inputs = std::array<const float*, channels>;
    using Outputs = std::array<float*, channels>;

    explicit HWY_INLINE Chains (QuadraturePair* const* pairs)
    {
        const auto& first = pairs[0]->getMemory().points;
        const auto& last = pairs[channels - 1]->getMemory().points;
        unrolled<QuadraturePair::numSections + 1> (
            [&] (auto s) HWY_ATTR
            { points[s] = combine (hn::Load (Channel(), first[s].data()), hn::Load (Channel(), last[s].data())); });
    }

    HWY_INLINE void putBack (QuadraturePair* const* pairs) const
    {
        auto& first = pairs[0]->getMemory().points;
        auto& last = pairs[channels - 1]->getMemory().points;
        unrolled<QuadraturePair::numSections + 1> (
            [&] (auto s) HWY_ATTR
            {
                hn::Store (channel<0> (points[s]), Channel(), first[s].data());

                if constexpr (channels == 2)
                    hn::Store (channel<1> (points[s]), Channel(), last[s].data());
            });
    }

    /** Samples i and i + 1 of all channels; or sample i alone, the last one of a row of odd length: the odd lanes stay,
        and what was odd is even from now on. */
    template <bool isAlone>
    HWY_INLINE void step (const Inputs& rows, const Outputs& squares, int i)
    {
        auto x = combine (load (rows[0] + i), load (rows[channels - 1] + i));

        unrolled<QuadraturePair::numSections> (
            [&] (auto s) HWY_ATTR
            {
                // The difference is known before x is, so that a section adds a single operation to the way through.
                const auto k = spread (coefficients[s]);
                const auto y = hn::MulAdd (k, x, hn::MulSub (k, points[s + 1], points[s]));
                points[s] = next<isAlone> (points[s], x);
                x = y;
            });

        points.back() = next<isAlone> (points.back(), x);
        const auto sums = addChains (hn::Mul (x, x));
        hn::StoreU (hn::LowerHalf (Pair(), channel<0> (sums)), Pair(), squares[0] + i);

        if constexpr (channels == 2)
            hn::StoreU (hn::LowerHalf (Pair(), channel<1> (sums)), Pair(), squares[1] + i);
    }

private:
    /** What a point remembers after x. */
    template <bool isAlone>
    static HWY_INLINE V next (V before, V x)
    {
        if constexpr (isAlone)
            return hn::Shuffle2301 (hn::OddEven (before, x));
        else
            return x;
    }

    static HWY_INLINE V spread (const QuadraturePair::Lanes& lanes) { return hn::LoadDup128 (D(), lanes.data()); }

    template <typename Lanes>
    static HWY_INLINE V combine (Lanes first, [[maybe_unused]] Lanes second)
    {
        if constexpr (channels == 2)
            return hn::Combine (D(), second, first);
        else
            return first;
    }

    template <std::size_t c>
    static HWY_INLINE hn::Vec<Channel> channel (V v)
    {
        if constexpr (channels == 1)
            return v;
        else if constexpr (c == 0)
            return hn::LowerHalf (Channel(), v);
        else
            return hn::UpperHalf (Channel(), v);
    }

    /** A channel's lanes for two samples, in chain one a sample late. */
    static HWY_INLINE hn::Vec<Channel> load (const float* samples)
    {
        return hn::Combine (Channel(), hn::LoadU (Pair(), samples), hn::LoadU (Pair(), samples - 1));
    }

    /** Chain one plus chain two, in the lanes of chain one. */
    static HWY_INLINE V addChains (V v)
    {
        const hn::RepartitionToWide<D> pairs;
        const auto swapped = hn::BitCast (D(), hn::Shuffle01 (hn::BitCast (pairs, v)));
        return hn::Add (v, swapped);
    }

    std::array<V, QuadraturePair::numSections + 1> points;
};

#endif

template <std::size_t channels>
void followRows (QuadraturePair* const* pairs, float* const* rows, float* const* squares, int n)
{
    typename Chains<channels>::Inputs inputs;
    typename Chains<channels>::Outputs outputs;

    for (std::size_t c = 0; c < channels; ++c)
    {
        rows[c][-1] = std::exchange (pairs[c]->getMemory().lastSample, rows[c][n - 1]);
        inputs[c] = rows[c];
        outputs[c] = squares[c];
    }

    Chains<channels> chains (pairs);
    int i = 0;

    for (; n - i >= 2; i += 2)
        chains.template step<false> (inputs, outputs, i);

    if (i < n)
        chains.template step<true> (inputs, outputs, i);

    chains.putBack (pairs);
}

void follow (QuadraturePair* const* pairs, int channels, float* const* rows, float* const* squares, int n)
{
    int c = 0;

#if HWY_MAX_BYTES >= 32
    for (; channels - c >= 2; c += 2)
        followRows<2> (pairs + c, rows + c, squares + c, n);
#endif

    for (; c < channels; ++c)
        followRows<1> (pairs + c, rows + c, squares + c, n);
}
} // namespace
} // namespace tarvik::quadrature::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tarvik
{
namespace quadrature
{
HWY_EXPORT (follow);
}

bool QuadraturePair::isBelow (float level) const noexcept
{
    auto largest = std::abs (memory.lastSample);

    for (const auto& lanes : memory.points)
        for (const auto x : lanes)
            largest = std::max (largest, std::abs (x));

    return largest < level;
}

void QuadraturePair::process (std::span<QuadraturePair* const> pairs, float* const* rows, float* const* squares,
                              int n) noexcept
{
    if (n > 0)
        TARVIK_DISPATCH (quadrature::follow) (pairs.data(), static_cast<int> (pairs.size()), rows, squares, n);
}
} // namespace tarvik

#endif
