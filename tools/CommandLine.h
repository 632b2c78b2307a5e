// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik
{

/** The words of the command line, sorted by what they mean. What they name is not looked at yet. */
struct CommandLine
{
    static constexpr int defaultBlockSize = 512;

    void (*perform) (const CommandLine&) = nullptr; ///< The command, one of Commands.h.
    juce::StringArray inputs;                       ///< Files and folders, or a list's kind.
    juce::String inputPath;                         ///< The first of them.
    juce::String outputPath;                        ///< The last file; of a batch a folder.
    juce::String batchListPath;                     ///< A text file that names more inputs, empty for none.
    bool overwrites = false;                        ///< A batch makes anew what is already in its folder.
    int numJobs = 0;         ///< Files of a batch that are rendered at the same time; 0: one for each core.
    juce::String modulePath; ///< Empty: look in the usual places.
    juce::String sidechainPath;
    juce::String loadStatePath, saveStatePath;
    juce::String program;            ///< A name or a number, empty for none.
    juce::StringArray assignments;   ///< Each ID=TEXT, in the order given.
    juce::StringArray renderOptions; ///< The options that a rendering takes, with their values, as given.
    juce::String trackName;          ///< What a screenshot's channel is called.
    juce::String picturesPath;       ///< A folder of other pictures to compare with, empty for none.
    int zoomPercent = 100;           ///< Of a screenshot.
    int slot = -1;                   ///< The one that a screenshot shows, 0 for A; -1 for the current one.
    int blockSize = defaultBlockSize;
    int bitDepth = 32; ///< 24, or 32 for floating point.
};

/** Sorts the arguments, without the program's own name. Throws `ToolError` at the first that has no meaning or lacks
    its value.
*/
CommandLine parseCommandLine (const juce::StringArray& arguments);

} // namespace tarvik
