// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/RenderCommand.h"

#include "plugin/ParameterTable.h"
#include "tools/AudioFile.h"
#include "tools/Interruption.h"
#include "tools/ParameterArguments.h"
#include "tools/PresetFile.h"
#include "tools/RenderRun.h"
#include "tools/ToolError.h"

#include <iostream>
#include <optional>

namespace tarvik
{

namespace
{
void printLine (const char* subject, const juce::String& text)
{
    constexpr int subjectWidth = 16;
    std::cout << juce::String (subject).paddedRight (' ', subjectWidth) << text << '\n';
}

juce::String decibels (double value, const char* unit)
{
    return (std::isfinite (value) ? juce::String (value, 2) : juce::String ("-inf")).paddedLeft (' ', 7) + " " + unit;
}

void printLevels (const char* subject, const std::vector<ChannelLevels>& channels)
{
    for (std::size_t c = 0; c < channels.size(); ++c)
    {
        const auto name = channels.size() == 1 ? "mono" : c == 0 ? "left" : "right";
        const auto bad = channels[c].badSamples();

        printLine (c == 0 ? subject : "",
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

/** The settings from the command line, checked before the module is touched. */
std::vector<ParameterSetting> parseSettings (const juce::StringArray& assignments)
{
    std::vector<ParameterSetting> settings;

    for (const auto& assignment : assignments)
        settings.push_back (parseParameterSetting (assignment));

    return settings;
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

void configure (ModuleHost& host, const CommandLine& line, const std::vector<ParameterSetting>& settings)
{
    const auto program = line.program.isEmpty() ? -1 : host.findProgram (line.program);

    if (line.loadStatePath.isNotEmpty())
        host.loadPreset (readPresetFile (line.loadStatePath, classIDOfPreset (host.savePreset())));

    if (program >= 0)
    {
        host.selectProgram (program);
        printLine ("program", host.programNames()[program]);
    }

    for (const auto& setting : settings)
    {
        host.setParameter (setting.index, setting.normalised);
        printLine ("set", juce::String (parameterTable()[static_cast<std::size_t> (setting.index)].id) + " = "
                              + withUnit (setting.index, host.parameterText (setting.index)));
    }
}
} // namespace

void renderFile (const CommandLine& line)
{
    const auto settings = parseSettings (line.assignments);

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
    printLine ("module", host.versionText() + ", " + bundle.getFullPathName());
    printLine ("input", line.inputPath + ", " + describeAudio (input));

    if (sidechain)
        printLine ("side chain", line.sidechainPath + ", " + describeAudio (*sidechain));

    host.setLayout (input.numChannels(), sidechain.has_value());
    configure (host, line, settings);

    if (stateFile != nullptr)
        writePresetFile (*stateFile, host.savePreset());

    AudioFileWriter writer (output, input.sampleRate(), input.numChannels(), line.bitDepth);
    RenderRun run (host, input, sidechain ? &*sidechain : nullptr, writer);
    run.perform (line.blockSize);
    writer.finish();
    throwIfInterrupted();

    output.commit();

    if (stateFile != nullptr)
    {
        stateFile->commit();
        printLine ("state", stateFile->path());
    }

    printLine ("output", output.path() + ", " + (line.bitDepth == 24 ? "24-bit" : "32-bit float") + " WAV");
    printLevels ("level in", run.inputLevels());
    printLevels ("level out", run.outputLevels());

    if (writer.clippedSamples() > 0)
        printLine ("clipped", juce::String (writer.clippedSamples()) + " samples were beyond full scale");

    printLine ("gain reduction", decibels (static_cast<double> (run.largestGainReductionDb()), "dB at most").trim());
    printLine ("latency", juce::String (host.latency()) + " samples, compensated");
    printLine ("speed", juce::String (run.timesRealTime(), 1) + " times real time, in blocks of "
                            + juce::String (line.blockSize) + " samples");
}

} // namespace tarvik
