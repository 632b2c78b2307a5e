// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/Tarvik41Processor.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

namespace tarvik::clicks
{

using Signal = std::vector<float>;

inline constexpr double rateHz = 48000.0;

/** From what a parameter is moved: plain values, and the level of the tone, 1 for full scale. */
struct Settings
{
    std::vector<std::pair<int, float>> values; ///< Parameters by index.
    double level = 0.25;
};

extern const Settings defaults;
extern const Settings everythingAtWork; ///< Most of the strip does nothing at its defaults.
extern const Settings closedGate;       ///< And a tone of -50 dBFS.

/** One strip without noise that hears a tone of 100 Hz at -12 dBFS, and on its side chain one of 170 Hz. Its parameters
    are set as a host does that automates them: on the thread that processes, at the start of a block.
*/
class MovedStrip
{
public:
    MovedStrip (const Settings& settings, int numChannels, int oversamplingFactor);

    /** Parameter `index` goes to a place from 0 to 1 on its travel. */
    void set (int index, float place);

    /** The next numSamples samples of all main channels, one channel after the other, in blocks of at most blockSize.
    */
    void run (int numSamples, int blockSize, Signal& output);

private:
    std::unique_ptr<Tarvik41Processor> strip;
    int numMain;
    double level;
    long position = 0;
    juce::AudioBuffer<float> block;
    juce::MidiBuffer midi;
};

/** The tables. Each returns whether all that it prints is as it should be. */
bool printBlockTable (std::FILE* table);
bool printMoveTable (std::FILE* table);
bool printTailTable (std::FILE* table);
bool printHarmonicErrors (std::FILE* table);

} // namespace tarvik::clicks
