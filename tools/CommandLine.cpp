// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/CommandLine.h"

#include "tools/ToolError.h"

#include <functional>

namespace tarvik
{

namespace
{
using Task = CommandLine::Task;

struct TaskWord
{
    const char* word;
    Task task;
};

/** Words that say, in first place or behind the module's, what is to be done; without one of them a file is rendered. */
constexpr TaskWord taskWords[] = { { "render", Task::render },
                                   { "list", Task::list },
                                   { "plot", Task::plot },
                                   { "pictures", Task::pictures },
                                   { "screenshot", Task::screenshot } };

constexpr const char* moduleOption = "--module";

/** The same as options, which may stand anywhere. */
constexpr TaskWord taskOptions[] = {
    { "--list", Task::list }, { "--help", Task::help }, { "-h", Task::help }, { "--version", Task::version }
};

template <std::size_t N>
const TaskWord* findTask (const TaskWord (&words)[N], const juce::String& argument)
{
    for (const auto& entry : words)
        if (argument == entry.word)
            return &entry;

    return nullptr;
}

int wholeNumber (const juce::String& option, const juce::String& text, int lowest, int highest)
{
    constexpr int mostDigits = 9; // always fits an int

    const auto isWhole = text.isNotEmpty() && text.containsOnly ("0123456789") && text.length() <= mostDigits;
    const auto value = isWhole ? text.getIntValue() : lowest - 1;

    if (value < lowest || value > highest)
        throw ToolError (option + " wants a whole number from " + juce::String (lowest) + " to "
                         + juce::String (highest) + ", not '" + text + "'");

    return value;
}

constexpr int smallestZoomPercent = 50, largestZoomPercent = 300;

/** Takes the values of the options that have one. */
class OptionReader
{
public:
    explicit OptionReader (CommandLine& target) : line (target) {}

    /** True if the argument is an option with a value. */
    bool takesValue (const juce::String& option) const
    {
        return option == "--set" || option == "--block" || option == "--bits" || option == "--zoom"
               || textOf (option) != nullptr;
    }

    void take (const juce::String& option, const juce::String& value)
    {
        if (value.isEmpty())
            throw ToolError (option + " wants a value that is not empty");

        if (option == "--set")
        {
            line.assignments.add (value);
            return;
        }

        if (seen.contains (option))
            throw ToolError (option + " is given twice");

        seen.add (option);

        if (option == "--block")
            line.blockSize = wholeNumber (option, value, 1, CommandLine::largestBlockSize);
        else if (option == "--zoom")
            line.zoomPercent = wholeNumber (option, value, smallestZoomPercent, largestZoomPercent);
        else if (option == "--bits")
            line.bitDepth = bits (value);
        else
            *textOf (option) = value;
    }

    /** True if there was one that says how the window is drawn. */
    bool saysHowToDraw() const { return seen.contains ("--zoom") || seen.contains ("--name"); }

    /** True if there was one that only a rendering has a use for. */
    bool saysHowToRender() const
    {
        for (const auto* const option : { moduleOption, "--sidechain", "--state", "--save-state", "--bits" })
            if (seen.contains (option))
                return true;

        return false;
    }

    /** False if there was an option besides the module's. */
    bool saysOnlyModule() const
    {
        return line.assignments.isEmpty() && (seen.isEmpty() || (seen.size() == 1 && seen[0] == moduleOption));
    }

private:
    juce::String* textOf (const juce::String& option) const
    {
        const std::pair<const char*, juce::String*> texts[] = {
            { moduleOption, &line.modulePath }, { "--sidechain", &line.sidechainPath },
            { "--state", &line.loadStatePath }, { "--save-state", &line.saveStatePath },
            { "--program", &line.program },     { "--name", &line.trackName },
        };

        for (const auto& [name, text] : texts)
            if (option == name)
                return text;

        return nullptr;
    }

    static int bits (const juce::String& value)
    {
        if (value != "24" && value != "32")
            throw ToolError ("--bits wants 24 or 32, not '" + value + "'");

        return value.getIntValue();
    }

