// SPDX-License-Identifier: GPL-3.0-or-later
#include "Yardstick.h"
#include "dsp/ConsoleEQ.h"
#include "dsp/EqualiserComponents.h"
#include "dsp/EqualiserNetwork.h"
#include "dsp/MZTiCoefs.h"
#include "tests/support/RealTimeTrap.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <random>
#include <vector>

// What a change of a control costs the thread that makes it. "us" is the time of one iteration, "Y" the same in
// yardsticks (the time of six plain biquads for one sample), "allocations" and "locks" what a run took in all.
namespace tarvik::benchmarks
{
namespace
{
constexpr double sampleRate = 96000.0;

/** Settings of every kind, so that all eight topologies take their turn. */
std::vector<EQControls> makeSettings()
{
    constexpr std::size_t numSettings = 1000;
    std::vector<EQControls> settings;
    std::mt19937 random (1);
    const auto draw = [&random] (unsigned count) { return static_cast<std::int32_t> (random() % count); };
    const auto drawPot = [&random] { return static_cast<float> (random() % 101) * 0.01f; };

    while (settings.size() < numSettings)
        settings.push_back (
            { draw (3), draw (11), draw (8), drawPot(), draw (2), draw (10), drawPot(), draw (3), draw (32) });

    return settings;
}

/** One call of `change` per iteration, with one setting after the other. */
template <typename Function>
void runChanges (benchmark::State& state, Function change)
{
    const auto settings = makeSettings();
    std::size_t next = 0;
    const test::RealTimeTrap trap;

    for (auto _ : state)
        change (settings[next++ % settings.size()]);

    const auto allocations = trap.allocations(), locks = trap.locks();
    using benchmark::Counter;
    state.counters["us"] = Counter (1e-6, Counter::kIsIterationInvariantRate | Counter::kInvert);
    state.counters["Y"] = Counter (yardstickSeconds(), Counter::kIsIterationInvariantRate | Counter::kInvert);
    state.counters["allocations"] = allocations;
    state.counters["locks"] = locks;
}

/** From the controls to published taps on both channels of a strip: the network's filter, and the high pass where its
    switch has moved. */
void redesignBothChannels (benchmark::State& state)
{
    std::array<ConsoleEQ, 2> eqs;

    for (auto& eq : eqs)
        eq.prepare (sampleRate, 256);

    runChanges (state,
                [&eqs] (const EQControls& controls)
                {
                    for (auto& eq : eqs)
                        eq.update (controls, false);
                });
}

/** The parts of it: the circuit alone, and the digital design alone. */
void solveNetwork (benchmark::State& state)
{
    const ComponentTable table (equaliserComponents);

    runChanges (state, [&table] (const EQControls& controls)
                { benchmark::DoNotOptimize (solveEqualiserNetwork (table, controls)); });
}

void designNetworkFilter (benchmark::State& state)
{
    const ComponentTable table (equaliserComponents);
    std::vector<EqualiserResponse> responses;

    for (const auto& controls : makeSettings())
        responses.push_back (solveEqualiserNetwork (table, controls));

    MZTiCoefs<double, 5, 5> coefs;
    coefs.sampleRate = sampleRate;
    std::size_t next = 0;

    runChanges (state,
                [&] (const EQControls&)
                {
                    const auto& response = responses[next++ % responses.size()];
                    coefs.numerator = response.numerator;
                    coefs.denominator = response.denominator;
                    coefs.design();
                });
}

BENCHMARK (redesignBothChannels)->Name ("EqualiserRedesign/bothChannels");
BENCHMARK (solveNetwork)->Name ("EqualiserRedesign/networkAlone");
BENCHMARK (designNetworkFilter)->Name ("EqualiserRedesign/designAlone");
} // namespace
} // namespace tarvik::benchmarks
