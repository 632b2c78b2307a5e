// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/ParameterTable.h"
#include "plugin/StateSchema.h"

#include <cmath>
#include <limits>

namespace tarvik::soak
{

template <typename Value, std::size_t size>
Value oneOf (const Value (&values)[size], juce::Random& random)
{
    return values[random.nextInt (static_cast<int> (size))];
}

inline bool oneIn (int times, juce::Random& random) { return random.nextInt (times) == 0; }

/** A place in a parameter's travel, one in four at an end. */
inline float randomTravel (juce::Random& random)
{
    return oneIn (4, random) ? static_cast<float> (random.nextInt (2)) : random.nextFloat();
}

/** From 1 to 8192, short ones as often as long ones. */
inline int randomLength (juce::Random& random)
{
    const auto longest = 1 << random.nextInt (14);
    return random.nextBool() ? longest : 1 + random.nextInt (longest);
}

/** A project with its settings and all parameters of both slots at random, one in eight left out. */
inline juce::MemoryBlock randomState (juce::Random& random)
{
    juce::XmlElement root (stateSchema::root);
    const auto set = [&random] (juce::XmlElement& element, const char* key, auto value)
    {
        if (! oneIn (8, random))
            element.setAttribute (key, value);
    };

    set (root, stateSchema::currentSlot, random.nextInt (2));
    set (root, "Oversampling", 1 << random.nextInt (5));
    set (root, "Calibration", 16.0 + 8.0 * random.nextDouble());
    set (root, "Analog", random.nextInt (2));
    set (root, "UIZoom", 0.8 + 0.7 * random.nextDouble());
    set (root, "LimiterSensitivity", random.nextInt (3));
    set (root, "MeterMode", random.nextInt (2));

    for (const auto* const tag : stateSchema::slotTags)
        for (auto* const values = root.createNewChildElement (tag); const auto& row : parameterRows)
            set (*values, row.id, juce::jmap (randomTravel (random), row.range.start, row.range.end));

    juce::MemoryBlock block;
    juce::AudioProcessor::copyXmlToBinary (root, block);
    return block;
}

/** A tone in noise at a random level, or what no host should send. */
inline void fillWithAudio (juce::AudioBuffer<float>& block, juce::Random& random, bool isBad = false)
{
    using Limits = std::numeric_limits<float>;
    constexpr float bad[] = { Limits::quiet_NaN(),  Limits::infinity(), -Limits::infinity(),
                              Limits::max(),        -Limits::max(),     1.0e10f,
                              Limits::denorm_min(), -1.0e-40f };
    const auto level = juce::Decibels::decibelsToGain (-60.0f + 66.0f * random.nextFloat());
    const auto step = 3.0f * random.nextFloat();

    for (int c = 0; c < block.getNumChannels(); ++c)
        for (int i = 0; i < block.getNumSamples(); ++i)
            if (isBad)
                block.setSample (c, i, oneIn (16, random) ? oneOf (bad, random) : 0.0f);
            else
                block.setSample (c, i, level * (std::sin (step * static_cast<float> (i)) + random.nextFloat() - 0.5f));
}

} // namespace tarvik::soak
