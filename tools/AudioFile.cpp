// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/AudioFile.h"

#include "tools/ToolError.h"

#include <FLAC/stream_decoder.h>
#include <algorithm>
#include <cmath>

namespace tarvik
{

namespace
{
constexpr int mostChannels = 2;
constexpr int bitsPerByte = 8;
constexpr int readAheadBytes = 1 << 16;

std::unique_ptr<juce::AudioFormatReader> createReader (const juce::File& file)
{
    juce::AudioFormatManager formats;
    formats.registerFormat (new juce::WavAudioFormat(), true);
    formats.registerFormat (new juce::AiffAudioFormat(), false);
    formats.registerFormat (new juce::FlacAudioFormat(), false);

    // By what is in it, whatever its name ends with.
    auto stream =
        std::make_unique<juce::BufferedInputStream> (file.createInputStream().release(), readAheadBytes, true);
    return std::unique_ptr<juce::AudioFormatReader> (formats.createReaderFor (std::move (stream)));
}

struct FlacFindings
{
    FLAC__uint64 numSamples = 0;
    bool hasError = false;
};

FLAC__StreamDecoderWriteStatus countSamples (const FLAC__StreamDecoder*, const FLAC__Frame* frame,
                                             const FLAC__int32* const*, void* findings)
{
    static_cast<FlacFindings*> (findings)->numSamples += frame->header.blocksize;
    return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
}

void noteError (const FLAC__StreamDecoder*, FLAC__StreamDecoderErrorStatus, void* findings)
{
    static_cast<FlacFindings*> (findings)->hasError = true;
}

/** Decodes a FLAC file from end to end and says whether all of it is there and as it was encoded, by its frames' check
    sums, its length and its MD5 sum. JUCE's reader puts silence in the place of what it cannot decode. Takes about a
    thousandth of the audio's duration.
*/
bool isFlacIntact (const juce::File& file)
{
    const std::unique_ptr<FLAC__StreamDecoder, decltype (&FLAC__stream_decoder_delete)> decoder (
        FLAC__stream_decoder_new(), FLAC__stream_decoder_delete);
    FlacFindings findings;

    if (decoder == nullptr)
        return false;

    FLAC__stream_decoder_set_md5_checking (decoder.get(), 1);

    if (FLAC__stream_decoder_init_file (decoder.get(), file.getFullPathName().toRawUTF8(), countSamples, nullptr,
                                        noteError, &findings)
        != FLAC__STREAM_DECODER_INIT_STATUS_OK)
        return false;

    const auto isDecoded = FLAC__stream_decoder_process_until_end_of_stream (decoder.get()) != 0;
    const auto promised = FLAC__stream_decoder_get_total_samples (decoder.get()); // 0 if the file does not say
    const auto hasRightSum = FLAC__stream_decoder_finish (decoder.get()) != 0;

    return isDecoded && hasRightSum && ! findings.hasError && (promised == 0 || promised == findings.numSamples);
}
} // namespace

AudioFileReader::AudioFileReader (const juce::String& pathToRead) : path (pathToRead)
{
    const auto file = fileAt (path);

    if (! file.exists())
        throwReadError ("there is no such file");

    if (file.isDirectory() || ! file.hasReadAccess())
        throwReadError (file.isDirectory() ? "it is a folder" : "no permission");

    if (file.createInputStream() != nullptr)
        reader = createReader (file);

    if (reader == nullptr)
        throwReadError ("it is not a WAV, FLAC or AIFF file");

    if (numChannels() > mostChannels)
        throwReadError ("it has " + juce::String (numChannels()) + " channels, and the strip takes one or two");

    const auto isFlac = reader->getFormatName().startsWith ("FLAC");
    const auto bytesPerFrame = static_cast<juce::int64> (reader->numChannels * (reader->bitsPerSample / bitsPerByte));

    if (isFlac && ! isFlacIntact (file))
        throwReadError ("it is damaged");

    if (! isFlac && (length() < 0 || length() > file.getSize() / bytesPerFrame))
        throwReadError ("it ends before the " + juce::String (length()) + " samples that its header promises");
}

void AudioFileReader::readNext (float* const* rows, int numSamples)
{
    const auto available = static_cast<int> (std::clamp<juce::int64> (length() - position, 0, numSamples));

    if (available > 0 && ! reader->read (rows, numChannels(), position, available))
        throwReadError ("it is damaged");

    for (int c = 0; c < numChannels(); ++c)
        std::fill (rows[c] + available, rows[c] + numSamples, 0.0f);

    position += available;
}

void AudioFileReader::throwReadError (const juce::String& reason) const
{
    throw ToolError ("cannot read '" + path + "': " + reason);
}

//==============================================================================
AudioFileWriter::AudioFileWriter (OutputFile& target, double sampleRate, int numChannels, int bitDepth) : file (target)
{
    auto opened = file.open();
    juce::WavAudioFormat format;
    writer.reset (
        format.createWriterFor (opened.get(), sampleRate, static_cast<unsigned int> (numChannels), bitDepth, {}, 0));

    if (writer == nullptr)
        file.throwWriteError ("a WAV file of this rate is not possible");

    stream = opened.release();
    wholeNumbers.resize (static_cast<std::size_t> (numChannels));
}

void AudioFileWriter::write (const float* const* rows, int numSamples)
{
    if (numSamples == 0)
        return;

    const auto succeeded = writer->isFloatingPoint()
                               ? writer->writeFromFloatArrays (rows, writer->getNumChannels(), numSamples)
                               : writeWholeNumbers (rows, numSamples);

    if (! succeeded)
        file.throwDiskError (*stream);

    numWritten += numSamples;
}

bool AudioFileWriter::writeWholeNumbers (const float* const* rows, int numSamples)
{
    // JUCE would cut the lower bits off; this rounds to the nearest. It takes the samples in the upper 24 of 32 bits.
    constexpr double fullScale = 8388608.0;
    constexpr int spareBitsFactor = 256;
    const int* pointers[mostChannels] = {};

    for (std::size_t c = 0; c < wholeNumbers.size(); ++c)
    {
        auto& row = wholeNumbers[c];
        row.resize (static_cast<std::size_t> (numSamples));

        for (std::size_t i = 0; i < row.size(); ++i)
        {
            const auto sample = static_cast<double> (rows[c][i]);
            const auto isClipped = ! (std::abs (sample) <= 1.0);
            const auto rounded = std::isnan (sample) ? 0.0 : std::round (sample * fullScale);
            row[i] = static_cast<int> (std::clamp (rounded, -fullScale, fullScale - 1.0)) * spareBitsFactor;
            numClipped += isClipped ? 1 : 0;
        }

        pointers[c] = row.data();
    }

    return writer->write (pointers, numSamples);
}

void AudioFileWriter::finish()
{
    writer->flush();
    file.finish (*stream, numWritten * writer->getNumChannels() * writer->getBitsPerSample() / bitsPerByte);
    writer.reset();
}

} // namespace tarvik
