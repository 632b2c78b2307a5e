// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/OutputFile.h"

namespace tarvik
{

/** Reads a saved state whole, as a .vstpreset. What the file is shows in its content: a .vstpreset, or the bare state
    of the component, as a host keeps it in a project, which gets the frame here. Looks whether it can be one of this
    module's: the frame, the class it was saved from, and the saved project inside. A module takes a damaged one without
    a word and keeps its settings, so this comes first.

    classID     the 32 hexadecimal digits of the module's class, as in its own presets; empty for any
    Throws `ToolError` if the file cannot be read, is damaged or belongs to another plug-in.
*/
juce::MemoryBlock readStateFile (const juce::String& path, const juce::String& classID);

/** The component's bare state out of such a file, whichever class it was saved from. Throws `ToolError` as above. */
juce::MemoryBlock readBareState (const juce::String& path);

/** The class ID in a preset; empty if it is none. */
juce::String classIDOfPreset (const juce::MemoryBlock& preset);

/** Writes a preset under the file's hidden name, for a later commit: as it is if the file is to be a .vstpreset by its
    name, else the component's bare state out of it. Throws `ToolError` if that fails.
*/
void writeStateFile (OutputFile& file, const juce::MemoryBlock& preset);

} // namespace tarvik
