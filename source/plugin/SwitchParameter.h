// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>

namespace tarvik
{

/** A parameter that holds 0 or 1 from the moment it is set. JUCE's own keeps whatever number the host sends, 0.375 for
    instance, and shows it to the host although the strip hears 0. Any thread.
*/
class SwitchParameter final : public juce::RangedAudioParameter
{
public:
    SwitchParameter (const juce::ParameterID& id, const juce::String& nameForUsers, bool isOnByDefault)
        : RangedAudioParameter (id, nameForUsers), defaultValue (isOnByDefault ? 1.0f : 0.0f), asSet (defaultValue)
    {
    }

    /** Whether the number that was set is not the one that it holds: the host may still show the former. */
    bool wasSnapped() const noexcept { return asSet != getValue(); }

    float getValue() const override { return snapped (asSet); }

    void setValue (float newValue) override { asSet = newValue; }

    float getDefaultValue() const override { return defaultValue; }

    int getNumSteps() const override { return 2; }

    bool isDiscrete() const override { return true; }

    bool isBoolean() const override { return true; }

    const juce::NormalisableRange<float>& getNormalisableRange() const override { return range; }

    juce::String getText (float value, int) const override { return snapped (value) > 0.0f ? "On" : "Off"; }

    /** "on", "yes", "true" and a number other than 0 are on, in any case of letters; everything else is off. */
    float getValueForText (const juce::String& text) const override
    {
        const auto isOn = juce::StringArray ("on", "yes", "true").contains (text, true) || text.getIntValue() != 0;
        return isOn ? 1.0f : 0.0f;
    }

private:
    static float snapped (float value) noexcept { return value >= 0.5f ? 1.0f : 0.0f; }

    const juce::NormalisableRange<float> range { 0.0f, 1.0f, 1.0f };
    const float defaultValue;
    std::atomic<float> asSet;
};

} // namespace tarvik
