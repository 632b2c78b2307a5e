// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/ParameterTable.h"
#include "tools/AudioFile.h"
#include "tools/Commands.h"
#include "tools/ModuleHost.h"
#include "tools/ParameterArguments.h"
#include "tools/ToolError.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <iostream>
#include <string>
#include <unistd.h>
#include <vector>

namespace tarvik
{

namespace
{
static_assert (std::endian::native == std::endian::little); // as samples are on the pipes

/** What the line in front of a run says. */
struct Run
{
    double sampleRate = 0.0, length = 0.0;
    std::vector<ParameterSetting> settings;
};

Run parseRun (const juce::String& header)
{
    constexpr double highestRate = 1e6, longest = 1e9;
    auto words = juce::StringArray::fromTokens (header, "\t", {});
    const auto rate = words[0].getDoubleValue(), length = words[1].getDoubleValue();

    if (! (rate >= 1.0 && rate <= highestRate && length >= 1.0 && length <= longest))
        throw ToolError ("a run begins with its rate, its length and settings, not with '" + header + "'");

    words.removeRange (0, 2);
    return { rate, length, parseParameterSettings (words) };
}

void readSamples (std::vector<float>& samples)
{
    const auto bytes = static_cast<std::streamsize> (samples.size() * sizeof (float));

    if (! std::cin.read (reinterpret_cast<char*> (samples.data()), bytes))
        throw ToolError ("the input ends within a run of " + juce::String (samples.size()) + " samples");
}

/** The output. What the module itself prints while it is loaded goes where errors go from here on. */
std::FILE* takeOutput()
{
    auto* const output = ::fdopen (::dup (STDOUT_FILENO), "wb");
    ::dup2 (STDERR_FILENO, STDOUT_FILENO);
    return output;
}

void write (std::FILE* output, const std::vector<float>& samples)
{
    if (std::fwrite (samples.data(), sizeof (float), samples.size(), output) != samples.size()
        || std::fflush (output) != 0)
        throw ToolError ("nobody takes the output");
}

/** Every parameter to its default, then the settings. */
void apply (ModuleHost& host, const Run& run, int blockSize)
{
    for (int index = 0; index < numParameters; ++index)
        host.setParameter (index, createParameter (index)->getDefaultValue());

    for (const auto& setting : run.settings)
        host.setParameter (setting.index, setting.normalised);

    // The module hears of new values with a block, and lets them fade in. Prepared once more, it starts with them.
    host.prepare (run.sampleRate, blockSize);
    juce::AudioBuffer<float> silence (1, blockSize);
    silence.clear();
    host.process (silence);
    host.release();
}

/** As long as the input, with the latency taken out. */
void process (ModuleHost& host, double sampleRate, int blockSize, std::vector<float>& samples)
{
    host.prepare (sampleRate, blockSize);
    const auto latency = static_cast<std::size_t> (host.latency());
    const auto step = static_cast<std::size_t> (blockSize);
    samples.resize (samples.size() + latency);

    for (std::size_t done = 0; done < samples.size(); done += step)
    {
        auto* row = samples.data() + done;
        juce::AudioBuffer<float> block (&row, 1, static_cast<int> (std::min (samples.size() - done, step)));
        host.process (block);
    }

    host.release();
    samples.erase (samples.begin(), samples.begin() + static_cast<std::ptrdiff_t> (latency));
}
} // namespace

void streamRuns (const CommandLine& line)
{
    auto* const output = takeOutput();
    ModuleHost host (ModuleHost::findBundle (line.modulePath));
    host.setLayout (1, false);
    std::string header;

    while (std::getline (std::cin, header))
    {
        const auto run = parseRun (juce::String::fromUTF8 (header.c_str()));
        std::vector<float> samples (static_cast<std::size_t> (run.length));
        readSamples (samples);
        apply (host, run, line.blockSize);
        process (host, run.sampleRate, line.blockSize, samples);
        write (output, samples);
    }
}

void decodeRecording (const CommandLine& line)
{
    AudioFileReader recording (line.inputPath);
    const auto numChannels = recording.numChannels();
    auto* const output = takeOutput();
    std::fprintf (output, "%s\t%d\t%s\n", juce::String (recording.sampleRate()).toRawUTF8(), numChannels,
                  juce::String (recording.length()).toRawUTF8());
    juce::AudioBuffer<float> block (numChannels, line.blockSize);
    std::vector<float> frames;

    for (juce::int64 position = 0; position < recording.length(); position += line.blockSize)
    {
        const auto n = static_cast<int> (std::min<juce::int64> (line.blockSize, recording.length() - position));
        recording.readNext (block.getArrayOfWritePointers(), n);
        frames.clear();

        for (int i = 0; i < n; ++i)
            for (int c = 0; c < numChannels; ++c)
                frames.push_back (block.getSample (c, i));

        write (output, frames);
    }
}

} // namespace tarvik
