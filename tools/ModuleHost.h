// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace tarvik
{

class IStripReadOuts;

/** The built VST3 module, loaded and driven as an offline host does. Everything happens on the thread that makes the
    object, which must be JUCE's message thread. Steps in order: layout, state, program, parameters, preparing, blocks.
*/
class ModuleHost
{
public:
    /** Throws `ToolError` if the bundle cannot be loaded, or is another plug-in's. */
    explicit ModuleHost (const juce::File& bundle);

    ~ModuleHost();

    /** The bundle at a user's path or, if that is empty, the first one beside the tool, in its build or in the places
        for plug-ins. Throws `ToolError` if there is none.
    */
    static juce::File findBundle (const juce::String& path);

    juce::String versionText() const { return version; }

    juce::StringArray programNames() const;

    /** By name, else by name in any case, else by number from 0. Throws `ToolError` if there is none. */
    int findProgram (const juce::String& nameOrNumber) const;

    /** The buses with their widths, one line each. */
    juce::StringArray describeBuses() const;

    //==============================================================================
    /** 1 or 2 channels; the side chain has the main bus's width, or is off. Throws `ToolError` if that is refused. */
    void setLayout (int numMainChannels, bool withSidechain);

    /** The settings as a .vstpreset. */
    juce::MemoryBlock savePreset() const;

    /** Throws `ToolError` if the module refuses. */
    void loadPreset (const juce::MemoryBlock& preset);

    /** Everything is the program's afterwards. After `loadPreset` this takes half a second: for so long the strip takes
        a change of program for a part of the loading, and ignores it.
    */
    void selectProgram (int index);

    /** Takes the parameter's place in the table and the place in its travel, from 0 to 1. */
    void setParameter (int index, float normalised);

    /** The current value as the module shows it, which leaves some units out. */
    juce::String parameterText (int index) const;

    //==============================================================================
    /** No block may be longer than announced here. */
    void prepare (double sampleRate, int largestBlock);

    /** Ends the audio. The next `prepare` starts with a reset strip on the current settings. */
    void release();

    /** In samples, from `prepare` on. */
    int latency() const;

    /** Main channels first, then the side chain's if it is on; the main channels come back in place. */
    void process (juce::AudioBuffer<float>& buffer);

    /** At most 0, as of the last slice of the last block. */
    float gainReductionDb() const;

private:
    juce::AudioProcessorParameter& parameterAt (int index) const;
    void passOnChanges();

    juce::String version;
    std::unique_ptr<juce::AudioPluginInstance> instance;
    IStripReadOuts* readOuts = nullptr; ///< The module's own; lives as long as the instance.
    bool hasLoadedPreset = false;
};

} // namespace tarvik
