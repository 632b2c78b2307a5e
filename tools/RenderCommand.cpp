// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/RenderCommand.h"

#include "plugin/ParameterTable.h"
#include "tools/AudioFile.h"
#include "tools/Commands.h"
#include "tools/Interruption.h"
#include "tools/ParameterArguments.h"
#include "tools/PresetFile.h"
#include "tools/RenderRun.h"
#include "tools/ToolError.h"

#include <iostream>
#include <limits>
#include <optional>

namespace tarvik
{

namespace
{
/** One line of a report, its subject in a column of its own. */
void reportLine (std::ostream& report, const char* subject, const juce::String& text)
{
    constexpr int subjectWidth = 16;
    report << juce::String (subject).paddedRight (' ', subjectWidth) << text << '\n';
}

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
                        + (bad > 0 ? ", " + juce::String (bad) + " samples are not numbers" : juce::String()));
    }
}

juce::String describeAudio (const AudioFileReader& audio)
{
    return juce::String (audio.sampleRate(), 0) + " Hz, " + (audio.numChannels() == 1 ? "mono" : "stereo") + ", "
           + juce::String (audio.length()) + " samples ("
           + juce::String (static_cast<double> (audio.length()) / audio.sampleRate(), 3) + " s)";
}

/** A module with the command line's settings, and the file that keeps them. */
class PreparedModule
{
public:
    /** Throws at the first mistake that shows without the module. */
    PreparedModule (const CommandLine& commandLine, std::ostream& output)
        : line (commandLine), report (output), settings (parseParameterSettings (line.assignments))
    {
        if (line.saveStatePath.isNotEmpty())
            stateFile = std::make_unique<OutputFile> (line.saveStatePath);
    }

    OutputFile* state() const { return stateFile.get(); }

    void load()
    {
        const auto bundle = ModuleHost::findBundle (line.modulePath);
        noteTerminationSignals();
        host = std::make_unique<ModuleHost> (bundle);
        reportLine (report, "module", host->versionText() + ", " + bundle.getFullPathName());
    }

    /** State, then program, then parameters; the last two are reported as the module shows them. */
    ModuleHost& apply (int numChannels)
    {
        host->setLayout (numChannels, line.sidechainPath.isNotEmpty());
        const auto program = line.program.isEmpty() ? -1 : host->findProgram (line.program);

        if (line.loadStatePath.isNotEmpty())
            host->loadPreset (readStateFile (line.loadStatePath, classIDOfPreset (host->savePreset())));

        if (program >= 0)
        {
            host->selectProgram (program);
            reportLine (report, "program", host->programNames()[program]);
        }

        for (const auto& [index, normalised] : settings)
        {
            host->setParameter (index, normalised);
            reportLine (report, "set",
                        juce::String (parameterRow (index).id) + " = " + withUnit (index, host->parameterText (index)));
        }

        if (stateFile != nullptr)
            writeStateFile (*stateFile, host->savePreset());

        return *host;
    }

    void commitState()
    {
        if (stateFile == nullptr)
            return;

        stateFile->commit();
        reportLine (report, "state", stateFile->path());
    }

private:
    const CommandLine& line;
    std::ostream& report;
    const std::vector<ParameterSetting> settings;
    std::unique_ptr<OutputFile> stateFile;
    std::unique_ptr<ModuleHost> host;
};
} // namespace

void trySettings (const CommandLine& line, std::ostream& report)
{
    PreparedModule module (line, report);
    module.load();
    module.apply (2);
    throwIfInterrupted();
    module.commitState();
}

RenderFigures renderFile (const CommandLine& line, std::ostream& report, const ShowProgress& showProgress)
{
    PreparedModule module (line, report);
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

    if (const auto* const state = module.state())
    {
        state->refuseSameFileAs (line.inputPath, "the input file");
        state->refuseSameFileAs (line.outputPath, "the output file");
        state->refuseSameFileAs (line.sidechainPath, "the side chain's file");
    }

    module.load();
    reportLine (report, "input", line.inputPath + ", " + describeAudio (input));

    if (sidechain)
        reportLine (report, "side chain", line.sidechainPath + ", " + describeAudio (*sidechain));

    auto& host = module.apply (input.numChannels());
    AudioFileWriter writer (output, input.sampleRate(), input.numChannels(), line.bitDepth);
    const auto measured =
        renderThrough (host, input, sidechain ? &*sidechain : nullptr, writer, line.blockSize, showProgress);
    writer.finish();
    throwIfInterrupted();

    output.commit();
    module.commitState();
    reportLine (report, "output", output.path() + ", " + (line.bitDepth == 24 ? "24-bit" : "32-bit float") + " WAV");
    reportLevels (report, "level in", measured.levelsIn);
    reportLevels (report, "level out", measured.levelsOut);

    if (writer.clippedSamples() > 0)
        reportLine (report, "clipped", juce::String (writer.clippedSamples()) + " samples were beyond full scale");

    if (const auto reductionDb = measured.gainReductionDb)
        reportLine (report, "gain reduction", decibels (static_cast<double> (*reductionDb), "dB at most").trim());

    reportLine (report, "latency", juce::String (host.latency()) + " samples, compensated");
    reportLine (report, "speed",
                juce::String (measured.timesRealTime, 1) + " times real time, in blocks of "
                    + juce::String (line.blockSize) + " samples");

    RenderFigures figures { -std::numeric_limits<double>::infinity(), measured.timesRealTime, writer.clippedSamples(),
                            0 };

    for (const auto& channel : measured.levelsOut)
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
