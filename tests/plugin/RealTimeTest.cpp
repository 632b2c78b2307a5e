// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/RealTimeTrap.h"
#include "tests/support/StripTestTools.h"

#include <cstdlib>
#include <mutex>

namespace tarvik
{

using namespace test;

TEST (RealTime, BlocksAndParameterChangesAllocateNothingAndLockNothing)
{
    std::mutex mutex;
    mutex.lock(); // MinGW's allocates when it is locked for the first time
    mutex.unlock();
    {
        const RealTimeTrap trap;
        const std::lock_guard lock (mutex);
        void* volatile block = std::malloc (10);
        std::free (block);
        ASSERT_EQ (trap.allocations() + 10 * trap.locks(), 12) << "the trap itself catches";
    }
    constexpr int blockLengths[] = { 0, 1, 3, 64, 255, 256, 257, 1000, 4096 };

    for (const auto factor : { 1, 2, 16 })
    {
        const auto strip = makeStrip (2, true);
        strip->oversamplingSetting().setValue (factor);
        setPlain (*strip, "compExtSideChain", 1.0f);
        strip->prepareToPlay (48000.0, 4096);
        const auto input = noise (4 * 4096, 1, 0.5f);
        juce::MidiBuffer midi;
        std::size_t lengthIndex = 0;

        // Running with every parameter moved, then the same while the bypass fades and when it is done.
        for (const auto isBypassed : { false, true })
            for (auto* const p : strip->getParameters())
                for (const auto value : { 1.0f, 0.0f, 0.3f })
                {
                    const auto n = blockLengths[lengthIndex++ % std::size (blockLengths)];
                    auto audio = input;
                    float* const channels[] = { &audio[0], &audio[4096], &audio[8192], &audio[12288] };
                    juce::AudioBuffer<float> block (channels, 4, n);

                    // As a host's automation does, but without JUCE's own lock around its list of listeners.
                    p->setValue (value);
                    const RealTimeTrap trap;
                    strip->parameterValueChanged (p->getParameterIndex(), value);
                    isBypassed ? strip->processBlockBypassed (block, midi) : strip->processBlock (block, midi);
                    ASSERT_EQ (std::pair (trap.allocations(), trap.locks()), std::pair (0, 0))
                        << p->getName (50) << ", " << n << " samples, factor " << factor;
                }
    }
}

} // namespace tarvik
