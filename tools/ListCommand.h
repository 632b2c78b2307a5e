// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"

namespace tarvik
{

/** Prints the module's parameters, programs, buses and latency. Throws `ToolError`. */
void listModule (const CommandLine& line);

} // namespace tarvik
