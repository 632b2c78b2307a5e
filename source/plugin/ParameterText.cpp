// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/ParameterText.h"

#include <cmath>

namespace tarvik
{

namespace
{
constexpr float lowestDb = -100.0f;

float dbFromGainFloat (float gain) { return gain > 0.0f ? std::max (lowestDb, 20.0f * std::log10 (gain)) : lowestDb; }

float gainFromDbFloat (float db) { return db > lowestDb ? std::pow (10.0f, db * 0.05f) : 0.0f; }

float numberBefore (const juce::String& text, const char* unit)
{
    return text.replace (unit, "", true).trim().getFloatValue();
}

/** The gain behind the equaliser, about (5.1 + 25) / 5.1, as the panel's texts have it: with it the two potentiometers
    read 0 dB at rest.
*/
constexpr float makeupGain = 5.901968f;

namespace midPot
{
// In units of 1.122 kilohms: what is left of the 25 kilohm track, over the output's 5.1 kilohms.
constexpr float shunt = 4.54545f;
constexpr float track = 22.281649f;
constexpr float trackBack = 22.28165f;
constexpr float shuntTimesMakeup = 26.8271f;

juce::String toText (float x)
{
    return decimalText (dbFromGainFloat (shunt / ((1.0f - x) * track + shunt) * makeupGain), 2);
}

float fromText (const juce::String& text)
{
    const auto gain = gainFromDbFloat (numberBefore (text, "dB"));
    return 1.0f - (shuntTimesMakeup / gain - shunt) / trackBack;
}
} // namespace midPot

namespace lowPot
{
constexpr float linearEnd = 0.2f;
constexpr float linearEndDb = 3.3427851f;
constexpr float dbPerTurn = 16.713926f;
// A tenth of the 50 kilohm track, half of that as load, and the track times the makeup gain.
constexpr float track = 5000.0f;
constexpr float load = 2500.0f;
constexpr float loadedTrack = 29509.8f;

juce::String toText (float x)
{
    if (x < linearEnd)
        return decimalText (x * dbPerTurn, 2);

    const auto rest = 1.0f - x;
    const auto gain = (rest * track + load) / (rest * loadedTrack + load);
    return decimalText (dbFromGainFloat (gain * makeupGain), 2);
}

float fromText (const juce::String& text)
{
    const auto db = numberBefore (text, "dB");

    if (db <= linearEndDb)
        return db / dbPerTurn;

    constexpr float trackShare = 0.1f;
    constexpr float loadedTrackShare = 0.590196f;
    constexpr float wholeTrack = 50000.0f;

    const auto h = gainFromDbFloat (db) / makeupGain;
    return 1.0f - (h * load - load) / ((trackShare - h * loadedTrackShare) * wholeTrack);
}
} // namespace lowPot

namespace mix
{
constexpr float perCent = 100.0f;

juce::String toText (float value) { return juce::String (std::floor (value * perCent + 0.5f), 0) + " %"; }

float fromText (const juce::String& text) { return text.trim().getFloatValue() / perCent; }
} // namespace mix

namespace highPass
{
constexpr float offHz = 20.0f;
constexpr float offBelowHz = 20.01f;
constexpr const char* offText = "Off";

juce::String toText (float hz) { return hz < offBelowHz ? juce::String (offText) : decimalText (hz, 1) + " Hz"; }

float fromText (const juce::String& text)
{
    return text.containsIgnoreCase (offText) ? offHz : numberBefore (text, "Hz");
}
} // namespace highPass
} // namespace

const TextRule textRules::midGain { midPot::toText, midPot::fromText };
const TextRule textRules::lowGain { lowPot::toText, lowPot::fromText };
const TextRule textRules::percent { mix::toText, mix::fromText, true };
const TextRule textRules::highPassHz { highPass::toText, highPass::fromText, true };

juce::String decimalText (float value, int decimals)
{
    const juce::String text (value, decimals);
    return text.startsWithChar ('-') && ! text.containsAnyOf ("123456789") ? text.substring (1) : text;
}

int decimalsOfStep (float step)
{
    constexpr int most = 7;

    if (step <= 0.0f)
        return most;

    int decimals = 0;

    for (auto scaled = static_cast<double> (step); decimals < most && std::abs (scaled - std::round (scaled)) > 1e-4;
         scaled *= 10.0)
        ++decimals;

    return decimals;
}

} // namespace tarvik
