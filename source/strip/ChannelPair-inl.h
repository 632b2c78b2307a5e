// SPDX-License-Identifier: GPL-3.0-or-later
// Numbers of two channels side by side, and the same operations for one, so that a circuit is written once. Read once
// for each instruction set, hence the guard that toggles.
#if defined(TARVIK_CHANNEL_PAIR) == defined(HWY_TARGET_TOGGLE)
#ifdef TARVIK_CHANNEL_PAIR
#undef TARVIK_CHANNEL_PAIR
#else
#define TARVIK_CHANNEL_PAIR
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <type_traits>

HWY_BEFORE_NAMESPACE();

namespace tarvik::dynamics::HWY_NAMESPACE
{
namespace
{
// One channel: a number is a double, a condition a bool.
HWY_INLINE double min (double a, double b) { return std::min (a, b); }

HWY_INLINE double max (double a, double b) { return std::max (a, b); }

HWY_INLINE double abs (double a) { return std::abs (a); }

HWY_INLINE bool any (bool condition) { return condition; }

HWY_INLINE bool all (bool condition) { return condition; }

HWY_INLINE bool both (bool a, bool b) { return a && b; }

HWY_INLINE bool either (bool a, bool b) { return a || b; }

HWY_INLINE double select (bool condition, double ifTrue, double ifFalse) { return condition ? ifTrue : ifFalse; }

template <typename Function>
HWY_INLINE double forEachChannel (double a, Function function)
{
    return function (a);
}

/** The first row's sample. */
template <typename Number, typename Sample>
HWY_INLINE Number load (const Sample* first, const Sample* second)
{
    if constexpr (std::is_same_v<Number, double>)
        return static_cast<double> (*first);
    else
        return Number::load (first, second);
}

HWY_INLINE void store (double a, float* first, float* /*second*/) { *first = static_cast<float> (a); }

HWY_INLINE void store (double a, double* first, double* /*second*/) { *first = a; }

#if HWY_TARGET != HWY_SCALAR

namespace hn = hwy::HWY_NAMESPACE;

/** Two channels: a double in each lane. No operation is fused, so each lane gets the bits of a double on its own. */
class Pair
{
    using D = hn::FixedTag<double, 2>;
    using Doubles = hn::Vec<D>;
    using Floats = hn::FixedTag<float, 2>;
    using Single = hn::FixedTag<float, 1>;

public:
    /** True or false for each lane. */
    struct Condition
    {
        hn::Mask<D> lanes;
    };

    Pair() = default;

    /** The same for both; as numbers and constants of a formula turn into pairs, this converts. */
    HWY_INLINE Pair (double both) : lanes (hn::Set (D(), both)) {}

    HWY_INLINE Pair (double first, double second)
        : lanes (hn::InterleaveLower (hn::Set (D(), first), hn::Set (D(), second)))
    {
    }

    static HWY_INLINE Pair load (const double* first, const double* second) { return { *first, *second }; }

    static HWY_INLINE Pair load (const float* first, const float* second)
    {
        return hn::PromoteTo (D(), hn::Combine (Floats(), hn::Load (Single(), second), hn::Load (Single(), first)));
    }

    friend HWY_INLINE void store (Pair a, float* first, float* second)
    {
        const auto floats = hn::DemoteTo (Floats(), a.lanes);
        hn::Store (hn::LowerHalf (Single(), floats), Single(), first);
        hn::Store (hn::UpperHalf (Single(), floats), Single(), second);
    }

    friend HWY_INLINE void store (Pair a, double* first, double* second)
    {
        *first = hn::GetLane (a.lanes);
        *second = hn::GetLane (hn::Shuffle01 (a.lanes));
    }

    friend HWY_INLINE Pair operator+ (Pair a, Pair b) { return hn::Add (a.lanes, b.lanes); }

    friend HWY_INLINE Pair operator- (Pair a, Pair b) { return hn::Sub (a.lanes, b.lanes); }

    friend HWY_INLINE Pair operator* (Pair a, Pair b) { return hn::Mul (a.lanes, b.lanes); }

    friend HWY_INLINE Pair operator/ (Pair a, Pair b) { return hn::Div (a.lanes, b.lanes); }

    friend HWY_INLINE Condition operator> (Pair a, Pair b) { return { hn::Gt (a.lanes, b.lanes) }; }

    friend HWY_INLINE Condition operator>= (Pair a, Pair b) { return { hn::Ge (a.lanes, b.lanes) }; }

    friend HWY_INLINE Condition operator<(Pair a, Pair b) { return { hn::Lt (a.lanes, b.lanes) }; }

    friend HWY_INLINE Condition operator<= (Pair a, Pair b) { return { hn::Le (a.lanes, b.lanes) }; }

    // Of equals, and beside a NaN, these give the argument that the standard library's give.
    friend HWY_INLINE Pair min (Pair a, Pair b) { return hn::Min (b.lanes, a.lanes); }

    friend HWY_INLINE Pair max (Pair a, Pair b) { return hn::Max (b.lanes, a.lanes); }

    friend HWY_INLINE Pair abs (Pair a) { return hn::Abs (a.lanes); }

    friend HWY_INLINE bool any (Condition a) { return ! hn::AllFalse (D(), a.lanes); }

    friend HWY_INLINE bool all (Condition a) { return hn::AllTrue (D(), a.lanes); }

    friend HWY_INLINE Condition both (Condition a, Condition b) { return { hn::And (a.lanes, b.lanes) }; }

    friend HWY_INLINE Condition either (Condition a, Condition b) { return { hn::Or (a.lanes, b.lanes) }; }

    friend HWY_INLINE Pair select (Condition condition, Pair ifTrue, Pair ifFalse)
    {
        return hn::IfThenElse (condition.lanes, ifTrue.lanes, ifFalse.lanes);
    }

    template <typename Function>
    friend HWY_INLINE Pair forEachChannel (Pair a, Function function)
    {
        return { function (hn::GetLane (a.lanes)), function (hn::GetLane (hn::Shuffle01 (a.lanes))) };
    }

private:
    HWY_INLINE Pair (Doubles value) : lanes (value) {}

    Doubles lanes;
};

#endif
} // namespace
} // namespace tarvik::dynamics::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
