// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/base/ibstream.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace tarvik::test
{

using namespace Steinberg;

/** A host's stream, which may give less at a time than it is asked for. */
class HostStream final : private IBStream, private ISizeableStream
{
public:
    explicit HostStream (std::string content = {}, std::size_t most = std::string::npos)
        : bytes (std::move (content)), piece (most)
    {
    }

    /** From its start. */
    IBStream* rewound()
    {
        at = 0;
        return this;
    }

    std::string bytes;

private:
    tresult PLUGIN_API queryInterface (const TUID iid, void** object) override
    {
        const TUID sizeable = INLINE_UID (0x04F9549E, 0xE02F4E6E, 0x87E86A87, 0x47F4E17F);
        const auto isKnown = std::memcmp (iid, sizeable, sizeof (TUID)) == 0;
        *object = isKnown ? static_cast<ISizeableStream*> (this) : nullptr;
        return isKnown ? kResultOk : kNoInterface;
    }

    uint32 PLUGIN_API addRef() override { return 1; }

    uint32 PLUGIN_API release() override { return 1; }

    tresult PLUGIN_API read (void* buffer, int32 wanted, int32* given) override
    {
        const auto size =
            bytes.copy (static_cast<char*> (buffer), std::min (static_cast<std::size_t> (wanted), piece), at);
        at += size;
        *given = static_cast<int32> (size);
        return kResultOk;
    }

    tresult PLUGIN_API write (void* buffer, int32 size, int32*) override
    {
        bytes.append (static_cast<const char*> (buffer), static_cast<std::size_t> (size));
        return kResultOk;
    }

    tresult PLUGIN_API seek (int64 place, int32, int64*) override
    {
        at = static_cast<std::size_t> (place);
        return kResultOk;
    }

    tresult PLUGIN_API tell (int64*) override { return kNotImplemented; }

    tresult PLUGIN_API getStreamSize (int64& size) override
    {
        size = static_cast<int64> (bytes.size());
        return kResultOk;
    }

    tresult PLUGIN_API setStreamSize (int64) override { return kNotImplemented; }

    const std::size_t piece;
    std::size_t at = 0;
};

} // namespace tarvik::test
