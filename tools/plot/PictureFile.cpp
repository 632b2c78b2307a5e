// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/plot/PictureFile.h"

namespace tarvik::plot
{

void writePicture (OutputFile& file, const Picture& picture)
{
    const auto stream = file.open();
    const auto isWritten = stream->writeText (picture.toSvg(), false, false, nullptr);
    stream->flush();

    if (! isWritten || stream->getStatus().failed())
        file.throwWriteError ("the disk fails");

    file.commit();
}

} // namespace tarvik::plot
