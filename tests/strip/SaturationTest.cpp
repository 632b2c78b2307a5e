// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ComponentTable.h"
#include "dsp/InstructionSets.h"
#include "strip/EqualiserSection.h"
#include "strip/SaturationSection.h"
#include "tests/strip/PlainSaturation.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>

namespace tarvik::test
{
namespace
{
constexpr double rateHz = 96000.0;
constexpr auto unit = SaturationShaper::unit;

Signal cosine (double amplitude, double radiansPerSample, int n)
{
    Signal row (static_cast<std::size_t> (n));

    for (std::size_t i = 0; i < row.size(); ++i)
        row[i] = static_cast<float> (amplitude * std::cos (radiansPerSample * static_cast<double> (i)));

    return row;
}

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

template <typename Test>
void onEveryInstructionSet (Test test)
{
    for (const auto& set : supportedInstructionSets())
    {
        SCOPED_TRACE (set.name);
        const ScopedInstructionSet forced (set);
        test();
    }
}

TEST (Saturation, EnvelopeOfASineIsAsStillAsAQuarterPeriodMakesIt)
{
    // Two sines of amplitude 1 that miss 90 degrees by e have squares whose sum swings by +-e around 1.
    constexpr auto tolerance = 0.02 * std::numbers::pi / 180.0;
    constexpr int settling = 100000, n = settling + 20000;

    for (const auto hz : { 30.0, 47.0, 101.0, 997.0, 5003.0, 12007.0, 20011.0, 23907.0, 23970.0 })
    {
        auto early = cosine (1.0, 2.0 * std::numbers::pi * hz / 48000.0, 1 + n + QuadraturePair::margin);
        Signal squares (early.size());
        QuadraturePair pair;
        auto *const row = early.data() + 1, *const out = squares.data();
        QuadraturePair::process (std::array { &pair }, &row, &out, n);

        const auto [lowest, highest] = std::minmax_element (squares.begin() + settling, squares.begin() + n);
        EXPECT_NEAR (*lowest, 1.0, tolerance) << hz;
        EXPECT_NEAR (*highest, 1.0, tolerance) << hz;
    }
}

TEST (Saturation, ASineOfATableAmplitudeLeavesWithThatRowsHarmonics)
{
    constexpr int window = 1 << 16;
    constexpr auto radians = 2.0 * std::numbers::pi * 2731.0 / window; // 4 kHz at 96: h7 is below half the rate

    for (const auto& measured : measuredSines)
    {
        const auto tone = cosine (measured[1] * unit, radians, 2 * window);
        const auto out = shaped ({ tone, tone }, Signal (tone.size(), 1.0f))[0];
        const Signal settled (out.begin() + window, out.end());

        for (std::size_t k = 1; k <= 7; ++k)
        {
            const auto harmonic = 2.0 * spectrumAt (settled, radians * static_cast<double> (k)) / (window * unit);
            const auto tolerance = k == 1 ? 1e-6 : std::max (1e-7, 0.005 * measured[2]);
            EXPECT_NEAR (harmonic.real(), measured[k], tolerance) << measured[1] << " " << k;
            EXPECT_NEAR (harmonic.imag(), 0.0, tolerance) << measured[1] << " " << k;
        }
    }
}

TEST (Saturation, EveryInstructionSetAgreesWithThePlainForm)
{
    constexpr int n = 60000;
    static constexpr double hot = 40.0; // far beyond the clip level

    onEveryInstructionSet (
        []
        {
            // From -30 dB to 0 and back, and 0 throughout.
            auto moving = cosine (0.4841886, 0.001, n);
            std::for_each (moving.begin(), moving.end(), [] (float& scale) { scale += 0.5158114f; });

            // Bounds in samples, of which 8.7 are full scale: 32 bits hold these levels to a few times 1e-7.
            for (const auto& scale : { moving, Signal (n, 1.0f) })
                for (const auto& [level, bound] :
                     { std::pair (1.0, 1e-6f), std::pair (9.0, 2e-6f), std::pair (hot, 5e-6f) })
                {
                    const Rows in { music (level, n, 1), music (level, n, 2) };
                    const auto out = shaped (in, scale);
                    EXPECT_EQ (shaped (in, scale, { 1, 2, 256, 7, 33, 300, 5 }), out) << "cut elsewhere";
                    EXPECT_EQ (shaped ({ in[1], Signal (n) }, scale)[0], out[1]) << "with another channel";

                    for (std::size_t c = 0; c < in.size(); ++c)
                    {
                        PlainShaper plain;
                        auto expected = in[c];

                        for (std::size_t i = 0; i < expected.size(); ++i)
                            expected[i] = static_cast<float> (
                                plain.process (static_cast<double> (expected[i]), static_cast<double> (scale[i])));

                        expectNear (out[c], expected, bound);
                    }
                }
        });
}

TEST (Saturation, TheWholeStageFollowsThdAndConsoleChannel)
{
    // The table's values are drawn by ComponentTable, which has tests of its own.
    const std::array<Component, 5> nominal {
        { { "", 6.0, 0.03 }, { "", 0.5, 0.03 }, { "", 35000.0, 0.03 }, { "", 0.55, 0.03 }, { "", 1.0, 0.01 } }
    };
    const ComponentTable table (nominal);

    struct Case
    {
        float thdDb;
        int tolChannel;
        bool tolLink;
        std::array<int, 2> variants;
    };

    for (const auto& [thdDb, tolChannel, tolLink, variants] :
         { Case { 0.0f, 1, true, { 0, 0 } }, Case { -30.0f, 5, false, { 4, 5 } }, Case { 20.0f, 32, false, { 31, 31 } },
           Case { 30.0f, 7, true, { 6, 6 } } })
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

        SaturationSection mono;
        auto row = in[0];
        auto* const pointer = row.data();
        mono.prepare (rateHz, 1, 30000);
        mono.update (snapshot, true);
        mono.reset();
        mono.process (&pointer, 30000);
        EXPECT_EQ (row, out[0]);
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
    auto largestStep = 0.0f;

    for (const auto thdDb : { 30.0f, -30.0f, 30.0f, 0.0f })
    {
        section.update (makeSnapshot (thdDb, 1, true), false);
        const auto row = processed (section, { silence, silence })[0];
        EXPECT_NEAR (row.back(), 0.0f, 1e-9f) << thdDb << ": the constant leaves";

        for (std::size_t i = row.size() / 2; i > 100; --i)
            largestStep = std::max (largestStep, std::abs (row[i] - row[i - 1]));
    }

    EXPECT_GT (largestStep, 0.0f) << "the overdrive must be heard of";
    EXPECT_LT (largestStep, 2e-5f) << "-114 dB of the stage's unit";
}

TEST (Saturation, BadSamplesAreSilenceOrClipped)
{
    using Limits = std::numeric_limits<float>;
    Rows rows { noise (2000, 5, 1e4f), noise (2000, 5, 1e4f) };
    std::size_t place = 1000;

    for (const auto& [bad, countsAs] : { std::pair (Limits::quiet_NaN(), 0.0f),
                                         { Limits::infinity(), 14.0f },
                                         { -Limits::max(), -14.0f },
                                         { Limits::denorm_min(), 0.0f } })
    {
        rows[0][place] = bad;
        rows[1][place] = countsAs;
        place += 100;
    }

    const auto out = shaped (rows, Signal (2000, 1.0f));
    EXPECT_TRUE (allFinite (out[0]));
    EXPECT_EQ (out[0], out[1]);
}

// Nothing flushes subnormals to zero here.
TEST (Saturation, LongSilenceLeavesNothingSubnormal)
{
    onEveryInstructionSet (
        []
        {
            SaturationShaper shaper;
            const Signal scale (1000, 1.0f);
            auto row = music (1.0, 1000, 3);

            for (int block = 0; block < 3000; ++block)
            {
                auto* const data = row.data();
                SaturationShaper::process (std::array { &shaper }, &data, scale.data(), 1000);
                std::fill (row.begin(), row.end(), 0.0f);
            }

            for (const auto& point : shaper.getQuadraturePair().getMemory().points)
                for (const auto value : point)
                    EXPECT_TRUE (std::isnormal (value)) << value;
        });
}

/** Seconds of the quickest of many updates that go through the given console channels in turn. */
template <typename Section>
double quickestUpdate (Section& section, const std::vector<int>& tolChannels)
{
    using Clock = std::chrono::steady_clock;
    auto quickest = 1.0;

    for (std::size_t i = 0; i < 200; ++i)
    {
        const auto snapshot = makeSnapshot (0.0f, tolChannels[i % tolChannels.size()], false);
        const auto start = Clock::now();
        section.update (snapshot, false);
        quickest = std::min (quickest, std::chrono::duration<double> (Clock::now() - start).count());
    }

    return quickest;
}

// A design takes some ten microseconds, a look at what has not changed a hundredth of that.
TEST (ToleranceChannel, NothingIsDesignedAnewWhileNothingChanges)
{
    const auto check = [] (auto&& section)
    {
        section.prepare (48000.0, 2, 256);
        section.update (makeSnapshot (0.0f, 9, false), true);
        const auto changing = quickestUpdate (section, { 10, 20 });

        for (const auto tolChannel : { 7, 32 }) // the second side of 32 has no neighbour
            EXPECT_LT (quickestUpdate (section, { tolChannel }), 0.2 * changing) << tolChannel;
    };

    check (EqualiserSection());
    check (SaturationSection());
}
} // namespace
} // namespace tarvik::test
