// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/Tarvik41Processor.h"
#include "tests/support/StateTestTools.h"

#include <cstdlib>

namespace tarvik
{

namespace
{
using namespace test;

constexpr int blockLength = 64;

/** One instance for all inputs, as in a host that loads one preset after another while it plays. */
struct Host
{
    Host()
    {
        // Nobody's own settings: they would make two runs differ.
        const auto scratch = juce::File::createTempFile ("tarvik-fuzz");
        setenv ("XDG_CONFIG_HOME", scratch.getFullPathName().toRawUTF8(), 1);
        strip = std::make_unique<Tarvik41Processor>();
        strip->prepareToPlay (48000.0, blockLength);
    }

    /** Aborts, and so reports the input, if the instance is not fit for use behind the load. */
    void tryBlock (const juce::MemoryBlock& block)
    {
        load (*strip, block);

        if (firstFieldOutOfRange (*strip).isNotEmpty())
            std::abort();

        for (int c = 0; c < buffer.getNumChannels(); ++c)
            for (int i = 0; i < blockLength; ++i)
                buffer.setSample (c, i, (i & 16) != 0 ? 0.1f : -0.1f);

        strip->processBlock (buffer, midi);

        for (int i = 0; i < blockLength; ++i)
            if (! std::isfinite (buffer.getSample (0, i)))
                std::abort();

        const auto kept = saved (*strip);
        load (*strip, kept);

        if (saved (*strip) != kept)
            std::abort();
    }

    juce::ScopedJuceInitialiser_GUI juceRuntime;
    std::unique_ptr<Tarvik41Processor> strip;
    juce::AudioBuffer<float> buffer { 4, blockLength };
    juce::MidiBuffer midi;
};
} // namespace

} // namespace tarvik

/** Each input is taken twice: as the block that a host hands over, and as the text in a block whose header is right, so
    that the fuzzer need not find the header to reach the document.
*/
extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, size_t size)
{
    static tarvik::Host host;
    host.tryBlock ({ data, size });
    host.tryBlock (tarvik::test::blockOfText ({ reinterpret_cast<const char*> (data), size }));
    return 0;
}
