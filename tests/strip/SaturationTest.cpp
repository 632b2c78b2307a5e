// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ComponentTable.h"
#include "dsp/InstructionSets.h"
#include "strip/SaturationSection.h"
#include "tests/strip/PlainSaturation.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <complex>
#include <limits>
#include <numeric>
#include <random>

namespace tarvik
{
using namespace test;

namespace
{
using Row = Signal;
constexpr double rateHz = 96000.0;
constexpr int sliceLength = 256;
constexpr auto unit = SaturationShaper::unit;

Row cosine (double amplitude, double radiansPerSample, int n)
{
    Row row (static_cast<std::size_t> (n));

    for (std::size_t i = 0; i < row.size(); ++i)
        row[i] = static_cast<float> (amplitude * std::cos (radiansPerSample * static_cast<double> (i)));

    return row;
}

/** A voice-like mixture: tones that come and go, some noise, and quiet between. */
Row music (double level, int n, unsigned seed)
{
    std::mt19937 random (seed);
    std::uniform_real_distribution<double> uniform (-0.2, 0.2);
    Row row (static_cast<std::size_t> (n));

    for (std::size_t i = 0; i < row.size(); ++i)
    {
        const auto t = static_cast<double> (i);
        const auto swell = std::pow (std::sin (t * 3e-4), 4.0);
        row[i] = static_cast<float> (level * swell
                                     * (0.5 * std::sin (t * 0.01) + 0.3 * std::sin (t * 0.21) + uniform (random)));
    }

    return row;
}

/** The amplitude of cos (radians i), and of its quadrature, in the last n samples of a row. */
std::complex<double> toneIn (const Row& row, double radians, int n)
{
    std::complex<double> sum;

    for (auto i = row.size() - static_cast<std::size_t> (n); i < row.size(); ++i)
        sum += static_cast<double> (row[i]) * std::polar (1.0, -radians * static_cast<double> (i));

    return 2.0 * sum / static_cast<double> (n);
}

using Rows = std::array<Row, 2>;

/** Both rows through shapers, in pieces of the given lengths in turn. */
Rows shaped (Rows rows, const Row& scales, const std::vector<int>& pieces = { sliceLength })
{
    std::array<SaturationShaper, 2> shapers;
    const std::array<SaturationShaper*, 2> pointers { &shapers[0], &shapers[1] };
    inPieces (scales.size(), pieces,
              [&] (std::size_t begin, int n)
              {
                  const std::array<float*, 2> rowPointers { rows[0].data() + begin, rows[1].data() + begin };
                  SaturationShaper::process (pointers, rowPointers.data(), scales.data() + begin, n);
              });
    return rows;
}

void expectNear (const Row& got, const Row& expected, float tolerance)
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

Rows processed (SaturationSection& section, Rows rows, int length = sliceLength)
{
    inPieces (rows[0].size(), { length },
              [&] (std::size_t begin, int n)
              {
                  const std::array<float*, 2> pointers { rows[0].data() + begin, rows[1].data() + begin };
                  section.process (pointers.data(), n);
              });
    return rows;
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
} // namespace

TEST (Saturation, TheEnvelopeOfASineIsAsStillAsAQuarterPeriodMakesIt)
{
    // Two sines of amplitude 1 that miss 90 degrees by e have squares whose sum swings by +-e around 1.
    constexpr auto tolerance = 0.02 * std::numbers::pi / 180.0;
    constexpr int settling = 100000, n = settling + 20000;
    constexpr double hostRateHz = 48000.0;

    onEveryInstructionSet (
        []
        {
            for (const auto hz : { 30.0, 47.0, 101.0, 997.0, 5003.0, 12007.0, 20011.0, 23907.0, 23970.0 })
            {
                auto early = cosine (1.0, 2.0 * std::numbers::pi * hz / hostRateHz, 1 + n + QuadraturePair::margin);
                Row squares (early.size());
                QuadraturePair pair;
                auto *const row = early.data() + 1, *const out = squares.data();
                QuadraturePair::process (std::array { &pair }, &row, &out, n);

                const auto [lowest, highest] = std::minmax_element (squares.begin() + settling, squares.begin() + n);
                EXPECT_NEAR (*lowest, 1.0, tolerance) << hz;
                EXPECT_NEAR (*highest, 1.0, tolerance) << hz;
            }
        });
}

TEST (Saturation, ASineOfATableAmplitudeLeavesWithThatRowsHarmonics)
{
    constexpr int window = 1 << 16;
    constexpr auto radians = 2.0 * std::numbers::pi * 2731.0 / window; // 4 kHz at 96: h7 is below half the rate

    onEveryInstructionSet (
        []
        {
            for (const auto& measured : measuredSines)
            {
                const auto amplitude = measured[1];
                const auto tone = cosine (amplitude * unit, radians, 2 * window);
                const auto out = shaped ({ tone, tone }, Row (tone.size(), 1.0f))[0];
                const auto tolerance = std::max (1e-7, 0.005 * measured[2]);
                EXPECT_NEAR (toneIn (out, radians, window).real() / unit, amplitude, 1e-6);

                for (std::size_t k = 2; k <= 7; ++k)
                {
                    const auto harmonic = toneIn (out, radians * static_cast<double> (k), window) / unit;
                    EXPECT_NEAR (harmonic.real(), measured[k], tolerance) << amplitude << " " << k;
                    EXPECT_NEAR (harmonic.imag(), 0.0, tolerance) << amplitude << " " << k;
                }
            }
        });
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
            for (const auto& scales : { moving, Row (n, 1.0f) })
                for (const auto& [level, bound] :
                     { std::pair (1.0, 1e-6f), std::pair (9.0, 2e-6f), std::pair (hot, 5e-6f) })
                {
                    const Rows in { music (level, n, 1), music (level, n, 2) };
                    const auto out = shaped (in, scales);
                    EXPECT_EQ (shaped (in, scales, { 1, 2, 256, 7, 33, 300, 5 }), out) << "cut elsewhere";
                    EXPECT_EQ (shaped ({ in[1], Row (n) }, scales)[0], out[1]) << "beside another channel";

                    for (std::size_t c = 0; c < in.size(); ++c)
                    {
                        PlainShaper plain;
                        auto expected = in[c];

                        for (std::size_t i = 0; i < expected.size(); ++i)
                            expected[i] = static_cast<float> (
                                plain.process (static_cast<double> (expected[i]), static_cast<double> (scales[i])));

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
        for (const auto isNewAtPrepare : { false, true })
        {
            const auto snapshot = makeSnapshot (thdDb, tolChannel, tolLink);
            SaturationSection section;
            section.prepare (48000.0, 2, sliceLength);
            section.update (isNewAtPrepare ? makeSnapshot (12.0f, 20, false) : snapshot, false);
            section.prepare (rateHz, 2, sliceLength);

            const Rows in { music (2.0, 30000, 1), music (2.0, 30000, 2) };
            section.update (makeSnapshot (-12.0f, tolChannel, tolLink), true);
            section.reset();
            processed (section, in); // another "THD" has come to rest
            section.update (snapshot, true);
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

TEST (Saturation, PairGivesTheBitsOfTwoSingles)
{
    // A stereo section whose sides move one by one and together, beside two mono ones.
    std::array<SaturationSection, 3> sections;
    std::mt19937 random (9);

    for (std::size_t s = 0; s < sections.size(); ++s)
        sections[s].prepare (rateHz, s == 0 ? 2 : 1, sliceLength);

    for (unsigned block = 0; block < 400; ++block)
    {
        if (random() % 40 == 0)
        {
            const auto first = static_cast<int> (1 + random() % 31);
            const auto isLinked = random() % 2 == 0;

            for (int s = 0; s < 3; ++s)
                sections[static_cast<std::size_t> (s)].update (
                    makeSnapshot (0.0f, s == 2 && ! isLinked ? first + 1 : first, isLinked), false);
        }

        Rows rows { music (1.0, sliceLength, block), music (1.0, sliceLength, 1000 + block) };
        auto alone = rows;
        float* const pointers[] = { rows[0].data(), rows[1].data() };
        float* const alonePointers[] = { alone[0].data(), alone[1].data() };
        sections[0].process (pointers, sliceLength);
        sections[1].process (alonePointers, sliceLength);
        sections[2].process (alonePointers + 1, sliceLength);
        ASSERT_EQ (rows, alone) << block;
    }
}

TEST (Saturation, OffsetsLeaveAndNothingSteps)
{
    SaturationSection section;
    section.prepare (rateHz, 2, sliceLength);
    section.update (makeSnapshot (0.0f, 1, true), true);
    section.reset();

    constexpr int period = 96; // 1 kHz
    const auto tone = cosine (0.5 * unit, 2.0 * std::numbers::pi / period, 2000 * period);
    const auto out = processed (section, { tone, tone })[0];
    EXPECT_NEAR (std::accumulate (out.end() - 100 * period, out.end(), 0.0) / (100 * period), 0.0, 1e-6);

    // In silence the overdrive makes a constant: a jump of its share would be a thump.
    const Row silence (static_cast<std::size_t> (3.0 * rateHz), 0.0f);
    auto largestStep = 0.0f;

    for (const auto thdDb : { 30.0f, -30.0f, 30.0f, 0.0f })
    {
        section.update (makeSnapshot (thdDb, 1, true), false);
        const auto row = processed (section, { silence, silence })[0];
        EXPECT_NEAR (row.back(), 0.0f, 1e-9f) << thdDb;

        for (std::size_t i = row.size() / 2; i > 100; --i)
            largestStep = std::max (largestStep, std::abs (row[i] - row[i - 1]));
    }

    EXPECT_GT (largestStep, 0.0f) << "the overdrive must be heard of";
    EXPECT_LT (largestStep, 2e-5f) << "-114 dB of the stage's unit";
}

TEST (Saturation, AnySampleLeavesFiniteAndLongSilenceLeavesNothingSubnormal)
{
    using Limits = std::numeric_limits<float>;
    SaturationSection section;
    section.prepare (44100.0, 2, sliceLength);
    section.update (makeSnapshot (30.0f, 9, true), true);
    Rows rows { noise (20000, 5, 1e4f), noise (20000, 5, 1e4f) };
    constexpr auto beyondClip = 14.0f;
    std::size_t place = 1000;

    for (const auto& [bad, countsAs] :
         { std::pair (Limits::quiet_NaN(), 0.0f), std::pair (Limits::infinity(), beyondClip),
           std::pair (-Limits::infinity(), -beyondClip), std::pair (Limits::max(), beyondClip),
           std::pair (Limits::denorm_min(), 0.0f) })
    {
        rows[0][place] = bad;
        rows[1][place] = countsAs;
        place += 100;
    }

    const auto out = processed (section, rows);
    EXPECT_TRUE (std::all_of (out[0].begin(), out[0].end(), [] (float x) { return std::abs (x) < 100.0f; }));
    EXPECT_EQ (out[0], out[1]);

    // Nothing flushes subnormals to zero here.
    onEveryInstructionSet (
        []
        {
            SaturationShaper shaper;
            const Row scales (1000, 1.0f);
            auto row = music (1.0, 1000, 3);

            for (int block = 0; block < 3000; ++block)
            {
                auto* const data = row.data();
                SaturationShaper::process (std::array { &shaper }, &data, scales.data(), 1000);
                std::fill (row.begin(), row.end(), 0.0f);
            }

            for (const auto& point : shaper.getQuadraturePair().getMemory().points)
                for (const auto value : point)
                    EXPECT_TRUE (std::isnormal (value)) << value;
        });
}
} // namespace tarvik
