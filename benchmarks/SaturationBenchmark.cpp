// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/Yardstick.h"
#include "dsp/InstructionSets.h"
#include "strip/AnalogNoise.h"
#include "strip/NeedleMeter.h"
#include "strip/SaturationSection.h"
#include "tests/strip/PlainSaturation.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

// The saturation of a stereo strip with its output filters, and the small stages at the chain's ends. Costs are per
// sample and channel; a meter's are per sample.
namespace tarvik::benchmarks
{
namespace
{
constexpr double rateHz = 96000.0;
constexpr int longestBlock = 1024;
constexpr int secondsOfSilence = 20;

enum class Way
{
    stereo,
    mono,
    overdriven, // "THD" at 20 dB
    silence     // after signal, long enough for every memory to decay
};

std::vector<float> music (int n)
{
    std::vector<float> samples (static_cast<std::size_t> (n));

    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float> (std::sin (0.3 * static_cast<double> (i * i % 97)));

    return samples;
}

void runSaturation (benchmark::State& state, InstructionSet set, Way way)
{
    const ScopedInstructionSet forced (set);
    const auto n = static_cast<int> (state.range (0));
    const auto channels = way == Way::mono ? 1 : 2;
    auto source = music (n);
    std::array<std::vector<float>, 2> rows { source, source };
    const std::array<float*, 2> pointers { rows[0].data(), rows[1].data() };

    ParameterSnapshot snapshot;
    snapshot.thd = way == Way::overdriven ? 20.0f : 0.0f;
    SaturationSection section;
    section.prepare (rateHz, channels, longestBlock);
    section.update (snapshot, true);
    section.reset();

    const auto process = [&]
    {
        std::copy (source.begin(), source.end(), rows[0].begin());
        std::copy (source.begin(), source.end(), rows[1].begin());
        section.process (pointers.data(), n);
        benchmark::ClobberMemory();
    };

    if (way == Way::silence)
    {
        process();
        std::fill (source.begin(), source.end(), 0.0f);

        for (int done = 0; done < secondsOfSilence * static_cast<int> (rateHz); done += n)
            process();
    }

    for (auto _ : state)
        process();

    reportPerSample (state, channels * n);
}

/** What the fast forms are held against. */
void runPlain (benchmark::State& state)
{
    const auto n = static_cast<int> (state.range (0));
    const auto source = music (n);
    auto row = source;
    test::PlainSaturation plain (0.0, { 6.0, 0.5, 35000.0, 0.55, 1.0 }, rateHz);

    for (auto _ : state)
    {
        row = source;
        plain.process (row);
        benchmark::ClobberMemory();
    }

    reportPerSample (state, n);
}

void runNoise (benchmark::State& state)
{
    const auto n = static_cast<int> (state.range (0));
    auto row = music (n);
    auto* const pointer = row.data();
    AnalogNoise noise (AnalogNoise::outputRange, 1);
    noise.prepare (rateHz, 1, n);

    for (auto _ : state)
    {
        noise.process (&pointer, n);
        benchmark::ClobberMemory();
    }

    reportPerSample (state, n);
}

void runMeter (benchmark::State& state)
{
    const auto n = static_cast<int> (state.range (0));
    const auto row = music (n);
    const auto* const channel = row.data();
    NeedleMeter meter;
    meter.prepare (rateHz, 1, n);

    for (auto _ : state)
    {
        meter.process (&channel, n);
        benchmark::DoNotOptimize (meter.getReading());
    }

    reportPerSample (state, n);
}

[[maybe_unused]] const bool registered = []
{
    benchmark::RegisterBenchmark ("Saturation/plain", runPlain)->Arg (256);

    for (const auto& set : supportedInstructionSets())
        for (const auto& [way, name] :
             { std::pair (Way::stereo, "/stereo"), std::pair (Way::mono, "/mono"),
               std::pair (Way::overdriven, "/overdriven"), std::pair (Way::silence, "/silence") })
            benchmark::RegisterBenchmark ((std::string ("Saturation/") + set.name + name).c_str(), runSaturation, set,
                                          way)
                ->Arg (64)
                ->Arg (256)
                ->Arg (1024);

    benchmark::RegisterBenchmark ("AnalogNoise", runNoise)->Arg (256);
    benchmark::RegisterBenchmark ("NeedleMeter", runMeter)->Arg (256);
    return true;
}();
} // namespace
} // namespace tarvik::benchmarks
