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

/** One pass of a file through the module, and what it measured. The module's settings and layout are made before. */
class RenderRun
{
public:
    /** The side chain is null if the module's is off. */
    RenderRun (ModuleHost& moduleHost, AudioFileReader& input, AudioFileReader* sidechain, AudioFileWriter& output);

    /** Writes as many samples as the input has, each beside the one that it came from: behind the input follows silence
        for as long as the module delays, and what comes out first is left away. `showProgress` is told of every block.
        Throws `ToolError` or `Interrupted`.
    */
    void perform (int blockSize, const ShowProgress& showProgress);

    const std::vector<ChannelLevels>& inputLevels() const { return levelsIn; }

    const std::vector<ChannelLevels>& outputLevels() const { return levelsOut; }

    /** At most 0; looked at after every block. Nothing if the file is shorter than the needle takes to rise. */
    std::optional<float> largestGainReductionDb() const { return gainReductionDb; }

    /** The audio's duration over the time that `perform` took, reading and writing included. */
    double timesRealTime() const;

private:
    void noteGainReduction (juce::int64 samplesDone);
    void readBlock (int numSamples);
    void readSidechain (int numSamples);
    void writeBlock (int start, int numSamples);

    ModuleHost& host;
    AudioFileReader& main;
    AudioFileReader* const side;
    AudioFileWriter& writer;
    const int numMain;

    juce::AudioBuffer<float> block;     ///< Main channels, then the side chain's.
    juce::AudioBuffer<float> sideBlock; ///< As the side chain's file has them.
    std::vector<ChannelLevels> levelsIn, levelsOut;
    std::optional<float> gainReductionDb;
    double secondsTaken = 0.0;
};

} // namespace tarvik
