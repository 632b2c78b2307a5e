// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/Yardstick.h"
#include "plugin/Tarvik41Processor.h"

#include <juce_events/juce_events.h>

#include <memory>
#include <random>
#include <vector>

// What the whole plug-in costs a host: blocks, running and bypassed, and the moments in which an instance is made and
// prepared. Stereo, at 48 kHz; nothing moves.
namespace tarvik::benchmarks
{

namespace
{
constexpr double sampleRate = 48000.0;
constexpr int numChannels = 2;
constexpr int loopSamples = 1 << 15;

/** The settings of a user must not decide what is measured. */
std::unique_ptr<Tarvik41Processor> makeStrip (int factor)
{
    auto strip = std::make_unique<Tarvik41Processor>();
    strip->oversamplingSetting().setValue (factor);
    strip->analogSetting().setValue (true);
    strip->prepareToPlay (sampleRate, 1024);
    return strip;
}

/** Noise at -12 dBFS, one stretch for all: main channels, and as much side chain as the buses have. */
juce::AudioBuffer<float> makeInput (int channels)
{
    juce::AudioBuffer<float> input (channels, loopSamples);
    std::mt19937 random (1);
    std::uniform_real_distribution<float> uniform (-0.25f, 0.25f);

    for (int c = 0; c < channels; ++c)
        for (int i = 0; i < loopSamples; ++i)
            input.setSample (c, i, uniform (random));

    return input;
}

void runBlocks (benchmark::State& state, bool isBypassed)
{
    const auto factor = static_cast<int> (state.range (0));
    const auto blockLength = static_cast<int> (state.range (1));
    const auto strip = makeStrip (factor);
    const auto channels = strip->getTotalNumInputChannels();
    const auto input = makeInput (channels);
    juce::AudioBuffer<float> block (channels, blockLength);
    juce::MidiBuffer midi;
    int position = 0;

    const auto processOne = [&]
    {
        for (int c = 0; c < channels; ++c)
            block.copyFrom (c, 0, input, c, position, blockLength);

        position = (position + blockLength) % (loopSamples - blockLength);

        if (isBypassed)
            strip->processBlockBypassed (block, midi);
        else
            strip->processBlock (block, midi);
    };

    // Fades and ramps are over before the clock runs.
    for (int done = 0; done < loopSamples; done += blockLength)
        processOne();

    for (auto _ : state)
        processOne();

    reportPerSample (state, static_cast<double> (blockLength) * numChannels);
}

void running (benchmark::State& state) { runBlocks (state, false); }

void bypassed (benchmark::State& state) { runBlocks (state, true); }

void construction (benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize (std::make_unique<Tarvik41Processor>());
}

void preparing (benchmark::State& state)
{
    const auto strip = makeStrip (static_cast<int> (state.range (0)));

    for (auto _ : state)
        strip->prepareToPlay (sampleRate, 512);
}

const auto everyFactorAndBlock = [] (benchmark::internal::Benchmark* b) {
    b->ArgNames ({ "factor", "block" })->ArgsProduct ({ { 1, 2, 4, 8, 16 }, { 64, 256, 1024 } });
};

BENCHMARK (running)->Name ("Strip/running")->Apply (everyFactorAndBlock);
BENCHMARK (bypassed)
    ->Name ("Strip/bypassed")
    ->ArgNames ({ "factor", "block" })
    ->ArgsProduct ({ { 1, 2 }, { 64, 256, 1024 } });
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
