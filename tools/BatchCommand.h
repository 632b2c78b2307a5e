// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"

namespace tarvik
{

/** Renders many files with the same settings, each in a process of its own, some at the same time, and prints a line
    for each. JUCE's messages have not been started. Throws `ToolError` if the settings or the names of the files are
    wrong, before anything is rendered; else when all is done, if a file has failed. Throws `Interrupted` when the
    processes have cleaned up: what was complete by then stays.
*/
void renderBatch (const CommandLine& line);

} // namespace tarvik
