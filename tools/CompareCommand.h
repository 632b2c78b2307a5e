// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"

namespace tarvik
{

/** Draws two recordings of the same rate, one above the other, what they have in each third of an octave, and the
    difference, into an SVG file; prints levels and differences. Needs no module. Throws `ToolError` or `Interrupted`.
*/
void compareRecordings (const CommandLine& line);

} // namespace tarvik
