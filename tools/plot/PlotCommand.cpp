// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/plot/PlotCommand.h"

#include "tools/Interruption.h"
#include "tools/ToolError.h"
#include "tools/plot/PictureFile.h"
#include "tools/plot/Plots.h"

#include <algorithm>
#include <iostream>

namespace tarvik
{

namespace plot
{
void printFigure (const juce::String& subject, double value, const char* unit, int decimals)
{
    constexpr int subjectWidth = 52;
    std::cout << "  " << subject.paddedRight (' ', subjectWidth) << ' ' << juce::String (value, decimals) << ' ' << unit
              << '\n';
}

namespace
{
bool isLower (const Point& a, const Point& b) { return a.y < b.y; }
} // namespace

Point highest (const std::vector<Point>& points) { return *std::max_element (points.begin(), points.end(), isLower); }

Point lowest (const std::vector<Point>& points) { return *std::min_element (points.begin(), points.end(), isLower); }
} // namespace plot

namespace
{
struct Kind
{
    const char* word;
    plot::Pictures (*draw) (const juce::File& bundle);
};

constexpr Kind kinds[] = { { "eq", plot::plotEqualiser },
                           { "compressor", plot::plotCompressor },
                           { "expander", plot::plotExpander },
                           { "saturation", plot::plotSaturation } };
constexpr const char* everyKind = "all";
constexpr const char* errorTable = "errors";

void write (const plot::Picture& picture, const juce::File& folder)
{
    OutputFile file (folder.getChildFile (picture.name + ".svg").getFullPathName());
    writePicture (file, picture);
    std::cout << picture.name << ".svg\n";
}

/** The kinds that a word means. Throws `ToolError` if it means none. */
std::vector<Kind> kindsFor (const juce::String& word)
{
    std::vector<Kind> wanted;
    juce::StringArray words;

    for (const auto& kind : kinds)
    {
        words.add (kind.word);

        if (word == kind.word || word == everyKind)
            wanted.push_back (kind);
    }

    if (wanted.empty())
        throw ToolError ("there is no plot '" + word + "', only " + words.joinIntoString (", ") + ", " + everyKind
                         + " and " + errorTable);

    return wanted;
}
} // namespace

void plotModule (const CommandLine& line)
{
    if (line.plotKind == errorTable)
    {
        if (line.outputPath.isNotEmpty())
            throw ToolError ("the table of errors wants no folder: '" + line.outputPath + "'");

        noteTerminationSignals();
        plot::printFilterErrors (ModuleHost::findBundle (line.modulePath));
        return;
    }

    const auto wanted = kindsFor (line.plotKind);

    if (line.outputPath.isEmpty())
        throw ToolError ("a folder for the pictures is wanted behind '" + line.plotKind + "'");

    const auto folder = fileAt (line.outputPath);

    if (folder.createDirectory().failed())
        throw ToolError ("cannot make the folder '" + line.outputPath + "'");

    const auto bundle = ModuleHost::findBundle (line.modulePath);
    noteTerminationSignals();

    for (const auto& kind : wanted)
        for (const auto& picture : kind.draw (bundle))
            write (picture, folder);
}

} // namespace tarvik
