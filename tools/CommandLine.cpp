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

/** Words that say, in first place or behind the module's, what is to be done; without one of them a file is
    rendered. */
constexpr TaskWord taskWords[] = {
    { "render", Task::render },        { "batch", Task::batch },   { "list", Task::list },
    { "stream", Task::stream },        { "decode", Task::decode }, { "pictures", Task::pictures },
    { "screenshot", Task::screenshot }
};

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
        return option == "--set" || option == "--block" || option == "--bits" || option == "--jobs"
               || option == "--zoom" || option == "--slot" || textOf (option) != nullptr;
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
        else if (option == "--slot")
            line.slot = slot (value);
        else if (option == "--bits")
            line.bitDepth = bits (value);
        else if (option == "--jobs")
            line.numJobs = wholeNumber (option, value, 1, CommandLine::mostJobs);
        else
            *textOf (option) = value;
    }

    /** True if there was one that says how the window is drawn. */
    bool saysHowToDraw() const
    {
        return seen.contains ("--zoom") || seen.contains ("--name") || seen.contains ("--slot");
    }

    /** True if there was one that only a rendering has a use for. */
    bool saysHowToRender() const
    {
        for (const auto* const option : { moduleOption, "--sidechain", "--save-state", "--bits" })
            if (seen.contains (option))
                return true;

        return false;
    }

    /** False if there was an option besides the module and the block size. */
    bool saysOnlyModuleAndBlock() const
    {
        for (const auto& option : seen)
            if (option != moduleOption && option != "--block")
                return false;

        return line.assignments.isEmpty();
    }

private:
    juce::String* textOf (const juce::String& option) const
    {
        const std::pair<const char*, juce::String*> texts[] = {
            { moduleOption, &line.modulePath }, { "--sidechain", &line.sidechainPath },
            { "--state", &line.loadStatePath }, { "--save-state", &line.saveStatePath },
            { "--program", &line.program },     { "--from", &line.batchListPath },
            { "--name", &line.trackName },
        };

        for (const auto& [name, text] : texts)
            if (option == name)
                return text;

        return nullptr;
    }

    static int slot (const juce::String& value)
    {
        if (value != "A" && value != "B")
            throw ToolError ("--slot wants A or B, not '" + value + "'");

        return value == "A" ? 0 : 1;
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

    if (line.task == Task::batch)
        line.batchInputs.add (argument);
    else if (line.inputPath.isEmpty())
        line.inputPath = argument;
    else if (line.outputPath.isEmpty())
        line.outputPath = argument;
    else
        throw ToolError ("there is one file too many: '" + argument + "'");
}

/** A batch's last word is its folder. */
void arrangeBatch (CommandLine& line)
{
    const auto numInputs = line.batchInputs.size() - 1;

    if (numInputs < 0 || (numInputs == 0 && line.batchListPath.isEmpty()))
        throw ToolError ("input files, or folders of them, and an output folder are wanted (see --help)");

    line.outputPath = line.batchInputs[numInputs];
    line.batchInputs.remove (numInputs);
}

/** What other programs send and get goes through pipes. */
void checkPipes (const CommandLine& line, bool saysOnlyModuleAndBlock)
{
    const auto isDecoding = line.task == Task::decode;

    if (line.inputPath.isNotEmpty() != isDecoding || line.outputPath.isNotEmpty())
        throw ToolError (isDecoding ? "decoding takes one recording (see --help)"
                                    : "a stream takes no file (see --help)");

    if (! saysOnlyModuleAndBlock)
        throw ToolError (juce::String (isDecoding ? "decoding" : "a stream")
                         + " takes no option but --module and --block");
}

/** A list's only word is its kind. */
void arrangeList (CommandLine& line)
{
    std::swap (line.listKind, line.inputPath);

    if (! juce::StringArray { "", "layout", "harmonics", "network" }.contains (line.listKind)
        || line.outputPath.isNotEmpty())
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
        throw ToolError (
            "a screenshot takes no option but --zoom, --name, --state, --slot, --program, --set and --block");

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
        else if (argument == "--overwrite")
        {
            line.overwrites = true;
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

    if (line.task == Task::batch)
        arrangeBatch (line);
    else if (line.overwrites || line.numJobs > 0 || line.batchListPath.isNotEmpty())
        throw ToolError ("--overwrite, --jobs and --from are for a batch (see --help)");

    if (line.task == Task::stream || line.task == Task::decode)
        checkPipes (line, options.saysOnlyModuleAndBlock());

    if (line.task == Task::list)
        arrangeList (line);

    if (line.task == Task::pictures)
        arrangePictures (line);

    if (line.task == Task::screenshot)
        arrangeScreenshot (line, options.saysHowToRender());
    else if (options.saysHowToDraw())
        throw ToolError ("--zoom, --name and --slot are for screenshots");

    return line;
}

} // namespace tarvik
