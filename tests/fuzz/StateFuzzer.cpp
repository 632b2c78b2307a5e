// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/StateText.h"
#include "tests/plugin/ModuleInstance.h"
#include "tests/support/StateTestTools.h"
#include "tools/ScratchSettings.h"

#include <cstdint>
#include <cstdio>
#include <ctime>

namespace tarvik
{

using namespace test;

namespace
{
/** Ends the program; the fuzzer then keeps the input. */
void require (bool isSo, const char* what)
{
    if (isSo)
        return;

    std::fprintf (stderr, "not so: %s\n", what);
    std::abort();
}

/** An instance of the module that is given one state after another, as by a host that loads presets. */
struct Door
{
    Door (IPluginFactory& factory, bool shouldPlay) : instance (factory), initial (instance.saved()), kept (initial)
    {
        if (shouldPlay)
            instance.startPlaying();
    }

    /** All that an input may stand for: a whole state, or one that was kept as text; the document in a state whose frame
        is right, so that the fuzzer need not find the frame to reach the document; the wrapper's private data in one
        whose mark and size are right.
    */
    void take (std::string_view input)
    {
        constexpr std::size_t headerBytes = 8;
        constexpr int bytesAtATime = 1000;
        const juce::MemoryBlock whole (input.data(), input.size());
        juce::MemoryBlock block;
        instance.load (input);
        require (readStateText (whole.toBase64Encoding().toStdString(), block) ? block == whole : whole.isEmpty(),
                 "the same block after it was text");

        if (readStateText (input, block))
            instance.load (bytesOf (block));

        check();
        const auto tail = initial.substr (initial.find ('\0', headerBytes) + 1); // what the wrapper itself writes
        instance.load (bytesOf (blockOfText (input)) + tail, bytesAtATime);
        check();
        const auto size = static_cast<std::uint64_t> (input.size());
        instance.load (bytesOf (blockOfText ({})) + std::string (sizeof (size), '\0') + std::string (input)
                       + std::string (reinterpret_cast<const char*> (&size), sizeof (size)) + "JUCEPrivateData");
        check();
    }

    /** The state is one that can be loaded again, and every value is in range. */
    void check()
    {
        if (auto now = instance.saved(); now != kept) // else it was looked at before
        {
            kept = std::move (now);
            require (instance.allParametersAreInRange(), "every value in range");
            instance.load (kept);
            require (instance.saved() == kept, "the same state after it was saved and loaded");
        }
    }

    void expectThatAGoodStateLoads()
    {
        instance.load (initial);
        kept = instance.saved();
        require (kept == initial, "the next good state");
    }

    ModuleInstance instance;
    const std::string initial;
    std::string kept;
};

struct Host
{
    /** One instance takes all inputs. Another one plays, and takes one in 16, because each change of the oversampling
        prepares it anew: which one depends on the input alone, so that a finding can be repeated.
    */
    void take (std::string_view input)
    {
        const auto start = std::clock();
        idle.take (input);

        if (std::hash<std::string_view>() (input) % 16 == 0)
        {
            playing.take (input);
            require (std::isfinite (playing.instance.play()), "finite audio");
            playing.expectThatAGoodStateLoads();
            idle.expectThatAGoodStateLoads();
        }

        // This build is some ten times as slow as a release, in which nothing may take more than a tenth of a second.
        require (std::clock() - start < CLOCKS_PER_SEC, "done within a second");
    }

    Module module;
    IPtr<IPluginFactory> factory { module.getFactory() };
    Door idle { *factory, false }, playing { *factory, true };
};

Host& host()
{
    static auto& instance = *new Host; // never taken down: the process ends with it
    return instance;
}
} // namespace

} // namespace tarvik

/** Before the fuzzer looks for what it can count, because the module's counters are among it. */
extern "C" int LLVMFuzzerInitialize (int*, char***)
{
    static const tarvik::ScratchSettings settings; // anyone's own would make two runs differ
    setenv ("DISPLAY", ":65000", 1);               // no screen
    tarvik::host();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, size_t size)
{
    tarvik::host().take ({ reinterpret_cast<const char*> (data), size });
    return 0;
}
