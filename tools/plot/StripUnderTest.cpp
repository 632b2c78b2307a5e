// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/plot/StripUnderTest.h"

#include "plugin/ParameterTable.h"
#include "tools/Interruption.h"
#include "tools/ParameterArguments.h"

#include <algorithm>

namespace tarvik::plot
{

namespace
{
constexpr int blockSize = 512;

const ParameterRow& rowOf (const char* id)
{
    const auto& table = parameterTable();
    const auto row =
        std::find_if (table.begin(), table.end(), [id] (const ParameterRow& r) { return juce::String (r.id) == id; });
    jassert (row != table.end());
    return *row;
}
} // namespace

juce::String knobAt (const char* id, double plainValue)
{
    return juce::String (id) + "=" + rowOf (id).textRule->toText (static_cast<float> (plainValue));
}

juce::String switchAt (const char* id, std::size_t position)
{
    return juce::String (id) + "=" + rowOf (id).choices[position];
}

juce::StringArray positionsOf (const char* id)
{
    const auto choices = rowOf (id).choices;
    return { choices.data(), static_cast<int> (choices.size()) };
}

StripUnderTest::StripUnderTest (const juce::File& bundle, double sampleRate, int oversamplingFactor)
    : rate (sampleRate), settings (oversamplingFactor), host (bundle), block (1, blockSize)
{
    host.setLayout (1, false);
}

void StripUnderTest::set (const juce::StringArray& assignments)
{
    for (int index = 0; index < numParameters; ++index)
        host.setParameter (index, createParameter (index)->getDefaultValue());

    for (const auto* const sectionOut : { "equalizer=off", "compIn=off" })
    {
        const auto setting = parseParameterSetting (sectionOut);
        host.setParameter (setting.index, setting.normalised);
    }

    for (const auto& assignment : assignments)
    {
        const auto setting = parseParameterSetting (assignment);
        host.setParameter (setting.index, setting.normalised);
    }

    // The module hears of new values with a block, and lets them fade in. Prepared once more, it starts with them.
    host.prepare (rate, blockSize);
    processBlock (nullptr, blockSize);
    host.release();
}

Samples StripUnderTest::run (const Samples& input)
{
    host.prepare (rate, blockSize);

    const auto latency = static_cast<std::size_t> (host.latency());
    const auto total = input.size() + latency;
    Samples padded (total), output;
    std::copy (input.begin(), input.end(), padded.begin());
    output.reserve (total);

    for (std::size_t done = 0; done < total; done += blockSize)
    {
        throwIfInterrupted();

        const auto n = static_cast<int> (std::min (total - done, static_cast<std::size_t> (blockSize)));
        processBlock (padded.data() + done, n);
        output.insert (output.end(), block.getReadPointer (0), block.getReadPointer (0) + n);
    }

    host.release();
    output.erase (output.begin(), output.begin() + static_cast<std::ptrdiff_t> (latency));
    return output;
}

void StripUnderTest::processBlock (const float* input, int numSamples)
{
    juce::AudioBuffer<float> part (block.getArrayOfWritePointers(), 1, numSamples);

    if (input != nullptr)
        part.copyFrom (0, 0, input, numSamples);
    else
        part.clear();

    host.process (part);
}

} // namespace tarvik::plot
