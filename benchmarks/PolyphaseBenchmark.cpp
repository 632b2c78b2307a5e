// SPDX-License-Identifier: GPL-3.0-or-later
//
// The rate conversion of one channel, in blocks of the processor's slice, on every instruction set of the machine: up
// and down together and apart. "seconds" and "Y" are for one sample of the base rate. "%ofPeak" is the share of the
// multiply-adds that a filter without any short cut needs in what this instruction set could do in the same time,
// "%ofAvx2" the same against AVX2; both peaks are measured right before each run. "timesCheaper" is against JUCE's
// own oversampling with FIR filters at maximum quality and the same factor, which is "peer".
#include "benchmarks/MultiplyAddPeak.h"
#include "benchmarks/Yardstick.h"
#include "dsp/InstructionSets.h"
#include "dsp/Polyphase.h"

#include <benchmark/benchmark.h>
#include <juce_dsp/juce_dsp.h>

#include <bit>
#include <cmath>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tarvik::benchmarks
{
namespace
{
constexpr int n = 256;
constexpr double percent = 100.0;

enum class Way
{
    both,
    up,
    down
};

// Seconds of the peer for one sample of the base rate, by factor, once it has run.
std::map<int, double> peerSeconds;

std::vector<float> signal (int numSamples)
{
    std::vector<float> samples (static_cast<std::size_t> (numSamples));

    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float> (std::sin (0.3 * static_cast<double> (i * i % 97))); // anything but silence

    return samples;
}

double avx2Peak()
{
    for (const auto& set : supportedInstructionSets())
        if (std::string (set.name) == "AVX2")
        {
            const ScopedInstructionSet forced (set);
            return measureMultiplyAddPeak();
        }

    return 0.0;
}

void runPolyphase (benchmark::State& state, InstructionSet set, Way way)
{
    const auto factor = static_cast<int> (state.range (0));
    const auto peakOfAvx2 = avx2Peak();

    const ScopedInstructionSet forced (set);
    const auto peak = measureMultiplyAddPeak();

    Polyphase channel;
    channel.setup (1, factor);
    auto base = signal (n), high = signal (n * factor), out = base;
    const auto start = threadSeconds();

    for (auto _ : state)
    {
        if (way != Way::down)
            channel.up (0, base.data(), high.data(), n);

        benchmark::ClobberMemory();

        if (way != Way::up)
            channel.down (0, high.data(), out.data(), n);

        benchmark::ClobberMemory();
    }

    const auto seconds = (threadSeconds() - start) / (n * static_cast<double> (state.iterations()));
    const auto productsOfOneWay = Polyphase::latencySamples * factor + 1;
    const auto products = productsOfOneWay * (way == Way::both ? 2.0 : 1.0);

    reportPerSample (state, n);
    state.counters["%ofPeak"] = percent * products / (seconds * peak);

    if (peakOfAvx2 > 0.0)
        state.counters["%ofAvx2"] = percent * products / (seconds * peakOfAvx2);

    if (way == Way::both && peerSeconds.contains (factor))
        state.counters["timesCheaper"] = peerSeconds[factor] / seconds;
}

void runPeer (benchmark::State& state)
{
    using Oversampling = juce::dsp::Oversampling<float>;
    const auto factor = static_cast<unsigned> (state.range (0));
    Oversampling oversampling (1, static_cast<std::size_t> (std::countr_zero (factor)),
                               Oversampling::filterHalfBandFIREquiripple, true);
    oversampling.initProcessing (n);

    auto base = signal (n), out = base;
    float* inputs[] = { base.data() };
    float* outputs[] = { out.data() };
    const juce::dsp::AudioBlock<float> inputBlock (inputs, 1, n);
    juce::dsp::AudioBlock<float> outputBlock (outputs, 1, n);
    const auto start = threadSeconds();

    for (auto _ : state)
    {
        oversampling.processSamplesUp (inputBlock);
        oversampling.processSamplesDown (outputBlock);
        benchmark::ClobberMemory();
    }

    peerSeconds[static_cast<int> (factor)] = (threadSeconds() - start) / (n * static_cast<double> (state.iterations()));
    reportPerSample (state, n);
}

[[maybe_unused]] const bool registered = []
{
    const auto atAllFactors = [] (benchmark::internal::Benchmark* entry)
    { entry->ArgName ("factor")->RangeMultiplier (2)->Range (2, 16); };

    atAllFactors (benchmark::RegisterBenchmark ("Polyphase/peer", runPeer));

    for (const auto& set : supportedInstructionSets())
        for (const auto& [way, name] :
             { std::pair (Way::both, "/both"), std::pair (Way::up, "/up"), std::pair (Way::down, "/down") })
            atAllFactors (benchmark::RegisterBenchmark ((std::string ("Polyphase/") + set.name + name).c_str(),
                                                        runPolyphase, set, way));

    return true;
}();
} // namespace
} // namespace tarvik::benchmarks
