// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"

namespace tarvik
{

/** Prints the module's parameters, programs, buses and latency; or, without a module, where the controls of its window
    are, as JSON. Throws `ToolError`.
*/
void listModule (const CommandLine& line);

} // namespace tarvik
