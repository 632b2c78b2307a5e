// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/RealTimeTrap.h"
#include "tests/support/StripTestTools.h"

#include <cstdlib>
#include <mutex>

namespace tarvik
{

using namespace test;

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
    constexpr int blockLengths[] = { 0, 1, 3, 64, 255, 256, 257, 1000, 4096 };

    for (const auto factor : { 1, 2, 16 })
    {
        const auto strip = makeStrip (2, true);
        strip->oversamplingSetting().setValue (factor);
        setPlain (*strip, "compExtSideChain", 1.0f);
        strip->prepareToPlay (48000.0, 4096);

        juce::AudioBuffer<float> buffer (4, 4096);
        juce::MidiBuffer midi;
        std::mt19937 random (1);
        std::size_t lengthIndex = 0;

        // Running with every parameter moved, then the same while the bypass fades and when it is done.
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

} // namespace tarvik
