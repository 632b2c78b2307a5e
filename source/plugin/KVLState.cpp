// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/KVLProcessor.h"
#include "plugin/ParameterTable.h"
#include "plugin/StateBlock.h"
#include "plugin/StateSchema.h"

#include <cmath>
#include <optional>

namespace tarvik
{

namespace
{
void writeField (juce::XmlElement& xml, const juce::String& id, const ParameterFieldRef& field)
{
    if (field.kind == ParameterFieldKind::Float)
        xml.setAttribute (id, static_cast<double> (field.get()));
    else
        xml.setAttribute (id, juce::roundToInt (field.get()));
}

/** The attribute's value on the parameter's grid and within its range. What the project lacks, or gives as "nan" or
    "inf", takes the parameter's default; any other text without a number reads as 0.
*/
void readField (const juce::XmlElement& xml, const juce::RangedAudioParameter& parameter,
                const ParameterFieldRef& field)
{
    const auto id = parameterID (parameter);
    const auto plainDefault = parameter.convertFrom0to1 (parameter.getDefaultValue());
    const auto value = xml.getDoubleAttribute (id, static_cast<double> (plainDefault));

    if (! std::isfinite (value))
    {
        field.set (plainDefault);
        return;
    }

    if (field.kind == ParameterFieldKind::Bool)
    {
        field.set (xml.getBoolAttribute (id, plainDefault >= 0.5f) ? 1.0f : 0.0f);
        return;
    }

    const auto& range = parameter.getNormalisableRange();
    const auto bounded = juce::jlimit (static_cast<double> (range.start), static_cast<double> (range.end), value);
    const auto isWhole = field.kind == ParameterFieldKind::Int || field.kind == ParameterFieldKind::Choice;
    const auto plain = static_cast<float> (isWhole ? std::trunc (bounded) : bounded);
    field.set (range.snapToLegalValue (plain));
}

/** Calls action (parameter, field) for every parameter that has a field in the snapshot. */
template <typename Action>
void forEachField (juce::AudioProcessor& processor, ParameterSnapshot& snapshot, Action&& action)
{
    for (auto* const p : processor.getParameters())
        if (auto* const parameter = dynamic_cast<juce::RangedAudioParameter*> (p))
            if (const auto field = fieldForParameter (snapshot, p->getParameterIndex()))
                action (*parameter, field);
}

/** The slot that a text names by the whole part of a number; none for other text. */
std::optional<int> slotNumber (const juce::String& text)
{
    const auto digits = text.trim();
    const auto isNumber = juce::CharacterFunctions::isDigit (digits[0]) && digits.containsOnly ("0123456789.");
    const auto number = digits.getDoubleValue();
    return isNumber && number < KVLProcessor::numSlots ? std::optional (static_cast<int> (number)) : std::nullopt;
}
} // namespace

void KVLProcessor::getStateInformation (juce::MemoryBlock& block)
{
    juce::XmlElement root (stateSchema::root);
    root.setAttribute (stateSchema::version, JucePlugin_VersionString);
    static const auto buildDate = juce::Time::getCompilationDate().toISO8601 (true);
    root.setAttribute (stateSchema::buildDate, buildDate);

    for (std::size_t slot = 0; slot < slots.size(); ++slot)
    {
        auto* const xml = root.createNewChildElement (stateSchema::slotTags[slot]);
        forEachField (*this, slots[slot],
                      [xml] (const auto& parameter, const auto& field)
                      { writeField (*xml, parameterID (parameter), field); });
    }

    root.setAttribute (stateSchema::currentSlot, currentSlot.get());

    // That host format asks a fresh instance for its state and would keep today's defaults as the project's settings.
    if (wrapperType != wrapperType_AAX || ! isFirstStateSave)
        for (const auto* const setting : settings)
            setting->saveToXml (root);

    copyXmlToBinary (root, block);
}

void KVLProcessor::setStateInformation (const void* data, int sizeInBytes)
{
    isFirstStateSave = false;

    if (const auto root = parseStateBlock (data, sizeInBytes))
    {
        for (std::size_t slot = 0; slot < slots.size(); ++slot)
            if (const auto* const xml = root->getChildByName (stateSchema::slotTags[slot]))
                forEachField (*this, slots[slot],
                              [xml] (const auto& parameter, const auto& field) { readField (*xml, parameter, field); });

        if (const auto slot = slotNumber (root->getStringAttribute (stateSchema::currentSlot)))
            currentSlot = *slot;

        for (auto* const setting : settings)
            setting->loadFromXml (*root);

        applySnapshot (currentSnapshot());
    }

    lastStateLoadTime = juce::Time::getMillisecondCounter();
    onStateRestored();
}

} // namespace tarvik
