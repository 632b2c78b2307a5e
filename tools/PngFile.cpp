// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/PngFile.h"

namespace tarvik
{

void writePng (OutputFile& file, const juce::Image& image)
{
    const auto stream = file.open();
    const auto isWritten = juce::PNGImageFormat().writeImageToStream (image, *stream);
    stream->flush();

    if (! isWritten || stream->getStatus().failed())
        file.throwWriteError (stream->getStatus().failed() ? stream->getStatus().getErrorMessage()
                                                           : juce::String ("the picture cannot be encoded"));

    file.commit();
}

} // namespace tarvik
