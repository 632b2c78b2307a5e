// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ComponentTable.h"
#include "dsp/InstructionSets.h"
#include "strip/SaturationSection.h"
#include "tests/strip/PlainSaturation.h"
#include "tests/support/RealTimeTrap.h"

#include <gtest/gtest.h>

#include <complex>
#include <limits>
#include <random>
#include <tuple>

namespace tarvik
{
using namespace test;

namespace
{
using Row = std::vector<float>;
constexpr double rateHz = 96000.0;
constexpr int sliceLength = 256;
constexpr auto unit = SaturationShaper::unit;

Row sine (double amplitude, double radiansPerSample, int n)
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

/** Both rows through shapers, in pieces of the given lengths in turn. */
void shape (std::array<Row, 2>& rows, const Row& scales, const std::vector<int>& pieces)
{
    std::array<SaturationShaper, 2> shapers;
    const std::array<SaturationShaper*, 2> pointers { &shapers[0], &shapers[1] };
    const auto total = static_cast<int> (rows[0].size());
    std::size_t piece = 0;

    for (int done = 0; done < total; ++piece)
    {
        const auto n = std::min (pieces[piece % pieces.size()], total - done);
        const std::array<float*, 2> rowPointers { rows[0].data() + done, rows[1].data() + done };
        const std::array<const float*, 2> scalePointers { scales.data() + done, scales.data() + done };
        SaturationShaper::process (pointers, rowPointers.data(), scalePointers.data(), n);
        done += n;
    }
}

double largestDifference (const Row& a, const Row& b)
{
    auto largest = a.size() == b.size() ? 0.0 : std::numeric_limits<double>::infinity();

    for (std::size_t i = 0; i < std::min (a.size(), b.size()); ++i)
    {
        const auto difference = std::abs (static_cast<double> (a[i]) - static_cast<double> (b[i]));
        largest = difference <= largest ? largest : difference; // a NaN counts as a difference
    }

    return largest;
}

ParameterSnapshot makeSnapshot (float thdDb, int tolChannel, bool tolLink)
{
    ParameterSnapshot snapshot;
    snapshot.thd = thdDb;
    snapshot.tolChannel = tolChannel;
    snapshot.tolLink = tolLink;
    return snapshot;
}

void processAll (SaturationSection& section, std::array<Row, 2>& rows, int length = sliceLength)
{
    const auto total = static_cast<int> (rows[0].size());

    for (int done = 0; done < total; done += length)
    {
        const std::array<float*, 2> pointers { rows[0].data() + done, rows[1].data() + done };
        section.process (pointers.data(), 2, std::min (length, total - done));
    }
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
    constexpr int settling = 100000, window = 20000;
    constexpr double hostRateHz = 48000.0;

    onEveryInstructionSet (
        []
        {
            for (const auto hz : { 30.0, 47.0, 101.0, 997.0, 5003.0, 12007.0, 20011.0, 23907.0, 23970.0 })
            {
                constexpr auto n = settling + window;
                auto early = sine (1.0, 2.0 * std::numbers::pi * hz / hostRateHz, 1 + n + QuadraturePair::margin);
                Row squares (early.size());
                QuadraturePair pair;
                QuadraturePair* const pointer = &pair;
                auto *const row = early.data() + 1, *const out = squares.data();
                QuadraturePair::process (std::span (&pointer, 1), &row, &out, n);

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
            for (const auto& row : HarmonicTable::rows)
            {
                const auto amplitude = static_cast<double> (row.amplitude);
                std::array<Row, 2> rows;
                rows.fill (sine (amplitude * unit, radians, 2 * window));
                shape (rows, Row (rows[0].size(), 1.0f), { sliceLength });
                const auto tolerance = std::max (1e-7, 0.005 * static_cast<double> (row.harmonics[0]));
                EXPECT_NEAR (toneIn (rows[0], radians, window).real() / unit, amplitude, 1e-6);

                for (std::size_t k = 2; k <= 7; ++k)
                {
                    const auto tone = toneIn (rows[0], radians * static_cast<double> (k), window) / unit;
                    EXPECT_NEAR (tone.real(), static_cast<double> (row.harmonics[k - 2]), tolerance) << amplitude << k;
                    EXPECT_NEAR (tone.imag(), 0.0, tolerance) << amplitude << " " << k;
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
            auto moving = sine (0.4841886, 0.001, n);
            std::for_each (moving.begin(), moving.end(), [] (float& scale) { scale += 0.5158114f; });

            for (const auto& scales : { moving, Row (n, 1.0f) })
                for (const auto& [level, bound] :
                     { std::pair (1.0, 1e-6), std::pair (9.0, 2e-6), std::pair (hot, 5e-6) })
                {
                    std::array<Row, 2> rows { music (level, n, 1), music (level, n, 2) };
                    auto expected = rows, pieces = rows;
                    std::array<Row, 2> alone { rows[1], Row (rows[1].size()) };
                    shape (rows, scales, { sliceLength });

                    for (auto& row : expected)
                    {
                        PlainShaper plain;

                        for (std::size_t i = 0; i < row.size(); ++i)
                            row[i] = static_cast<float> (
                                plain.process (static_cast<double> (row[i]), static_cast<double> (scales[i])));
                    }

                    for (std::size_t c = 0; c < rows.size(); ++c)
                        EXPECT_LT (largestDifference (rows[c], expected[c]), bound) << level << " " << scales[0];

                    shape (pieces, scales, { 1, 2, 256, 7, 33, 300, 5 });
                    EXPECT_EQ (pieces, rows) << "cut elsewhere";
                    shape (alone, scales, { sliceLength });
                    EXPECT_EQ (alone[0], rows[1]) << "beside another channel";
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
            SaturationSection section;
            section.prepare (48000.0, 2, sliceLength);
            section.update (
                isNewAtPrepare ? makeSnapshot (12.0f, 20, false) : makeSnapshot (thdDb, tolChannel, tolLink), false);
            section.prepare (rateHz, 2, sliceLength);
            section.update (makeSnapshot (thdDb, tolChannel, tolLink), true);
            section.reset();

            std::array<Row, 2> rows { music (2.0, 30000, 1), music (2.0, 30000, 2) };
            auto expected = rows, cut = rows;
            processAll (section, rows);

            for (std::size_t c = 0; c < rows.size(); ++c)
            {
                std::array<double, 5> parts {};

                for (std::size_t part = 0; part < parts.size(); ++part)
                    parts[part] = table.get (part, variants[c]);

                PlainSaturation (static_cast<double> (thdDb), parts, rateHz).process (expected[c]);
                EXPECT_LT (largestDifference (rows[c], expected[c]), 2e-6) << thdDb;
            }

            section.reset();

            for (int done = 0; done < 30000; done += 100)
            {
                float* const pieces[] = { cut[0].data() + done, cut[1].data() + done };
                section.process (pieces, 2, 100);
            }

            EXPECT_EQ (cut, rows) << "in other pieces, after a reset";
        }
}

TEST (Saturation, PairGivesTheBitsOfTwoSinglesWhileConsoleChannelsMove)
{
    std::array<SaturationChannel, 4> channels; // two together, two alone
    std::mt19937 random (9);

    for (auto& channel : channels)
        channel.prepare (rateHz, sliceLength);

    for (unsigned block = 0; block < 400; ++block)
    {
        if (const auto side = random() % 120; side < 3)
            for (std::size_t c = 0; c < channels.size(); ++c)
                if (side == 2 || c % 2 == side)
                    channels[c].setVariant (static_cast<int> (block % 32));

        std::array rows { music (1.0, sliceLength, block), music (1.0, sliceLength, 1000 + block) };
        auto alone = rows;
        float* const pointers[] = { rows[0].data(), rows[1].data() };
        SaturationChannel::process (std::array { &channels[0], &channels[1] }, pointers, sliceLength);

        for (std::size_t c = 0; c < alone.size(); ++c)
        {
            auto* const row = alone[c].data();
            SaturationChannel::process (std::array { &channels[2 + c] }, &row, sliceLength);
        }

        ASSERT_EQ (rows, alone) << block;
    }
}

TEST (Saturation, OffsetsLeaveAndNothingSteps)
{
    SaturationSection section;
    section.prepare (rateHz, 2, sliceLength);
    auto snapshot = makeSnapshot (0.0f, 1, true);
    section.update (snapshot, true);
    section.reset();

    constexpr int period = 96; // 1 kHz
    std::array<Row, 2> rows;
    rows.fill (sine (0.5 * unit, 2.0 * std::numbers::pi / period, 20000 * period / 10));
    processAll (section, rows);
    auto sum = 0.0;

    for (auto i = rows[0].size() - 100 * period; i < rows[0].size(); ++i)
        sum += static_cast<double> (rows[0][i]);

    EXPECT_NEAR (sum / (100 * period), 0.0, 1e-6);

    // In silence the overdrive makes a constant: a jump of its share would be a thump.
    auto largestStep = 0.0f;

    for (const auto thdDb : { 30.0f, -30.0f, 30.0f, 0.0f })
    {
        snapshot.thd = thdDb;
        section.update (snapshot, false);
        rows.fill (Row (static_cast<std::size_t> (3.0 * rateHz), 0.0f));
        processAll (section, rows);
        EXPECT_NEAR (rows[0].back(), 0.0f, 1e-9f) << thdDb;

        for (std::size_t i = rows[0].size() / 2; i > 100; --i)
            largestStep = std::max (largestStep, std::abs (rows[0][i] - rows[0][i - 1]));
    }

    EXPECT_GT (largestStep, 0.0f) << "the overdrive must be heard of";
    EXPECT_LT (largestStep, 2e-5f) << "-114 dB of the stage's unit";
}

TEST (Saturation, AnySampleLeavesFiniteAndLongSilenceLeavesNothingSubnormal)
{
    std::mt19937 random (5);
    std::uniform_real_distribution<float> uniform (-1e4f, 1e4f);
    SaturationSection section;
    section.prepare (44100.0, 2, sliceLength);
    section.update (makeSnapshot (30.0f, 9, true), true);

    std::array<Row, 2> rows { Row (20000), Row (20000) };
    std::generate (rows[0].begin(), rows[0].end(), [&] { return uniform (random); });
    rows[1] = rows[0];
    const auto limits = std::numeric_limits<float>();
    constexpr auto beyondClip = 14.0f;
    const std::array<std::pair<float, float>, 5> badAndWhatItCountsAs { { { limits.quiet_NaN(), 0.0f },
                                                                          { limits.infinity(), beyondClip },
                                                                          { -limits.infinity(), -beyondClip },
                                                                          { limits.max(), beyondClip },
                                                                          { limits.denorm_min(), 0.0f } } };

    for (std::size_t i = 0; i < badAndWhatItCountsAs.size(); ++i)
        std::tie (rows[0][1000 + 100 * i], rows[1][1000 + 100 * i]) = badAndWhatItCountsAs[i];

    processAll (section, rows);
    const auto isFinite = [] (float x) { return std::isfinite (x) && std::abs (x) < 100.0f; };
    EXPECT_TRUE (std::all_of (rows[0].begin(), rows[0].end(), isFinite));
    EXPECT_EQ (rows[0], rows[1]);

    // Nothing flushes subnormals to zero here.
    onEveryInstructionSet (
        []
        {
            SaturationShaper shaper;
            SaturationShaper* const pointer = &shaper;
            const Row scales (1000, 1.0f);
            const auto* const scale = scales.data();
            auto row = music (1.0, 1000, 3);

            for (int block = 0; block < 3000; ++block)
            {
                auto* const data = row.data();
                SaturationShaper::process (std::span (&pointer, 1), &data, &scale, 1000);
                std::fill (row.begin(), row.end(), 0.0f);
            }

            for (const auto& point : shaper.getQuadraturePair().getMemory().points)
                for (const auto value : point)
                    EXPECT_TRUE (std::isnormal (value)) << value;
        });
}

TEST (Saturation, UpdatesAndAudioNeitherAllocateNorLock)
{
    SaturationSection section;
    section.prepare (rateHz, 2, sliceLength);
    std::array<Row, 2> rows { music (2.0, 4096, 1), music (2.0, 4096, 2) };
    const RealTimeTrap trap;

    for (const auto channel : { 1, 9, 32 })
    {
        section.update (makeSnapshot (static_cast<float> (channel), channel, false), false);
        processAll (section, rows);
    }

    EXPECT_EQ (trap.allocations(), 0);
    EXPECT_EQ (trap.locks(), 0);
}
} // namespace tarvik
