// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"

namespace tarvik
{

/** Draws all pictures of the window on one sheet, at their own size and at a third, and writes it as a PNG file. Throws
    `ToolError`.
*/
void writeContactSheet (const CommandLine& line);

} // namespace tarvik
