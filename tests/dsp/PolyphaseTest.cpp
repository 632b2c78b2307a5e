// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/Polyphase.h"

#include "dsp/InstructionSets.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <string>

namespace tarvik
{
namespace
{
using test::noise;
using Samples = test::Signal;

// The plug-in's factors, and some whose phases fill no vector evenly.
constexpr int factors[] = { 2, 3, 4, 5, 6, 8, 12, 15, 16 };

// The rate conversion as its formulas stand, sums in 64 bits, from silence: the filter at the high rate over a row with
// zeros put in; then every so many samples of what it gives.
std::vector<double> convertPlainly (const Samples& taps, const Samples& in, std::size_t zerosPut, std::size_t taken)
{
    std::vector<double> out (in.size() * zerosPut / taken);

    for (std::size_t t = 0; t < out.size(); ++t)
        for (std::size_t n = 0; n < taps.size() && n <= t * taken; ++n)
            if (const auto at = t * taken - n; at % zerosPut == 0)
                out[t] += static_cast<double> (taps[n]) * static_cast<double> (in[at / zerosPut]);

    return out;
}

// Gain of the filter at a frequency in cycles per sample of the high rate, dB.
double gainDb (const Samples& taps, double frequency)
{
    return 20.0 * std::log10 (std::abs (test::spectrumAt (taps, 2.0 * std::numbers::pi * frequency)));
}

TEST (PolyphaseDesign, FilterIsFlatBelowAndQuietAboveTheBaseNyquist)
{
    for (const auto factor : factors)
    {
        SCOPED_TRACE (factor);
        const auto taps = designPolyphaseFilter (factor);
        ASSERT_EQ (taps.size(), static_cast<std::size_t> (52 * factor + 1));
        EXPECT_TRUE (std::equal (taps.begin(), taps.end(), taps.rbegin())); // so that both ways delay by 26 samples

        // Frequencies in units of the base rate, so that the same figures hold for every factor.
        EXPECT_NEAR (gainDb (taps, 0.40 / factor), 0.0, 0.01);
        EXPECT_NEAR (gainDb (taps, 0.44 / factor), -0.05, 0.002);

        for (auto frequency = 0.5; frequency <= 0.5 * factor; frequency += 0.003)
            ASSERT_LT (gainDb (taps, frequency / factor), -53.0) << frequency;
    }
}

TEST (Polyphase, AnyCuttingGivesThePlainFormsValuesOnEverySet)
{
    constexpr int length = 1500;
    Polyphase another; // whose taps are not the others'
    another.setup (1, 7);

    for (const auto factor : factors)
    {
        const auto taps = designPolyphaseFilter (factor);
        const auto f = static_cast<std::size_t> (factor);
        const auto base = noise (length, 1), high = noise (length * factor, 1);
        const auto plainHigh = convertPlainly (taps, base, f, 1), plainBase = convertPlainly (taps, high, 1, f);

        for (const auto& set : supportedInstructionSets())
        {
            SCOPED_TRACE (std::string (set.name) + ", factor " + std::to_string (factor));
            const ScopedInstructionSet scope (set);
            const auto run = [&] (const std::vector<int>& pieces)
            {
                Polyphase channel;
                channel.setup (1, factor);
                Samples baseOut (base.size()), highOut (high.size());
                test::inPieces (base.size(), pieces,
                                [&] (std::size_t begin, int n)
                                {
                                    channel.up (0, base.data() + begin, highOut.data() + begin * f, n);
                                    channel.down (0, high.data() + begin * f, baseOut.data() + begin, n);
                                });
                return std::pair (baseOut, highOut);
            };

            const auto whole = run ({ length });
            EXPECT_EQ (run ({ 1, 2, 3, 0, 256, 5, 64, 7, 23, 1, 96, 257, 13, 441, 1, 24 }), whole);

            for (std::size_t i = 0; i < plainBase.size(); ++i)
                ASSERT_NEAR (static_cast<double> (whole.first[i]), plainBase[i], 1.0e-6) << i;

            for (std::size_t i = 0; i < plainHigh.size(); ++i) // without the loss that the zeros put in bring
                ASSERT_NEAR (static_cast<double> (whole.second[i]), factor * plainHigh[i], 1.0e-6) << i;
        }
    }
}

TEST (Polyphase, SetupAndResetForgetTheSignalAndChannelsAreApart)
{
    for (const auto factor : { 1, 3, 16 })
    {
        Polyphase sampler;
        const auto base = noise (101, 1), high = noise (101 * factor, 1);
        const auto run = [&]
        {
            Samples up (high.size()), down (base.size()), quiet (high.size(), 1.0f);
            sampler.up (0, base.data(), up.data(), 101);
            sampler.down (0, high.data(), down.data(), 101);
            sampler.up (1, Samples (101).data(), quiet.data(), 101);
            return std::array { up, down, quiet };
        };

        sampler.setup (2, factor);
        const auto fresh = run();
        EXPECT_EQ (fresh[2], Samples (high.size()));
        EXPECT_EQ (run() == fresh, factor == 1);
        sampler.reset (0);
        EXPECT_EQ (run(), fresh);
        sampler.setup (2, factor);
        EXPECT_EQ (run(), fresh);
    }
}
} // namespace
} // namespace tarvik
