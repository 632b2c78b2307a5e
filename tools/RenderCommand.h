// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"
#include "tools/ProgressBar.h"

#include <ostream>

namespace tarvik
{

/** What a render's output is worth knowing in one line. */
struct RenderFigures
{
    double peakDbfs = 0.0; ///< Of the louder channel.
    double timesRealTime = 0.0;
    juce::int64 clippedSamples = 0; ///< Held at full scale, at 24 bits.
    juce::int64 badSamples = 0;     ///< Not numbers.
};

/** Sends the input file through the module into the output file, and reports what was done. On JUCE's message thread,
    which then loads the module. Throws `ToolError`, or `Interrupted`; then there is no output file.
*/
RenderFigures renderFile (const CommandLine& line, std::ostream& report, const ShowProgress& showProgress);

/** Applies the settings to a module that renders nothing, and saves its state if that is asked for. Throws as above. */
void trySettings (const CommandLine& line, std::ostream& report);

} // namespace tarvik
