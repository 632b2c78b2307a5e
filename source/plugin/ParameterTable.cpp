// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/ParameterTable.h"

#include <cmath>

namespace tarvik
{

namespace
{
using Kind = ParameterFieldKind;
using Snapshot = ParameterSnapshot;

constexpr const char* highFreqs[] = { "6 kHz", "10 kHz", "14 kHz" };
constexpr const char* highGains[] = { "-10 dB", "-8 dB", "-6 dB", "-4 dB", "-2 dB", "0 dB",
                                      "2 dB",   "4 dB",  "6 dB",  "8 dB",  "10 dB" };
constexpr const char* midFreqs[] = { "700 Hz",  "1000 Hz", "1400 Hz", "2000 Hz",
                                     "2800 Hz", "3500 Hz", "4500 Hz", "6000 Hz" };
constexpr const char* midModes[] = { "Cut", "Boost" };
constexpr const char* lowFreqs[] = { "300 Hz", "200 Hz", "100 Hz", "60 Hz",  "0 dB",
                                     "-3 dB",  "-6 dB",  "-9 dB",  "-12 dB", "-15 dB" };
constexpr const char* highPasses[] = { "OFF", "40 Hz", "80 Hz" };
constexpr const char* compRatios[] = { "1:1", "2:1", "3:1", "5:1", "10:1", "20:1" };
constexpr const char* attacks[] = { "Slow", "Medium", "Fast" };
constexpr const char* compReleases[] = { "25 ms",  "50 ms", "100 ms", "200 ms", "400 ms",
                                         "800 ms", "1.6 s", "3.2 s",  "AUTO" };
constexpr const char* expModes[] = { "Expander", "Off", "Gate" };

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

// clang-format off
constexpr std::array<ParameterRow, numParameters> table
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

constexpr ParameterRow gainReductionRow =
    number ("gainReduction", "Gain Reduction", &Snapshot::gainReductionDb, 0.0f, 1.0f, 0.0f);

const ParameterRow* rowAt (int index) noexcept
{
    if (juce::isPositiveAndBelow (index, numParameters))
        return &table[static_cast<std::size_t> (index)];

    return index == parameterIndex::gainReduction ? &gainReductionRow : nullptr;
}

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
    // Rounding at the ends of the travel must not leave the range.
    juce::NormalisableRange<float> range (
        row.start, row.end,
        [fromTravel] (float start, float end, float x)
        { return juce::jlimit (start, end, fromTravel (start, end, x)); },
        [toTravel] (float start, float end, float value)
        { return juce::jlimit (0.0f, 1.0f, toTravel (start, end, value)); });
    range.interval = row.step;
    return range;
}

juce::NormalisableRange<float> rangeOf (const ParameterRow& row)
{
    switch (row.travel)
    {
        case Travel::Skewed:
        {
            juce::NormalisableRange<float> range (row.start, row.end, row.step);
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

    return { row.start, row.end, row.step };
}

juce::AudioParameterFloatAttributes floatAttributes (const ParameterRow& row)
{
    const auto attributes = juce::AudioParameterFloatAttributes().withLabel (row.label);

    if (row.textRule == nullptr)
        return attributes.withStringFromValueFunction (
            [decimals = decimalsOfStep (row.step)] (float value, int length)
            {
                const auto text = decimalText (value, decimals);
                return length > 0 ? text.substring (0, length) : text;
            });

    return attributes
        .withStringFromValueFunction ([toText = row.textRule->toText] (float value, int) { return toText (value); })
        .withValueFromStringFunction ([fromText = row.textRule->fromText] (const juce::String& text)
                                      { return fromText (text); });
}

const Snapshot& defaultSnapshot()
{
    static const Snapshot snapshot;
    return snapshot;
}
} // namespace

//==============================================================================
const std::array<ParameterRow, numParameters>& parameterTable() { return table; }

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
    const auto* const row = rowAt (index);

    if (row == nullptr)
        return {};

    ParameterFieldRef ref{ {}, row->kind };
    std::visit ([&] (auto member) { ref.field = &(snapshot.*member); }, row->field);
    return ref;
}

float plainValueOf (const ParameterSnapshot& snapshot, int index) noexcept
{
    const auto* const row = rowAt (index);

    if (row == nullptr)
        return 0.0f;

    return std::visit ([&] (auto member) { return static_cast<float> ((snapshot.*member).get()); }, row->field);
}

std::unique_ptr<juce::RangedAudioParameter> createParameter (int index)
{
    const auto& row = table[static_cast<std::size_t> (index)];
    const juce::ParameterID id{ row.id, 1 };
    const auto plainDefault = plainValueOf (defaultSnapshot(), index);

    switch (row.kind)
    {
        case Kind::Bool:
            return std::make_unique<juce::AudioParameterBool> (id, row.name, plainDefault >= 0.5f);

        case Kind::Int:
            return std::make_unique<juce::AudioParameterInt> (id, row.name, juce::roundToInt (row.start),
                                                              juce::roundToInt (row.end),
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
    const auto& row = gainReductionRow;
    return std::make_unique<juce::AudioParameterFloat> (
        juce::ParameterID{ row.id, 1 }, row.name, rangeOf (row), 0.0f,
        juce::AudioParameterFloatAttributes().withCategory (
            juce::AudioProcessorParameter::compressorLimiterGainReductionMeter));
}

juce::String parameterID (const juce::AudioProcessorParameter& parameter)
{
    constexpr int longestName = 50;

    if (const auto* withID = dynamic_cast<const juce::AudioProcessorParameterWithID*> (&parameter))
        return withID->paramID;

    return parameter.getName (longestName);
}

} // namespace tarvik
