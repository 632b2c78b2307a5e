// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/PresetFile.h"

#include "plugin/StateBlock.h"
#include "tools/ToolError.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <optional>
#include <public.sdk/source/common/memorystream.h>
#include <public.sdk/source/vst/vstpresetfile.h>

namespace tarvik
{

namespace
{
namespace vst = Steinberg::Vst;

constexpr int headerLength = 48; ///< Magic, version, class ID, place of the list: see the SDK's vstpresetfile.h.
constexpr int classIDStart = 8, classIDLength = 32;
constexpr const char* bareMagic = "VC2!";    ///< In front of every document that JUCE keeps as a component's state.
constexpr juce::int64 largestFile = 1 << 24; ///< Far above any real one.

struct Chunk
{
    juce::int64 start = 0, length = 0;
};

/** The part that holds the component's state, if the frame is in order up to there. */
std::optional<Chunk> findComponentState (const juce::MemoryBlock& preset)
{
    const auto total = static_cast<juce::int64> (preset.getSize());
    Steinberg::MemoryStream stream (const_cast<void*> (preset.getData()), total);
    vst::PresetFile file (&stream);
    const auto* const entry = file.readChunkList() ? file.getEntry (vst::kComponentState) : nullptr;

    if (entry == nullptr || entry->offset < headerLength || entry->size <= 0 || entry->offset > total
        || entry->size > total - entry->offset)
        return {};

    return Chunk { entry->offset, entry->size };
}

/** The component's state is a document of ours, complete, and one that the module itself would take. */
bool holdsProject (const juce::MemoryBlock& preset, const Chunk& chunk)
{
    const auto* const state = static_cast<const char*> (preset.getData()) + chunk.start;
    return parseStateBlock (state, static_cast<int> (chunk.length)) != nullptr;
}

bool startsWith (const juce::MemoryBlock& block, const char* magic)
{
    return block.getSize() >= headerLength && std::memcmp (block.getData(), magic, std::strlen (magic)) == 0;
}

/** A .vstpreset with nothing in it but a component's state. */
juce::MemoryBlock framed (const juce::MemoryBlock& state, const juce::String& classID)
{
    Steinberg::FUID id;
    id.fromString (classID.toRawUTF8());
    Steinberg::MemoryStream stream;
    vst::PresetFile file (&stream);
    file.setClassID (id);
    file.writeHeader();
    file.writeChunk (state.getData(), static_cast<Steinberg::int32> (state.getSize()));
    file.writeChunkList();
    return { stream.getData(), static_cast<std::size_t> (stream.getSize()) };
}
} // namespace

juce::MemoryBlock readBareState (const juce::String& path)
{
    const auto preset = readStateFile (path, {});
    const auto chunk = *findComponentState (preset);
    return { static_cast<const char*> (preset.getData()) + chunk.start, static_cast<std::size_t> (chunk.length) };
}

juce::String classIDOfPreset (const juce::MemoryBlock& preset)
{
    if (preset.getSize() < headerLength)
        return {};

    const auto* const digits = static_cast<const char*> (preset.getData()) + classIDStart;
    return { digits, static_cast<std::size_t> (classIDLength) };
}

juce::MemoryBlock readStateFile (const juce::String& path, const juce::String& classID)
{
    const auto fail = [&path] (const char* reason)
    { throw ToolError ("cannot load the state '" + path + "': " + juce::String (reason)); };

    const auto file = fileAt (path);

    if (! file.existsAsFile())
        fail ("there is no such file");

    juce::MemoryBlock preset;

    if (file.getSize() > largestFile || ! file.loadFileAsData (preset))
        fail (file.getSize() > largestFile ? "it is too large for a saved state" : "it cannot be read");

    if (startsWith (preset, bareMagic))
        preset = framed (preset, classID.isNotEmpty() ? classID : juce::String::repeatedString ("0", classIDLength));

    if (! startsWith (preset, "VST3"))
        fail ("it is neither a .vstpreset nor a component's state");

    if (classID.isNotEmpty() && ! classIDOfPreset (preset).equalsIgnoreCase (classID))
        fail ("it was saved from another plug-in");

    const auto chunk = findComponentState (preset);

    if (! chunk || ! holdsProject (preset, *chunk))
        fail ("it is damaged");

    return preset;
}

void writeStateFile (OutputFile& file, const juce::MemoryBlock& preset)
{
    const auto isPreset = file.path().endsWithIgnoreCase (".vstpreset");
    const auto bare = findComponentState (preset);

    if (! isPreset && ! bare)
        file.throwWriteError ("the module gives no state");

    const auto part = isPreset ? Chunk { 0, static_cast<juce::int64> (preset.getSize()) } : *bare;
    file.write (static_cast<const char*> (preset.getData()) + part.start, static_cast<std::size_t> (part.length));
}

} // namespace tarvik
