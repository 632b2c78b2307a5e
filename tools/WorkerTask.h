// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"
#include "tools/ProgressBar.h"

#include <functional>

namespace tarvik
{

/** What a process of a batch does. */
enum class WorkerTask
{
    trial, ///< Applies the settings to a module that renders nothing, and saves its state.
    render ///< Renders one file.
};

/** Does it on JUCE's message thread, which it starts, and sends a dot for each per cent, a line's end, and what is to be told.
    Returns the process's status. By `Interrupted` the process ends.
*/
int performTask (WorkerTask task, const CommandLine& line, const std::function<void (const std::string&)>& send);

/** The status of a process whose work is done. */
constexpr int taskSucceeded = 0;

/** The status of one that has told why it is not. */
constexpr int taskFailed = 2;

} // namespace tarvik
