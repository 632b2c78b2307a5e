// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/AudioFile.h"
#include "tools/plot/Chart.h"

#include <vector>

namespace tarvik::plot
{

/** What a picture shows of a recording. */
struct RecordingOverview
{
    juce::String name;
    double seconds = 0.0;
    std::vector<Point> outline; ///< The lowest and the highest sample in each of some hundred pieces, over seconds.
    std::vector<Point> bandsDb; ///< Mean level over a band's centre in Hz; 0 dB is a full-scale sine in every channel.
    double peakDbfs = 0.0, rmsDbfs = 0.0;
    juce::int64 badSamples = 0; ///< No finite numbers: they count as silence.
};

/** A recording of which an overview is wanted. */
class RecordingReader
{
public:
    /** Throws `ToolError` if the file cannot be read, is empty, or has a rate from which no bands can be made. */
    explicit RecordingReader (const juce::String& path);

    double sampleRate() const { return file.sampleRate(); }

    juce::int64 length() const { return file.length(); }

    /** Reads the file, and silence behind its end up to a number of samples: only over the same time are the levels of
        two recordings comparable. Once. Throws `ToolError` or `Interrupted`.
    */
    RecordingOverview read (juce::int64 numSamples);

private:
    AudioFileReader file;
    const juce::String name;
};

} // namespace tarvik::plot
