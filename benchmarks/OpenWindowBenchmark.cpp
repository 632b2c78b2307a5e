// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/KVLEditor.h"

#include <benchmark/benchmark.h>

#include <ctime>
#include <thread>

namespace juce
{
// JUCE's own, and exported by it, but in no header: what its message loop calls.
bool dispatchNextMessageOnSystemQueue (bool returnIfNoPendingMessages);
} // namespace juce

namespace tarvik
{
namespace
{
constexpr double secondsPerRun = 5.0;

double threadCpuSeconds()
{
    timespec time {};
    clock_gettime (CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double> (time.tv_sec) + static_cast<double> (time.tv_nsec) * 1e-9;
}

/** Delivers messages as the loop of a program does: it sleeps until one comes. Timers see to it that one does. */
void runMessagesUntil (double hiResMilliseconds)
{
    while (juce::Time::getMillisecondCounterHiRes() < hiResMilliseconds)
        juce::dispatchNextMessageOnSystemQueue (false);
}

/** Plays noise in real time whose level changes all the while, so that both needles always move. */
class Player
{
public:
    explicit Player (Tarvik41Processor& stripToFeed) : strip (stripToFeed)
    {
        strip.prepareToPlay (rate, blockSize);
        thread = std::thread ([this] { play(); });
    }

    ~Player()
    {
        isStopping = true;
        thread.join();
    }

private:
    static constexpr int blockSize = 480;
    static constexpr double rate = 48000.0, changesPerSecond = 3.0;

    void play()
    {
        juce::Random random (1);
        juce::AudioBuffer<float> block (2, blockSize);
        juce::MidiBuffer midi;
        auto next = std::chrono::steady_clock::now();

        for (juce::int64 position = 0; ! isStopping; position += blockSize)
        {
            const auto seconds = static_cast<double> (position) / rate;
            const auto level = 0.02 + 0.5 * std::pow (std::sin (seconds * changesPerSecond), 2.0);

            for (int channel = 0; channel < block.getNumChannels(); ++channel)
                for (int i = 0; i < blockSize; ++i)
                    block.setSample (channel, i, static_cast<float> (level) * (random.nextFloat() - 0.5f));

            strip.processBlock (block, midi);
            next += std::chrono::milliseconds (10); // a block's length
            std::this_thread::sleep_until (next);
        }
    }

    Tarvik41Processor& strip;
    std::atomic<bool> isStopping { false };
    std::thread thread;
};

/** What a window on a screen costs the message thread, in per cent of one core. */
void openWindow (benchmark::State& state, bool isPlaying)
{
    if (juce::Desktop::getInstance().getDisplays().displays.isEmpty())
    {
        state.SkipWithError ("wants a screen: scripts/measure-window");
        return;
    }

    constexpr double settlingMs = 2000.0, msPerSecond = 1000.0, percent = 100.0;
    Tarvik41Processor strip;
    strip.uiZoomSetting().setValue (1.0);
    const auto player = isPlaying ? std::make_unique<Player> (strip) : nullptr;
    KVLEditor editor (strip);
    editor.setVisible (true);
    editor.addToDesktop (0);
    runMessagesUntil (juce::Time::getMillisecondCounterHiRes() + settlingMs);
    double cpu = 0.0, wall = 0.0;

    for (auto _ : state)
    {
        const auto begin = juce::Time::getMillisecondCounterHiRes();
        const auto cpuBefore = threadCpuSeconds();
        runMessagesUntil (begin + secondsPerRun * msPerSecond);
        const auto spent = threadCpuSeconds() - cpuBefore;
        state.SetIterationTime (spent);
        cpu += spent;
        wall += (juce::Time::getMillisecondCounterHiRes() - begin) / msPerSecond;
    }

    state.counters["% of a core"] = percent * cpu / wall;
}

BENCHMARK_CAPTURE (openWindow, idle, false)
    ->Name ("Window/Idle")
    ->Iterations (3)
    ->UseManualTime()
    ->Unit (benchmark::kMillisecond);
BENCHMARK_CAPTURE (openWindow, playing, true)
    ->Name ("Window/MetersMoving")
    ->Iterations (3)
    ->UseManualTime()
    ->Unit (benchmark::kMillisecond);
} // namespace
} // namespace tarvik
