// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/KVLEditor.h"

#include <benchmark/benchmark.h>

#include <ctime>
#include <fstream>
#include <thread>
#include <unistd.h>

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

double residentMegabytes()
{
    constexpr double bytesPerMegabyte = 1e6;
    long total = 0, resident = 0;
    std::ifstream ("/proc/self/statm") >> total >> resident;
    return static_cast<double> (resident) * static_cast<double> (sysconf (_SC_PAGESIZE)) / bytesPerMegabyte;
}

using Strips = std::vector<std::unique_ptr<Tarvik41Processor>>;

/** Plays noise in real time whose level changes all the while, so that both needles of each strip always move. */
class Player
{
public:
    explicit Player (Strips& stripsToFeed) : strips (stripsToFeed)
    {
        for (const auto& strip : strips)
            strip->prepareToPlay (rate, blockSize);

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

            for (const auto& strip : strips)
            {
                for (int channel = 0; channel < block.getNumChannels(); ++channel)
                    for (int i = 0; i < blockSize; ++i)
                        block.setSample (channel, i, static_cast<float> (level) * (random.nextFloat() - 0.5f));

                strip->processBlock (block, midi);
            }

            next += std::chrono::milliseconds (10); // a block's length
            std::this_thread::sleep_until (next);
        }
    }

    Strips& strips;
    std::atomic<bool> isStopping { false };
    std::thread thread;
};

/** What windows on a screen cost: of the message thread in per cent of one core, and of memory beside the strips. */
void openWindows (benchmark::State& state, int numWindows, bool isPlaying)
{
    if (juce::Desktop::getInstance().getDisplays().displays.isEmpty())
    {
        state.SkipWithError ("needs a screen: scripts/measure-window");
        return;
    }

    constexpr double settlingMs = 2000.0, msPerSecond = 1000.0, percent = 100.0;
    Strips strips;

    for (int i = 0; i < numWindows; ++i)
    {
        strips.push_back (std::make_unique<Tarvik41Processor>());
        strips.back()->uiZoomSetting().setValue (1.0);
    }

    const auto player = isPlaying ? std::make_unique<Player> (strips) : nullptr;
    ScaledPictures::getInstance()->releaseUnused(); // what an earlier benchmark has drawn
    const auto memoryBefore = residentMegabytes();
    std::vector<std::unique_ptr<KVLEditor>> editors;

    for (const auto& strip : strips)
    {
        editors.push_back (std::make_unique<KVLEditor> (*strip));
        editors.back()->setVisible (true);
        editors.back()->addToDesktop (0);
    }

    juce::Component nothing; // what JUCE itself takes for a window

    if (numWindows == 0)
    {
        nothing.setSize (consoleLayout::width, consoleLayout::height);
        nothing.setVisible (true);
        nothing.addToDesktop (0);
    }

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
    state.counters["MB"] = residentMegabytes() - memoryBefore;
}

void registerOne (const char* name, int numWindows, bool isPlaying)
{
    benchmark::RegisterBenchmark (name, openWindows, numWindows, isPlaying)
        ->Iterations (2)
        ->UseManualTime()
        ->Unit (benchmark::kMillisecond);
}

const bool areRegistered = []
{
    registerOne ("Window/Empty", 0, false);
    registerOne ("Window/Idle", 1, false);
    registerOne ("Window/MetersMoving", 1, true);
    registerOne ("Window/TwentyWithMetersMoving", 20, true);
    return true;
}();
} // namespace
} // namespace tarvik
