// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/BareStrip.h"
#include "tests/support/RealTimeTrap.h"

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace tarvik
{

using namespace test;

namespace
{
constexpr double sampleRate = 48000.0;
constexpr int blockLengths[] = { 0, 1, 3, 64, 255, 256, 257, 1000, 4096 };
} // namespace

TEST (RealTime, TheTrapItselfCatches)
{
    std::mutex mutex;
    const RealTimeTrap trap;
    void* volatile block = std::malloc (10);
    std::free (block);
    mutex.lock();
    mutex.unlock();
    EXPECT_EQ (trap.allocations(), 2);
    EXPECT_EQ (trap.locks(), 1);
}

TEST (RealTime, BlocksAndParameterChangesAllocateNothingAndLockNothing)
{
    for (const auto factor : { 1, 2, 16 })
    {
        const auto strip = makeStrip (2, true);
        strip->oversamplingSetting().setValue (factor);
        setPlain (*strip, "compExtSideChain", 1.0f);
        strip->prepareToPlay (sampleRate, 4096);

        juce::AudioBuffer<float> buffer (4, 4096);
        juce::MidiBuffer midi;
        std::mt19937 random (1);
        std::size_t lengthIndex = 0;

        // Running with every parameter moved, then the same while the bypass fades and when it has come to rest.
        for (const auto isBypassed : { false, true })
            for (auto* const p : strip->getParameters())
                for (const auto value : { 1.0f, 0.0f, 0.3f })
                {
                    const auto n = blockLengths[lengthIndex++ % std::size (blockLengths)];
                    juce::AudioBuffer<float> block (buffer.getArrayOfWritePointers(), 4, n);

                    for (int c = 0; c < 4; ++c)
                        for (int i = 0; i < n; ++i)
                            block.setSample (c, i, static_cast<float> (random() % 1000) * 1e-3f - 0.5f);

                    // As a host's automation does, but without JUCE's own lock around its list of listeners.
                    p->setValue (value);
                    const RealTimeTrap trap;
                    strip->parameterValueChanged (p->getParameterIndex(), value);

                    if (isBypassed)
                        strip->processBlockBypassed (block, midi);
                    else
                        strip->processBlock (block, midi);

                    ASSERT_EQ (trap.allocations(), 0) << p->getName (50) << ", " << n << " samples, factor " << factor;
                    ASSERT_EQ (trap.locks(), 0) << p->getName (50) << ", " << n << " samples, factor " << factor;
                }
    }
}

TEST (RealTime, ChangesFromTwoThreadsAreAllTakenUpWhileAudioRuns)
{
    const auto strip = makeBareStrip();
    strip->prepareToPlay (sampleRate, 256);
    std::atomic<bool> isRunning { true };

    std::thread drag (
        [&]
        {
            for (int i = 0; isRunning; ++i)
                setPlain (*strip, "level", static_cast<float> (i % 20) - 10.0f);
        });

    // Automation: on the audio thread, in front of each block.
    for (int block = 0; block < 3000; ++block)
    {
        setPlain (*strip, "gain", static_cast<float> (block % 30));

        for (const auto sample : firstOf (process (*strip, { Signal (64, 0.1f), Signal (64, 0.1f) }, 64)))
            ASSERT_TRUE (std::isfinite (sample) && std::abs (sample) < 10.0f) << "block " << block;

        if (block % 500 == 0)
            strip->prepareToPlay (sampleRate, 256);
    }

    isRunning = false;
    drag.join();
    setPlain (*strip, "gain", 6.0f);
    setPlain (*strip, "level", -6.0f);
    EXPECT_NEAR (process (*strip, { Signal (12000, 0.1f), Signal (12000, 0.1f) }, 64)[0].back(), 0.1f, 1e-5f)
        << "the last of all changes must be heard";
}

} // namespace tarvik
