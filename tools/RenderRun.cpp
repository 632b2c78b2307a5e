// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/RenderRun.h"

#include "tools/Interruption.h"

#include <algorithm>

namespace tarvik
{

namespace
{
/** Fills the channels after the first `numMain`. The module's side chain is as wide as its main bus: one channel feeds
    both, two are averaged for one.
*/
void readSidechain (AudioFileReader& side, juce::AudioBuffer<float>& sideBlock, juce::AudioBuffer<float>& block,
                    int numMain, int numSamples)
{
    const auto numSide = side.numChannels();
    sideBlock.setSize (numSide, block.getNumSamples(), false, false, true);
    side.readNext (sideBlock.getArrayOfWritePointers(), numSamples);

    for (int c = 0; c < numMain; ++c)
        block.copyFrom (numMain + c, 0, sideBlock, std::min (c, numSide - 1), 0, numSamples);

    if (numSide > numMain)
    {
        block.applyGain (numMain, 0, numSamples, 0.5f);
        block.addFrom (numMain, 0, sideBlock, 1, 0, numSamples, 0.5f);
    }
}
} // namespace

RenderMeasurements renderThrough (ModuleHost& host, AudioFileReader& input, AudioFileReader* sidechain,
                                  AudioFileWriter& output, int blockSize, const ShowProgress& showProgress)
{
    // A prepared strip's needle rises from its stop, which is not a reduction.
    constexpr double needleRisesSeconds = 0.5;

    const auto startMs = juce::Time::getMillisecondCounterHiRes();
    const auto numMain = input.numChannels();
    RenderMeasurements measured;
    measured.levelsIn.resize (static_cast<std::size_t> (numMain));
    measured.levelsOut.resize (static_cast<std::size_t> (numMain));
    juce::AudioBuffer<float> block (sidechain != nullptr ? 2 * numMain : numMain, blockSize), sideBlock;
    std::vector<const float*> rows (static_cast<std::size_t> (numMain));

    host.prepare (input.sampleRate(), blockSize);
    const juce::int64 latency = host.latency();
    const auto total = input.length() > 0 ? input.length() + latency : 0;

    for (juce::int64 position = 0; position < total; position += blockSize)
    {
        throwIfInterrupted();

        const auto n = static_cast<int> (std::min<juce::int64> (blockSize, total - position));
        const auto numOfInput = static_cast<int> (std::clamp<juce::int64> (input.length() - position, 0, n));
        const auto numTooEarly = static_cast<int> (std::clamp<juce::int64> (latency - position, 0, n));
        input.readNext (block.getArrayOfWritePointers(), n);

        if (sidechain != nullptr)
            readSidechain (*sidechain, sideBlock, block, numMain, n);

        for (int c = 0; c < numMain; ++c)
            measured.levelsIn[static_cast<std::size_t> (c)].add (block.getReadPointer (c), numOfInput);

        juce::AudioBuffer<float> filledPart (block.getArrayOfWritePointers(), block.getNumChannels(), n);
        host.process (filledPart);

        if (static_cast<double> (position + n) > needleRisesSeconds * input.sampleRate())
            measured.gainReductionDb = std::min (measured.gainReductionDb.value_or (0.0f), host.gainReductionDb());

        for (int c = 0; c < numMain; ++c)
        {
            rows[static_cast<std::size_t> (c)] = block.getReadPointer (c, numTooEarly);
            measured.levelsOut[static_cast<std::size_t> (c)].add (block.getReadPointer (c, numTooEarly),
                                                                  n - numTooEarly);
        }

        output.write (rows.data(), n - numTooEarly);
        showProgress (position + n, total);
    }

    if (const auto seconds = (juce::Time::getMillisecondCounterHiRes() - startMs) / 1000.0; seconds > 0.0)
        measured.timesRealTime = static_cast<double> (input.length()) / input.sampleRate() / seconds;

    return measured;
}

} // namespace tarvik
