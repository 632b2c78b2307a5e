// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/ComponentTable.h"
#include "plugin/ParameterRow.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tarvik
{

/** How the rows below are written down: lists of choices, and one function per kind of parameter. */
namespace parameterRowParts
{
using Kind = ParameterFieldKind;
using Row = ParameterRow;
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

constexpr Row toggle (const char* id, const char* name, Row::BoolField field, const char* help)
{
    return { .id = id, .name = name, .help = help, .kind = Kind::Bool, .field = field };
}

constexpr Row choice (const char* id, const char* name, Row::IntField field, std::span<const char* const> choices,
                      const char* help)
{
    return { .id = id,
             .name = name,
             .help = help,
             .kind = Kind::Choice,
             .field = field,
             .range = { .end = static_cast<float> (choices.size() - 1) },
             .choices = choices };
}

constexpr Row whole (const char* id, const char* name, Row::IntField field, ParameterRange range, const char* help)
{
    return { .id = id, .name = name, .help = help, .kind = Kind::Int, .field = field, .range = range };
}

constexpr Row number (const char* id, const char* name, Row::FloatField field, ParameterRange range, const char* unit,
                      const char* scale, const char* help, const TextRule* textRule = nullptr,
                      Travel travel = Travel::Straight, float centre = 0.0f)
{
    return { .id = id,
             .name = name,
             .help = help,
             .kind = Kind::Float,
             .field = field,
             .range = range,
             .unit = unit,
             .scale = scale,
             .textRule = textRule,
             .travel = travel,
             .centre = centre };
}
} // namespace parameterRowParts

namespace parameterRowData
{
using namespace parameterRowParts;

/** All parameters in the host's order, and after them the read-out that one host format takes as a parameter. */
// clang-format off
inline constexpr auto rowsAndReadOut = std::to_array<ParameterRow> ({
    number ("thd", "THD", &Snapshot::thd, { -30.0f, 30.0f, 0.01f }, "dB", "-30 -20 -10 0 10 20 30",
            "Amount of the console's harmonics; above 0 dB an extra, asymmetric drive"),
    number ("gain", "Gain", &Snapshot::gain, { -12.0f, 48.0f, 0.01f }, "dB", "-12 -6 0 6 12 18 24 30 36 42 48",
            "Gain of the input amplifier"),
    toggle ("pad", "Pad", &Snapshot::pad, "Takes 20 dB off in front of everything"),
    toggle ("unity", "Unity", &Snapshot::unity,
            "Takes the gain back after the saturation, so that drive changes the colour and not the level"),
    choice ("highFreq", "High Freq", &Snapshot::highFreq, highFreqs, "Where the high section works"),
    choice ("highGain", "High Gain", &Snapshot::highGain, highGains, "Cut or boost of the highs, in steps of 2 dB"),
    choice ("midFreq", "Mid Freq", &Snapshot::midFreq, midFreqs, "Where the mid section resonates"),
    number ("midGain", "Mid Gain", &Snapshot::midGain, { 0.0f, 1.0f, 0.01f }, "dB", "0 3 6 9 12 15",
            "Depth of the mid section", &textRules::midGain),
    choice ("midMode", "Mid Mode", &Snapshot::midMode, midModes,
            "Whether the mid section boosts or cuts: pressed, it boosts"),
    choice ("lowFreq", "Low Freq", &Snapshot::lowFreq, lowFreqs,
            "Four frequencies of a low boost, flat, or five depths of a low cut"),
    number ("lowGain", "Low Gain", &Snapshot::lowGain, { 0.0f, 1.0f, 0.01f }, "dB", "0 3 6 9 12 15",
            "Depth of the low boost", &textRules::lowGain),
    toggle ("equalizer", "equalizer", &Snapshot::equalizer, "Puts the equaliser in circuit"),
    toggle ("eqPost", "EQ Post", &Snapshot::eqPost, "Puts the equaliser after the dynamics"),
    choice ("highPass", "High Pass", &Snapshot::highPass, highPasses, "High pass filter in front of the equaliser"),
    number ("compMix", "Comp Mix", &Snapshot::compMix, { 0.0f, 1.0f, 0.0f }, "%", "0 20 40 60 80 100",
            "Share of the compressed signal", &textRules::percent),
    number ("compHPF", "Comp High Pass Filter", &Snapshot::compHPF, { 20.0f, 400.0f, 0.01f }, "Hz",
            "Off 25 50 100 200 400", "High pass filter in the compressor's detector",
            &textRules::highPassHz, Travel::Skewed, 90.0f),
    number ("compThreshold", "Comp Threshold", &Snapshot::compThreshold, { -20.0f, 0.0f, 0.01f }, "dB",
            "-20 -16 -12 -8 -4 0", "Level at which compression begins"),
    choice ("compRatio", "Comp Ratio", &Snapshot::compRatio, compRatios, "How steep the compression is"),
    choice ("compAttack", "Comp Attack", &Snapshot::compAttack, attacks, "How fast the compressor takes hold"),
    choice ("compRelease", "Comp Release", &Snapshot::compRelease, compReleases,
            "How fast the compressor lets go; AUTO follows the programme"),
    number ("compInput", "Comp Input", &Snapshot::compInput, { 0.0f, 5.0f, 0.01f }, "", "0 1 2 3 4 5",
            "Drive into the compressor"),
    number ("compOutput", "Comp Output", &Snapshot::compOutput, { 0.0f, 5.0f, 0.01f }, "", "0 1 2 3 4 5",
            "Level out of the compressor"),
    toggle ("compLimit", "Comp Limit", &Snapshot::compLimit, "Adds the limiter"),
    toggle ("compIn", "Comp In", &Snapshot::compIn, "Puts the dynamics in circuit"),
    toggle ("compNiveau", "Comp Niveau", &Snapshot::compNiveau,
            "Makes the detector less sensitive to lows and more to highs"),
    toggle ("compNuke", "Comp Smash", &Snapshot::compNuke, "20 dB more drive, 6 dB less output"),
    toggle ("compExtSideChain", "Comp External Side Chain", &Snapshot::compExtSideChain,
            "Lets the side chain drive the compressor's detector"),
    number ("expThreshold", "Exp Threshold", &Snapshot::expThreshold, { -40.0f, 10.0f, 0.01f }, "dB",
            "-40 -30 -20 -10 0 10", "Level below which the expander closes"),
    number ("expRange", "Exp Range", &Snapshot::expRange, { -20.0f, 0.0f, 0.01f }, "dB", "-20 -16 -12 -8 -4 0",
            "How far the expander closes"),
    choice ("expAttack", "Exp Attack", &Snapshot::expAttack, attacks, "How fast the expander closes"),
    number ("expRelease", "Exp Release", &Snapshot::expRelease, { 0.025f, 1.6f, 0.001f }, "s",
            "0.025 0.05 0.1 0.2 0.4 0.8 1.6", "How slowly the expander opens again", nullptr, Travel::Logarithmic),
    choice ("expMode", "Exp Mode", &Snapshot::expMode, expModes, "Expander, off, or gate"),
    toggle ("expHold", "Exp Hold", &Snapshot::expHold, "Waits before it closes"),
    toggle ("expInverted", "Exp Inverted", &Snapshot::expInverted, "Turns it round: loud passages are reduced"),
    toggle ("expExtSideChain", "Exp External Side Chain", &Snapshot::expExtSideChain,
            "Lets the side chain drive the expander's detector"),
    toggle ("mute", "Mute", &Snapshot::mute, "Turns the channel off"),
    toggle ("phase", "Phase", &Snapshot::phase, "Turns the polarity"),
    number ("level", "Level", &Snapshot::level, { -80.0f, 10.0f, 0.01f }, "dB",
            "-80 -60 -50 -40 -30 -20 -15 -10 -5 0 5 10", "Level of the channel", nullptr, Travel::Fader),
    number ("inLevel", "Input Level", &Snapshot::inLevel, { -10.0f, 10.0f, 0.01f }, "dB", "",
            "Level into the whole strip"),
    number ("outLevel", "Output Level", &Snapshot::outLevel, { -10.0f, 10.0f, 0.01f }, "dB", "",
            "Level out of the whole strip"),
    whole  ("TolChannel", "TOL Channel", &Snapshot::tolChannel,
            { 1.0f, static_cast<float> (ComponentTable::numChannels), 1.0f },
            "Which of the console's 32 channels this is: click to type a number"),
    toggle ("TolLink", "TOL Link", &Snapshot::tolLink,
            "Puts both sides of a stereo track on the same console channel"),

    number ("gainReduction", "Gain Reduction", &Snapshot::gainReductionDb, {}, "", "",
            "By how much the compressor turns down, as a share of the level"),
});
// clang-format on

static_assert (std::ranges::all_of (rowsAndReadOut,
                                    [] (const auto& row) { return ! std::string_view (row.help).empty(); }),
               "a parameter without help");
} // namespace parameterRowData

/** The host's parameters, in the host's order. */
inline constexpr int numParameters = static_cast<int> (parameterRowData::rowsAndReadOut.size()) - 1;
inline constexpr std::span parameterRows { parameterRowData::rowsAndReadOut.data(),
                                           static_cast<std::size_t> (numParameters) };

/** The row at a host index, the gain reduction's included. */
constexpr const ParameterRow& parameterRow (int index)
{
    return parameterRowData::rowsAndReadOut[static_cast<std::size_t> (index)];
}

/** The index of what stands for no parameter. */
inline constexpr int noParameter = -1;

/** The host's index of a parameter. An ID that no parameter has does not compile. */
consteval int parameterNamed (std::string_view id)
{
    for (int index = 0; index < numParameters; ++index)
        if (id == parameterRow (index).id)
            return index;

    throw "no such parameter";
}

/** Host indices of the few parameters that code names. */
namespace parameterIndex
{
inline constexpr int tolChannel = parameterNamed ("TolChannel");
inline constexpr int tolLink = parameterNamed ("TolLink");
inline constexpr int gainReduction = numParameters; ///< Only for hosts of the one format that shows it as a parameter.
} // namespace parameterIndex

} // namespace tarvik
