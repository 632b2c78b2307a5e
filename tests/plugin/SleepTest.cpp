// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/FactoryPrograms.h"
#include "tests/support/StripTestTools.h"

#include <array>

namespace tarvik
{

using namespace test;

namespace
{
constexpr double sampleRate = 44100.0;

/** What keeps a strip awake in a pause, and is otherwise nothing. */
constexpr float barelySomething = 1e-30f;

/** Three strips with the same settings and nearly the same input, and what the first two make of it. */
class Sleepers
{
public:
    Sleepers (int mainChannels, int factor, bool hasSidechain)
        : numInputs (hasSidechain ? 2 * mainChannels : mainChannels)
    {
        for (auto& strip : strips)
            strip = makeNoiselessStrip (mainChannels, factor, hasSidechain);
    }

    template <typename Function>
    void onEach (Function function)
    {
        for (auto& strip : strips)
            function (*strip);
    }

    void play (double seconds, float level)
    {
        const auto n = static_cast<int> (seconds * sampleRate);
        std::vector<Signal> input, wakefulInput;

        for (int c = 0; c < numInputs; ++c)
        {
            input.push_back (noise (n, random(), level));
            wakefulInput.push_back (level > 0.0f ? input.back() : Signal (input.back().size(), barelySomething));
        }

        const auto heard = process (*strips[0], input, 300);
        const auto awake = process (*strips[1], std::move (wakefulInput), 512);
        ASSERT_EQ (process (*strips[2], std::move (input), [&] { return static_cast<int> (random() % 700); }), heard);
        isSilent = true;

        for (std::size_t c = 0; c < heard.size(); ++c)
            for (std::size_t i = 0; i < heard[c].size(); ++i)
            {
                peak = std::max (peak, std::abs (awake[c][i]));
                error = std::max (error, std::abs (heard[c][i] - awake[c][i]));
                isSilent = isSilent && (heard[c][i] == 0.0f || i + 4410 < heard[c].size());
            }

        const auto &readOuts = strips[0]->currentSnapshot(), &expected = strips[1]->currentSnapshot();
        EXPECT_NEAR (readOuts.gainReductionDb, expected.gainReductionDb, 0.03f); // at most 1024 samples behind
        EXPECT_NEAR (readOuts.inputMeter, expected.inputMeter, 1e-3f);
        EXPECT_NEAR (readOuts.outputMeter, expected.outputMeter, 1e-3f);
        EXPECT_NEAR (readOuts.expanderAmount, expected.expanderAmount, 0.01f);
        EXPECT_EQ (readOuts.limiterActive, expected.limiterActive);
    }

    double errorDb() const { return 20.0 * std::log10 (static_cast<double> (error / peak)); }

    bool isSilent = false; ///< The end of what was played last.

private:
    int numInputs;
    std::array<std::unique_ptr<Tarvik41Processor>, 3> strips; ///< may sleep, never sleeps, is cut at random
    std::mt19937 random { 1 };
    float peak = 0.0f, error = 0.0f;
};
} // namespace

TEST (Sleep, PausesSoundAndReadAsIfTheStripHadStayedAwake)
{
    const std::array<PlainValues, 4> dynamics { {
        {},
        { { "compLimit", 1.0f }, { "expMode", 0.0f }, { "expInverted", 1.0f }, { "expRelease", 2.0f } },
        { { "compExtSideChain", 1.0f }, { "compHPF", 100.0f }, { "compNiveau", 1.0f }, { "compThreshold", -15.0f } },
        { { "expExtSideChain", 1.0f }, { "expMode", 2.0f }, { "expHold", 1.0f }, { "expThreshold", 0.0f } },
    } };

    for (std::size_t program = 0; program < numFactoryPrograms; ++program)
    {
        const auto number = static_cast<int> (program);
        const auto factor = program == 3 ? 16 : 1 + number / 4 % 2;
        Sleepers strips (1 + number % 2, factor, program % 4 >= 2);
        strips.onEach (
            [&] (auto& strip)
            {
                strip.applySnapshot (factoryPrograms()[program].snapshot);
                setPlain (strip, dynamics[program % 4]);
                strip.prepareToPlay (sampleRate, 512);
            });
        strips.play (1.0, 0.3f);

        // The default's equaliser has something that lasts for seconds.
        for (const auto pause : { 0.1, 0.7, program == 0 ? 10.0 : program == 1 ? 30.0 : 3.0 })
        {
            for (const auto share : { 0.07, 0.93 }) // needles are looked at on their way
                strips.play (share * pause, 0.0f);

            EXPECT_TRUE (strips.isSilent || pause < 3.0) << "it never slept";
            strips.play (0.2, 0.3f);
        }

        EXPECT_LT (strips.errorDb(), -130.0) << factoryPrograms()[program].name << ", factor " << factor;
    }
}

TEST (Sleep, EachChangeWakesAtOnce)
{
    Sleepers strips (2, 2, true);
    strips.onEach ([] (auto& strip) { strip.prepareToPlay (sampleRate, 512); });

    // Moves begin with the change and not with the sound after it.
    for (int index = 0; index < numParameters; ++index)
    {
        strips.onEach (
            [] (auto& strip)
            {
                strip.applySnapshot ({});
                setPlain (strip, "lowFreq", 5.0f); // with nothing in the equaliser that lasts for seconds
            });
        strips.play (0.2, 0.3f);
        strips.play (3.0, 0.0f);
        EXPECT_TRUE (strips.isSilent) << parameterRow (index).id;
        strips.onEach (
            [&] (auto& strip)
            {
                auto& p = *strip.getParameters()[index];
                p.setValueNotifyingHost (p.getValue() < 0.4f ? 0.6f : 0.3f);
            });
        strips.play (0.05, 0.0f);
        strips.play (0.2, 0.3f);
        ASSERT_LT (strips.errorDb(), -130.0) << parameterRow (index).id;
    }

    // The equaliser comes back clear after 5 s, whether or not they have been slept through.
    strips.onEach ([] (auto& strip) { setPlain (strip, "equalizer", 0.0f); });
    strips.play (0.2, 0.3f);
    strips.play (6.0, 0.0f);
    strips.onEach (
        [] (auto& strip) {
            setPlain (strip, { { "lowFreq", 3.0f }, { "lowGain", 0.8f }, { "equalizer", 1.0f } });
        });
    strips.play (0.2, 0.3f);
    EXPECT_LT (strips.errorDb(), -130.0) << "equaliser";

    const auto strip = makeNoiselessStrip();
    strip->prepareToPlay (sampleRate, 512);
    const std::vector<Signal> silence (2, Signal (441000));
    EXPECT_EQ (process (*strip, silence, 512)[0].back(), 0.0f);
    strip->analogSetting().setValue (true);
    EXPECT_NE (process (*strip, { Signal (64), Signal (64) }, 64)[0], Signal (64)) << "noise";
    strip->analogSetting().setValue (false);
    process (*strip, silence, 512);
    process (*strip, { Signal (9000), Signal (9000) }, 512, true);
    EXPECT_EQ (process (*strip, { Signal (99, 0.5f), Signal (99, 0.5f) }, 99, true)[0].back(), 0.5f) << "bypass";
}

} // namespace tarvik
