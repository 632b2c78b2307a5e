// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/RowOperations.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace tarvik
{

/** A value that moves from `current` to `target` within `steps` samples whatever the distance. `Kind` says how samples
    are taken and how a move begins. A ramp belongs to one thread; `SharedRamp` below lets other threads give it a
    target. Nothing here allocates or throws. */
template <typename Kind>
struct Ramp
{
    std::uint32_t steps = 100;   ///< Samples of a full move.
    std::uint32_t remaining = 0; ///< Samples left of the current move; 0 while idle.
    double current = 1.0;
    double target = 1.0;
    double increment = 0.0;          ///< Per sample: a difference or a factor, by the kind.
    [[no_unique_address]] Kind kind; ///< What else the kind has to know about the current move.

    Ramp() = default;

    explicit Ramp (double initial) noexcept : current (initial), target (initial) {}

    bool isIdle() const noexcept { return remaining == 0; }

    /** Whether the coming samples are all exactly 1. */
    bool isIdleAtOne() const noexcept { return isIdle() && current == 1.0; }

    /** Starts a move of `steps` samples to t, or jumps there from closer than 1e-6. If it is the current target, the
        move goes on. Values that are not finite are ignored. */
    void set (double t) noexcept
    {
        if (! std::isfinite (t))
            return;

        if (std::abs (t - current) < jumpDistance)
        {
            current = target = t;
            remaining = 0;
        }
        else if (t != target) // exact: only the very same request lets the move go on
        {
            Kind::begin (*this, t);
            remaining = steps;
        }
    }

    /** Ends the move: the value is the target from now on. */
    void snap() noexcept
    {
        current = target;
        remaining = 0;
    }

    /** Writes the next n values, rounded to float, and leaves the ramp n samples further on. */
    void fill (float* row, int n) noexcept
    {
        const auto moving =
            static_cast<int> (std::min<std::uint32_t> (static_cast<std::uint32_t> (std::max (n, 0)), remaining));

        Kind::fill (*this, row, moving);
        remaining -= static_cast<std::uint32_t> (moving);

        if (moving > 0 && remaining == 0)
        {
            current = target;
            row[moving - 1] = static_cast<float> (target);
        }

        for (int i = moving; i < n; ++i)
            row[i] = static_cast<float> (current);
    }

private:
    static constexpr double jumpDistance = 1e-6;
};

struct LinearStep
{
    /** Counts back from the target, so that no sample waits for the one before it. */
    static void fill (Ramp<LinearStep>& ramp, float* row, int moving) noexcept
    {
        const auto target = ramp.target, increment = ramp.increment;
        const auto remaining = static_cast<int> (ramp.remaining);

        rows::fillLine (row, target, increment, remaining, moving);
        ramp.current = target - increment * (remaining - moving);
    }

    static void begin (Ramp<LinearStep>& ramp, double t) noexcept
    {
        ramp.target = t;
        ramp.increment = (t - ramp.current) / ramp.steps;
    }
};

/** Goes in groups of samples: sample k of a group is the value before the group times the k-th power of the factor, so
    that only groups wait for one another. Where a row begins and ends makes no difference to the values. */
struct GeometricStep
{
    static void fill (Ramp<GeometricStep>& ramp, float* row, int moving) noexcept
    {
        auto& group = ramp.kind;
        int i = 0;

        const auto takeOne = [&]
        {
            ramp.current = group.before * group.powers[group.taken++];
            row[i++] = static_cast<float> (ramp.current);

            if (group.taken == groupLength)
            {
                group.before = ramp.current;
                group.taken = 0;
            }
        };

        while (i < moving && group.taken != 0)
            takeOne();

        if (const auto groups = (moving - i) / static_cast<int> (groupLength); groups > 0)
        {
            ramp.current = group.before = rows::fillPowers (row + i, group.before, group.powers, groups);
            i += groups * static_cast<int> (groupLength);
        }

        while (i < moving)
            takeOne();
    }

    /** A geometric move cannot reach zero, so both ends are lifted to at least -80 dB. */
    static void begin (Ramp<GeometricStep>& ramp, double t) noexcept
    {
        constexpr double lowest = 1e-4;
        ramp.current = std::max (ramp.current, lowest);
        ramp.target = std::max (t, lowest);
        ramp.increment = std::pow (ramp.target / ramp.current, 1.0 / ramp.steps);
        ramp.kind = { {}, ramp.current, 0 };

        auto power = 1.0;

        for (auto& p : ramp.kind.powers)
            p = power *= ramp.increment;
    }

    static constexpr std::size_t groupLength = 8;

    std::array<double, groupLength> powers {}; ///< Of the factor, from the first.
    double before = 1.0;                       ///< The value that the current group starts from.
    std::size_t taken = 0;                     ///< Samples of that group so far.
};

/** Equal differences per sample: for wet and dry levels, and for a change of sign. */
using LinearRamp = Ramp<LinearStep>;

/** Equal factors per sample, so equal decibels: for gains. */
using GeometricRamp = Ramp<GeometricStep>;

/** A ramp that any thread may give a target, while the audio thread runs it.

    A request is one value and one flag. The audio thread takes it with `takeRequest` at the start of a slice, so the
    ramp's own fields have a single writer; of several requests between two slices the last one counts. Neither side
    waits. */
template <typename RampType>
class SharedRamp
{
public:
    SharedRamp() = default;

    explicit SharedRamp (double initial) noexcept : ramp (initial) {}

    /** Any thread. */
    void request (double t) noexcept
    {
        requested.store (t, std::memory_order_relaxed);
        isWaiting.store (true, std::memory_order_release);
    }

    /** Audio thread, or while no audio runs. */
    void takeRequest() noexcept
    {
        if (isWaiting.load (std::memory_order_relaxed) && isWaiting.exchange (false, std::memory_order_acquire))
            ramp.set (requested.load (std::memory_order_relaxed));
    }

    /** While no audio runs: sets the length of a move, at least one sample, and ends the current one. */
    void prepare (std::uint32_t stepsPerMove) noexcept
    {
        snap();
        ramp.steps = std::max<std::uint32_t> (1, stepsPerMove);
    }

    /** While no audio runs: takes what waits and jumps there. */
    void snap() noexcept
    {
        takeRequest();
        ramp.snap();
    }

    /** Audio thread: takes what waits and writes the next n values. */
    void fill (float* row, int n) noexcept
    {
        takeRequest();
        fillTaken (row, n);
    }

    /** Audio thread: the same without taking what waits, for a slice that has called `takeRequest` already. */
    void fillTaken (float* row, int n) noexcept { ramp.fill (row, n); }

    /** Audio thread: takes what waits, and returns whether the coming samples are all exactly 1. */
    bool isIdleAtOne() noexcept
    {
        takeRequest();
        return ramp.isIdleAtOne();
    }

    /** Audio thread: whether the ramp is idle and nothing waits. */
    bool isIdle() const noexcept { return ramp.isIdle() && ! isWaiting.load (std::memory_order_relaxed); }

    const RampType& get() const noexcept { return ramp; }

private:
    RampType ramp;
    std::atomic<double> requested { 0.0 };
    std::atomic<bool> isWaiting { false };
};

} // namespace tarvik
