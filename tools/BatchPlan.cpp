// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/BatchPlan.h"

#include "tools/OutputFile.h"
#include "tools/ToolError.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <string>

namespace tarvik
{

namespace
{
constexpr const char* audioFileEndings = ".wav;.wave;.flac;.aiff;.aif;.aifc"; ///< In capitals too.

juce::String pathIn (const juce::String& folder, const juce::String& name)
{
    return folder.endsWithChar ('/') ? folder + name : folder + "/" + name;
}

/** The path itself, or, if it is a folder's, those of the audio files in it. */
juce::StringArray filesAt (const juce::String& path)
{
    const auto file = fileAt (path);

    if (! file.isDirectory())
        return { path };

    juce::StringArray paths;

    for (const auto& entry : file.findChildFiles (juce::File::findFiles | juce::File::ignoreHiddenFiles, false))
        if (entry.hasFileExtension (audioFileEndings))
            paths.add (pathIn (path, entry.getFileName()));

    if (paths.isEmpty())
        throw ToolError ("there is no WAV, FLAC or AIFF file in '" + path + "'");

    paths.sort (false);
    return paths;
}

juce::StringArray linesOf (const juce::String& listPath)
{
    juce::StringArray lines;
    std::ifstream list (fileAt (listPath).getFullPathName().toStdString());

    for (std::string text; std::getline (list, text);)
        if (const auto path = juce::String::fromUTF8 (text.c_str()).trimCharactersAtEnd ("\r"); path.isNotEmpty())
            lines.add (path);

    if (lines.isEmpty())
        throw ToolError ("cannot read '" + listPath + "': it names no file");

    return lines;
}

juce::StringArray findInputs (const CommandLine& line)
{
    auto named = line.inputs;

    if (line.batchListPath.isNotEmpty())
        named.addArray (linesOf (line.batchListPath));

    juce::StringArray inputs;

    for (const auto& path : named)
        inputs.addArray (filesAt (path));

    return inputs;
}

/** Paths by what they lead to, over links. */
using FileMap = std::map<juce::String, juce::String>;

void refuseOverwriting (const juce::String& output, const FileMap& read)
{
    if (const auto found = read.find (identityOf (fileAt (output))); found != read.end())
        throw ToolError ("'" + output + "' would be written over '" + found->second + "', which is read");
}
} // namespace

BatchPlan planBatch (const CommandLine& line)
{
    const auto inputs = findInputs (line);
    FileMap read, written; // with the paths as given, and with the inputs' paths
    const auto identity = [] (const juce::String& path) { return identityOf (fileAt (path)); };

    for (const auto& path : inputs)
        read.insert ({ identity (path), path });

    if (line.sidechainPath.isNotEmpty())
        read.insert ({ identity (line.sidechainPath), line.sidechainPath });

    if (line.saveStatePath.isNotEmpty())
        refuseOverwriting (line.saveStatePath, read);

    if (line.loadStatePath.isNotEmpty())
        read.insert ({ identity (line.loadStatePath), line.loadStatePath }); // may become the saved state, no recording

    BatchPlan plan;

    for (const auto& input : inputs)
    {
        const auto output = pathIn (line.outputPath, fileAt (input).getFileNameWithoutExtension() + ".wav");
        refuseOverwriting (output, read);

        if (const auto [same, isNew] = written.insert ({ identity (output), input }); ! isNew)
            throw ToolError ("'" + same->second + "' and '" + input + "' would both become '" + output + "'");

        if (! line.overwrites && fileAt (output).existsAsFile())
            plan.kept.add (output);
        else
            plan.items.push_back ({ input, output, fileAt (input).getSize() });
    }

    if (line.saveStatePath.isNotEmpty() && written.count (identity (line.saveStatePath)) > 0)
        throw ToolError ("the state and a recording would both become '" + line.saveStatePath + "'");

    std::stable_sort (plan.items.begin(), plan.items.end(),
                      [] (const auto& a, const auto& b) { return a.numBytes > b.numBytes; });
    return plan;
}

} // namespace tarvik
