// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/OutputFile.h"

namespace tarvik
{

/** Reads a .vstpreset whole and looks whether it can be one of this module's: its frame, the class it was saved from,
    and the saved project inside. A module takes a damaged one without a word and keeps its settings, so this comes
    first.

    classID     the 32 hexadecimal digits of the module's class, as in its own presets
    Throws `ToolError` if the file cannot be read, is damaged or belongs to another plug-in.
*/
juce::MemoryBlock readPresetFile (const juce::String& path, const juce::String& classID);

/** The class ID in a preset; empty if it is none. */
juce::String classIDOfPreset (const juce::MemoryBlock& preset);

/** Writes a preset under the file's hidden name, for a later commit. Throws `ToolError` if that fails. */
void writePresetFile (OutputFile& file, const juce::MemoryBlock& preset);

} // namespace tarvik
