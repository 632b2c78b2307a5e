// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/OutputFile.h"

#include "tools/ToolError.h"

#include <filesystem>
#include <unistd.h>

namespace tarvik
{

namespace
{
std::filesystem::path pathOf (const juce::File& file) { return file.getFullPathName().toStdString(); }

/** A link's target is written, not the link itself. */
juce::File resolved (const juce::File& file)
{
    std::error_code error;
    const auto real = std::filesystem::weakly_canonical (pathOf (file), error);
    return error ? file : juce::File (juce::String (real.string()));
}
} // namespace

juce::File fileAt (const juce::String& path) { return juce::File::getCurrentWorkingDirectory().getChildFile (path); }

OutputFile::OutputFile (const juce::String& path) : wantedPath (path), target (resolved (fileAt (path)))
{
    std::error_code error;
    const auto status = std::filesystem::status (pathOf (target), error);

    if (std::filesystem::exists (status) && ! std::filesystem::is_regular_file (status))
        throwWriteError ("it is no ordinary file");

    const auto folder = target.getParentDirectory();

    if (! folder.isDirectory())
        throwWriteError ("there is no folder '" + folder.getFullPathName() + "'");

    const auto name = "." + target.getFileName() + "." + juce::String (::getpid()) + ".part";
    hidden = folder.getChildFile (name).getNonexistentSibling();
}

OutputFile::~OutputFile() { hidden.deleteFile(); }

void OutputFile::refuseSameFileAs (const juce::String& otherPath, const char* what) const
{
    if (otherPath.isEmpty())
        return;

    const auto other = fileAt (otherPath);
    std::error_code error;

    if (resolved (other) == target || std::filesystem::equivalent (pathOf (other), pathOf (target), error))
        throwWriteError ("it is " + juce::String (what));
}

std::unique_ptr<juce::FileOutputStream> OutputFile::open()
{
    auto stream = hidden.createOutputStream();

    if (stream == nullptr)
        throwWriteError ("its folder cannot be written to");

    return stream;
}

void OutputFile::commit()
{
    std::error_code error;
    std::filesystem::rename (pathOf (hidden), pathOf (target), error);

    if (error)
        throwWriteError (juce::String (error.message()));
}

void OutputFile::throwWriteError (const juce::String& reason) const
{
    throw ToolError ("cannot write '" + wantedPath + "': " + reason);
}

} // namespace tarvik
