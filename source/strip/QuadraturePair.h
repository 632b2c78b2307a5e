// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace tarvik
{
/** Follows the envelope of a signal by splitting it in two of the same level, a quarter of a period apart: the sum of
    their squares is the square of a sine's amplitude, at once and without ripple. The two are 90 degrees apart within
    0.02 from 30 Hz to 30 Hz below half the rate, at 48 kHz; the range scales with the rate.

    Two chains of eight allpass sections y[n] = k (x[n] + y[n - 2]) - x[n - 2], and one sample of delay in the first
    chain. A section remembers two samples, so even and odd samples never meet: a vector holds one section of both
    chains and of an even and an odd sample, for one or two channels. In 32-bit arithmetic, whose errors near 1e-4 of
    the level at the lowest frequencies are a third of what the phase's tolerance makes.

    One thread at a time; nothing allocates, locks or throws. The input must be finite, and must not stay at 0 for long:
    the poles are so close to 1 that the memories would end in subnormal numbers for good. */
class QuadraturePair
{
public:
    static constexpr std::size_t numSections = 8;

    /** What a row must have room for before its n samples, where process() puts the last one of the row before, and
        after them, where it reads but makes nothing of it. */
    static constexpr int margin = 1;

    void clear() noexcept { memory = {}; }

    /** Whether everything that is remembered is smaller than `level`. */
    bool isBelow (float level) const noexcept;

    /** The squares of the envelope of row c, n samples, through *pairs[c]; `squares` too has the margin after them. Two
        channels together cost little more than one. Pieces of a row give the same as the whole, and one channel the
        same as among two. */
    static void process (std::span<QuadraturePair* const> pairs, float* const* rows, float* const* squares,
                         int n) noexcept;

    /** Chain one of the even sample, of the odd one, then chain two likewise. */
    using Lanes = std::array<float, 4>;

    /** The last samples at every point of the chains: before section 0, between the sections, after the last. */
    struct Memory
    {
        alignas (16) std::array<Lanes, numSections + 1> points {};
        float lastSample = 0.0f; ///< the input of chain one, which is a sample late
    };

    Memory& getMemory() noexcept { return memory; }

private:
    Memory memory;
};
} // namespace tarvik
