// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/ParameterText.h"
#include "strip/ParameterSnapshot.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <array>
#include <memory>
#include <span>
#include <variant>

namespace tarvik
{

/** How a snapshot field is stored and written. A choice is stored as an int, its index in the list. */
enum class ParameterFieldKind
{
    Bool = 0,
    Int = 1,
    Choice = 2,
    Float = 3,
    None = 4
};

/** How a float parameter's travel maps to its value; the numbers come from the row's range. */
enum class Travel
{
    Straight,
    Skewed,      ///< The row's centre lies at half the travel.
    Logarithmic, ///< Equal factors over equal travel.
    Fader        ///< -80 to -40 dB over an eighth, to -10 dB at half, to +10 dB at the end.
};

/** Everything there is to say of one parameter. Its default is the default of its snapshot field. */
struct ParameterRow
{
    using BoolField = ParameterSnapshot::Bool ParameterSnapshot::*;
    using IntField = ParameterSnapshot::Int ParameterSnapshot::*;
    using FloatField = ParameterSnapshot::Float ParameterSnapshot::*;

    const char* id;   ///< Stored in projects and used by hosts: never changes.
    const char* name; ///< Shown to the user.
    ParameterFieldKind kind;
    std::variant<BoolField, IntField, FloatField> field;
    float start = 0.0f; ///< Range of an int or float, in its own unit.
    float end = 1.0f;
    float step = 0.0f; ///< Grid of a float; 0 is continuous.
    Travel travel = Travel::Straight;
    float centre = 0.0f; ///< For a skewed travel.
    const char* label = "";
    const TextRule* textRule = nullptr; ///< Null: the number itself, with the decimals of the step.
    std::span<const char* const> choices = {};
};

/** Host indices of the parameters, for the few places that mean one of them. */
namespace parameterIndex
{
inline constexpr int tolChannel = 40;
inline constexpr int tolLink = 41;
inline constexpr int gainReduction = 42; ///< Only for hosts of the one format that shows it as a parameter.
} // namespace parameterIndex

inline constexpr int numParameters = 42;

/** All parameters in the host's order. */
const std::array<ParameterRow, numParameters>& parameterTable();

/** A field of one snapshot, with the way it is stored. */
struct ParameterFieldRef
{
    std::variant<std::monostate, ParameterSnapshot::Bool*, ParameterSnapshot::Int*, ParameterSnapshot::Float*> field;
    ParameterFieldKind kind = ParameterFieldKind::None;

    explicit operator bool () const noexcept { return kind != ParameterFieldKind::None; }

    /** The plain value as a number: 0 or 1, an index, or the value itself. Any thread. */
    float get() const noexcept;

    /** Stores a plain value in the field's own way: at or above a half is true, an int is rounded to the nearest. A
        value that is not finite is ignored. Any thread.
    */
    void set (float plainValue) const noexcept;
};

/** The field that holds the parameter at a host index, the gain reduction's included; kind None for any other index.
    Any thread.
*/
ParameterFieldRef fieldForParameter (ParameterSnapshot& snapshot, int index) noexcept;

/** The same for reading. */
float plainValueOf (const ParameterSnapshot& snapshot, int index) noexcept;

/** The JUCE parameter that a row of the table describes; the index must be one of the table's. Message thread. */
std::unique_ptr<juce::RangedAudioParameter> createParameter (int index);

/** The read-out that one host format takes as a parameter: a share from 0 to 1, in the category of such meters. */
std::unique_ptr<juce::RangedAudioParameter> createGainReductionParameter();

/** The ID of a parameter that has one, otherwise its name cut to 50 characters. */
juce::String parameterID (const juce::AudioProcessorParameter& parameter);

} // namespace tarvik
