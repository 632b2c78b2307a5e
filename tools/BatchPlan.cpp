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
    auto named = line.batchInputs;

    if (line.batchListPath.isNotEmpty())
        named.addArray (linesOf (line.batchListPath));

    juce::StringArray inputs;

    for (const auto& path : named)
        inputs.addArray (filesAt (path));

    return inputs;
}

/** Files by what they are, over links, with the path that each was given by. */
class FileSet
{
public:
    /** The path that the same file has been added by before; empty if this is the first. */
    juce::String add (const juce::String& path)
    {
        const auto [entry, isNew] = paths.insert ({ identityOf (fileAt (path)), path });
        return isNew ? juce::String() : entry->second;
    }

    juce::String find (const juce::String& path) const
    {
        const auto entry = paths.find (identityOf (fileAt (path)));
        return entry == paths.end() ? juce::String() : entry->second;
    }

private:
    std::map<juce::String, juce::String> paths;
};

void refuseOverwriting (const juce::String& output, const FileSet& read)
{
    if (const auto path = read.find (output); path.isNotEmpty())
        throw ToolError ("'" + output + "' would be written over '" + path + "', which is read");
}
} // namespace

BatchPlan planBatch (const CommandLine& line)
{
    const auto inputs = findInputs (line);
    FileSet read, written;

    for (const auto& path : inputs)
        read.add (path);

    if (line.sidechainPath.isNotEmpty())
        read.add (line.sidechainPath);

    if (line.saveStatePath.isNotEmpty())
        refuseOverwriting (line.saveStatePath, read);

    if (line.loadStatePath.isNotEmpty())
        read.add (line.loadStatePath); // a state may be written over itself, but no recording over it

    std::map<juce::String, juce::String> inputOf;
    BatchPlan plan;

    for (const auto& input : inputs)
    {
        const auto output = pathIn (line.outputPath, fileAt (input).getFileNameWithoutExtension() + ".wav");
        refuseOverwriting (output, read);

        if (const auto same = written.add (output); same.isNotEmpty())
            throw ToolError ("'" + inputOf[same] + "' and '" + input + "' would both become '" + output + "'");

        inputOf[output] = input;

        if (! line.overwrites && fileAt (output).existsAsFile())
            plan.kept.add (output);
        else
            plan.items.push_back ({ input, output, fileAt (input).getSize() });
    }

    if (line.saveStatePath.isNotEmpty() && written.find (line.saveStatePath).isNotEmpty())
        throw ToolError ("the state and a recording would both become '" + line.saveStatePath + "'");

    std::stable_sort (plan.items.begin(), plan.items.end(),
                      [] (const auto& a, const auto& b) { return a.numBytes > b.numBytes; });
    return plan;
}

} // namespace tarvik
