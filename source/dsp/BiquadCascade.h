// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace tarvik
{
/** A chain of second-order sections on one channel: coefficients and delay line.

    Every section is the transposed direct form II in 64 bits, with the path of the input through b0 taken out of its
    recursion: y = b0 x + s1, s1 = (c1 x + s2) - a1 s1, s2 = c2 x - a2 s1 (all s1 on the right the last one), where
    c1 = b1 - a1 b0 and c2 = b2 - a2 b0. So from one sample to the next there are only a product and a difference to
    wait for, and y is not part of it. The samples between the sections stay 64 bits too; only what leaves the last one
    is rounded to float. A section whose numerator equals its denominator has c1 = c2 = 0 exactly: from a clear delay
    line it returns its input bit for bit. No variant contracts, and all of them do the same operations in the same
    order, so every instruction set gives the same bits.

    One thread at a time; nothing allocates, locks or throws. Samples are expected finite: a NaN would stay in the
    delay line until clear(). */
class BiquadCascade
{
public:
    static constexpr int maxSections = 4;

    /** Numbers per section in a list of taps: b0, b1, b2, a0, a1, a2. */
    static constexpr int tapsPerSection = 6;

    /** Takes tapsPerSection numbers for each of at most maxSections sections, divides each section by its a0 (which
        must not be 0), and clears the delay line. A cascade without sections returns its input. */
    void setTaps (std::span<const double> taps) noexcept;

    /** Empties the delay line. */
    void clear() noexcept;

    int getNumSections() const noexcept { return numSections; }

    /** Where the output ends if every sample from now on is `input`, and how far from their ends it and what passes
        between the sections may still go, at about the most. */
    struct Rest
    {
        double output;
        double distance;
    };

    Rest findRest (double input) const noexcept;

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

/** A row of samples and what filters it in place: one cascade or, with 64-bit samples in between, two in series. */
struct CascadeRow
{
    float* samples = nullptr;
    BiquadCascade* first = nullptr;
    BiquadCascade* second = nullptr; ///< or null
};

/** Filters n samples of a row, sample by sample and section by section. */
void filterPlainly (const CascadeRow& row, int n) noexcept;

/** The same for several rows in vectors, with the same bits. Two or four neighbours whose cascades are equally long
    share one pass, which costs little more than a single row. */
void filterRows (std::span<const CascadeRow> rows, int n) noexcept;

/** Gathers rows of n samples from several owners, so that they share passes. Audio thread. */
class CascadeBatch
{
public:
    explicit CascadeBatch (int numSamples) noexcept : n (numSamples) {}

    /** Filters the row at once, or with later ones. */
    void add (const CascadeRow& row) noexcept
    {
        rows[size++] = row;

        if (size == rows.size())
            run();
    }

    /** Filters what still waits. */
    void run() noexcept
    {
        if (size > 0)
            filterRows (std::span (rows).first (size), n);

        size = 0;
    }

    const int n;

private:
    std::array<CascadeRow, 4> rows {}; ///< as many as one pass takes
    std::size_t size = 0;
};
} // namespace tarvik
