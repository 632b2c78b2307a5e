// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/ParameterText.h"
#include "strip/ParameterSnapshot.h"

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

/** A number's range in its own unit. */
struct ParameterRange
{
    float start = 0.0f, end = 1.0f;
    float step = 0.0f; ///< Grid; 0 is continuous.
};

/** Everything there is to say of one parameter. Its default is the default of its snapshot field. */
struct ParameterRow
{
    using BoolField = ParameterSnapshot::Bool ParameterSnapshot::*;
    using IntField = ParameterSnapshot::Int ParameterSnapshot::*;
    using FloatField = ParameterSnapshot::Float ParameterSnapshot::*;

    const char* id;   ///< Stored in projects and used by hosts: never changes.
    const char* name; ///< Shown to the user.
    const char* help; ///< What it does: for the tooltip and for assistive technology.
    ParameterFieldKind kind;
    std::variant<BoolField, IntField, FloatField> field;
    ParameterRange range = {};
    std::span<const char* const> choices = {};
    const char* unit = "";  ///< Of the number that the user reads.
    const char* scale = ""; ///< The texts along a number's printed scale, separated by blanks; empty without a scale.
    const TextRule* textRule = nullptr; ///< Null: the number itself, with the decimals of the step.
    Travel travel = Travel::Straight;
    float centre = 0.0f; ///< For a skewed travel.

    /** The unit that hosts add to the parameter's text: none where a rule writes the text. */
    constexpr const char* label() const { return textRule == nullptr ? unit : ""; }

    /** The unit that the parameter's text lacks. Any thread. */
    const char* unitAfterText() const { return textRule != nullptr && textRule->writesUnit ? "" : unit; }
};

} // namespace tarvik
