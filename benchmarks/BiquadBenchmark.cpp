// SPDX-License-Identifier: GPL-3.0-or-later
#include "Yardstick.h"
#include "dsp/BiquadCascade.h"
#include "dsp/ConsoleEQ.h"
#include "dsp/InstructionSets.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <memory>
#include <span>
#include <string>
#include <vector>

// The equaliser of one channel is six sections, two of the high pass and four of the network. Costs are per sample and
// channel.
namespace tarvik::benchmarks
{
namespace
{
constexpr double sampleRate = 96000.0;
constexpr int longestBlock = 1024;

std::vector<float> signal (int n)
{
    std::vector<float> samples (static_cast<std::size_t> (n));

    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float> (std::sin (0.3 * static_cast<double> (i * i % 97)));

    return samples;
}

EQControls makeControls (bool first)
{
    EQControls controls;
    controls.highGain = 8;
    controls.midGain = first ? 0.3f : 0.7f;
    controls.lowFreq = 1;
    controls.lowGain = 0.4f;
    controls.highPass = first ? 1 : 2;
    return controls;
}

enum class Way
{
    pair,       // both channels in one pass
    single,     // one channel alone
    crossfading // both channels, all four filters in the middle of a change
};

void runEqualiser (benchmark::State& state, InstructionSet set, Way way)
{
    const ScopedInstructionSet forced (set);
    const auto n = static_cast<int> (state.range (0));
    std::array eqs { std::make_unique<ConsoleEQ>(), std::make_unique<ConsoleEQ>() };
    const auto source = signal (n);
    auto left = source, right = source;
    auto isFirst = true;
    auto untilNextChange = 0;

    for (auto& eq : eqs)
    {
        eq->update (makeControls (isFirst), true);
        eq->prepare (sampleRate, longestBlock);
    }

    for (auto _ : state)
    {
        // The crossfades last a tenth of the rate; the next change comes when they have just ended.
        if (way == Way::crossfading && (untilNextChange -= n) < 0)
        {
            state.PauseTiming();
            isFirst = ! isFirst;
            untilNextChange = static_cast<int> (sampleRate) / 10;

            for (auto& eq : eqs)
                eq->update (makeControls (isFirst), false);

            state.ResumeTiming();
        }

        left = source;
        right = source;

        const std::array rows { left.data(), right.data() };
        ConsoleEQ::process (std::span (eqs).first (way == Way::single ? 1 : 2), rows.data(), n);

        benchmark::ClobberMemory();
    }

    reportPerSample (state, way == Way::single ? n : 2 * n);
}

/** The six sections of both channels one after the other, plainly: what the vector forms are held against. */
void runPlain (benchmark::State& state)
{
    const auto n = static_cast<int> (state.range (0));
    const std::vector<double> taps { 1.0, -2.0, 1.0, 1.0, -1.98, 0.981, 1.0, -1.8, 0.82, 1.0, -1.7, 0.75 };
    std::array<BiquadCascade, 6> cascades;
    const auto source = signal (n);
    auto left = source, right = source;

    for (auto& cascade : cascades)
        cascade.setTaps (taps);

    for (auto _ : state)
    {
        left = source;
        right = source;

        for (std::size_t i = 0; i < cascades.size(); ++i)
            filterPlainly ({ i % 2 == 0 ? left.data() : right.data(), &cascades[i] }, n);

        benchmark::ClobberMemory();
    }

    reportPerSample (state, 2 * n);
}

[[maybe_unused]] const bool registered = []
{
    benchmark::RegisterBenchmark ("SixBiquads/plain", runPlain)->Arg (256);

    for (const auto& set : supportedInstructionSets())
        for (const auto& [way, name] : { std::pair (Way::pair, "/stereo"), std::pair (Way::single, "/mono"),
                                         std::pair (Way::crossfading, "/crossfading") })
            benchmark::RegisterBenchmark ((std::string ("SixBiquads/") + set.name + name).c_str(), runEqualiser, set,
                                          way)
                ->Arg (64)
                ->Arg (256)
                ->Arg (1024);

    return true;
}();
} // namespace
} // namespace tarvik::benchmarks
