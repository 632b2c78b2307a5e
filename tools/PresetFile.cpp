// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/PresetFile.h"

#include "plugin/StateBlock.h"
#include "tools/ToolError.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <optional>

namespace tarvik
{

namespace
{
// The frame, all numbers little-endian: "VST3", an int32 version, the class ID in 32 digits, and the place of the list
// as an int64. The list: "List", an int32 count, and for each chunk its name of four letters, place and size (int64).
// Documented in the VST3 SDK's vstpresetfile.h.
constexpr int idLength = 4;
constexpr int classIDStart = 8;
constexpr int classIDLength = 32;
constexpr int headerLength = 48;
constexpr const char* presetMagic = "VST3";
constexpr const char* bareMagic = "VC2!"; ///< In front of every document that JUCE keeps as a component's state.
constexpr const char* listName = "List";
constexpr const char* componentName = "Comp";
constexpr juce::int64 largestFile = 1 << 24; ///< Far above any real one.

struct Chunk
{
    juce::int64 start = 0, length = 0;
};

/** The part that holds the component's state, if the frame is in order up to there. */
std::optional<Chunk> findComponentState (const juce::MemoryBlock& preset)
{
    juce::MemoryInputStream stream (preset, false);
    const auto readID = [&stream]
    {
        char id[idLength + 1] = {};
        stream.read (id, idLength);
        return juce::String (id);
    };

    const auto total = stream.getTotalLength();

    if (total < headerLength || readID() != presetMagic)
        return {};

    stream.setPosition (classIDStart + classIDLength);
    const auto listStart = stream.readInt64();

    if (listStart < headerLength || listStart >= total)
        return {};

    stream.setPosition (listStart);

    if (readID() != listName)
        return {};

    for (auto count = stream.readInt(); count > 0 && ! stream.isExhausted(); --count)
    {
        const auto id = readID();
        const auto start = stream.readInt64();
        const auto length = stream.readInt64();

        if (id == componentName && start >= headerLength && length > 0 && start <= total && length <= total - start)
            return Chunk { start, length };
    }

    return {};
}

/** The component's state is a document of ours, complete, and one that the module itself would take. */
bool holdsProject (const juce::MemoryBlock& preset, const Chunk& chunk)
{
    const auto* const state = static_cast<const char*> (preset.getData()) + chunk.start;
    return parseStateBlock (state, static_cast<int> (chunk.length)) != nullptr;
}

bool startsWith (const juce::MemoryBlock& block, const char* magic)
{
    return block.getSize() >= idLength && std::memcmp (block.getData(), magic, idLength) == 0;
}

/** A .vstpreset with nothing in it but a component's state. */
juce::MemoryBlock framed (const juce::MemoryBlock& state, const juce::String& classID)
{
    const auto length = static_cast<juce::int64> (state.getSize());
    juce::MemoryOutputStream stream;
    stream.write (presetMagic, idLength);
    stream.writeInt (1);
    stream.write (classID.toRawUTF8(), classIDLength);
    stream.writeInt64 (headerLength + length);
    stream.write (state.getData(), state.getSize());
    stream.write (listName, idLength);
    stream.writeInt (1);
    stream.write (componentName, idLength);
    stream.writeInt64 (headerLength);
    stream.writeInt64 (length);
    return stream.getMemoryBlock();
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

    if (preset.getSize() < headerLength || ! startsWith (preset, presetMagic))
        fail ("it is no .vstpreset and no component's state");

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
    const auto stream = file.open();
    const auto isWritten = stream->write (static_cast<const char*> (preset.getData()) + part.start,
                                          static_cast<std::size_t> (part.length));
    stream->flush();

    if (! isWritten || stream->getStatus().failed() || stream->getFile().getSize() != part.length)
        file.throwWriteError ("the disk fails");
}

} // namespace tarvik
