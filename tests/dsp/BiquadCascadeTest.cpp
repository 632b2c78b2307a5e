// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/BiquadCascade.h"

#include "dsp/InstructionSets.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <array>
#include <complex>

namespace tarvik
{
namespace
{
using test::noise;

/** Sections with poles and zeros anywhere inside the unit circle, up to very close to it. */
std::vector<double> makeTaps (int numSections, std::mt19937& random)
{
    std::uniform_real_distribution<double> radius (0.5, 0.9999), angle (0.0, std::numbers::pi);
    std::vector<double> taps;

    for (int i = 0; i < numSections; ++i)
    {
        const auto zero = std::polar (radius (random), angle (random));
        const auto pole = std::polar (radius (random), angle (random));
        taps.insert (taps.end(),
                     { 0.9, -1.8 * zero.real(), 0.9 * std::norm (zero), 1.0, -2.0 * pole.real(), std::norm (pole) });
    }

    return taps;
}

TEST (BiquadCascade, CascadesInTurnGiveThePlainFormsBitsOnEveryInstructionSet)
{
    std::mt19937 random (2);

    for (const auto& set : supportedInstructionSets())
        for (int trial = 0; trial < 60; ++trial)
        {
            SCOPED_TRACE (set.name);
            const ScopedInstructionSet scope (set);
            std::array<BiquadCascade, 2> first, second, plainFirst, plainSecond;

            for (std::size_t c = 0; c < 2; ++c)
            {
                plainFirst[c].setTaps (makeTaps (trial % 4 == 3 ? 3 : 2, random)); // three has no vector form
                plainSecond[c].setTaps (makeTaps (trial % 5 < 2 ? 2 : 4, random));
            }

            first = plainFirst;
            second = plainSecond;
            const std::array<BiquadCascade*, 2> firsts { &first[0], &first[1] }, seconds { &second[0], &second[1] };
            const auto numChannels = static_cast<std::size_t> (1 + trial % 2);

            // Lengths below, at and above the vector form's delay and the length of its scratch row.
            for (const auto n : { 1, 3, 0, 6, 7, 10, 11, 256, 257, static_cast<int> (random() % 700) })
            {
                std::array rows { noise (n, random()), noise (n, random()) };
                auto expected = rows;
                const std::array<float*, 2> pointers { rows[0].data(), rows[1].data() };
                processInTurn (std::span (firsts).first (numChannels), std::span (seconds).first (numChannels),
                               pointers.data(), n);

                for (std::size_t c = 0; c < numChannels; ++c)
                    processPlainInTurn (plainFirst[c], &plainSecond[c], expected[c].data(), n);

                ASSERT_EQ (rows, expected) << "length " << n << ", trial " << trial;
            }
        }
}

TEST (BiquadCascade, RowsSideBySideGiveThePlainFormsBitsHoweverManyAreAlike)
{
    constexpr std::size_t numRows = 8;
    constexpr std::array<std::array<int, numRows>, 4> lengths { { { 2, 2, 2, 2, 4, 4, 4, 4 },
                                                                  { 4, 4, 4, 4, 4, 4, 2, 3 },
                                                                  { 4, 4, 2, 4, 2, 3, 0, 0 },
                                                                  { 4, 4, 2, 2, 2, 2, 2, 2 } } };
    std::mt19937 random (3);

    for (const auto& set : supportedInstructionSets())
        for (const auto& sections : lengths)
        {
            SCOPED_TRACE (set.name);
            const ScopedInstructionSet scope (set);
            std::array<BiquadCascade, numRows> cascades, plain;

            for (std::size_t i = 0; i < numRows; ++i)
            {
                plain[i].setTaps (makeTaps (sections[i], random));
                cascades[i] = plain[i];
            }

            for (const auto n : { 100, 1, 3, 4, 5, 257, 3, 600 })
            {
                std::array<test::Signal, numRows> rows, expected;
                std::array<BiquadCascade*, numRows> pointers {};
                std::array<float*, numRows> rowPointers {};

                for (std::size_t i = 0; i < numRows; ++i)
                {
                    rows[i] = expected[i] = noise (n, random());
                    plain[i].processPlain (expected[i].data(), n);
                    pointers[i] = &cascades[i];
                    rowPointers[i] = rows[i].data();
                }

                processSideBySide (pointers, rowPointers.data(), n);
                ASSERT_EQ (rows, expected) << n;
            }
        }
}

TEST (BiquadCascade, RoundsOnceBehindTheLastSection)
{
    // The second section takes out nearly all that the first one puts in. Rounding in between would leave 2^-24 of a
    // level 1000 times as high; the only error left is the last rounding.
    constexpr auto pole = 0.999;
    BiquadCascade cascade;
    cascade.setTaps (std::array { 1.0, 0.0, 0.0, 1.0, -pole, 0.0, 1.0, -pole, 0.0, 1.0, 0.0, 0.0 });
    std::vector<float> row (10000, 1.0f);
    cascade.process (row.data(), static_cast<int> (row.size()));

    for (const auto sample : row)
        ASSERT_NEAR (sample, 1.0f, 1e-7f);
}

TEST (BiquadCascade, EqualNumeratorAndDenominatorHandTheInputThroughBitForBit)
{
    // As at high rates: near z = 1, where a contracted multiply-add would leave a remainder.
    BiquadCascade cascade;
    cascade.setTaps (std::array { 1.0, -1.99731, 0.99732, 1.0, -1.99731, 0.99732, // the first section
                                  1.0, -1.98431, 0.98632, 1.0, -1.98431, 0.98632 });
    auto row = noise (20000, 1);
    cascade.process (row.data(), 20000);
    EXPECT_EQ (row, noise (20000, 1));
}

TEST (BiquadCascade, DividesBySectionsOwnA0AndClearsOnNewTaps)
{
    constexpr std::array taps { 3.0, 1.0, 0.5, 2.0, -0.5, 0.25 };
    BiquadCascade cascade;
    cascade.setTaps (taps);
    const auto run = [&cascade]
    {
        std::vector<float> row { 1.0f, 0.0f, 0.0f };
        cascade.process (row.data(), 3);
        return row;
    };

    const std::vector<float> expected { 1.5f, 0.875f, 0.28125f }; // the impulse response by hand
    EXPECT_EQ (run(), expected);
    EXPECT_NE (run(), expected); // still ringing
    cascade.clear();
    EXPECT_EQ (run(), expected);
    cascade.setTaps (taps);
    EXPECT_EQ (run(), expected);
}
} // namespace
} // namespace tarvik
