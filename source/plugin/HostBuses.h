// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace tarvik
{

/** The host that runs from this file. JUCE goes by the file's name, and does not know that of Ardour's script
    interpreter.
*/
inline juce::PluginHostType::HostType hostTypeOf (const juce::File& program,
                                                  juce::PluginHostType::HostType judgedByJuce)
{
    return program.getFileName() == "luasession" ? juce::PluginHostType::Ardour : judgedByJuce;
}

/** The host that this process is. Any thread but the audio thread. */
inline juce::PluginHostType::HostType hostInUse()
{
    return hostTypeOf (juce::File (juce::PluginHostType::getHostPath()), juce::PluginHostType().type);
}

/** Whether the VST3 module offers a main bus of this width to that host: mono or stereo, but to Ardour stereo only. Any
    thread but the audio thread.

    Ardour 7.3 (Debian 12) asks a VST3 module on a mono track for unequal widths, ignores the refusal, and passes two
    channels on every bus; a module that is mono by then gets silence from JUCE's wrapper. One that is always stereo
    sounds on every track: Ardour feeds both inputs from a mono track's channel and takes as many outputs as it has pins
    for.
*/
inline bool isMainBusOffered (const juce::AudioChannelSet& width, juce::PluginHostType::HostType host)
{
    return width == juce::AudioChannelSet::stereo()
           || (width == juce::AudioChannelSet::mono() && host != juce::PluginHostType::Ardour);
}

} // namespace tarvik
