// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <limits>
#include <public.sdk/source/common/memorystream.h>
#include <string_view>

namespace tarvik::test
{

using namespace Steinberg;

/** A host's stream, which knows its size and may give less at a time than it is asked for. */
class HostStream final : public MemoryStream, private ISizeableStream
{
public:
    explicit HostStream (std::string_view content = {}, int32 most = std::numeric_limits<int32>::max()) : piece (most)
    {
        MemoryStream::write (const_cast<char*> (content.data()), static_cast<int32> (content.size()), nullptr);
        seek (0, kIBSeekSet, nullptr);
    }

private:
    tresult PLUGIN_API queryInterface (const TUID iid, void** object) override
    {
        const TUID sizeable = INLINE_UID (0x04F9549E, 0xE02F4E6E, 0x87E86A87, 0x47F4E17F);
        const auto isKnown = FUnknownPrivate::iidEqual (iid, sizeable);
        *object = isKnown ? static_cast<ISizeableStream*> (this) : nullptr;
        return isKnown ? kResultOk : kNoInterface;
    }

    uint32 PLUGIN_API addRef() override { return 1; }

    uint32 PLUGIN_API release() override { return 1; }

    tresult PLUGIN_API read (void* buffer, int32 wanted, int32* given) override
    {
        return MemoryStream::read (buffer, std::min (wanted, piece), given);
    }

    tresult PLUGIN_API getStreamSize (int64& bytes) override
    {
        bytes = getSize();
        return kResultOk;
    }

    tresult PLUGIN_API setStreamSize (int64) override { return kNotImplemented; }

    const int32 piece;
};

} // namespace tarvik::test
