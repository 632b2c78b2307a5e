// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/ParameterTable.h"

#include <string_view>

namespace tarvik
{

/** How the rows below are written down: lists of choices, and one function per kind of parameter. */
namespace parameterRowParts
{
using Kind = ParameterFieldKind;
using Snapshot = ParameterSnapshot;

inline constexpr const char* highFreqs[] = { "6 kHz", "10 kHz", "14 kHz" };
inline constexpr const char* highGains[] = { "-10 dB", "-8 dB", "-6 dB", "-4 dB", "-2 dB", "0 dB",
                                             "2 dB",   "4 dB",  "6 dB",  "8 dB",  "10 dB" };
inline constexpr const char* midFreqs[] = { "700 Hz",  "1000 Hz", "1400 Hz", "2000 Hz",
                                            "2800 Hz", "3500 Hz", "4500 Hz", "6000 Hz" };
inline constexpr const char* midModes[] = { "Cut", "Boost" };
inline constexpr const char* lowFreqs[] = { "300 Hz", "200 Hz", "100 Hz", "60 Hz",  "0 dB",
                                            "-3 dB",  "-6 dB",  "-9 dB",  "-12 dB", "-15 dB" };
inline constexpr const char* highPasses[] = { "OFF", "40 Hz", "80 Hz" };
inline constexpr const char* compRatios[] = { "1:1", "2:1", "3:1", "5:1", "10:1", "20:1" };
inline constexpr const char* attacks[] = { "Slow", "Medium", "Fast" };
inline constexpr const char* compReleases[] = { "25 ms",  "50 ms", "100 ms", "200 ms", "400 ms",
                                                "800 ms", "1.6 s", "3.2 s",  "AUTO" };
inline constexpr const char* expModes[] = { "Expander", "Off", "Gate" };

constexpr ParameterRow toggle (const char* id, const char* name, ParameterRow::BoolField field)
{
    return { .id = id, .name = name, .kind = Kind::Bool, .field = field };
}

constexpr ParameterRow choice (const char* id, const char* name, ParameterRow::IntField field,
                               std::span<const char* const> choices)
{
    return { .id = id,
             .name = name,
             .kind = Kind::Choice,
             .field = field,
             .end = static_cast<float> (choices.size() - 1),
             .choices = choices };
}

constexpr ParameterRow number (const char* id, const char* name, ParameterRow::FloatField field, float start, float end,
                               float step, const char* label = "", const TextRule* textRule = nullptr,
                               Travel travel = Travel::Straight, float centre = 0.0f)
{
    return { .id = id,
             .name = name,
             .kind = Kind::Float,
             .field = field,
             .start = start,
             .end = end,
             .step = step,
             .travel = travel,
             .centre = centre,
             .label = label,
             .textRule = textRule };
}

constexpr ParameterRow whole (const char* id, const char* name, ParameterRow::IntField field, float start, float end)
{
    return { .id = id, .name = name, .kind = Kind::Int, .field = field, .start = start, .end = end, .step = 1.0f };
}
} // namespace parameterRowParts

namespace parameterRowData
{
using namespace parameterRowParts;

// clang-format off
inline constexpr std::array<ParameterRow, numParameters> parameterRows
{
    number ("thd",              "THD",                      &Snapshot::thd,          -30.0f,  30.0f, 0.01f, "dB"),
    number ("gain",             "Gain",                     &Snapshot::gain,         -12.0f,  48.0f, 0.01f, "dB"),
    toggle ("pad",              "Pad",                      &Snapshot::pad),
    toggle ("unity",            "Unity",                    &Snapshot::unity),
    choice ("highFreq",         "High Freq",                &Snapshot::highFreq,     highFreqs),
    choice ("highGain",         "High Gain",                &Snapshot::highGain,     highGains),
    choice ("midFreq",          "Mid Freq",                 &Snapshot::midFreq,      midFreqs),
    number ("midGain",          "Mid Gain",                 &Snapshot::midGain,        0.0f,   1.0f, 0.01f, "", &textRules::midGain),
    choice ("midMode",          "Mid Mode",                 &Snapshot::midMode,      midModes),
    choice ("lowFreq",          "Low Freq",                 &Snapshot::lowFreq,      lowFreqs),
    number ("lowGain",          "Low Gain",                 &Snapshot::lowGain,        0.0f,   1.0f, 0.01f, "", &textRules::lowGain),
    toggle ("equalizer",        "equalizer",                &Snapshot::equalizer),
    toggle ("eqPost",           "EQ Post",                  &Snapshot::eqPost),
    choice ("highPass",         "High Pass",                &Snapshot::highPass,     highPasses),
    number ("compMix",          "Comp Mix",                 &Snapshot::compMix,        0.0f,   1.0f, 0.0f,  "", &textRules::percent),
    number ("compHPF",          "Comp High Pass Filter",    &Snapshot::compHPF,       20.0f, 400.0f, 0.01f, "", &textRules::highPassHz,
                                                                                      Travel::Skewed, 90.0f),
    number ("compThreshold",    "Comp Threshold",           &Snapshot::compThreshold, -20.0f,  0.0f, 0.01f, "dB"),
    choice ("compRatio",        "Comp Ratio",               &Snapshot::compRatio,    compRatios),
    choice ("compAttack",       "Comp Attack",              &Snapshot::compAttack,   attacks),
    choice ("compRelease",      "Comp Release",             &Snapshot::compRelease,  compReleases),
    number ("compInput",        "Comp Input",               &Snapshot::compInput,      0.0f,   5.0f, 0.01f),
    number ("compOutput",       "Comp Output",              &Snapshot::compOutput,     0.0f,   5.0f, 0.01f),
    toggle ("compLimit",        "Comp Limit",               &Snapshot::compLimit),
    toggle ("compIn",           "Comp In",                  &Snapshot::compIn),
    toggle ("compNiveau",       "Comp Niveau",              &Snapshot::compNiveau),
    toggle ("compNuke",         "Comp Smash",               &Snapshot::compNuke),
    toggle ("compExtSideChain", "Comp External Side Chain", &Snapshot::compExtSideChain),
    number ("expThreshold",     "Exp Threshold",            &Snapshot::expThreshold,  -40.0f, 10.0f, 0.01f, "dB"),
    number ("expRange",         "Exp Range",                &Snapshot::expRange,      -20.0f,  0.0f, 0.01f, "dB"),
    choice ("expAttack",        "Exp Attack",               &Snapshot::expAttack,    attacks),
    number ("expRelease",       "Exp Release",              &Snapshot::expRelease,     0.025f, 1.6f, 0.001f, "s", nullptr,
                                                                                      Travel::Logarithmic),
    choice ("expMode",          "Exp Mode",                 &Snapshot::expMode,      expModes),
    toggle ("expHold",          "Exp Hold",                 &Snapshot::expHold),
    toggle ("expInverted",      "Exp Inverted",             &Snapshot::expInverted),
    toggle ("expExtSideChain",  "Exp External Side Chain",  &Snapshot::expExtSideChain),
    toggle ("mute",             "Mute",                     &Snapshot::mute),
    toggle ("phase",            "Phase",                    &Snapshot::phase),
    number ("level",            "Level",                    &Snapshot::level,        -80.0f,  10.0f, 0.01f, "dB", nullptr,
                                                                                      Travel::Fader),
    number ("inLevel",          "Input Level",              &Snapshot::inLevel,      -10.0f,  10.0f, 0.01f, "dB"),
    number ("outLevel",         "Output Level",             &Snapshot::outLevel,     -10.0f,  10.0f, 0.01f, "dB"),
    whole  ("TolChannel",       "TOL Channel",              &Snapshot::tolChannel,     1.0f,  32.0f),
    toggle ("TolLink",          "TOL Link",                 &Snapshot::tolLink)
};
// clang-format on

inline constexpr ParameterRow gainReductionRow =
    number ("gainReduction", "Gain Reduction", &Snapshot::gainReductionDb, 0.0f, 1.0f, 0.0f);

static_assert (std::string_view (parameterRows[parameterIndex::tolChannel].id) == "TolChannel");
static_assert (std::string_view (parameterRows[parameterIndex::tolLink].id) == "TolLink");
} // namespace parameterRowData

using parameterRowData::gainReductionRow;
using parameterRowData::parameterRows;

} // namespace tarvik
