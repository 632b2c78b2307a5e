// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ComponentTable.h"
#include "dsp/InstructionSets.h"
#include "strip/SaturationSection.h"
#include "strip/ToleranceChannel.h"
#include "tests/strip/PlainSaturation.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tarvik::test
{
namespace
{
constexpr double rateHz = 96000.0;

/** A voice-like mixture: tones that come and go, some noise, and quiet between. */
Signal music (double level, int n, unsigned seed)
{
    auto row = noise (n, seed, 0.2f);

    for (std::size_t i = 0; i < row.size(); ++i)
    {
        const auto t = static_cast<double> (i);
        const auto swell = std::pow (std::sin (t * 3e-4), 4.0);
        row[i] = static_cast<float> (
            level * swell * (0.5 * std::sin (t * 0.01) + 0.3 * std::sin (t * 0.21) + static_cast<double> (row[i])));
    }

    return row;
}

using Rows = std::array<Signal, 2>;

/** Calls process (pointers, begin, n) for both rows in pieces of the given lengths in turn. */
template <typename Function>
Rows through (Rows rows, const std::vector<int>& pieces, Function process)
{
    inPieces (rows[0].size(), pieces,
              [&] (std::size_t begin, int n)
              {
                  const std::array<float*, 2> pointers { rows[0].data() + begin, rows[1].data() + begin };
                  process (pointers.data(), begin, n);
              });
    return rows;
}

Rows shaped (Rows rows, const Signal& scale, const std::vector<int>& pieces = { 256 })
{
    std::array<SaturationShaper, 2> shapers;
    return through (
        std::move (rows), pieces,
        [&] (float* const* pointers, std::size_t begin, int n) {
            SaturationShaper::process (std::array { &shapers[0], &shapers[1] }, pointers, scale.data() + begin, n);
        });
}

Rows processed (SaturationSection& section, Rows rows, int length = 256)
{
    return through (std::move (rows), { length },
                    [&] (float* const* pointers, std::size_t, int n) { section.process (pointers, n); });
}

void expectNear (const Signal& got, const Signal& expected, float tolerance)
{
    ASSERT_EQ (got.size(), expected.size());

    for (std::size_t i = 0; i < got.size(); ++i)
        ASSERT_NEAR (got[i], expected[i], tolerance) << i;
}

ParameterSnapshot makeSnapshot (float thdDb, int tolChannel, bool tolLink)
{
    ParameterSnapshot snapshot;
    snapshot.thd = thdDb;
    snapshot.tolChannel = tolChannel;
    snapshot.tolLink = tolLink;
    return snapshot;
}

TEST (Saturation, EveryInstructionSetAgreesWithThePlainForm)
{
    constexpr int n = 60000;

    // "THD" from -30 dB to 0 and back.
    auto scale = sine (1.0, 0.4841886, 6000.0, 10.0);
    std::for_each (scale.begin(), scale.end(), [] (float& sample) { sample += 0.5158114f; });

    // The last is far beyond the clip level. Bounds in samples, of which 8.7 are full scale: 32 bits hold these levels
    // to a few times 1e-7.
    for (const auto& [level, bound] : { std::pair (1.0, 1e-6f), std::pair (9.0, 2e-6f), std::pair (40.0, 5e-6f) })
    {
        const Rows in { music (level, n, 1), music (level, n, 2) };
        auto expected = in;

        for (auto& row : expected)
        {
            PlainShaper plain;

            for (std::size_t i = 0; i < row.size(); ++i)
                row[i] = static_cast<float> (plain.process (row[i], scale[i]));
        }

        for (const auto& set : supportedInstructionSets())
        {
            SCOPED_TRACE (set.name);
            const ScopedInstructionSet forced (set);
            const auto out = shaped (in, scale);
            EXPECT_EQ (shaped (in, scale, { 1, 2, 256, 7, 33, 300, 5 }), out) << "cut elsewhere";
            expectNear (out[0], expected[0], bound);
            expectNear (out[1], expected[1], bound);
        }
    }
}

TEST (Saturation, TheWholeStageFollowsThdAndConsoleChannel)
{
    // The table's values are drawn by ComponentTable, which has tests of its own.
    const std::array<Component, 5> nominal {
        { { "", 6.0, 0.03 }, { "", 0.5, 0.03 }, { "", 35000.0, 0.03 }, { "", 0.55, 0.03 }, { "", 1.0, 0.01 } }
    };
    const ComponentTable table (nominal);

    using Case = std::tuple<float, int, bool, std::array<int, 2>>;

    for (const auto& [thdDb, tolChannel, tolLink, variants] :
         { Case { -30.0f, 5, false, { 4, 5 } }, Case { 30.0f, 7, true, { 6, 6 } } })
    {
        const auto snapshot = makeSnapshot (thdDb, tolChannel, tolLink);
        const Rows in { music (2.0, 30000, 1), music (2.0, 30000, 2) };
        SaturationSection section;
        section.prepare (48000.0, 2, 256);
        section.update (makeSnapshot (12.0f, 20, false), false);
        section.prepare (rateHz, 2, 256);
        processed (section, in); // another "THD" and other components have settled
        section.update (snapshot, false);
        section.reset();
        const auto out = processed (section, in);
        section.reset();
        EXPECT_EQ (processed (section, in, 100), out) << "in other pieces, after a reset";

        for (std::size_t c = 0; c < in.size(); ++c)
        {
            std::array<double, 5> parts {};

            for (std::size_t part = 0; part < parts.size(); ++part)
                parts[part] = table.get (part, variants[c]);

            auto expected = in[c];
            PlainSaturation (static_cast<double> (thdDb), parts, rateHz).process (expected);
            expectNear (out[c], expected, 2e-6f);
        }
    }
}

// In silence the overdrive makes a constant: a jump of its share would be a thump.
TEST (Saturation, MovesOfThdDoNotStep)
{
    SaturationSection section;
    section.prepare (rateHz, 2, 256);
    section.update (makeSnapshot (0.0f, 1, true), true);
    section.reset();
    const Signal silence (static_cast<std::size_t> (3.0 * rateHz), 0.0f);

    for (const auto thdDb : { 30.0f, -30.0f })
    {
        section.update (makeSnapshot (thdDb, 1, true), false);
        const auto row = processed (section, { silence, silence })[0];
        auto largestStep = std::abs (row[0]);

        for (std::size_t i = 1; i < row.size(); ++i)
            largestStep = std::max (largestStep, std::abs (row[i] - row[i - 1]));

        EXPECT_GT (largestStep, 0.0f) << "the overdrive must be heard of";
        EXPECT_LT (largestStep, 2e-5f) << "-114 dB of the stage's unit";
    }
}

// Unlinked, the second side of the last console channel has no neighbour, and stays on it.
TEST (Saturation, ToleranceChannelsOfTheSides)
{
    EXPECT_EQ (toleranceChannelOf (makeSnapshot (0.0f, 7, false), 1), 7);
    EXPECT_EQ (toleranceChannelOf (makeSnapshot (0.0f, 7, true), 1), 6);
    EXPECT_EQ (toleranceChannelOf (makeSnapshot (0.0f, 32, false), 1), 31);
}
} // namespace
} // namespace tarvik::test
