// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/OutputFile.h"

#include "tools/System.h"
#include "tools/ToolError.h"

#include <filesystem>
#include <unistd.h>

namespace tarvik
{

namespace
{
/** From UTF-8, whatever the system's narrow characters mean. */
std::filesystem::path pathOf (const juce::File& file)
{
    return reinterpret_cast<const char8_t*> (file.getFullPathName().toRawUTF8());
}

/** A link's target is written, not the link itself. */
juce::File resolved (const juce::File& file)
{
    std::error_code error;
    const auto real = std::filesystem::weakly_canonical (pathOf (file), error);
    return error ? file : juce::File (juce::String::fromUTF8 (reinterpret_cast<const char*> (real.u8string().c_str())));
}
} // namespace

juce::File fileAt (const juce::String& path) { return juce::File::getCurrentWorkingDirectory().getChildFile (path); }

juce::String identityOf (const juce::File& file)
{
    const auto identity = fileIdentity (file);
    return identity.isNotEmpty() ? identity : resolved (file).getFullPathName();
}

OutputFile::OutputFile (const juce::String& path) : wantedPath (path), target (resolved (fileAt (path)))
{
    std::error_code error;
    const auto status = std::filesystem::status (pathOf (target), error);

    if (std::filesystem::exists (status) && ! std::filesystem::is_regular_file (status))
        throwWriteError ("it is not an ordinary file");

    const auto folder = target.getParentDirectory();

    if (! folder.isDirectory())
        throwWriteError ("there is no folder '" + folder.getFullPathName() + "'");

    hidden = hiddenFor (::getpid());
}

juce::File OutputFile::hiddenFor (int processID) const
{
    return target.getSiblingFile ("." + target.getFileName() + "." + juce::String (processID) + ".part");
}

void OutputFile::removeLeftOver (int processID) const { hiddenFor (processID).deleteFile(); }

OutputFile::~OutputFile() { hidden.deleteFile(); }

void OutputFile::refuseSameFileAs (const juce::String& otherPath, const char* what) const
{
    if (otherPath.isNotEmpty() && identityOf (fileAt (otherPath)) == identityOf (target))
        throwWriteError ("it is " + juce::String (what));
}

std::unique_ptr<juce::FileOutputStream> OutputFile::open()
{
    hidden.deleteFile(); // of a process of this number that died; a stream would append to it
    auto stream = hidden.createOutputStream();

    if (stream == nullptr)
        throwWriteError ("its folder cannot be written to");

    return stream;
}

void OutputFile::finish (juce::FileOutputStream& stream, juce::int64 fewestBytes) const
{
    stream.flush();

    if (stream.getStatus().failed() || stream.getFile().getSize() < fewestBytes)
        throwDiskError (stream);
}

void OutputFile::write (const void* data, std::size_t numBytes)
{
    const auto stream = open();

    if (! stream->write (data, numBytes))
        throwDiskError (*stream);

    finish (*stream, static_cast<juce::int64> (numBytes));
}

void OutputFile::commit()
{
    std::error_code error;
    std::filesystem::rename (pathOf (hidden), pathOf (target), error);

    if (error)
        throwWriteError (juce::String (error.message()));
}

void OutputFile::throwDiskError (const juce::FileOutputStream& stream) const
{
    // A piece that was taken only in part is not an error to the system yet, so it has no words for it.
    const auto status = stream.getStatus();
    throwWriteError (status.failed() ? status.getErrorMessage() : juce::String ("the disk is full"));
}

void OutputFile::throwWriteError (const juce::String& reason) const
{
    throw ToolError ("cannot write '" + wantedPath + "': " + reason);
}

} // namespace tarvik
