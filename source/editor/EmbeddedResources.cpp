// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EmbeddedResources.h"

#include <cstdint>

// The symbols that the build makes of the files.
#define TARVIK_DECLARE_DATA(symbol)  \
    extern const std::byte symbol[]; \
    extern const std::uint64_t symbol##_size;

#define TARVIK_DECLARE_PICTURE(id, file, width, height, colours, user) TARVIK_DECLARE_DATA (tarvikPicture_##id)

extern "C"
{
    TARVIK_PICTURES (TARVIK_DECLARE_PICTURE)
    TARVIK_DECLARE_DATA (tarvikFont)
}

namespace tarvik
{

std::span<const std::byte> embeddedPicture (Picture picture) noexcept
{
#define TARVIK_PICTURE_CASE(id, file, width, height, colours, user) \
    case Picture::id:                                               \
        return { tarvikPicture_##id, static_cast<std::size_t> (tarvikPicture_##id##_size) };

    switch (picture)
    {
        TARVIK_PICTURES (TARVIK_PICTURE_CASE)
        case Picture::none:
            break;
    }

#undef TARVIK_PICTURE_CASE
    return {};
}

juce::Image decodedPicture (Picture picture)
{
    const auto file = embeddedPicture (picture);
    return file.empty() ? juce::Image() : juce::ImageCache::getFromMemory (file.data(), static_cast<int> (file.size()));
}

std::span<const std::byte> embeddedFont() noexcept
{
    return { tarvikFont, static_cast<std::size_t> (tarvikFont_size) };
}

NameTypeface::NameTypeface()
    : typeface (juce::Typeface::createSystemTypefaceFor (embeddedFont().data(), embeddedFont().size()))
{
}

} // namespace tarvik
