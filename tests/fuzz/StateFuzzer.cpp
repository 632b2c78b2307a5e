// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/StateText.h"
#include "tests/fuzz/FuzzTools.h"
#include "tests/support/StateTestTools.h"

namespace tarvik
{

namespace
{
using namespace fuzz;
using namespace test;

constexpr int blockLength = 64;
constexpr unsigned inputsForEachBlock = 16;

/** Takes one input after another, as in a host that loads one preset after another. */
class Instance
{
public:
    explicit Instance (bool shouldPlay)
    {
        if (shouldPlay)
            strip.prepareToPlay (48000.0, blockLength);

        initialState = kept = saved (strip);
    }

    /** All that an input may stand for: the block as the host hands it over, or as it keeps it in text; and the document
        in a block whose header is right, so that the fuzzer need not find the header to reach the document.
    */
    void take (std::string_view input)
    {
        const juce::MemoryBlock whole (input.data(), input.size());
        load (strip, whole);

        juce::MemoryBlock block;
        require (readStateText (whole.toBase64Encoding().toStdString(), block) ? block == whole : whole.isEmpty(),
                 "the same block after it was text");

        if (readStateText (input, block))
            load (strip, block);

        check();
        load (strip, blockOfText (input));
        check();
    }

    void play()
    {
        fill (buffer.getArrayOfWritePointers(), buffer.getNumChannels(), blockLength);
        strip.processBlock (buffer, midi);
        require (areFinite (buffer.getArrayOfReadPointers(), 2, blockLength), "finite audio");
    }

    void expectThatAGoodStateLoads()
    {
        load (strip, initialState);
        kept = saved (strip);
        require (kept == initialState, "the next good state");
    }

private:
    /** The state is one that can be loaded again, and every field is in range. */
    void check()
    {
        const auto now = saved (strip);

        if (now == kept)
            return; // as it was, and looked at then

        kept = now;
        require (firstFieldOutOfRange (strip).isEmpty(), "every field in range");
        load (strip, kept);
        require (saved (strip) == kept, "the same state after it was saved and loaded");
    }

    Tarvik41Processor strip;
    juce::MemoryBlock initialState, kept;
    juce::AudioBuffer<float> buffer { 4, blockLength };
    juce::MidiBuffer midi;
};

struct Host
{
    juce::ScopedJuceInitialiser_GUI juceRuntime;
    Instance idle { false };
    Instance playing { true };
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

/** One instance takes all inputs. Another one plays, and takes the few that it has time for: each change of the
    oversampling prepares it anew.
*/
extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, size_t size)
{
    const tarvik::fuzz::Stopwatch stopwatch;
    const std::string_view input (reinterpret_cast<const char*> (data), size);
    auto& host = tarvik::host();
    host.idle.take (input);

    if (tarvik::fuzz::isOneOf (input, tarvik::inputsForEachBlock))
    {
        host.playing.take (input);
        host.playing.play();
        host.playing.expectThatAGoodStateLoads();
        host.idle.expectThatAGoodStateLoads();
    }

    return 0;
}
