// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ParameterArguments.h"

#include "plugin/ParameterTable.h"
#include "tools/ToolError.h"

#include <charconv>
#include <cmath>
#include <optional>

namespace tarvik
{

namespace
{
bool isNumber (const ParameterRow& row)
{
    return row.kind == ParameterFieldKind::Int || row.kind == ParameterFieldKind::Float;
}

/** The number that a text consists of; nothing else may stand beside it. */
std::optional<double> asNumber (const juce::String& text)
{
    const auto trimmed = text.trim().toStdString();
    const auto* first = trimmed.data();
    const auto* const last = first + trimmed.size();

    // from_chars takes no plus sign.
    if (trimmed.size() > 1 && *first == '+' && first[1] != '-')
        ++first;

    double value = 0.0;
    const auto [end, error] = std::from_chars (first, last, value);
    return error == std::errc {} && end == last && std::isfinite (value) ? std::optional (value) : std::nullopt;
}

juce::String withoutUnit (const juce::String& text, const juce::String& unit)
{
    const auto trimmed = text.trim();
    return unit.isNotEmpty() && trimmed.endsWithIgnoreCase (unit) ? trimmed.dropLastCharacters (unit.length())
                                                                  : trimmed;
}

/** How the table shows a value, without the unit. */
juce::String shownText (const ParameterRow& row, float plain)
{
    if (row.textRule != nullptr)
        return row.textRule->toText (plain);

    return decimalText (plain, decimalsOfStep (row.range.step));
}

/** One end of the range as the user counts, which is not always as the parameter does. */
double shownNumber (const ParameterRow& row, float plain)
{
    return asNumber (withoutUnit (shownText (row, plain), row.unit)).value_or (static_cast<double> (plain));
}

juce::String rangeText (const ParameterRow& row)
{
    const juce::String unit (row.unit);
    return withoutUnit (shownText (row, row.range.start), unit).trim() + " to "
           + withoutUnit (shownText (row, row.range.end), unit).trim() + (unit.isEmpty() ? "" : " " + unit);
}

juce::String valuesText (const ParameterRow& row)
{
    if (row.kind == ParameterFieldKind::Bool)
        return "on, off";

    if (row.kind == ParameterFieldKind::Choice)
        return juce::StringArray (row.choices.data(), static_cast<int> (row.choices.size())).joinIntoString (", ");

    return rangeText (row);
}

[[noreturn]] void refuse (const ParameterRow& row, const juce::String& text)
{
    throw ToolError (juce::String (row.id) + " cannot be '" + text + "', only " + valuesText (row));
}

//==============================================================================
/** The place of a choice; of a switch 0 or 1. */
float wordValue (const ParameterRow& row, const juce::String& text)
{
    static constexpr const char* switchWords[] = { "off", "on", "false", "true", "no", "yes", "0", "1" };
    const auto isSwitch = row.kind == ParameterFieldKind::Bool;
    const auto words = isSwitch ? std::span<const char* const> (switchWords) : row.choices;

    for (std::size_t i = 0; i < words.size(); ++i)
        if (text.equalsIgnoreCase (words[i]))
            return static_cast<float> (isSwitch ? i % 2 : i);

    refuse (row, text);
}

float numberValue (const ParameterRow& row, const juce::String& text)
{
    // A word for an end of the range, as a switched-off filter has.
    for (const auto plain : { row.range.start, row.range.end })
        if (text.equalsIgnoreCase (shownText (row, plain)))
            return plain;

    const auto number = asNumber (withoutUnit (text, row.unit));

    if (! number || *number < shownNumber (row, row.range.start) || *number > shownNumber (row, row.range.end))
        refuse (row, text);

    if (row.kind == ParameterFieldKind::Int && std::trunc (*number) != *number)
        refuse (row, text);

    if (row.textRule != nullptr)
        return juce::jlimit (row.range.start, row.range.end, row.textRule->fromText (juce::String (*number)));

    return static_cast<float> (*number);
}

float travel (const juce::String& argument, const juce::String& text)
{
    const auto place = asNumber (text);

    if (! place || *place < 0.0 || *place > 1.0)
        throw ToolError ("a place in a parameter's travel is from 0 to 1, not as in '" + argument + "'");

    return static_cast<float> (*place);
}

ParameterSetting parseParameterSetting (const juce::String& argument)
{
    const auto sign = argument.indexOfAnyOf ("=@");

    if (sign <= 0)
        throw ToolError ("--set needs ID=TEXT, not '" + argument + "'");

    const auto id = argument.substring (0, sign).trim();
    const auto text = argument.substring (sign + 1).trim();

    for (int index = 0; index < numParameters; ++index)
        if (const auto& row = parameterRow (index); id == row.id)
            return { index, argument[sign] == '@'
                                ? travel (argument, text)
                                : createParameter (index)->convertTo0to1 (isNumber (row) ? numberValue (row, text)
                                                                                         : wordValue (row, text)) };

    throw ToolError ("there is no parameter '" + id + "' (see --list)");
}
} // namespace

//==============================================================================
std::vector<ParameterSetting> parseParameterSettings (const juce::StringArray& arguments)
{
    std::vector<ParameterSetting> settings;

    for (const auto& argument : arguments)
        settings.push_back (parseParameterSetting (argument));

    return settings;
}

int programNamed (const juce::StringArray& names, const juce::String& nameOrNumber)
{
    for (const auto ignoreCase : { false, true })
        if (const auto index = names.indexOf (nameOrNumber.trim(), ignoreCase); index >= 0)
            return index;

    for (int i = 0; i < names.size(); ++i)
        if (nameOrNumber.trim() == juce::String (i))
            return i;

    throw ToolError ("there is no program '" + nameOrNumber + "' (see --list)");
}

juce::String describeValues (int index) { return valuesText (parameterRow (index)); }

juce::String withUnit (int index, const juce::String& shown)
{
    return asNumber (shown) ? (shown + " " + parameterRow (index).unit).trim() : shown;
}

} // namespace tarvik
