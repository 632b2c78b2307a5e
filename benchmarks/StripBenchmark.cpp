// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/StripUnderTest.h"
#include "benchmarks/Yardstick.h"
#include "dsp/InstructionSets.h"

#include <memory>
#include <string>
#include <vector>

// What the whole plug-in costs a host: blocks, running and bypassed, and the moments in which an instance is made and
// prepared. Stereo, at 48 kHz; nothing moves but in the scene of that name. Bringing input to the plug-in's buffers is
// the host's work and is not timed.
namespace tarvik::benchmarks
{

namespace
{
constexpr int numChannels = 2;
constexpr int loopSamples = 1 << 15;

/** A parameter and the two normalised values between which the moving scene turns it. */
struct Move
{
    const char* id;
    float one, other;
};

// All that crossfades (the high pass on and off, the equaliser's network and the saturation's output filters through
// the console channel, the detector's high pass) and all that fades or ramps. "THD" lies above 0 dB at one end.
constexpr Move moves[] = {
    { "highPass", 0.0f, 1.0f },   { "highGain", 0.3f, 0.7f },  { "midGain", 0.3f, 0.7f },    { "lowGain", 0.3f, 0.7f },
    { "TolChannel", 0.2f, 0.8f }, { "equalizer", 0.0f, 1.0f }, { "thd", 0.3f, 0.7f },        { "compHPF", 0.4f, 0.6f },
    { "compNiveau", 0.0f, 1.0f }, { "pad", 0.0f, 1.0f },       { "phase", 0.0f, 1.0f },      { "unity", 0.0f, 1.0f },
    { "gain", 0.2f, 0.3f },       { "level", 0.4f, 0.6f },     { "inLevel", 0.4f, 0.6f },    { "outLevel", 0.4f, 0.6f },
    { "compMix", 0.4f, 0.6f },    { "compInput", 0.4f, 0.6f }, { "compOutput", 0.4f, 0.6f },
};

/** What the strip is doing while the clock runs. */
enum class Scene
{
    signal,  ///< Music-like noise, nothing moving.
    silence, ///< Twenty seconds after the signal.
    idle,    ///< The same without noise: the strip sleeps.
    moving,  ///< Every filter crossfades, and every fade and gain ramp runs, all the time: `moves`.
    bypassed
};

void runBlocks (benchmark::State& state, Scene scene, InstructionSet set)
{
    const ScopedInstructionSet forced (set); // before the samplers are built, which keep to it
    const auto factor = static_cast<int> (state.range (0));
    const auto blockLength = static_cast<int> (state.range (1));
    const auto strip = makeStrip (factor);
    const auto channels = strip->getTotalNumInputChannels();
    const auto isFed = scene != Scene::silence && scene != Scene::idle;
    strip->analogSetting().setValue (scene != Scene::idle);
    const auto input = makeNoise (channels);
    juce::AudioBuffer<float> loop (channels, loopSamples);
    juce::AudioBuffer<float> block;
    juce::MidiBuffer midi;
    int position = 0;
    int samplesUntilMove = 0;
    bool goesToOther = false;

    const auto moveEverything = [&]
    {
        goesToOther = ! goesToOther;

        for (const auto& move : moves)
            parameterOf (*strip, move.id).setValueNotifyingHost (goesToOther ? move.other : move.one);
    };

    // The strip works in place, in the host's memory, so it needs fresh input now and then: off the clock.
    const auto refill = [&]
    {
        position = 0;
        loop.clear();

        for (int c = 0; c < channels && isFed; ++c)
            loop.copyFrom (c, 0, input, c, 0, loopSamples);
    };

    const auto processOne = [&]
    {
        block.setDataToReferTo (loop.getArrayOfWritePointers(), channels, position, blockLength);
        position += blockLength;

        if (scene == Scene::bypassed)
            strip->processBlockBypassed (block, midi);
        else
            strip->processBlock (block, midi);
    };

    // Fades are over before the clock runs, and silence has had its time.
    const auto warmUpSamples = isFed ? loopSamples : 20 * static_cast<int> (stripRateHz);

    for (int done = 0; done < warmUpSamples; done += blockLength)
    {
        if (done == 0 || position + blockLength > loopSamples)
            refill();

        processOne();
    }

    for (auto _ : state)
    {
        if (position + blockLength > loopSamples)
        {
            state.PauseTiming();
            refill();
            state.ResumeTiming();
        }

        if (scene == Scene::moving && (samplesUntilMove -= blockLength) <= 0)
        {
            state.PauseTiming(); // what a redesign costs is measured by itself
            moveEverything();
            samplesUntilMove = static_cast<int> (0.1 * stripRateHz);
            state.ResumeTiming();
        }

        processOne();
    }

    reportPerSample (state, static_cast<double> (blockLength) * numChannels);
}

void construction (benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize (std::make_unique<Tarvik41Processor>());
}

void preparing (benchmark::State& state)
{
    const auto strip = makeStrip (static_cast<int> (state.range (0)));

    for (auto _ : state)
        strip->prepareToPlay (stripRateHz, 512);
}

/** Everything on the best instruction set, and the plain case on each that the machine has. */
[[maybe_unused]] const bool scenesAreRegistered = []
{
    const std::vector<std::int64_t> factors { 1, 2, 4, 8, 16 };
    const std::vector<std::int64_t> blocks { 64, 256, 1024 };
    const auto sets = supportedInstructionSets();

    const auto add = [] (const std::string& name, Scene scene, InstructionSet set, const std::vector<std::int64_t>& f,
                         const std::vector<std::int64_t>& b)
    {
        benchmark::RegisterBenchmark (("Strip/" + name).c_str(),
                                      [scene, set] (benchmark::State& state) { runBlocks (state, scene, set); })
            ->ArgNames ({ "factor", "block" })
            ->ArgsProduct ({ f, b });
    };

    add ("running", Scene::signal, sets.front(), factors, blocks);
    add ("silence", Scene::silence, sets.front(), { 1, 2 }, { 256 });
    add ("idle", Scene::idle, sets.front(), { 1, 2 }, { 64, 256 });
    add ("moving", Scene::moving, sets.front(), { 1, 2 }, { 256 });
    add ("bypassed", Scene::bypassed, sets.front(), { 1, 2 }, blocks);

    for (const auto& set : sets)
        add (std::string ("running/") + set.name, Scene::signal, set, factors, blocks);

    return true;
}();

BENCHMARK (construction)->Name ("Strip/construction")->Unit (benchmark::kMicrosecond);
BENCHMARK (preparing)
    ->Name ("Strip/prepareToPlay")
    ->ArgName ("factor")
    ->Arg (1)
    ->Arg (2)
    ->Arg (16)
    ->Unit (benchmark::kMicrosecond);
} // namespace

} // namespace tarvik::benchmarks
