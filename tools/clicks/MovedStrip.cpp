// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/clicks/MovedStrip.h"

#include "plugin/ParameterTable.h"

#include <cmath>
#include <numbers>
#include <span>
#include <utility>

namespace tarvik::clicks
{

namespace
{
constexpr double toneHz = 100.0, sidechainHz = 170.0, usualLevel = 0.25, closedGateLevel = 0.0032;

using PlainValue = std::pair<const char*, float>;

/** Plain values that give every parameter something to do. */
constexpr PlainValue atWork[] = { { "thd", 6.0f },       { "gain", 6.0f },       { "unity", 1.0f },
                                  { "highGain", 8.0f },  { "midGain", 0.7f },    { "lowFreq", 2.0f },
                                  { "lowGain", 0.6f },   { "highPass", 1.0f },   { "compHPF", 120.0f },
                                  { "compLimit", 1.0f }, { "compNiveau", 1.0f }, { "compThreshold", -9.0f },
                                  { "compRatio", 3.0f }, { "compMix", 0.8f },    { "compExtSideChain", 1 },
                                  { "expMode", 2.0f },   { "expHold", 1.0f },    { "expThreshold", -10.0f },
                                  { "phase", 1.0f },     { "TolChannel", 20.0f } };

constexpr PlainValue closedGate[] = { { "expMode", 2.0f } };

std::span<const PlainValue> valuesOf (Settings settings)
{
    if (settings == Settings::everythingAtWork)
        return atWork;

    return settings == Settings::closedGate ? std::span (closedGate) : std::span<const PlainValue>();
}
} // namespace

MovedStrip::MovedStrip (Settings settings, int numChannels, int oversamplingFactor)
    : strip (std::make_unique<Tarvik41Processor>()), numMain (numChannels),
      level (settings == Settings::closedGate ? closedGateLevel : usualLevel)
{
    const auto width = juce::AudioChannelSet::canonicalChannelSet (numChannels);
    strip->setBusesLayout ({ { width, width }, { width } });
    strip->analogSetting().setValue (false);
    strip->oversamplingSetting().setValue (oversamplingFactor);

    for (const auto& [id, plain] : valuesOf (settings))
        for (int index = 0; index < numParameters; ++index)
            if (juce::String (id) == parameterRow (index).id)
            {
                auto* const p = dynamic_cast<juce::RangedAudioParameter*> (strip->getParameters()[index]);
                set (index, p->convertTo0to1 (plain));
            }

    strip->prepareToPlay (rateHz, KVLProcessor::sliceSize);
}

void MovedStrip::set (int index, float place) { strip->getParameters()[index]->setValueNotifyingHost (place); }

void MovedStrip::run (int numSamples, int blockSize, Signal& output)
{
    const auto first = output.size();
    output.resize (first + static_cast<std::size_t> (numMain * numSamples));
    block.setSize (2 * numMain, blockSize, false, false, true);

    for (int done = 0; done < numSamples;)
    {
        const auto n = std::min (blockSize, numSamples - done);
        juce::AudioBuffer<float> part (block.getArrayOfWritePointers(), 2 * numMain, n);

        for (int i = 0; i < n; ++i, ++position)
        {
            const auto cycle = 2.0 * std::numbers::pi * static_cast<double> (position) / rateHz;

            for (int c = 0; c < numMain; ++c)
            {
                part.setSample (c, i, static_cast<float> (level * std::sin (cycle * toneHz)));
                part.setSample (numMain + c, i, static_cast<float> (level * std::sin (cycle * sidechainHz)));
            }
        }

        strip->processBlock (part, midi);

        for (int c = 0; c < numMain; ++c)
            std::copy_n (part.getReadPointer (c), n,
                         output.begin() + static_cast<long> (first) + static_cast<long> (c) * numSamples + done);

        done += n;
    }
}

} // namespace tarvik::clicks
