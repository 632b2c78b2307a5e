// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ControlHelp.h"

namespace tarvik
{

namespace
{
struct Help
{
    const char* parameterID;
    const char* text;
};

constexpr Help helps[] = {
    { "thd", "Amount of the console's harmonics; above 0 dB an extra, asymmetric drive" },
    { "gain", "Gain of the input amplifier" },
    { "pad", "Takes 20 dB off in front of everything" },
    { "unity", "Takes the gain back behind the saturation, so that drive changes the colour and not the level" },
    { "highFreq", "Where the high section works" },
    { "highGain", "Cut or boost of the highs, in steps of 2 dB" },
    { "midFreq", "Where the mid section resonates" },
    { "midGain", "Depth of the mid section" },
    { "midMode", "Whether the mid section boosts or cuts: pressed, it boosts" },
    { "lowFreq", "Four frequencies of a low boost, or six depths of a low cut" },
    { "lowGain", "Depth of the low boost" },
    { "equalizer", "Puts the equaliser in circuit" },
    { "eqPost", "Puts the equaliser behind the dynamics" },
    { "highPass", "High pass filter in front of the equaliser" },
    { "compMix", "Share of the compressed signal" },
    { "compHPF", "High pass filter in the compressor's detector" },
    { "compThreshold", "Level at which compression begins" },
    { "compRatio", "How steep the compression is" },
    { "compAttack", "How fast the compressor takes hold" },
    { "compRelease", "How fast the compressor lets go; AUTO follows the programme" },
    { "compInput", "Drive into the compressor" },
    { "compOutput", "Level out of the compressor" },
    { "compLimit", "Adds the limiter" },
    { "compIn", "Puts the dynamics in circuit" },
    { "compNiveau", "Makes the detector less sensitive to lows and more to highs" },
    { "compNuke", "20 dB more drive, 6 dB less output" },
    { "expThreshold", "Level below which the expander closes" },
    { "expRange", "How far the expander closes" },
    { "expAttack", "How fast the expander closes" },
    { "expRelease", "How slowly the expander opens again" },
    { "expMode", "Expander, off, or gate" },
    { "expHold", "Waits before it closes" },
    { "expInverted", "Turns it round: loud passages are reduced" },
    { "mute", "Turns the channel off" },
    { "phase", "Turns the polarity" },
    { "level", "Level of the channel" },
    { "inLevel", "Level into the whole strip" },
    { "outLevel", "Level out of the whole strip" },
    { "TolChannel", "Which of the console's 32 channels this is: click to type a number" },
    { "TolLink", "Puts both sides of a stereo track on the same console channel" },
};
} // namespace

juce::String helpFor (const juce::String& parameterID)
{
    for (const auto& help : helps)
        if (parameterID == help.parameterID)
            return help.text;

    return {};
}

} // namespace tarvik