    CommandLine& line;
    juce::StringArray seen;
};

void takePositional (CommandLine& line, const juce::String& argument)
{
    if (argument.isEmpty())
        throw ToolError ("a file name is empty");

    if (line.inputPath.isEmpty())
        line.inputPath = argument;
    else if (line.outputPath.isEmpty())
        line.outputPath = argument;
    else
        throw ToolError ("there is one file too many: '" + argument + "'");
}

/** A plot's first word is its kind, the second a folder. */
void arrangePlot (CommandLine& line, bool saysOnlyModule)
{
    std::swap (line.plotKind, line.inputPath);

    if (line.plotKind.isEmpty())
        throw ToolError ("the kind of plot is wanted (see --help)");

    if (! saysOnlyModule)
        throw ToolError ("a plot takes no option but --module");
}

/** A list's only word is its kind. */
void arrangeList (CommandLine& line)
{
    std::swap (line.listKind, line.inputPath);

    if ((line.listKind.isNotEmpty() && line.listKind != "layout") || line.outputPath.isNotEmpty())
        throw ToolError ("a list wants no file: '" + (line.outputPath.isEmpty() ? line.listKind : line.outputPath)
                         + "'");
}

/** The only word behind it is the file to write. */
void arrangePictures (CommandLine& line)
{
    if (line.inputPath.isEmpty() || line.outputPath.isNotEmpty())
        throw ToolError ("one file is wanted, for the sheet of pictures");

    std::swap (line.inputPath, line.outputPath);
}

/** The last word is the file to write, one before it a recording. */
void arrangeScreenshot (CommandLine& line, bool saysHowToRender)
{
    if (line.inputPath.isEmpty())
        throw ToolError ("a file is wanted, for the picture of the window");

    if (saysHowToRender)
        throw ToolError ("a screenshot takes no option but --zoom, --name, --program, --set and --block");

    if (line.outputPath.isEmpty())
        std::swap (line.inputPath, line.outputPath);
}
} // namespace

CommandLine parseCommandLine (const juce::StringArray& arguments)
{
    CommandLine line;
    OptionReader options (line);
    bool onlyFiles = false;

    // ./run puts the module in front of the user's words.
    const auto wordPlace = arguments[0] == moduleOption ? 2 : 0;
    const auto* const word = findTask (taskWords, arguments[wordPlace]);

    if (word != nullptr)
        line.task = word->task;

    for (int i = 0; i < arguments.size(); ++i)
    {
        const auto& argument = arguments[i];

        if (i == wordPlace && word != nullptr)
            continue;

        if (onlyFiles || ! argument.startsWithChar ('-'))
        {
            takePositional (line, argument);
        }
        else if (argument == "--")
        {
            onlyFiles = true;
        }
        else if (const auto* const task = findTask (taskOptions, argument))
        {
            line.task = task->task;
        }
        else if (options.takesValue (argument))
        {
            if (i + 1 >= arguments.size())
                throw ToolError (argument + " wants a value behind it");

            options.take (argument, arguments[++i]);
        }
        else
        {
            throw ToolError ("there is no option '" + argument + "' (see --help)");
        }
    }

    if (line.task == Task::render && line.outputPath.isEmpty())
        throw ToolError (line.inputPath.isEmpty() ? "an input and an output file are wanted (see --help)"
                                                  : "an output file is wanted behind the input (see --help)");

    if (line.task == Task::plot)
        arrangePlot (line, options.saysOnlyModule());

    if (line.task == Task::list)
        arrangeList (line);

    if (line.task == Task::pictures)
        arrangePictures (line);

    if (line.task == Task::screenshot)
        arrangeScreenshot (line, options.saysHowToRender());
    else if (options.saysHowToDraw())
        throw ToolError ("--zoom and --name are for screenshots");

    return line;
}

const char* usageText()
{
    return R"(Sends a recording through the built VST3 module, as a host would, and writes what comes back.

  tarvik41-render [render] [OPTIONS] INPUT OUTPUT
  tarvik41-render list [--module FILE]
  tarvik41-render list layout
  tarvik41-render pictures OUTPUT.png
  tarvik41-render screenshot [OPTIONS] [INPUT] OUTPUT.png
  tarvik41-render plot KIND [FOLDER] [--module FILE]

INPUT is a WAV, FLAC or AIFF file, mono or stereo, of any rate and length. OUTPUT becomes a WAV file of the same length,
with the module's latency taken out. It appears when it is complete, and not at all after an error.

  --program NAME     start from a factory program, by its name or its number
  --set ID=TEXT      set a parameter in its own units, as often as wanted: --set gain=6 --set "compMix=47 %"
  --sidechain FILE   feed the side chain, from a file of the input's rate; silence follows its end
  --state FILE       start from a .vstpreset
  --save-state FILE  write the settings that were rendered with as a .vstpreset
  --block N          samples for each call of the module, 1 to 65536 (512)
  --bits 24|32       24-bit, or 32-bit floating point (32)
  --module FILE      the .vst3 bundle, instead of the one beside this program, of its build, or installed
  --list             the same as "list": the module's parameters, programs, buses and latency
  --version, --help

A plot measures the module, draws what it finds as SVG files into FOLDER, and prints figures. KIND is eq, compressor,
expander, saturation, or all of them; or errors, a table of the equaliser's deviations, without a folder. It takes no
settings: noise is off, the user's defaults do not count.

"list layout" prints, as JSON, where each control of the console panel is in the pixels of its picture, with the marks of
its scale; the picture is printed from it. "pictures" shows all pictures of the window on one sheet, at their own size and
at a third, as the window draws them at 100 %. "screenshot" draws the window itself, with --program and --set, at --zoom PERCENT (100),
for a track called --name TEXT, and with the meters as they stand when INPUT has gone through.

However they are ordered: the state is loaded first, then the program, then each --set from left to right. A file whose
name begins with a dash goes behind "--". Exit status: 0, or 2 after an error, which is told in one line.
)";
}

} // namespace tarvik
