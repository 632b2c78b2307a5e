// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/fuzz/FuzzTools.h"
#include "tests/plugin/ModuleInstance.h"

#include <cstring>
#include <string>

namespace tarvik
{

using namespace fuzz;
using namespace test;

namespace
{
constexpr std::size_t headerBytes = 8, bytesAtATime = 1000;

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

/** The wrapper's own part after it. */
std::string wrapped (std::string_view privateData)
{
    return bytesOf (std::uint64_t (0)) + std::string (privateData)
           + bytesOf (static_cast<std::uint64_t> (privateData.size())) + "JUCEPrivateData";
}

struct Host
{
    /** All that an input may stand for: a whole state; the document in a state whose frame is right; the private data
        in one whose mark and size are right.
    */
    void take (Door<ModuleInstance>& door, std::string_view input)
    {
        door.strip.load (input);
        door.strip.load (framed (input) + tail, bytesAtATime);
        door.check();
        door.strip.load (framed ({}) + wrapped (input));
        door.check();
    }

    Module module;
    Held<IPluginFactory> factory { module.getFactory() };
    Door<ModuleInstance> idle { false, *factory }, playing { true, *factory };

    /** What the wrapper itself writes after the document's part. */
    std::string tail { idle.initial.substr (idle.initial.find ('\0', headerBytes) + 1) };
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
    tarvik::fuzz::hideSettings();
    setenv ("DISPLAY", ":65000", 1); // no screen
    tarvik::host();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, size_t size)
{
    tarvik::fuzz::takeInput (tarvik::host(), { reinterpret_cast<const char*> (data), size });
    return 0;
}
