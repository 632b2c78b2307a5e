// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/StateText.h"
#include "tests/support/BuiltModule.h"
#include "tests/support/HostStream.h"
#include "tests/support/StateTestTools.h"
#include "tests/support/StripTestTools.h"

#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstcomponent.h>
#include <pluginterfaces/vst/ivsteditcontroller.h>
#include <pluginterfaces/vst/ivstmessage.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <iostream>
#include <thread>

namespace tarvik
{

using namespace test;

namespace
{
#ifdef __SANITIZE_ADDRESS__
constexpr double mostMs = 1000.0;
#else
constexpr double mostMs = 100.0;
#endif

constexpr std::size_t header = 8, tail = 60, switchFromEnd = 25; ///< In bytes; what JUCE puts around our document.
constexpr char on = 2, off = 3;                                  ///< How it writes the bypass.

/** The built module in a host that plays on one thread and loads states on another. */
class ModuleDoor : public testing::Test
{
protected:
    ModuleDoor()
    {
        component->initialize (nullptr);
        controller->initialize (nullptr);
        componentEnd->connect (controllerEnd.get());
        controllerEnd->connect (componentEnd.get());

        Vst::ProcessSetup setup { Vst::kRealtime, Vst::kSample32, blockLength, 48000.0 };
        processor->setupProcessing (setup);
        component->setActive (true);
        processor->setProcessing (true);
        audio = std::thread ([this] { play(); });

        // Two projects that differ wherever they can, the bypass too: the second one's is on.
        const auto fresh = kept();

        for (const auto isSecond : { 0u, 1u })
        {
            const auto strip = makeNoiselessStrip (2, 1); // the factor that costs least
            strip->selectSlot (isSecond == 1 ? 0 : 1);
            strip->setCurrentProgram (isSecond == 1 ? 3 : 17);
            const auto block = saved (*strip);
            std::string project (static_cast<const char*> (block.getData()), block.getSize());
            project += fresh.substr (fresh.size() - tail);
            project[project.size() - switchFromEnd] = isSecond == 1 ? on : off;
            load (project);
            projects[isSecond] = kept();
        }
    }

    ~ModuleDoor() override
    {
        isPlaying = false;
        audio.join();
        processor->setProcessing (false);
        component->setActive (false);
        componentEnd->disconnect (controllerEnd.get());
        controllerEnd->disconnect (componentEnd.get());
        controller->terminate();
        component->terminate();
    }

    void play()
    {
        Signal samples (blockLength * 2);
        Signal input = noise (blockLength, 1, 0.1f);
        float* in[] = { input.data(), input.data() };
        float* out[] = { samples.data(), samples.data() + blockLength };
        Vst::AudioBusBuffers inputs[2], outputs;

        for (auto& bus : inputs)
            std::tie (bus.numChannels, bus.channelBuffers32) = std::pair { 2, in };

        std::tie (outputs.numChannels, outputs.channelBuffers32) = std::pair { 2, out };
        Vst::ProcessData data;
        data.numSamples = blockLength;
        std::tie (data.numInputs, data.inputs) = std::pair { 2, inputs };
        std::tie (data.numOutputs, data.outputs) = std::pair { 1, &outputs };

        while (isPlaying)
        {
            processor->process (data);
            isFinite = isFinite && allFinite (samples);
            ++blocks;
        }
    }

    void load (const std::string& state, std::size_t piece = std::string::npos)
    {
        HostStream stream (state, piece);
        component->setState (stream.rewound());
        controller->setComponentState (stream.rewound());
    }

    std::string kept()
    {
        HostStream stream;
        component->getState (stream.rewound());
        return stream.bytes;
    }

    /** Load it, listen, and see what is left. */
    std::string keptAfter (const std::string& state)
    {
        auto best = std::numeric_limits<double>::max();

        // A machine that is busy with other things may need a second and a third try.
        for (int attempt = 0; attempt < 3 && best > mostMs; ++attempt)
        {
            const auto begin = std::chrono::steady_clock::now();
            load (state);
            const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
            best = std::min (best, taken.count());
        }

        slowestMs = std::max (slowestMs, best);
        EXPECT_LE (best, mostMs);

        for (const auto heard = blocks.load(); blocks < heard + 2;)
            std::this_thread::yield();

        EXPECT_TRUE (isFinite);

        for (int32 i = 0; i < controller->getParameterCount(); ++i)
        {
            Vst::ParameterInfo info;
            controller->getParameterInfo (i, info);
            const auto position = controller->getParamNormalized (info.id);
            EXPECT_TRUE (position >= 0.0 && position <= 1.0) << i;
        }

        return kept();
    }

