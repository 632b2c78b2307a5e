// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"

namespace tarvik
{

/** Sends the input file through the module into the output file, and prints what was done. Throws `ToolError`, or
    `Interrupted`; then there is no output file.
*/
void renderFile (const CommandLine& line);

} // namespace tarvik
