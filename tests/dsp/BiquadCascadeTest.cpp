// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/BiquadCascade.h"

#include "dsp/InstructionSets.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <complex>

namespace tarvik
{
namespace
{
using test::noise;

/** Sections with poles and zeros anywhere inside the unit circle, up to very close to it. */
BiquadCascade makeCascade (int numSections, std::mt19937& random)
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

    BiquadCascade cascade;
    cascade.setTaps (taps);
    return cascade;
}

TEST (BiquadCascade, RowsTogetherGiveThePlainBitsOnEverySet)
{
    // How long the first and second cascades of neighbouring rows are: forms for four, two and one, and none.
    const std::vector<std::vector<std::array<int, 2>>> cases {
        { { 2, 0 }, { 2, 0 }, { 2, 0 }, { 2, 0 }, { 4, 0 }, { 4, 0 }, { 4, 0 }, { 4, 0 } },
        { { 4, 0 }, { 4, 0 }, { 2, 0 }, { 2, 0 }, { 2, 0 }, { 3, 0 }, { 3, 0 }, { 0, 0 } },
        { { 2, 4 }, { 2, 4 }, { 2, 4 }, { 2, 2 }, { 2, 2 }, { 2, 4 }, { 3, 4 }, { 2, 3 } }
    };
    std::mt19937 random (2);

    for (const auto& set : supportedInstructionSets())
        for (const auto& lengths : cases)
        {
            SCOPED_TRACE (set.name);
            const ScopedInstructionSet scope (set);
            std::vector<std::array<BiquadCascade, 2>> cascades;

            for (const auto [first, second] : lengths)
                cascades.push_back ({ makeCascade (first, random), makeCascade (second, random) });

            auto plain = cascades;

            // Below, at and above the vector forms' delays and the length of their scratch row.
            for (const auto n : { 1, 3, 0, 4, 5, 6, 7, 10, 11, 256, 257, 600 })
            {
                std::vector<test::Signal> samples, expected;
                std::vector<CascadeRow> rows;

                for (std::size_t i = 0; i < lengths.size(); ++i)
                    samples.push_back (noise (n, random()));

                expected = samples;

                for (std::size_t i = 0; i < lengths.size(); ++i)
                {
                    const auto hasSecond = lengths[i][1] > 0;
                    rows.push_back ({ samples[i].data(), &cascades[i][0], hasSecond ? &cascades[i][1] : nullptr });
                    filterPlainly ({ expected[i].data(), &plain[i][0], hasSecond ? &plain[i][1] : nullptr }, n);
                }

                filterRows (rows, n);
                ASSERT_EQ (samples, expected) << "length " << n;
            }
        }
}

TEST (BiquadCascade, EqualNumeratorAndDenominatorReturnTheInputsBits)
{
    // As at high rates: near z = 1, where a contracted multiply-add would leave a remainder.
    BiquadCascade cascade;
    cascade.setTaps (std::array { 1.0, -1.99731, 0.99732, 1.0, -1.99731, 0.99732, // the first section
                                  1.0, -1.98431, 0.98632, 1.0, -1.98431, 0.98632 });
    auto row = noise (20000, 1);
    filterPlainly ({ row.data(), &cascade }, 20000);
    EXPECT_EQ (row, noise (20000, 1));
}

TEST (BiquadCascade, DividesByA0AndClears)
{
    BiquadCascade cascade;
    cascade.setTaps (std::array { 3.0, 1.0, 0.5, 2.0, -0.5, 0.25 });

    for (int run = 0; run < 2; ++run)
    {
        test::Signal row { 1.0f, 0.0f, 0.0f };
        filterPlainly ({ row.data(), &cascade }, 3);
        EXPECT_EQ (row, (test::Signal { 1.5f, 0.875f, 0.28125f })); // the impulse response by hand
        cascade.clear();
    }
}
} // namespace
} // namespace tarvik
