// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"

namespace tarvik
{

/** Draws the plug-in's window, which needs no screen, and writes it as a PNG file: at a zoom, with a program and
    parameters, and with the meters as they stand when a recording has gone through. Throws `ToolError`.
*/
void writeScreenshot (const CommandLine& line);

} // namespace tarvik
