// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EmbeddedResources.h"

#include <cstdint>
#include <cstring>
#include <png.h>

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
    return file.empty() ? juce::Image() : juce::ImageFileFormat::loadFrom (file.data(), file.size());
}

namespace
{
/** What libpng reads from. */
void copyNext (png_structp png, png_bytep target, png_size_t numBytes)
{
    auto& rest = *static_cast<std::span<const std::byte>*> (png_get_io_ptr (png));

    if (numBytes > rest.size())
        png_error (png, "the file ends early");

    std::memcpy (target, rest.data(), numBytes);
    rest = rest.subspan (numBytes);
}

struct PictureReader
{
    /** From the file's first byte to the picture's last row. */
    void readRows()
    {
        png_set_read_fn (png, &rest, copyNext);
        png_read_info (png, info);
        png_set_bgr (png); // blue first, as in a little-endian word
        png_read_update_info (png, info);

        for (int y = 0; y < entry.height; ++y)
        {
            png_read_row (png, reinterpret_cast<png_bytep> (row.data()), nullptr);

            if (entry.colours == PictureColours::rgba)
                for (auto& pixel : row)
                    pixel.premultiply();

            takeRow (reinterpret_cast<const juce::uint8*> (row.data()));
        }
    }

    const PictureRow& entry;
    const TakeRow& takeRow;
    png_structp png;
    png_infop info;
    std::span<const std::byte> rest = embeddedPicture (entry.id);
    std::vector<juce::PixelARGB> row =
        std::vector<juce::PixelARGB> (static_cast<std::size_t> (entry.width)); // room for either layout
};

/** libpng reports a fault by a jump to here, so there is nothing here that such a jump would skip. */
[[gnu::noinline]] bool readsAllRows (PictureReader& reader)
{
    if (setjmp (png_jmpbuf (reader.png)) != 0)
        return false;

    reader.readRows();
    return true;
}
} // namespace

bool readEmbeddedPicture (Picture picture, const TakeRow& takeRow)
{
    if (picture == Picture::none)
        return false;

    auto* png = png_create_read_struct (PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    auto* info = png_create_info_struct (png);
    PictureReader reader { rowOf (picture), takeRow, png, info };
    const auto succeeded = info != nullptr && readsAllRows (reader); // null without memory
    png_destroy_read_struct (&png, &info, nullptr);
    return succeeded;
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
