// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/FlacCheck.h"

#include <FLAC/stream_decoder.h>
#include <memory>

namespace tarvik
{

namespace
{
struct Findings
{
    FLAC__uint64 numSamples = 0;
    bool hasError = false;
};

FLAC__StreamDecoderWriteStatus countSamples (const FLAC__StreamDecoder*, const FLAC__Frame* frame,
                                             const FLAC__int32* const*, void* findings)
{
    static_cast<Findings*> (findings)->numSamples += frame->header.blocksize;
    return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
}

void noteError (const FLAC__StreamDecoder*, FLAC__StreamDecoderErrorStatus, void* findings)
{
    static_cast<Findings*> (findings)->hasError = true;
}

struct Deleter
{
    void operator() (FLAC__StreamDecoder* decoder) const { FLAC__stream_decoder_delete (decoder); }
};
} // namespace

bool isFlacIntact (const juce::File& file)
{
    const std::unique_ptr<FLAC__StreamDecoder, Deleter> decoder (FLAC__stream_decoder_new());
    Findings findings;

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

} // namespace tarvik