    static constexpr int blockLength = 64;
    const Module module;
    const Held<IPluginFactory> factory { module.getFactory() };
    const Held<Vst::IComponent> component =
        create<Vst::IComponent> (*factory, componentId.data(), INLINE_UID_OF (Vst::IComponent));
    const Held<Vst::IEditController> controller =
        create<Vst::IEditController> (*factory, controllerId.data(), INLINE_UID_OF (Vst::IEditController));
    const Held<Vst::IConnectionPoint> componentEnd =
        query<Vst::IConnectionPoint> (*component, INLINE_UID_OF (Vst::IConnectionPoint));
    const Held<Vst::IConnectionPoint> controllerEnd =
        query<Vst::IConnectionPoint> (*controller, INLINE_UID_OF (Vst::IConnectionPoint));
    const Held<Vst::IAudioProcessor> processor =
        query<Vst::IAudioProcessor> (*component, INLINE_UID_OF (Vst::IAudioProcessor));
    std::atomic<bool> isPlaying { true }, isFinite { true };
    std::atomic<int> blocks { 0 };
    std::thread audio;
    std::string projects[2];
    double slowestMs = 0.0;
};

constexpr std::size_t numRandomDamages = 500;

std::size_t numDamages (const std::string& good) { return good.size() * 9 + numRandomDamages; }

/** First each bit flipped, then cut to each length, then at random. */
std::string damaged (std::string state, std::size_t number)
{
    if (number < state.size() * 8)
    {
        state[number / 8] = static_cast<char> (state[number / 8] ^ (1 << number % 8));
        return state;
    }

    number -= state.size() * 8;

    if (number < state.size())
        return state.substr (0, number);

    std::mt19937 random (static_cast<unsigned> (number - state.size()));
    const auto place = random() % state.size(), length = random() % 100;

    switch (random() % 4)
    {
        case 0:
            return state.erase (place, length);
        case 1:
            return state.insert (random() % state.size(), state.substr (place, length));
        case 2:
            state.resize (place);
            break; // then something else in front of the last length and mark
        default:
            state.resize (state.size() - tail / 2); // or in the private part
    }

    const auto keepsLength = random() % 2 == 0;
    const std::string end = "JUCEPrivateData";

    for (auto i = random() % 40; i > 0; --i)
        state += static_cast<char> (random() % 4 == 0 ? random() : random() % 4);

    for (std::size_t i = 0; i < sizeof (int64); ++i)
        state += static_cast<char> (keepsLength ? (i == 0 ? random() % 64 : 0) : (random() % 3 == 0 ? random() : 0xff));

    return state + end;
}

/** Which of them to try: all around the document, one bit of each byte within it, the rest; all, or a single one, with
    "all" or its number in TARVIK_DAMAGE of the environment.
*/
std::vector<std::size_t> damagesToTry (const std::string& good)
{
    const auto* const wish = std::getenv ("TARVIK_DAMAGE");
    const auto wantsAll = wish != nullptr && wish == std::string_view ("all");

    if (wish != nullptr && ! wantsAll)
        return { std::stoul (wish) };

    std::vector<std::size_t> numbers;

    for (std::size_t n = 0; n < numDamages (good); ++n)
    {
        const auto byte = n / 8;

        if (wantsAll || byte < header || byte >= good.size() - tail - 1 || n % 8 == byte % 8)
            numbers.push_back (n);
    }

    return numbers;
}
} // namespace

TEST_F (ModuleDoor, DamagedStatesWhileItPlays)
{
    const auto& [good, next] = projects;
    ASSERT_EQ (good[good.size() - switchFromEnd], off);
    ASSERT_EQ (next[next.size() - switchFromEnd], on);
    const auto document = good.substr (0, good.size() - tail);
    const auto bypass = [] (const std::string& state) { return state[state.size() - switchFromEnd]; };
    const auto numbers = damagesToTry (good);

    for (const auto number : numbers)
    {
        SCOPED_TRACE (number);
        const auto bad = damaged (good, number);
        const auto left = keptAfter (bad);
        const auto isTailWhole =
            bad.size() >= tail && bad.substr (bad.size() - tail) == good.substr (good.size() - tail);
        ASSERT_EQ (bypass (left), isTailWhole ? off : on);

        if (bad.substr (0, document.size() - 1) == document.substr (0, document.size() - 1)) // but for its zero byte
        {
            ASSERT_EQ (left.substr (0, left.size() - tail), document);
        }
        else if (bad == good.substr (0, bad.size()))
        {
            ASSERT_EQ (left, next) << "cut short, it is none";
        }

        ASSERT_EQ (keptAfter (next), next);
    }

    if (numbers.size() == numDamages (good))
        std::cout << numbers.size() << " damages to " << good.size() << " bytes, " << blocks
                  << " blocks played, at most " << slowestMs << " ms to load\n";
}

TEST_F (ModuleDoor, LengthsThatLieAndStatesInPieces)
{
    // The lengths that a signed or an unsigned sum takes beyond either end, and trees that nest without end.
    for (const int64 length :
         { int64 (-100000000), int64 (-23), int64 (-1), std::numeric_limits<int64>::min(),
           std::numeric_limits<int64>::max(), int64 (1) << 32, int64 (1) << 31, int64 (0), int64 (1) })
        for (const auto* const content : { "", "x\0\0\1\1" })
        {
            std::string state;

            for (int i = 0; i < 200000 && *content != '\0'; ++i)
                state.append (content, 5); // a name, a property count of zero, a branch count of one

            state.append (reinterpret_cast<const char*> (&length), sizeof (length)); // little-endian, like the format
            EXPECT_EQ (keptAfter (state + "JUCEPrivateData"), projects[1]) << length;
        }

    for (const std::size_t piece : { 1u, 100u, 1000u })
        for (const auto& project : projects)
        {
            load (project, piece);
            EXPECT_EQ (kept(), project) << "in pieces of " << piece << " bytes";
        }
}

/** A host may set anything between two steps. What it shows of a parameter is what it reads back, at once and after the
    project was opened again.
*/
TEST_F (ModuleDoor, WhatAHostReadsIsWhatTheStripHoldsBeforeAndAfterALoad)
{
    constexpr unsigned seed = 7;
    std::mt19937 random (seed);
    const auto count = controller->getParameterCount() - 1; // the last one, "Program", is not in the state
    const auto infoOf = [&] (int32 index)
    {
        Vst::ParameterInfo info;
        controller->getParameterInfo (index, info);
        return info;
    };
    const auto setAll = [&]
    {
        for (int32 i = 0; i < count; ++i)
            controller->setParamNormalized (infoOf (i).id, static_cast<double> (random() % 1001) / 1000.0);
    };

    for (int round = 0; round < 10; ++round)
    {
        setAll();
        std::vector<double> read;

        for (int32 i = 0; i < count; ++i)
        {
            const auto [id, steps] = std::pair (infoOf (i).id, infoOf (i).stepCount);
            read.push_back (controller->getParamNormalized (id));

            if (steps > 0)
            {
                EXPECT_NEAR (read.back() * steps, std::round (read.back() * steps), 1e-6) << i;
            }
        }

        const auto project = kept();
        setAll();
        load (project);

        for (int32 i = 0; i < count; ++i)
            EXPECT_NEAR (controller->getParamNormalized (infoOf (i).id), read[static_cast<std::size_t> (i)], 0.017)
                << i << ": a 32nd of a travel at most, for the channel number, which shows no steps";
    }
}

TEST (StateText, GivesItsBytesWhateverIsAroundThem)
{
    juce::MemoryBlock read;

    for (std::size_t size = 1; size < 40; ++size)
    {
        juce::MemoryBlock block (size);

        for (auto& byte : block)
            byte = static_cast<char> (size * 37 + static_cast<std::size_t> (&byte - block.begin()) * 101);

        // Memory of its own and no zero byte at the end, so that a read beyond it is seen by the AddressSanitizer.
        const auto text = block.toBase64Encoding().toStdString();
        const std::vector<char> bare (text.begin(), text.end());
        EXPECT_TRUE (readStateText ({ bare.data(), bare.size() }, read));
        EXPECT_EQ (read, block);

        const auto digits = text.substr (text.find ('.'));
        const auto broken = "-9999999999999999999" + digits.substr (0, 2) + "\n\x80=" + digits.substr (2);
        EXPECT_TRUE (readStateText (broken + '\0' + "AAAA", read));
        EXPECT_EQ (read, block);
    }

    for (const auto* const nothing : { "", ".", "1.", "12", "12.A", "-1.=" })
    {
        EXPECT_FALSE (readStateText (nothing, read)) << nothing;
        EXPECT_TRUE (read.isEmpty());
    }
}

} // namespace tarvik
