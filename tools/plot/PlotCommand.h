// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"

namespace tarvik
{

/** Measures the built module and draws what it found, one SVG file for each picture, in the line's folder, which is
    made if it is missing; prints the figures that stand in the pictures. The kind "errors" prints a table and writes
    nothing. Throws `ToolError` or `Interrupted`.
*/
void plotModule (const CommandLine& line);

} // namespace tarvik
