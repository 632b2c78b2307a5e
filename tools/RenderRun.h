// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/AudioFile.h"
#include "tools/Levels.h"
#include "tools/ModuleHost.h"
#include "tools/ProgressBar.h"

#include <optional>
#include <vector>

namespace tarvik
{

/** What one pass of a file through the module measured. */
struct RenderMeasurements
{
    std::vector<ChannelLevels> levelsIn, levelsOut; ///< One for each channel.

    /** At most 0; looked at after every block. Nothing if the file is shorter than the needle takes to rise. */
    std::optional<float> gainReductionDb;

    double timesRealTime = 0.0; ///< The audio's duration over the time taken, reading and writing included.
};

/** Sends a file through a module whose layout and settings are made, with a side chain unless that is null. Writes as
    many samples as the input has, each beside the one that it came from: after the input comes silence for as long as
    the module delays, and what comes out first is left out. `showProgress` is told of every block. Throws `ToolError` or
    `Interrupted`.
*/
RenderMeasurements renderThrough (ModuleHost& host, AudioFileReader& input, AudioFileReader* sidechain,
                                  AudioFileWriter& output, int blockSize, const ShowProgress& showProgress);

} // namespace tarvik
