// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/RenderRun.h"

#include "tools/Interruption.h"

#include <algorithm>

namespace tarvik
{

RenderRun::RenderRun (ModuleHost& moduleHost, AudioFileReader& input, AudioFileReader* sidechain,
                      AudioFileWriter& output)
    : host (moduleHost), main (input), side (sidechain), writer (output), numMain (input.numChannels()),
      levelsIn (static_cast<std::size_t> (numMain)), levelsOut (static_cast<std::size_t> (numMain))
{
}

void RenderRun::perform (int blockSize, const ShowProgress& showProgress)
{
    const auto startMs = juce::Time::getMillisecondCounterHiRes();
    block.setSize (side != nullptr ? 2 * numMain : numMain, blockSize);

    if (side != nullptr)
        sideBlock.setSize (side->numChannels(), blockSize);

    host.prepare (main.sampleRate(), blockSize);

    const juce::int64 latency = host.latency();
    const auto total = main.length() > 0 ? main.length() + latency : 0;

    for (juce::int64 position = 0; position < total; position += blockSize)
    {
        throwIfInterrupted();

        const auto n = static_cast<int> (std::min<juce::int64> (blockSize, total - position));
        readBlock (n);

        const auto numOfInput = static_cast<int> (std::clamp<juce::int64> (main.length() - position, 0, n));

        for (int c = 0; c < numMain; ++c)
            levelsIn[static_cast<std::size_t> (c)].add (block.getReadPointer (c), numOfInput);

        juce::AudioBuffer<float> filledPart (block.getArrayOfWritePointers(), block.getNumChannels(), n);
        host.process (filledPart);
        noteGainReduction (position + n);

        const auto numTooEarly = static_cast<int> (std::clamp<juce::int64> (latency - position, 0, n));
        writeBlock (numTooEarly, n - numTooEarly);
        showProgress (position + n, total);
    }

    constexpr double millisecondsPerSecond = 1000.0;
    secondsTaken = (juce::Time::getMillisecondCounterHiRes() - startMs) / millisecondsPerSecond;
}

void RenderRun::noteGainReduction (juce::int64 samplesDone)
{
    // A prepared strip's needle rises from its stop, which is no reduction.
    constexpr double needleRisesSeconds = 0.5;

    if (static_cast<double> (samplesDone) > needleRisesSeconds * main.sampleRate())
        gainReductionDb = std::min (gainReductionDb.value_or (0.0f), host.gainReductionDb());
}

void RenderRun::readBlock (int numSamples)
{
    main.readNext (block.getArrayOfWritePointers(), numSamples);

    if (side != nullptr)
        readSidechain (numSamples);
}

void RenderRun::readSidechain (int numSamples)
{
    const auto numSide = side->numChannels();
    side->readNext (sideBlock.getArrayOfWritePointers(), numSamples);

    // The module's side chain is as wide as its main bus: one channel feeds both, two are averaged for one.
    for (int c = 0; c < numMain; ++c)
    {
        if (numSide <= numMain)
        {
            block.copyFrom (numMain + c, 0, sideBlock, std::min (c, numSide - 1), 0, numSamples);
            continue;
        }

        block.clear (numMain + c, 0, numSamples);

        for (int s = 0; s < numSide; ++s)
            block.addFrom (numMain + c, 0, sideBlock, s, 0, numSamples, 1.0f / static_cast<float> (numSide));
    }
}

void RenderRun::writeBlock (int start, int numSamples)
{
    std::vector<const float*> rows;

    for (int c = 0; c < numMain; ++c)
    {
        rows.push_back (block.getReadPointer (c, start));
        levelsOut[static_cast<std::size_t> (c)].add (rows.back(), numSamples);
    }

    writer.write (rows.data(), numSamples);
}

double RenderRun::timesRealTime() const
{
    return secondsTaken > 0.0 ? static_cast<double> (main.length()) / main.sampleRate() / secondsTaken : 0.0;
}

} // namespace tarvik
