// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/ParameterText.h"

#include "dsp/Decibels.h"

#include <cmath>

namespace tarvik
{

namespace
{
// In single precision, as the texts have always been calculated.
constexpr auto lowestDb = static_cast<float> (silenceDb);

float dbOf (float gain) { return gain > 0.0f ? std::max (lowestDb, 20.0f * std::log10 (gain)) : lowestDb; }

float gainOf (float db) { return db > lowestDb ? std::pow (10.0f, db * 0.05f) : 0.0f; }

float numberBefore (const juce::String& text, const char* unit)
{
    return text.replace (unit, "", true).trim().getFloatValue();
}

/** Of the equaliser: nominally (5.1 + 25) / 5.1. With these digits both potentiometers read 0 dB at their beginning. */
constexpr float makeupGain = 5.901968f;

namespace midPot
{
// What is left of the 25 kilohm track, over the output's 5.1 kilohms: in units of 1.122 kilohms, which cancel. The last
// digits are fitted to the texts that projects and users know.
constexpr float shunt = 4.54545f;
constexpr float track = 22.281649f, trackBack = 22.28165f;
constexpr float shuntTimesMakeup = 26.8271f;

juce::String toText (float x) { return decimalText (dbOf (shunt / ((1.0f - x) * track + shunt) * makeupGain), 2); }

float fromText (const juce::String& text)
{
    const auto gain = gainOf (numberBefore (text, "dB"));
    return 1.0f - (shuntTimesMakeup / gain - shunt) / trackBack;
}
} // namespace midPot

namespace lowPot
{
// A straight line up to a fifth of the travel, where it meets the curve of the circuit.
constexpr float linearEnd = 0.2f, linearEndDb = 3.3427851f;
constexpr float dbPerTurn = 16.713926f; // linearEndDb / linearEnd
// A tenth of the 50 kilohm track, half of that as load, and the track times the make-up gain.
constexpr float track = 5000.0f, load = 2500.0f, loadedTrack = 29509.8f;

juce::String toText (float x)
{
    if (x < linearEnd)
        return decimalText (x * dbPerTurn, 2);

    const auto rest = 1.0f - x;
    const auto gain = (rest * track + load) / (rest * loadedTrack + load);
    return decimalText (dbOf (gain * makeupGain), 2);
}

float fromText (const juce::String& text)
{
    const auto db = numberBefore (text, "dB");

    if (db <= linearEndDb)
        return db / dbPerTurn;

    constexpr float highestDb = 100.0f; // any above the range that is still finite as a gain
    constexpr float trackShare = 0.1f, loadedTrackShare = 0.590196f, wholeTrack = 50000.0f;
    const auto h = gainOf (std::min (db, highestDb)) / makeupGain;
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
