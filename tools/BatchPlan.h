// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"

#include <vector>

namespace tarvik
{

/** One file of a batch. */
struct BatchItem
{
    juce::String inputPath, outputPath;
    juce::int64 numBytes = 0; ///< Of the input: how much work it is beside the others.
};

struct BatchPlan
{
    std::vector<BatchItem> items; ///< To render, the largest first, so that at the end no worker is left alone with it.
    juce::StringArray kept;       ///< Outputs that are there already and stay.
};

/** Finds the inputs, names the outputs, and throws `ToolError` if two of these would be the same file, or one would be
    written over a file that is read. Changes nothing.
*/
BatchPlan planBatch (const CommandLine& line);

} // namespace tarvik
