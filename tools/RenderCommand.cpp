// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/RenderCommand.h"

#include "tools/AudioFile.h"
#include "tools/Interruption.h"
#include "tools/PresetFile.h"
#include "tools/RenderRun.h"
#include "tools/RenderSettings.h"
#include "tools/ToolError.h"

#include <iostream>
#include <limits>
#include <optional>

namespace tarvik
{

namespace
{
juce::String decibels (double value, const char* unit)
{
    return (std::isfinite (value) ? juce::String (value, 2) : juce::String ("-inf")).paddedLeft (' ', 7) + " " + unit;
}

void reportLevels (std::ostream& report, const char* subject, const std::vector<ChannelLevels>& channels)
{
    for (std::size_t c = 0; c < channels.size(); ++c)
    {
        const auto name = channels.size() == 1 ? "mono" : c == 0 ? "left" : "right";
        const auto bad = channels[c].badSamples();

        reportLine (report, c == 0 ? subject : "",
                    juce::String (name).paddedRight (' ', 7) + "peak " + decibels (channels[c].peakDbfs(), "dBFS")
                        + ", RMS " + decibels (channels[c].rmsDbfs(), "dBFS")
                        + (bad > 0 ? ", " + juce::String (bad) + " samples are no numbers" : juce::String()));
    }
}

juce::String describeAudio (const AudioFileReader& audio)
{
    return juce::String (audio.sampleRate(), 0) + " Hz, " + (audio.numChannels() == 1 ? "mono" : "stereo") + ", "
           + juce::String (audio.length()) + " samples ("
           + juce::String (static_cast<double> (audio.length()) / audio.sampleRate(), 3) + " s)";
}

/** The file to write the state to; every other file of the run must be another one. */
std::unique_ptr<OutputFile> stateOutput (const CommandLine& line)
{
    if (line.saveStatePath.isEmpty())
        return nullptr;

    auto file = std::make_unique<OutputFile> (line.saveStatePath);
    file->refuseSameFileAs (line.inputPath, "the input file");
    file->refuseSameFileAs (line.outputPath, "the output file");
    file->refuseSameFileAs (line.sidechainPath, "the side chain's file");
    return file;
}
} // namespace

RenderFigures renderFile (const CommandLine& line, std::ostream& report, const ShowProgress& showProgress)
{
    const RenderSettings settings (line);

    AudioFileReader input (line.inputPath);
    std::optional<AudioFileReader> sidechain;

    if (line.sidechainPath.isNotEmpty())
    {
        sidechain.emplace (line.sidechainPath);

        if (sidechain->sampleRate() != input.sampleRate())
            throw ToolError ("the side chain '" + line.sidechainPath + "' runs at "
                             + juce::String (sidechain->sampleRate()) + " Hz, the input at "
                             + juce::String (input.sampleRate()) + " Hz");
    }

    OutputFile output (line.outputPath);
    output.refuseSameFileAs (line.inputPath, "the input file");
    output.refuseSameFileAs (line.sidechainPath, "the side chain's file");
    output.refuseSameFileAs (line.loadStatePath, "the state to load");
    const auto stateFile = stateOutput (line);

    const auto bundle = ModuleHost::findBundle (line.modulePath);
    noteTerminationSignals();

    ModuleHost host (bundle);
    reportLine (report, "module", host.versionText() + ", " + bundle.getFullPathName());
    reportLine (report, "input", line.inputPath + ", " + describeAudio (input));

    if (sidechain)
        reportLine (report, "side chain", line.sidechainPath + ", " + describeAudio (*sidechain));

    host.setLayout (input.numChannels(), sidechain.has_value());
    settings.apply (host, report);

    if (stateFile != nullptr)
        writeStateFile (*stateFile, host.savePreset());

    AudioFileWriter writer (output, input.sampleRate(), input.numChannels(), line.bitDepth);
    RenderRun run (host, input, sidechain ? &*sidechain : nullptr, writer);
    run.perform (line.blockSize, showProgress);
    writer.finish();
    throwIfInterrupted();

    output.commit();

    if (stateFile != nullptr)
    {
        stateFile->commit();
        reportLine (report, "state", stateFile->path());
    }

    reportLine (report, "output", output.path() + ", " + (line.bitDepth == 24 ? "24-bit" : "32-bit float") + " WAV");
    reportLevels (report, "level in", run.inputLevels());
    reportLevels (report, "level out", run.outputLevels());

    if (writer.clippedSamples() > 0)
        reportLine (report, "clipped", juce::String (writer.clippedSamples()) + " samples were beyond full scale");

    if (const auto reductionDb = run.largestGainReductionDb())
        reportLine (report, "gain reduction", decibels (static_cast<double> (*reductionDb), "dB at most").trim());

    reportLine (report, "latency", juce::String (host.latency()) + " samples, compensated");
    reportLine (report, "speed",
                juce::String (run.timesRealTime(), 1) + " times real time, in blocks of "
                    + juce::String (line.blockSize) + " samples");

    RenderFigures figures { -std::numeric_limits<double>::infinity(), run.timesRealTime(), writer.clippedSamples(), 0 };

    for (const auto& channel : run.outputLevels())
    {
        figures.peakDbfs = std::max (figures.peakDbfs, channel.peakDbfs());
        figures.badSamples += channel.badSamples();
    }

    return figures;
}

void renderOneFile (const CommandLine& line)
{
    ProgressBar bar;

    renderFile (line, std::cout,
                [&bar] (juce::int64 done, juce::int64 total)
                {
                    bar.show (perCentOf (done, total));

                    if (done == total)
                        bar.erase(); // the rest of the report follows
                });
}

} // namespace tarvik
