// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/CommandLine.h"

#include "tools/Commands.h"
#include "tools/ToolError.h"

namespace tarvik
{

namespace
{
using juce::String;

/** Bits for what an option is about. */
enum About : unsigned
{
    blocks = 1,
    module = 2,
    settings = 4,
    files = 8,
    batches = 16,
    drawing = 32,
    comparing = 64,
    zooming = 128,
    everyRender = blocks | module | settings | files
};

struct Task
{
    const char* word;
    void (*perform) (const CommandLine&);
    unsigned options;
    const char* name;
    const char* words; ///< What it needs besides options.
    int fewestWords, mostWords;
    bool writes = true; ///< Into what its last word names.
};

constexpr int anyNumber = std::numeric_limits<int>::max();

/** The first is done where none is named; those with dashes may be named anywhere. */
constexpr Task tasks[] = {
    { "render", renderOneFile, everyRender, "a rendering", "an input and an output file", 2, 2 },
    { "batch", renderBatch, everyRender | batches, "a batch", "input files, or folders of them, and an output folder",
      2, anyNumber },
    { "list", listModule, everyRender, "a list", "nothing", 0, 1, false },
    { "stream", streamRuns, blocks | module, "a stream", "nothing", 0, 0, false },
    { "decode", decodeRecording, blocks | module, "decoding", "one recording", 1, 1, false },
    { "pictures", writeContactSheet, everyRender, "a sheet of pictures", "one file to write", 1, 1 },
    { "controls", writeControlSheet, comparing, "a sheet of controls", "one file to write", 1, 1 },
    { "screenshot", writeScreenshot, blocks | settings | drawing | zooming, "a screenshot", "a file to write", 1, 2 },
    { "window", writeWindowPictures, zooming, "a window", "one folder to write into", 1, 1 },
    { "--list", listModule, everyRender, "a list", "nothing", 0, 1, false },
    { "--help", printUsage, everyRender, "the help", "nothing", 0, anyNumber, false },
    { "-h", printUsage, everyRender, "the help", "nothing", 0, anyNumber, false },
    { "--version", printVersion, everyRender, "the version", "nothing", 0, anyNumber, false },
};

const Task* findTask (const String& word)
{
    const auto* const found =
        std::find_if (std::begin (tasks), std::end (tasks), [&word] (const auto& task) { return word == task.word; });
    return found == std::end (tasks) ? nullptr : found;
}

[[noreturn]] void refuse (const String& option, const String& wanted, const String& text)
{
    throw ToolError (option + " needs " + wanted + ", not '" + text + "'");
}

int wholeNumber (const char* option, const String& text, int lowest, int highest)
{
    constexpr int mostDigits = 9; // always fits an int

    const auto isWhole = text.containsOnly ("0123456789") && text.length() <= mostDigits;
    const auto value = isWhole ? text.getIntValue() : lowest - 1;

    if (value < lowest || value > highest)
        refuse (option, "a whole number from " + String (lowest) + " to " + String (highest), text);

    return value;
}

struct Option
{
    const char* name;
    unsigned about;
    void (*take) (CommandLine&, const char* name, const String& value);
    bool hasValue = true;
};

constexpr Option options[] = {
    { "--set", settings, [] (auto& line, auto*, auto& text) { line.assignments.add (text); } },
    { "--module", module, [] (auto& line, auto*, auto& text) { line.modulePath = text; } },
    { "--sidechain", files, [] (auto& line, auto*, auto& text) { line.sidechainPath = text; } },
    { "--state", settings, [] (auto& line, auto*, auto& text) { line.loadStatePath = text; } },
    { "--save-state", files, [] (auto& line, auto*, auto& text) { line.saveStatePath = text; } },
    { "--program", settings, [] (auto& line, auto*, auto& text) { line.program = text; } },
    { "--from", batches, [] (auto& line, auto*, auto& text) { line.batchListPath = text; } },
    { "--overwrite", batches, [] (auto& line, auto*, auto&) { line.overwrites = true; }, false },
    { "--name", drawing, [] (auto& line, auto*, auto& text) { line.trackName = text; } },
    { "--beside", comparing, [] (auto& line, auto*, auto& text) { line.picturesPath = text; } },
    { "--jobs", batches, [] (auto& line, auto* name, auto& text) { line.numJobs = wholeNumber (name, text, 1, 256); } },
    { "--block", blocks,
      [] (auto& line, auto* name, auto& text) { line.blockSize = wholeNumber (name, text, 1, 65536); } },
    { "--zoom", zooming,
      [] (auto& line, auto* name, auto& text) { line.zoomPercent = wholeNumber (name, text, 50, 300); } },
    { "--slot", drawing,
      [] (auto& line, auto* name, auto& text)
      {
          line.slot = text == "A" ? 0 : text == "B" ? 1 : -1;

          if (line.slot < 0)
              refuse (name, "A or B", text);
      } },
    { "--bits", files,
      [] (auto& line, auto* name, auto& text)
      {
          line.bitDepth = text.getIntValue();

          if (text != "24" && text != "32")
              refuse (name, "24 or 32", text);
      } },
};

const Option& findOption (const String& word)
{
    for (const auto& option : options)
        if (word == option.name)
            return option;

    throw ToolError ("there is no option '" + word + "' (see --help)");
}

/** The words besides options go to where the task looks for them. */
void arrange (CommandLine& line, const Task& task)
{
    if (line.inputs.size() < task.fewestWords - (line.batchListPath.isEmpty() ? 0 : 1)) // the list stands for inputs
        throw ToolError (String (task.name) + " needs " + task.words + " (see --help)");

    if (line.inputs.size() > task.mostWords)
        throw ToolError ("there is one file too many: '" + line.inputs[task.mostWords] + "'");

    if (line.inputs.contains (String()))
        throw ToolError ("a file name is empty");

    if (task.writes)
    {
        line.outputPath = line.inputs[line.inputs.size() - 1];
        line.inputs.remove (line.inputs.size() - 1);
    }

    line.perform = task.perform;
    line.inputPath = line.inputs[0];
}
} // namespace

CommandLine parseCommandLine (const juce::StringArray& arguments)
{
    CommandLine line;
    juce::Array<const Option*> given;
    bool onlyFiles = false;

    // ./run puts the module in front of the user's words.
    const auto wordPlace = arguments[0] == "--module" ? 2 : 0;
    const auto* task = &tasks[0];

    for (int i = 0; i < arguments.size(); ++i)
    {
        const auto& argument = arguments[i];
        const auto* const named = findTask (argument);
        const auto isDashed = argument.startsWithChar ('-') && ! onlyFiles;

        if (named != nullptr && (isDashed || (i == wordPlace && ! argument.startsWithChar ('-'))))
        {
            task = named;
        }
        else if (! isDashed)
        {
            line.inputs.add (argument);
        }
        else if (argument == "--")
        {
            onlyFiles = true;
        }
        else
        {
            const auto& option = findOption (argument);

            if (option.hasValue && arguments[++i].isEmpty())
                throw ToolError (argument + " needs a value after it");

            if (given.contains (&option) && argument != "--set")
                throw ToolError (argument + " is given twice");

            given.add (&option);

            if ((option.about & everyRender) != 0)
                line.renderOptions.addArray ({ argument, arguments[i] });

            option.take (line, option.name, arguments[i]);
        }
    }

    for (const auto* const option : given)
        if ((option->about & task->options) == 0)
            throw ToolError (String (task->name) + " takes no " + option->name + " (see --help)");

    arrange (line, *task);
    return line;
}

} // namespace tarvik
