// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/StateText.h"
#include "tests/fuzz/FuzzTools.h"
#include "tests/support/StateTestTools.h"

namespace tarvik
{

namespace
{
using namespace fuzz;

/** The processor without a module around it. */
class Strip
{
public:
    void startPlaying() { processor.prepareToPlay (48000.0, blockLength); }

    juce::MemoryBlock saved() { return test::saved (processor); }

    void load (const juce::MemoryBlock& block) { test::load (processor, block); }

    bool allParametersAreInRange() { return test::firstFieldOutOfRange (processor).isEmpty(); }

    /** A square wave on all channels; gives what is not finite if any sample is not. */
    float play()
    {
        juce::AudioBuffer<float> buffer (4, blockLength);
        juce::MidiBuffer midi;
        auto sum = 0.0f;

        for (int i = 0; i < 4 * blockLength; ++i)
            buffer.setSample (i % 4, i / 4, (i & 64) != 0 ? 0.1f : -0.1f);

        processor.processBlock (buffer, midi);

        for (int i = 0; i < 2 * blockLength; ++i)
            sum += 0.0f * buffer.getSample (i % 2, i / 2);

        return sum;
    }

private:
    static constexpr int blockLength = 64;
    Tarvik41Processor processor;
};

struct Host
{
    /** All that an input may stand for: the block as the host hands it over, or as it keeps it in text; and the
        document in a block whose header is right, so that the fuzzer need not find the header to reach the document.
    */
    void take (Door<Strip>& door, std::string_view input)
    {
        const juce::MemoryBlock whole (input.data(), input.size());
        door.strip.load (whole);

        juce::MemoryBlock block;
        require (readStateText (whole.toBase64Encoding().toStdString(), block) ? block == whole : whole.isEmpty(),
                 "the same block after it was text");

        if (readStateText (input, block))
            door.strip.load (block);

        door.check();
        door.strip.load (test::blockOfText (input));
        door.check();
    }

    juce::ScopedJuceInitialiser_GUI juceRuntime;
    Door<Strip> idle { false }, playing { true };
};

Host& host()
{
    static auto& instance = *new Host; // never taken down: the process ends with it
    return instance;
}
} // namespace

} // namespace tarvik

extern "C" int LLVMFuzzerInitialize (int*, char***)
{
    tarvik::fuzz::hideSettings();
    tarvik::host();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, size_t size)
{
    tarvik::fuzz::takeInput (tarvik::host(), { reinterpret_cast<const char*> (data), size });
    return 0;
}
