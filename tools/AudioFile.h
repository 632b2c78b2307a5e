// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/OutputFile.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <vector>

namespace tarvik
{

/** A WAV, FLAC or AIFF file that is read piece by piece from its beginning. */
class AudioFileReader
{
public:
    /** Throws `ToolError` if the file cannot be read, is of another kind, is cut off, or has more than two channels. */
    explicit AudioFileReader (const juce::String& path);

    double sampleRate() const { return reader->sampleRate; }

    int numChannels() const { return static_cast<int> (reader->numChannels); }

    juce::int64 length() const { return reader->lengthInSamples; }

    /** Fills the start of `numChannels()` rows with the next samples, from -1 to 1 for files of whole numbers; after
        the end of the file comes silence. Throws `ToolError` if the file fails.
    */
    void readNext (float* const* rows, int numSamples);

private:
    [[noreturn]] void throwReadError (const juce::String& reason) const;

    const juce::String path;
    std::unique_ptr<juce::AudioFormatReader> reader;
    juce::int64 position = 0;
};

/** A WAV file that is written piece by piece. */
class AudioFileWriter
{
public:
    /** bitDepth: 24, or 32 for floating point. Throws `ToolError` if the file cannot be made. */
    AudioFileWriter (OutputFile& target, double sampleRate, int numChannels, int bitDepth);

    /** Appends samples from as many rows as the file has channels. At 24 bits, what lies beyond full scale is held
        there and counted. Throws `ToolError` if the disk fails.
    */
    void write (const float* const* rows, int numSamples);

    /** Completes the header and closes the file. Throws `ToolError` if the disk fails. */
    void finish();

    juce::int64 clippedSamples() const { return numClipped; }

private:
    bool writeWholeNumbers (const float* const* rows, int numSamples);

    OutputFile& file;
    juce::FileOutputStream* stream = nullptr; ///< Owned by the writer.
    std::unique_ptr<juce::AudioFormatWriter> writer;
    std::vector<std::vector<int>> wholeNumbers;
    juce::int64 numWritten = 0;
    juce::int64 numClipped = 0;
};

} // namespace tarvik
