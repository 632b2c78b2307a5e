// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/OutputFile.h"

#include <juce_graphics/juce_graphics.h>

namespace tarvik
{

/** Writes a picture and gives it its name. Throws `ToolError` if the disk fails. */
inline void writePng (OutputFile& file, const juce::Image& image)
{
    juce::MemoryOutputStream bytes;
    juce::PNGImageFormat().writeImageToStream (image, bytes);
    file.write (bytes.getData(), bytes.getDataSize());
    file.commit();
}

} // namespace tarvik
