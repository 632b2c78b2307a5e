// SPDX-License-Identifier: GPL-3.0-or-later
#include "Yardstick.h"
#include "dsp/InstructionSets.h"
#include "strip/DynamicsSection.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <numbers>
#include <random>
#include <string>
#include <vector>

// The whole dynamics section, gains and needles included. Costs are per sample and channel.
namespace tarvik::benchmarks
{
namespace
{
constexpr double rateHz = 96000.0;
constexpr int blockLength = 256;
constexpr std::size_t numBlocks = 375; // a second, then again from the start; it stays in the cache

using Signal = std::vector<float>;

// A drum loop of two beats in a second, peaks about 18 dB above 0 VU: a kick, a snare, and a hi-hat on every half. The
// compressor works, the gate opens and closes.
Signal makeDrums (unsigned seed)
{
    std::mt19937 random (seed);
    std::uniform_real_distribution<double> uniform (-1.0, 1.0);
    constexpr double pi = std::numbers::pi, beatSeconds = 0.5;
    Signal samples (numBlocks * static_cast<std::size_t> (blockLength));
    double lowNoise = 0.0, phase = 0.0;

    for (std::size_t i = 0; i < samples.size(); ++i)
    {
        const auto seconds = static_cast<double> (i) / rateHz;
        const auto beat = static_cast<int> (seconds / beatSeconds);
        const auto sinceBeat = seconds - beat * beatSeconds;
        const auto sinceHalf = std::fmod (seconds, beatSeconds / 2.0);
        const auto white = uniform (random);
        lowNoise += 0.3 * (white - lowNoise);
        phase += 2.0 * pi * (50.0 + 150.0 * std::exp (-sinceBeat / 0.02)) / rateHz;

        const auto kick = std::sin (phase) * std::exp (-sinceBeat / 0.15);
        const auto snare = (lowNoise + 0.5 * std::sin (2.0 * pi * 190.0 * sinceBeat)) * std::exp (-sinceBeat / 0.08);
        const auto hat = 0.15 * (white - lowNoise) * std::exp (-sinceHalf / 0.03);
        samples[i] = static_cast<float> (8.0 * ((beat % 2 == 0 ? kick : snare) + hat));
    }

    return samples;
}

// White noise in bursts: no detector ever sees less to predict.
Signal makeNoise (unsigned seed)
{
    std::mt19937 random (seed);
    std::uniform_real_distribution<double> uniform (-1.0, 1.0);
    Signal samples (numBlocks * static_cast<std::size_t> (blockLength));

    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float> (8.0 * uniform (random)
                                         * std::exp (-std::fmod (static_cast<double> (i) / rateHz, 0.33) / 0.06));

    return samples;
}

enum class Input
{
    drums,
    noise,
    silence // after a second of drums
};

struct Scene
{
    const char* name;
    bool hasFilters;
    int expMode;
    int numChannels;
    Input input;
};

void runSection (benchmark::State& state, InstructionSet set, const Scene& scene)
{
    const ScopedInstructionSet forced (set);

    ParameterSnapshot snapshot;
    snapshot.compThreshold = -12.0f;
    snapshot.compRatio = 3;
    snapshot.compLimit = true;
    snapshot.compHPF = scene.hasFilters ? 120.0f : 20.0f;
    snapshot.compNiveau = scene.hasFilters;
    snapshot.expMode = scene.expMode;
    snapshot.expThreshold = -20.0f;

    DynamicsSection section;
    section.prepare (rateHz, scene.numChannels, blockLength);
    section.update (snapshot, true);
    section.reset();

    const auto isSilent = scene.input == Input::silence;
    const auto make = scene.input == Input::noise ? makeNoise : makeDrums;
    const std::array sources { make (1), make (2) };
    const auto n = static_cast<int> (state.range (0));
    const auto total = static_cast<int> (sources[0].size());
    const Signal silence (static_cast<std::size_t> (blockLength), 0.0f);
    std::array<Signal, 2> rows { silence, silence };
    std::array<float*, 2> pointers { rows[0].data(), rows[1].data() };
    auto position = 0;

    const auto runBlock = [&] (bool isMuted)
    {
        for (std::size_t c = 0; c < rows.size(); ++c)
            std::copy_n (isMuted ? silence.data() : sources[c].data() + position, n, rows[c].data());

        section.process (pointers.data(), n, 0);
        benchmark::ClobberMemory();
        position = position + 2 * n <= total ? position + n : 0;
    };

    constexpr double settlingSeconds = 40.0; // time enough for the slowest state to become very small
    const auto numBefore = static_cast<int> (rateHz) / n;
    const auto numSilent = isSilent ? static_cast<int> (rateHz * settlingSeconds) / n : 0;

    for (int i = 0; i < numBefore + numSilent; ++i)
        runBlock (i >= numBefore);

    for (auto _ : state)
        runBlock (isSilent);

    reportPerSample (state, n * scene.numChannels);
}

[[maybe_unused]] const bool registered = []
{
    static constexpr std::array<Scene, 9> scenes { {
        { "compressor", false, 1, 2, Input::drums },
        { "compressor/mono", false, 1, 1, Input::drums },
        { "compressor/noise", false, 1, 2, Input::noise },
        { "compressor with filters", true, 1, 2, Input::drums },
        { "compressor with filters/silence", true, 1, 2, Input::silence },
        { "compressor, filters, expander", true, 0, 2, Input::drums },
        { "compressor, filters, expander/silence", true, 0, 2, Input::silence },
        { "compressor, filters, gate", true, 2, 2, Input::drums },
        { "compressor, filters, gate/silence", true, 2, 2, Input::silence },
    } };

    for (const auto& set : supportedInstructionSets())
        for (const auto& scene : scenes)
            benchmark::RegisterBenchmark ((std::string ("Dynamics/") + set.name + "/" + scene.name).c_str(), runSection,
                                          set, scene)
                ->Arg (blockLength / 4)
                ->Arg (blockLength);

    return true;
}();
} // namespace
} // namespace tarvik::benchmarks
