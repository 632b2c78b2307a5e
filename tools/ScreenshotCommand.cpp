// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EditorSize.h"
#include "editor/KVLEditor.h"
#include "tools/AudioFile.h"
#include "tools/Commands.h"
#include "tools/Interruption.h"
#include "tools/ParameterArguments.h"
#include "tools/PngFile.h"
#include "tools/PresetFile.h"
#include "tools/ScratchSettings.h"

#include <iostream>
#include <optional>

namespace tarvik
{

namespace
{
/** Plays a recording through a strip and throws the sound away; what stays is where the needles stand. */
void play (Tarvik41Processor& strip, AudioFileReader& recording, int blockSize)
{
    strip.setRateAndBufferSizeDetails (recording.sampleRate(), blockSize);
    strip.prepareToPlay (recording.sampleRate(), blockSize);
    juce::AudioBuffer<float> block (recording.numChannels(), blockSize);
    juce::MidiBuffer midi;

    for (juce::int64 position = 0; position < recording.length(); position += blockSize)
    {
        throwIfInterrupted();
        recording.readNext (block.getArrayOfWritePointers(), blockSize);
        strip.processBlock (block, midi);
    }
}

void setUp (Tarvik41Processor& strip, const CommandLine& line, int numChannels)
{
    const auto width = juce::AudioChannelSet::canonicalChannelSet (numChannels);
    juce::AudioProcessor::BusesLayout layout;
    layout.inputBuses.add (width);
    layout.inputBuses.add (juce::AudioChannelSet::disabled());
    layout.outputBuses.add (width);
    strip.setBusesLayout (layout);

    if (line.loadStatePath.isNotEmpty())
    {
        const auto state = readBareState (line.loadStatePath);
        strip.setStateInformation (state.getData(), static_cast<int> (state.getSize()));
    }

    strip.selectSlot (line.slot); // -1 is none

    if (line.program.isNotEmpty())
    {
        // For so long the strip takes a change of program for a part of the loading, and ignores it.
        constexpr int restoreMilliseconds = 600;

        if (line.loadStatePath.isNotEmpty())
            juce::Thread::sleep (restoreMilliseconds);

        juce::StringArray names;

        for (int i = 0; i < strip.getNumPrograms(); ++i)
            names.add (strip.getProgramName (i));

        strip.setCurrentProgram (programNamed (names, line.program));
    }

    for (const auto& [index, normalised] : parseParameterSettings (line.assignments))
        strip.getParameters()[index]->setValueNotifyingHost (normalised);

    if (line.trackName.isNotEmpty())
        strip.updateTrackProperties ({ line.trackName, {} });
}
} // namespace

void writeScreenshot (const CommandLine& line)
{
    constexpr float percent = 100.0f;

    OutputFile file (line.outputPath);
    std::optional<AudioFileReader> recording;

    if (line.inputPath.isNotEmpty())
    {
        file.refuseSameFileAs (line.inputPath, "the input");
        recording.emplace (line.inputPath);
    }

    const ScratchSettings settings;
    Tarvik41Processor strip;
    strip.analogSetting().setValue (false);
    strip.oversamplingSetting().setValue (1);
    setUp (strip, line, recording ? recording->numChannels() : 2);

    if (recording)
        play (strip, *recording, line.blockSize);

    KVLEditor editor (strip);
    const auto size = editorSize::atZoom (static_cast<float> (line.zoomPercent) / percent);
    editor.setSize (size.x, size.y);
    editor.setVisible (true);

    // No timer runs here, so the bar is told to look at its status.
    for (auto* const child : editor.getChildren())
        if (auto* const bar = dynamic_cast<ZQBar*> (child))
            bar->updateStatus();

    writePng (file, editor.createComponentSnapshot (editor.getLocalBounds()));
    std::cout << line.outputPath << '\n';
}

} // namespace tarvik
