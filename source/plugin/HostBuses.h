// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace tarvik
{

/** Which host it is that runs from this file. JUCE goes by the file's name, which it cannot for Ardour's interpreter of
    Lua scripts, a program named luasession.
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

/** Whether the module offers a main bus of this width to that host: mono or stereo to each, but to Ardour stereo alone.

    Ardour 7.3 (Debian 12) asks a VST3 module for as many channels as it has pins in use: on a mono track with strict
    pins, which is its default, for stereo in and mono out, or with a side chain for mono in and out beside a stereo
    side chain. It takes no notice of the refusal, nor of the arrangement that the module offers instead, and hands over
    two channels on every bus. A module that has become mono by then finds buffers of another width than agreed, which
    JUCE's wrapper answers with silence. One that knows no mono stays stereo and sounds on every track: Ardour feeds
    both inputs from the one channel of a mono track and takes as many outputs as it has pins for.

    Any thread but the audio thread.
*/
inline bool isMainBusOffered (const juce::AudioChannelSet& width, juce::PluginHostType::HostType host)
{
    return width == juce::AudioChannelSet::stereo()
           || (width == juce::AudioChannelSet::mono() && host != juce::PluginHostType::Ardour);
}

} // namespace tarvik
