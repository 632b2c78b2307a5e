// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/BareStrip.h"
#include "tests/support/StripTestTools.h"

namespace tarvik::test
{
namespace
{
constexpr double sampleRate = 48000.0;

/** So quiet that the strip's harmonics and dynamics are out of the picture, at any gain of the strip. */
constexpr double quiet = 1e-4;

/** The real strip with what would hide its gains taken out. */
std::unique_ptr<Tarvik41Processor> makeQuietStrip (int factor, const PlainValues& settings = {})
{
    auto strip = makeNoiselessStrip (2, factor);
    setPlain (*strip, { { "equalizer", 0.0f }, { "compIn", 0.0f } });
    setPlain (*strip, settings);
    strip->prepareToPlay (sampleRate, 256);
    return strip;
}

Signal tone (int numSamples, double level = quiet) { return sine (1000.0, level, sampleRate, numSamples / sampleRate); }

/** What the left side makes of the same signal on both. */
Signal leftOf (juce::AudioProcessor& strip, const Signal& input)
{
    return firstOf (process (strip, { input, input }, 256));
}

double levelDb (const Signal& signal) { return 20.0 * std::log10 (rmsOfEnd (signal, 4800)); }

/** The gain for a sine of 1 kHz after `settleSamples` samples, in dB. */
double gainDb (Tarvik41Processor& strip, int settleSamples = 12000)
{
    const auto input = tone (settleSamples + 4800);
    return levelDb (leftOf (strip, input)) - levelDb (input);
}

/** The same less what silence gives, so without the offset that the saturation's filters are still removing. */
Signal responseOf (int factor, const PlainValues& settings)
{
    const auto input = tone (2400);
    auto response = leftOf (*makeQuietStrip (factor, settings), input);
    const auto silence = leftOf (*makeQuietStrip (factor, settings), Signal (input.size()));
    std::transform (response.begin(), response.end(), silence.begin(), response.begin(), std::minus<>());
    return response;
}

void expectScaled (const Signal& got, const Signal& reference, double gain, double tolerance)
{
    const auto peak = static_cast<double> (*std::max_element (reference.begin(), reference.end()));

    for (std::size_t i = 0; i < got.size(); ++i)
        ASSERT_NEAR (got[i], gain * static_cast<double> (reference[i]), std::abs (gain) * tolerance * peak) << i;
}

TEST (GainStructure, ARenderBeginsWithEveryGainInPlace)
{
    const std::pair<PlainValues, double> cases[] = {
        { { { "gain", 12.0f } }, 12.0 },
        { { { "level", -33.0f } }, -33.0 },
        { { { "pad", 1.0f } }, -20.0 },
        { { { "inLevel", 10.0f }, { "outLevel", -3.0f } }, 7.0 },
        { { { "gain", 20.0f }, { "pad", 1.0f }, { "unity", 1.0f }, { "level", -6.0f } }, -6.0 },
        { { { "gain", 48.0f }, { "level", -80.0f } }, -32.0 },
    };

    for (const auto factor : { 1, 4 })
    {
        const auto reference = responseOf (factor, {});

        for (const auto& [settings, expectedDb] : cases)
        {
            SCOPED_TRACE (settings.front().first);
            expectScaled (responseOf (factor, settings), reference, std::pow (10.0, expectedDb / 20.0), 1e-3);
        }

        expectScaled (responseOf (factor, { { "phase", 1.0f } }), reference, -1.0, 1e-3);

        // Of a muted strip the first samples would show how the saturation's filters settle.
        const auto muted = makeQuietStrip (factor, { { "mute", 1.0f }, { "gain", 40.0f }, { "level", 10.0f } });
        EXPECT_NEAR (gainDb (*muted), -160.0, 0.1);
    }
}

// The running strip's prepare would hide a ramp that reset forgets: what has been asked for by then is in place.
TEST (GainStructure, AResetPutsEveryGainInPlace)
{
    const auto run = [] (auto setUp)
    {
        ParameterSnapshot snapshot, readOuts;
        snapshot.equalizer = snapshot.compIn = false;
        setUp (snapshot);
        ChannelStrip strip;
        strip.prepare (sampleRate, 1, 1, 256);
        strip.update (snapshot, true);
        strip.reset();
        auto row = tone (256, 0.01);
        auto* const channel = row.data();
        strip.processPre (&channel, 256, false);
        strip.processMiddle (&channel, 256, 0, false);
        strip.processPost (&channel, 256, false, readOuts);
        return rmsOfEnd (row, 256) * (row[20] < 0.0f ? -1.0 : 1.0);
    };

    const auto reference = run ([] (auto&) {});
    EXPECT_NEAR (run ([] (auto& s) { s.pad = true; }) / reference, 0.1, 1e-3);
    EXPECT_NEAR (run ([] (auto& s) { s.gain = 20.0f; }) / reference, 10.0, 1e-2);
    EXPECT_NEAR (run ([] (auto& s) { s.gain = 20.0f, s.unity = true; }) / reference, 1.0, 1e-3);
    EXPECT_NEAR (run ([] (auto& s) { s.level = -20.0f; }) / reference, 0.1, 1e-3);
    EXPECT_NEAR (run ([] (auto& s) { s.phase = true; }) / reference, -1.0, 1e-3);
}

TEST (GainStructure, UnityGainComesAfterTheSaturationAndBeforeTheDynamics)
{
    const auto input = tone (4800, 0.06); // -4 dB at the saturation
    const PlainValues driven { { "gain", 20.0f } }, undone { { "gain", 20.0f }, { "unity", 1.0f } };
    expectScaled (leftOf (*makeQuietStrip (1, undone), input), leftOf (*makeQuietStrip (1, driven), input), 0.1, 1e-6);

    // The dynamics hear the level that unity gain has restored, or the driven one where they come first.
    for (const auto isEqPost : { false, true })
    {
        const auto run = [&] (const PlainValues& settings)
        {
            const auto strip = makeQuietStrip (1, settings);
            setPlain (*strip, { { "compIn", 1.0f },
                                { "compThreshold", -20.0f },
                                { "compRatio", 5.0f },
                                { "eqPost", isEqPost ? 1.0f : 0.0f } });
            return levelDb (leftOf (*strip, tone (48000, 0.06)));
        };

        EXPECT_EQ (std::abs (run (undone) - run ({})) > 3.0, isEqPost);
    }
}

TEST (GainStructure, NoControlStepsHoweverItIsMovedOrAutomated)
{
    // 90 dB in 4800 equal factors is 0.22 % a sample; "mute" moves two such gains at once.
    constexpr float largestShareOfLevel = 0.0044f;

    for (const auto* id : { "gain", "level", "inLevel", "outLevel", "pad", "mute", "phase" })
    {
        const auto strip = makeBareStrip();
        strip->prepareToPlay (sampleRate, 64);
        auto& p = parameter (*strip, id);
        auto previous = leftOf (*strip, Signal (64, 0.01f)).back();
        auto largest = 0.0f, highest = std::abs (previous);

        for (const auto position : { 1.0f, 0.0f, 1.0f })
        {
            p.setValueNotifyingHost (position);

            for (const auto sample : leftOf (*strip, Signal (9600, 0.01f)))
            {
                largest = std::max (largest, std::abs (sample - previous));
                highest = std::max (highest, std::abs (sample));
                previous = sample;
            }
        }

        EXPECT_GT (largest, 0.0f) << id << " must do something";
        EXPECT_LT (largest, largestShareOfLevel * highest) << id;
    }
}

TEST (GainStructure, UnityGainsRampLastsTheSameTimeAtEveryFactor)
{
    for (const auto factor : { 1, 2, 8 })
    {
        const auto strip = makeQuietStrip (factor, { { "gain", 20.0f } });
        const auto before = gainDb (*strip);
        setPlain (*strip, "unity", 1.0f);

        // Equal factors over 4800 samples: 10 dB half way. A short sine about that moment, two cycles long.
        const auto output = leftOf (*strip, tone (2400 + 48 + (factor > 1 ? 52 : 0)));
        const auto [lowest, highest] = std::minmax_element (output.end() - 96, output.end());
        EXPECT_NEAR (20.0 * std::log10 (static_cast<double> (std::max (-*lowest, *highest)) / quiet) - before, -10.0,
                     0.4)
            << factor;
        EXPECT_NEAR (gainDb (*strip, 2400) - before, -20.0, 0.01) << factor;
    }
}

TEST (GainStructure, CalibrationCancelsAndASlotKeepsTheCurrentSensitivity)
{
    const auto bare = makeBareStrip();
    bare->prepareToPlay (sampleRate, 256);

    for (const auto calibration : { 16.0, 24.0, 17.5 })
    {
        bare->calibrationSetting().setValue (calibration);
        EXPECT_NEAR (leftOf (*bare, Signal (300, 1.0f)).back(), 1.0f, 1e-6f) << calibration;
    }

    const auto strip = makeQuietStrip (1);
    strip->limiterSensitivitySetting().setValue (0);
    strip->selectSlot (1);
    EXPECT_EQ (strip->currentSnapshot().limiterSensitivity, 0) << "the other slot must not bring back an old one";
}

TEST (GainStructure, NoiseIsAddedAfterThePadAndBeforeTheFader)
{
    // Uniform within +-4e-5 before the fader, where full scale is at 8.7: -111.5 dBFS. Within +-6e-7 before the gain:
    // 251 times that at +48 dB, 0.8 dB less through the saturation's filters. Both together: -100.45. From start to
    // start the level of a second scatters by 0.04 dB, a sixth of the tolerance: the clock's seeds cannot make it red.
    const std::pair<PlainValues, double> cases[] = {
        { { { "inLevel", 20.0f }, { "pad", 1.0f }, { "outLevel", 3.0f } }, -108.52 },
        { { { "level", -20.0f } }, -131.52 },
        { { { "gain", 48.0f }, { "pad", 1.0f } }, -100.45 },
        { { { "gain", 48.0f }, { "unity", 1.0f } }, -111.52 },
    };

    for (const auto& [settings, expectedDbfs] : cases)
    {
        const auto strip = makeQuietStrip (1, settings);
        strip->analogSetting().setValue (true);

        for (const auto& noise : process (*strip, { Signal (96000), Signal (96000) }, 256))
            EXPECT_NEAR (20.0 * std::log10 (rmsOfEnd (noise, 48000)), expectedDbfs, 0.25);
    }
}
} // namespace
} // namespace tarvik::test
