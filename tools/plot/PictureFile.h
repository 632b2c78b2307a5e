// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/OutputFile.h"
#include "tools/plot/Chart.h"

namespace tarvik::plot
{

/** Writes a picture as the file, which appears when it is complete. Throws `ToolError`. */
void writePicture (OutputFile& file, const Picture& picture);

} // namespace tarvik::plot
