// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik
{

/** A file that appears under its name only when it is complete. Until then it is written under a hidden name in the
    same folder, which goes when the object goes.
*/
class OutputFile
{
public:
    /** Throws `ToolError` if the folder is missing, or if something other than a file has the name. Creates nothing. */
    explicit OutputFile (const juce::String& path);

    ~OutputFile();

    OutputFile (const OutputFile&) = delete;
    OutputFile& operator= (const OutputFile&) = delete;

    /** Throws `ToolError` if the path leads to the same file, `what` saying which file that is. */
    void refuseSameFileAs (const juce::String& otherPath, const char* what) const;

    /** A stream into the hidden file. Throws `ToolError` if the folder cannot be written to. */
    std::unique_ptr<juce::FileOutputStream> open();

    /** Ends what was written to that stream. Throws `ToolError` if the disk failed or took less than it should. */
    void finish (juce::FileOutputStream& stream, juce::int64 fewestBytes) const;

    /** Writes the whole content of the hidden file. Throws `ToolError` if that fails. */
    void write (const void* data, std::size_t numBytes);

    /** Gives the file its name, in place of one that had it before. Throws `ToolError` if that fails. */
    void commit();

    /** Deletes what another process that was to write this file has left half-written, if it came to a sudden end. */
    void removeLeftOver (int processID) const;

    const juce::String& path() const { return wantedPath; }

    /** For any step of the writing that failed. */
    [[noreturn]] void throwWriteError (const juce::String& reason) const;

    [[noreturn]] void throwDiskError (const juce::FileOutputStream& stream) const;

private:
    juce::File hiddenFor (int processID) const;

    const juce::String wantedPath;
    juce::File target, hidden;
};

/** The file that a user's path means, seen from the current folder. */
juce::File fileAt (const juce::String& path);

/** A text that two paths have in common if they lead to the same file, over links of either kind. */
juce::String identityOf (const juce::File& file);

} // namespace tarvik
