// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/StripUnderTest.h"
#include "benchmarks/Yardstick.h"
#include "dsp/InstructionSets.h"
#include "plugin/ParameterTable.h"
#include "strip/DynamicsSection.h"
#include "strip/EqualiserSection.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numeric>
#include <string>
#include <type_traits>
#include <vector>

// The plug-in in a project: drums through it, mono, parts of it switched off, many instances of it in turn, automation.
// Each benchmark keeps its own clock, of the time that this thread has been running, and leaves out what the host does.
namespace tarvik::benchmarks
{
namespace
{
using Buffer = juce::AudioBuffer<float>;

constexpr int shortBlock = 64, shortBlockFactor = 2;

//==============================================================================
/** A stretch of the input as a block that the plug-in may overwrite. */
class HostBlock
{
public:
    HostBlock (const Buffer& inputToPlay, int blockLength)
        : input (inputToPlay), block (input.getNumChannels(), blockLength)
    {
    }

    /** The next samples of the input, which begins again when less than a block is left. */
    Buffer& next (int& position)
    {
        const auto n = block.getNumSamples();

        if (position + n > input.getNumSamples())
            position = 0;

        for (int c = 0; c < input.getNumChannels(); ++c)
            block.copyFrom (c, 0, input, c, position, n);

        position += n;
        return block;
    }

private:
    const Buffer& input;
    Buffer block;
};

/** A few tenths of a second, so that all fades are over. */
void warmUp (Tarvik41Processor& strip, const Buffer& input, int blockLength)
{
    HostBlock host (input, blockLength);
    juce::MidiBuffer midi;
    int position = 0;

    for (int done = 0; done < input.getNumSamples(); done += blockLength)
        strip.processBlock (host.next (position), midi);
}

//==============================================================================
/** What is different from a stereo strip that hears noise with everything on. */
struct Scene
{
    const char* name;
    bool hasDrums = false;
    int numChannels = 2;
    const char* switchedOff = nullptr; ///< the ID of a parameter that is set to its lowest value
    bool isNoiseOn = true;
};

void runScene (benchmark::State& state, const Scene& scene, InstructionSet set)
{
    const ScopedInstructionSet forced (set);
    const auto blockLength = static_cast<int> (state.range (1));
    const auto strip = makeStrip (static_cast<int> (state.range (0)), scene.numChannels);
    const auto input = scene.hasDrums ? readDrums (2 * scene.numChannels) : makeNoise (2 * scene.numChannels);

    if (! input)
        return state.SkipWithError ("needs Debian's package sonic-pi-samples");

    strip->analogSetting().setValue (scene.isNoiseOn);

    if (scene.switchedOff != nullptr)
        parameterOf (*strip, scene.switchedOff).setValueNotifyingHost (0.0f);

    warmUp (*strip, *input, blockLength);

    // Each iteration is the whole input, in blocks that lie one after the other.
    const auto numBlocks = input->getNumSamples() / blockLength;
    Buffer played, block;
    juce::MidiBuffer midi;

    for (auto _ : state)
    {
        played.makeCopyOf (*input, true);
        const auto start = threadSeconds();

        for (int b = 0; b < numBlocks; ++b)
        {
            block.setDataToReferTo (played.getArrayOfWritePointers(), played.getNumChannels(), b * blockLength,
                                    blockLength);
            strip->processBlock (block, midi);
        }

        state.SetIterationTime (threadSeconds() - start);
    }

    reportPerSample (state, static_cast<double> (numBlocks) * blockLength * scene.numChannels);
}

//==============================================================================
/** Instances in turn, as on a host's tracks: what each finds of itself in the caches is what the others have left. The cost is
    that of one; bringing the input is in it, a few thousandths. As many blocks between two looks at the clock, whatever
    the number of instances. */
void runInstances (benchmark::State& state)
{
    struct Track
    {
        std::unique_ptr<Tarvik41Processor> strip;
        int position = 0;
    };

    constexpr int mostTracks = 64;
    std::vector<Track> tracks (static_cast<std::size_t> (state.range (0)));
    const auto rounds = mostTracks / static_cast<int> (tracks.size());
    const auto input = makeNoise (4);
    HostBlock host (input, shortBlock);
    juce::MidiBuffer midi;

    for (auto& track : tracks)
    {
        constexpr int apart = 311; // no two at the same place of the noise
        track.strip = makeStrip (shortBlockFactor);
        track.position = apart * static_cast<int> (&track - tracks.data());
        warmUp (*track.strip, input, shortBlock);
    }

    for (auto _ : state)
    {
        const auto start = threadSeconds();

        for (int round = 0; round < rounds; ++round)
            for (auto& track : tracks)
                track.strip->processBlock (host.next (track.position), midi);

        state.SetIterationTime (threadSeconds() - start);
    }

    reportPerSample (state, 2.0 * shortBlock * rounds * static_cast<double> (tracks.size()));
}

//==============================================================================
/** A parameter's value in a block: anything, another in each, and in another order for every parameter. */
float automatedValue (std::size_t block, int index) noexcept
{
    constexpr double perBlock = 0.618034, perParameter = 0.2379;
    const auto turns = perBlock * static_cast<double> (block) + perParameter * index;
    return static_cast<float> (turns - std::floor (turns));
}

/** What a look at the clock takes, which is much against the shortest of times below. */
double clockSeconds()
{
    std::array<double, 1001> seconds {};

    for (auto& s : seconds)
    {
        const auto start = threadSeconds();
        s = threadSeconds() - start;
    }

    const auto middle = seconds.begin() + seconds.size() / 2;
    std::nth_element (seconds.begin(), middle, seconds.end());
    return *middle;
}

/** Sets the chosen parameters in front of every block on the thread that then processes it, as the VST3 wrapper does; those that
    already have the value it passes over. */
void runAutomation (benchmark::State& state, bool (*isAutomated) (const juce::String& id))
{
    const auto strip = makeStrip (shortBlockFactor);
    const auto input = makeNoise (4);
    std::vector<juce::AudioProcessorParameter*> automated;
    std::vector<double> setting, processing, whole;

    for (auto* const p : strip->getParameters())
        if (isAutomated (parameterID (*p)))
            automated.push_back (p);

    warmUp (*strip, input, shortBlock);
    HostBlock host (input, shortBlock);
    juce::MidiBuffer midi;
    int position = 0;
    const auto clock = clockSeconds();

    for (auto _ : state)
    {
        auto& block = host.next (position);
        const auto start = threadSeconds();

        for (auto* const p : automated)
            if (const auto value = automatedValue (whole.size(), p->getParameterIndex()); value != p->getValue())
                p->setValueNotifyingHost (value);

        const auto set = threadSeconds();
        strip->processBlock (block, midi);
        const auto end = threadSeconds();
        setting.push_back (std::max (set - start - clock, 0.0));
        processing.push_back (end - set - clock);
        whole.push_back (setting.back() + processing.back());
        state.SetIterationTime (whole.back());
    }

    constexpr double micro = 1e6, slowestShare = 0.001, deadlineSeconds = shortBlock / stripRateHz;
    const auto mean = [&] (const std::vector<double>& seconds)
    { return std::accumulate (seconds.begin(), seconds.end(), 0.0) / static_cast<double> (seconds.size()); };
    const auto slow = static_cast<std::ptrdiff_t> (slowestShare * static_cast<double> (whole.size()));
    std::sort (whole.begin(), whole.end());

    state.counters["us"] = micro * mean (whole);
    state.counters["usSetting"] = micro * mean (setting);
    state.counters["usProcessing"] = micro * mean (processing);
    state.counters["us99.9th"] = micro * *(whole.end() - 1 - slow);
    state.counters["usWorst"] = micro * whole.back();
    state.counters["%ofDeadline"] = 100.0 * whole.back() / deadlineSeconds;
}

//==============================================================================
/** A section that its switch has taken out of the signal, settled, at 96 kHz: what it costs all the same. */
template <typename Section>
void runSwitchedOff (benchmark::State& state, RelaxedValue<bool> ParameterSnapshot::*field)
{
    constexpr double rateHz = 96000.0;
    constexpr int blockLength = 256;
    ParameterSnapshot snapshot;
    (snapshot.*field) = false;
    snapshot.highGain = 8;
    snapshot.compLimit = true;
    snapshot.compNiveau = true;

    Section section;
    section.prepare (rateHz, 2, blockLength);
    section.update (snapshot, true);
    section.reset();

    // What is off leaves the samples as they are, so they need not be brought again.
    auto samples = makeNoise (2);
    samples.setSize (2, blockLength, true);

    for (auto _ : state)
    {
        if constexpr (std::is_same_v<Section, DynamicsSection>)
            section.process (samples.getArrayOfWritePointers(), blockLength, 0);
        else
            section.process (samples.getArrayOfWritePointers(), blockLength);

        benchmark::ClobberMemory();
    }

    reportPerSample (state, 2.0 * blockLength);
}

//==============================================================================
[[maybe_unused]] const bool registered = []
{
    constexpr std::array<Scene, 8> scenes { {
        { .name = "drums", .hasDrums = true },
        { .name = "mono", .numChannels = 1 },
        { .name = "equaliser out", .switchedOff = "equalizer" },
        { .name = "dynamics out", .switchedOff = "compIn" },
        { .name = "limiter off", .switchedOff = "compLimit" },
        { .name = "detector's high pass off", .switchedOff = "compHPF" },
        { .name = "Niveau off", .switchedOff = "compNiveau" },
        { .name = "noise off", .isNoiseOn = false },
    } };

    const auto sets = supportedInstructionSets();
    const auto add = [] (const std::string& name, const Scene& scene, InstructionSet set)
    {
        benchmark::RegisterBenchmark (("Scene/" + name).c_str(),
                                      [=] (benchmark::State& s) { runScene (s, scene, set); })
            ->ArgNames ({ "factor", "block" })
            ->ArgsProduct ({ { 1, 2, 4, 16 }, { 256 } })
            ->UseManualTime();
    };

    for (const auto& scene : scenes)
        add (scene.name, scene, sets.front());

    for (const auto& set : sets)
        add (std::string ("drums/") + set.name, scenes.front(), set);

    benchmark::RegisterBenchmark ("Instances", runInstances)->Arg (1)->Arg (8)->Arg (64)->UseManualTime();

    constexpr int blocks = 4000; // so that the slowest thousandth is four
    using ID = const juce::String&;
    constexpr std::array<std::pair<const char*, bool (*) (ID)>, 4> automations { {
        { "nothing", [] (ID) { return false; } },
        { "one", [] (ID id) { return id == "level"; } },
        { "three equaliser gains", [] (ID id) { return id.endsWith ("Gain"); } },
        { "all", [] (ID) { return true; } },
    } };

    for (const auto& [name, isAutomated] : automations)
        benchmark::RegisterBenchmark ((std::string ("Automation/") + name).c_str(), runAutomation, isAutomated)
            ->Iterations (blocks)
            ->UseManualTime()
            ->Unit (benchmark::kMicrosecond);

    benchmark::RegisterBenchmark ("Off/equaliser", runSwitchedOff<EqualiserSection>, &ParameterSnapshot::equalizer);
    benchmark::RegisterBenchmark ("Off/dynamics", runSwitchedOff<DynamicsSection>, &ParameterSnapshot::compIn);
    return true;
}();
} // namespace
} // namespace tarvik::benchmarks
