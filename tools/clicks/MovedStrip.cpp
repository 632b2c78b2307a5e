// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/clicks/MovedStrip.h"

#include "plugin/ParameterTable.h"

#include <cmath>
#include <numbers>

namespace tarvik::clicks
{

namespace
{
constexpr double toneHz = 100.0, sidechainHz = 170.0;
}

const Settings defaults;

const Settings everythingAtWork { {
    { parameterNamed ("thd"), 6.0f },
    { parameterNamed ("gain"), 6.0f },
    { parameterNamed ("unity"), 1.0f },
    { parameterNamed ("highGain"), 8.0f },
    { parameterNamed ("midGain"), 0.7f },
    { parameterNamed ("lowFreq"), 2.0f },
    { parameterNamed ("lowGain"), 0.6f },
    { parameterNamed ("highPass"), 1.0f },
    { parameterNamed ("compHPF"), 120.0f },
    { parameterNamed ("compLimit"), 1.0f },
    { parameterNamed ("compNiveau"), 1.0f },
    { parameterNamed ("compThreshold"), -9.0f },
    { parameterNamed ("compRatio"), 3.0f },
    { parameterNamed ("compMix"), 0.8f },
    { parameterNamed ("compExtSideChain"), 1.0f },
    { parameterNamed ("expMode"), 2.0f },
    { parameterNamed ("expHold"), 1.0f },
    { parameterNamed ("expThreshold"), -10.0f },
    { parameterNamed ("phase"), 1.0f },
    { parameterNamed ("TolChannel"), 20.0f },
} };

const Settings closedGate { { { parameterNamed ("expMode"), 2.0f } }, 0.0032 };

MovedStrip::MovedStrip (const Settings& settings, int numChannels, int oversamplingFactor)
    : strip (std::make_unique<Tarvik41Processor>()), numMain (numChannels), level (settings.level)
{
    const auto width = juce::AudioChannelSet::canonicalChannelSet (numChannels);
    strip->setBusesLayout ({ { width, width }, { width } });
    strip->analogSetting().setValue (false);
    strip->oversamplingSetting().setValue (oversamplingFactor);

    for (const auto& [index, plain] : settings.values)
        set (index, createParameter (index)->convertTo0to1 (plain));

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
