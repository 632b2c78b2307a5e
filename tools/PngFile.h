// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/OutputFile.h"

#include <juce_graphics/juce_graphics.h>

namespace tarvik
{

/** Writes a picture. Throws `ToolError` if the disk fails. */
void writePng (OutputFile& file, const juce::Image& image);

} // namespace tarvik
