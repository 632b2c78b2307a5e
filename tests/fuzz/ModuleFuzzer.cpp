// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/fuzz/FuzzTools.h"
#include "tests/support/BuiltModule.h"
#include "tests/support/HostStream.h"

#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstcomponent.h>
#include <pluginterfaces/vst/ivsteditcontroller.h>
#include <pluginterfaces/vst/ivstmessage.h>

#include <cstring>
#include <string>
#include <vector>

namespace tarvik
{

using namespace fuzz;
using namespace test;

namespace
{
constexpr int blockLength = 64;
constexpr std::size_t headerBytes = 8, bytesAtATime = 1000;
constexpr unsigned inputsForEachBlock = 16;

/** A number as the frame has it, the least byte first. */
template <typename Number>
std::string bytesOf (Number number)
{
    std::string bytes (sizeof (Number), '\0');
    std::memcpy (bytes.data(), &number, sizeof (Number));
    return bytes;
}

/** The document's part of a state: a mark and the length of the text, the text, a zero. */
std::string framed (std::string_view text)
{
    constexpr std::uint32_t mark = 0x21324356;
    return bytesOf (mark) + bytesOf (static_cast<std::uint32_t> (text.size())) + std::string (text) + '\0';
}

/** The wrapper's own part behind it. */
std::string wrapped (std::string_view privateData)
{
    return bytesOf (std::uint64_t (0)) + std::string (privateData)
           + bytesOf (static_cast<std::uint64_t> (privateData.size())) + "JUCEPrivateData";
}

/** A component with its controller, connected as a host connects them. */
class Instance
{
public:
    Instance (IPluginFactory& factory, bool shouldPlay)
        : component (create<Vst::IComponent> (factory, componentId.data(), INLINE_UID_OF (Vst::IComponent))),
          controller (
              create<Vst::IEditController> (factory, controllerId.data(), INLINE_UID_OF (Vst::IEditController))),
          processor (query<Vst::IAudioProcessor> (*component, INLINE_UID_OF (Vst::IAudioProcessor)))
    {
        require (component->initialize (nullptr) == kResultOk && controller->initialize (nullptr) == kResultOk,
                 "an instance");
        const auto componentEnd = query<Vst::IConnectionPoint> (*component, INLINE_UID_OF (Vst::IConnectionPoint));
        const auto controllerEnd = query<Vst::IConnectionPoint> (*controller, INLINE_UID_OF (Vst::IConnectionPoint));
        componentEnd->connect (controllerEnd.get());
        controllerEnd->connect (componentEnd.get());

        if (shouldPlay)
        {
            Vst::ProcessSetup setup { Vst::kRealtime, Vst::kSample32, blockLength, 48000.0 };
            require (processor->setupProcessing (setup) == kResultOk && component->setActive (true) == kResultOk,
                     "processing");
            processor->setProcessing (true);
        }

        initialState = kept = saved();
    }

    const std::string& getInitialState() const { return initialState; }

    void load (std::string_view bytes, std::size_t piece = std::string::npos)
    {
        HostStream stream (std::string (bytes), piece);
        component->setState (stream.rewound());
        controller->setComponentState (stream.rewound());
    }

    /** The state is one that can be loaded again, and the host reads values that are in range. */
    void check()
    {
        const auto now = saved();

        if (now == kept)
            return; // as it was, and looked at then

        kept = now;

        for (int32 i = 0; i < controller->getParameterCount(); ++i)
        {
            Vst::ParameterInfo parameter;
            controller->getParameterInfo (i, parameter);
            const auto value = controller->getParamNormalized (parameter.id);
            require (value >= 0.0 && value <= 1.0, "a parameter in range");
        }

        load (kept);
        require (saved() == kept, "the same state after it was saved and loaded");
    }

    void play()
    {
        std::vector<float> left (blockLength), right (blockLength), leftSide (blockLength), rightSide (blockLength);
        float* main[] = { left.data(), right.data() };
        float* side[] = { leftSide.data(), rightSide.data() };
        fill (main, 2, blockLength);
        fill (side, 2, blockLength);

        Vst::AudioBusBuffers inputs[2], output;
        inputs[0].numChannels = inputs[1].numChannels = output.numChannels = 2;
        inputs[0].channelBuffers32 = output.channelBuffers32 = main;
        inputs[1].channelBuffers32 = side;

        Vst::ProcessData data;
        data.processMode = Vst::kRealtime;
        data.symbolicSampleSize = Vst::kSample32;
        data.numSamples = blockLength;
        data.numInputs = 2;
        data.numOutputs = 1;
        data.inputs = inputs;
        data.outputs = &output;
        processor->process (data);
        require (areFinite (main, 2, blockLength), "finite audio");
    }

    void expectThatAGoodStateLoads()
    {
        load (initialState);
        kept = saved();
        require (kept == initialState, "the next good state");
    }

private:
    std::string saved() const
    {
        HostStream stream;
        require (component->getState (stream.rewound()) == kResultOk, "a state to save");
        return stream.bytes;
    }

    Held<Vst::IComponent> component;
    Held<Vst::IEditController> controller;
    Held<Vst::IAudioProcessor> processor;
    std::string initialState, kept;
};

struct Host
{
    /** All that an input may stand for: a whole state; the document in a state whose frame is right; the private data
        in one whose mark and size are right.
    */
    void take (Instance& instance, std::string_view input)
    {
        instance.load (input);
        instance.load (framed (input) + tail, bytesAtATime);
        instance.check();
        instance.load (framed ({}) + wrapped (input));
        instance.check();
    }

    Module module;
    Held<IPluginFactory> factory { module.getFactory() };
    Instance idle { *factory, false };
    Instance playing { *factory, true };

    /** What the wrapper itself writes after the document's part. */
    std::string tail { idle.getInitialState().substr (idle.getInitialState().find ('\0', headerBytes) + 1) };
};

Host& host()
{
    static auto& instance = *new Host; // never taken down: the process ends with it
    return instance;
}
} // namespace

} // namespace tarvik

/** Before the fuzzer looks for what it can count: the module's counters are among it. */
extern "C" int LLVMFuzzerInitialize (int*, char***)
{
    tarvik::fuzz::hideSettings();
    setenv ("DISPLAY", ":65000", 1); // no screen
    tarvik::host();
    return 0;
}

/** One instance takes all inputs as a host that loads one preset after another. Another one plays, and takes the few
    that it has time for: each change of the factor prepares it anew.
*/
extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, size_t size)
{
    using namespace tarvik;
    const fuzz::Stopwatch stopwatch;
    const std::string_view input (reinterpret_cast<const char*> (data), size);
    auto& host = tarvik::host();
    host.take (host.idle, input);

    if (fuzz::isOneOf (input, inputsForEachBlock))
    {
        host.take (host.playing, input);
        host.playing.play();
        host.playing.expectThatAGoodStateLoads();
        host.idle.expectThatAGoodStateLoads();
    }

    return 0;
}
