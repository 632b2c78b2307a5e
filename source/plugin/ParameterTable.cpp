// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/ParameterTable.h"

#include "plugin/SwitchParameter.h"

#include <cmath>

namespace tarvik
{

namespace
{
using Kind = ParameterFieldKind;
using Snapshot = ParameterSnapshot;

//==============================================================================
/** A function of the range's ends and a position or value. */
using MappingFunction = float (*) (float start, float end, float x);

namespace logarithmic
{
float fromTravel (float start, float end, float x)
{
    return std::pow (10.0f, std::log10 (end / start) * x + std::log10 (start));
}

float toTravel (float start, float end, float value) { return std::log10 (value / start) / std::log10 (end / start); }
} // namespace logarithmic

namespace fader
{
// Three straight lines: the top 20 dB take half of the travel.
float fromTravel (float, float, float x)
{
    if (x > 0.5f)
        return 40.0f * x - 30.0f;

    return x > 0.125f ? 80.0f * x - 50.0f : 320.0f * x - 80.0f;
}

float toTravel (float, float, float valueDb)
{
    if (valueDb > -10.0f)
        return 0.025f * valueDb + 0.75f;

    return valueDb > -40.0f ? 0.0125f * valueDb + 0.625f : 0.003125f * valueDb + 0.25f;
}
} // namespace fader

juce::NormalisableRange<float> mappedRange (const ParameterRow& row, MappingFunction fromTravel,
                                            MappingFunction toTravel)
{
    // Rounding at the ends of the travel must not leave the range, and a text may mean any value: a logarithm must not see it.
    juce::NormalisableRange<float> range (
        row.range.start, row.range.end,
        [fromTravel] (float start, float end, float x)
        { return juce::jlimit (start, end, fromTravel (start, end, x)); },
        [toTravel] (float start, float end, float value)
        { return juce::jlimit (0.0f, 1.0f, toTravel (start, end, juce::jlimit (start, end, value))); });
    range.interval = row.range.step;
    return range;
}

juce::NormalisableRange<float> rangeOf (const ParameterRow& row)
{
    switch (row.travel)
    {
        case Travel::Skewed:
        {
            juce::NormalisableRange<float> range (row.range.start, row.range.end, row.range.step);
            range.setSkewForCentre (row.centre);
            return range;
        }
        case Travel::Logarithmic:
            return mappedRange (row, logarithmic::fromTravel, logarithmic::toTravel);
        case Travel::Fader:
            return mappedRange (row, fader::fromTravel, fader::toTravel);
        case Travel::Straight:
            break;
    }

    return { row.range.start, row.range.end, row.range.step };
}

juce::AudioParameterFloatAttributes floatAttributes (const ParameterRow& row)
{
    const auto attributes = juce::AudioParameterFloatAttributes().withLabel (row.label());

    if (row.textRule == nullptr)
        return attributes.withStringFromValueFunction (
            [decimals = decimalsOfStep (row.range.step)] (float value, int length)
            {
                const auto text = decimalText (value, decimals);
                return length > 0 ? text.substring (0, length) : text;
            });

    return attributes
        .withStringFromValueFunction ([toText = row.textRule->toText] (float value, int) { return toText (value); })
        .withValueFromStringFunction ([fromText = row.textRule->fromText] (const juce::String& text)
                                      { return fromText (text); });
}

} // namespace

//==============================================================================
float ParameterFieldRef::get() const noexcept
{
    return std::visit (
        [] (auto f) -> float
        {
            if constexpr (std::is_same_v<decltype (f), std::monostate>)
                return 0.0f;
            else
                return static_cast<float> (f->get());
        },
        field);
}

void ParameterFieldRef::set (float plainValue) const noexcept
{
    if (! std::isfinite (plainValue))
        return;

    if (auto* const* asBool = std::get_if<Snapshot::Bool*> (&field))
        (*asBool)->set (plainValue >= 0.5f);
    else if (auto* const* asInt = std::get_if<Snapshot::Int*> (&field))
        (*asInt)->set (juce::roundToInt (plainValue));
    else if (auto* const* asFloat = std::get_if<Snapshot::Float*> (&field))
        (*asFloat)->set (plainValue);
}

ParameterFieldRef fieldForParameter (ParameterSnapshot& snapshot, int index) noexcept
{
    if (index < 0 || index > parameterIndex::gainReduction)
        return {};

    ParameterFieldRef ref { {}, parameterRow (index).kind };
    std::visit ([&] (auto member) { ref.field = &(snapshot.*member); }, parameterRow (index).field);
    return ref;
}

float plainValueOf (const ParameterSnapshot& snapshot, int index) noexcept
{
    return fieldForParameter (const_cast<ParameterSnapshot&> (snapshot), index).get(); // nothing is written
}

std::unique_ptr<juce::RangedAudioParameter> createParameter (int index)
{
    const auto& row = parameterRow (index);
    const juce::ParameterID id { row.id, 1 };
    const auto plainDefault = plainValueOf (Snapshot(), index);

    switch (row.kind)
    {
        case Kind::Bool:
            return std::make_unique<SwitchParameter> (id, row.name, plainDefault >= 0.5f);

        case Kind::Int:
            return std::make_unique<juce::AudioParameterInt> (id, row.name, juce::roundToInt (row.range.start),
                                                              juce::roundToInt (row.range.end),
                                                              juce::roundToInt (plainDefault));

        case Kind::Choice:
            return std::make_unique<juce::AudioParameterChoice> (
                id, row.name, juce::StringArray (row.choices.data(), static_cast<int> (row.choices.size())),
                juce::roundToInt (plainDefault));

        case Kind::Float:
            return std::make_unique<juce::AudioParameterFloat> (id, row.name, rangeOf (row), plainDefault,
                                                                floatAttributes (row));

        case Kind::None:
            break;
    }

    return nullptr;
}

std::unique_ptr<juce::RangedAudioParameter> createGainReductionParameter()
{
    const auto& row = parameterRow (parameterIndex::gainReduction);
    return std::make_unique<juce::AudioParameterFloat> (
        juce::ParameterID { row.id, 1 }, row.name, rangeOf (row), 0.0f,
        juce::AudioParameterFloatAttributes().withCategory (
            juce::AudioProcessorParameter::compressorLimiterGainReductionMeter));
}

std::optional<float> typedValue (const juce::RangedAudioParameter& parameter, const juce::String& text)
{
    const auto typed = text.trim();
    const auto isMeant = [&typed] (const juce::String& choice)
    {
        return choice.equalsIgnoreCase (typed)
               || choice.upToFirstOccurrenceOf (" ", false, false).equalsIgnoreCase (typed);
    };

    if (const auto& row = parameterRow (parameter.getParameterIndex()); row.kind == Kind::Choice)
    {
        for (std::size_t i = 0; i < row.choices.size(); ++i)
            if (isMeant (row.choices[i]))
                return parameter.convertTo0to1 (static_cast<float> (i));

        return {};
    }

    const auto first = typed.trimCharactersAtStart ("+-").trimCharactersAtStart (".,").substring (0, 1);
    const auto isWord = isMeant (parameter.getText (0.0f, 0)); // such as "Off"

    if (! isWord && (first.isEmpty() || ! first.containsOnly ("0123456789")))
        return {};

    return parameter.getValueForText (typed.replaceCharacter (',', '.'));
}

juce::String parameterID (const juce::AudioProcessorParameter& parameter)
{
    constexpr int longestName = 50;

    if (const auto* withID = dynamic_cast<const juce::AudioProcessorParameterWithID*> (&parameter))
        return withID->paramID;

    return parameter.getName (longestName);
}

} // namespace tarvik
