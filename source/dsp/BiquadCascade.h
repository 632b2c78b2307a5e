// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace tarvik
{
/** A chain of second-order sections on one channel: coefficients and delay line.

    Every section is the transposed direct form II in 64 bits, with the way of the input through b0 taken out of its
    recursion: y = b0 x + s1, s1 = (c1 x + s2) - a1 s1, s2 = c2 x - a2 s1 (all s1 on the right the last one), where
    c1 = b1 - a1 b0 and c2 = b2 - a2 b0. So from one sample to the next there are only a product and a difference to
    wait for, and y is no part of it. The samples between the sections stay 64 bits too; only what leaves the last one
    is rounded to float. A section whose numerator equals its denominator has c1 = c2 = 0 exactly: from a clear delay
    line it hands its input through bit for bit, for ever. No variant below contracts, and all of them do the same
    operations in the same order, so they agree to the last bit on every instruction set.

    One thread at a time; nothing allocates, locks or throws. Samples are expected finite: a NaN would stay in the
    delay line until clear(). */
class BiquadCascade
{
public:
    static constexpr int maxSections = 4;

    /** Numbers per section in a list of taps: b0, b1, b2, a0, a1, a2. */
    static constexpr int tapsPerSection = 6;

    /** Takes tapsPerSection numbers for each of at most maxSections sections, divides each section by its a0 (which
        must not be 0), and clears the delay line. A cascade without sections hands its input through. */
    void setTaps (std::span<const double> taps) noexcept;

    /** Empties the delay line, so that the next sample meets a filter at rest. */
    void clear() noexcept;

    int getNumSections() const noexcept { return numSections; }

    /** One sample through all sections. */
    double step (double x) noexcept
    {
        for (std::size_t s = 0; s < static_cast<std::size_t> (numSections); ++s)
        {
            const auto last1 = sections.s1[s];
            sections.s1[s] = (sections.c1[s] * x + sections.s2[s]) - sections.a1[s] * last1;
            sections.s2[s] = sections.c2[s] * x - sections.a2[s] * last1;
            x = sections.b0[s] * x + last1;
        }

        return x;
    }

    /** Filters n samples in place, sample by sample and section by section. */
    void processPlain (float* row, int n) noexcept;

    /** The same in vectors; the same bits. */
    void process (float* row, int n) noexcept;

    /** The numbers of one kind for all sections. Lanes of vectors are filled from these. */
    using PerSection = std::array<double, maxSections>;

    struct Sections
    {
        PerSection b0 {}, c1 {}, c2 {}, a1 {}, a2 {};
        PerSection s1 {}, s2 {}; ///< the delay line
    };

    Sections& getSections() noexcept { return sections; }

private:
    Sections sections;
    int numSections = 0;
};

/** Filters rows of n samples in place, each through its own cascade: row i through *cascades[i]. Two or four
    neighbouring rows whose cascades are equally long share one pass, which costs little more than a single row. Same
    bits as process() row by row. */
void processSideBySide (std::span<BiquadCascade* const> cascades, float* const* rows, int n) noexcept;

/** Filters n samples in place, each through `first` and, unless that is null, on through `second`, where it arrives
    with all its 64 bits. */
void processPlainInTurn (BiquadCascade& first, BiquadCascade* second, float* row, int n) noexcept;

/** The same for rows, row i through *first[i] and *second[i], in a single pass where both cascades of all rows (one or
    two) are two and four sections long. Same bits as processPlainInTurn(). */
void processInTurn (std::span<BiquadCascade* const> first, std::span<BiquadCascade* const> second, float* const* rows,
                    int n) noexcept;
} // namespace tarvik
