// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"

namespace tarvik
{

/** The module as a filter for other programs: runs of mono audio, each with settings of its own, from the input to the
    output, as `--help` describes. On JUCE's message thread. Throws `ToolError`.
*/
void streamRuns (const CommandLine& line);

/** A recording as bare samples on the output. Throws `ToolError`. */
void decodeRecording (const CommandLine& line);

} // namespace tarvik
