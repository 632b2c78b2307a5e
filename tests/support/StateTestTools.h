// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/ParameterTable.h"
#include "plugin/Tarvik41Processor.h"

#include <cmath>
#include <string_view>

namespace tarvik::test
{

inline juce::MemoryBlock saved (juce::AudioProcessor& strip)
{
    juce::MemoryBlock block;
    strip.getStateInformation (block);
    return block;
}

inline void load (juce::AudioProcessor& strip, const juce::MemoryBlock& block)
{
    strip.setStateInformation (block.getData(), static_cast<int> (block.getSize()));
}

/** The text of a block that is in order. */
inline std::string_view textOf (const juce::MemoryBlock& block)
{
    constexpr std::size_t header = 8, end = 1;
    return { static_cast<const char*> (block.getData()) + header, block.getSize() - header - end };
}

inline std::unique_ptr<juce::XmlElement> savedXml (juce::AudioProcessor& strip)
{
    return juce::parseXML (std::string (textOf (saved (strip))));
}

/** A block in order around any text. */
inline juce::MemoryBlock blockOfText (std::string_view text)
{
    juce::MemoryOutputStream stream;
    stream.writeInt (0x21324356); // JUCE's mark
    stream.writeInt (static_cast<int> (text.size()));
    stream.write (text.data(), text.size());
    stream.writeByte (0);
    return stream.getMemoryBlock();
}

inline std::string bytesOf (const juce::MemoryBlock& block)
{
    return { static_cast<const char*> (block.getData()), block.getSize() };
}

/** In their order in a project: calibration, oversampling, noise, zoom, limiter sensitivity, meter mode. */
inline juce::String settingsOf (const Tarvik41Processor& strip)
{
    juce::String all;
    return all << strip.calibrationSetting().getValue() << " " << strip.oversamplingSetting().getValue() << " "
               << int (strip.analogSetting().getValue()) << " " << strip.uiZoomSetting().getValue() << " "
               << strip.limiterSensitivitySetting().getValue() << " " << strip.meterModeSetting().getValue();
}

/** What differs from the default settings, as a user reads it: " gain=4.77 midFreq=1000 Hz". */
inline juce::String differencesFromDefault (const ParameterSnapshot& snapshot)
{
    static const ParameterSnapshot defaults;
    juce::String all;

    for (int i = 0; i < numParameters; ++i)
    {
        const auto& row = parameterRow (i);
        const auto value = plainValueOf (snapshot, i);

        if (value == plainValueOf (defaults, i))
            continue;

        const juce::StringArray choices (row.choices.data(), static_cast<int> (row.choices.size()));
        all << " " << row.id << "=" << (choices.isEmpty() ? juce::String (value) : choices[static_cast<int> (value)]);
    }

    return all;
}

} // namespace tarvik::test
