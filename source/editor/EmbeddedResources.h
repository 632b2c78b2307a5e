// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/PictureCatalogue.h"

#include <juce_graphics/juce_graphics.h>

#include <functional>
#include <span>

namespace tarvik
{

/** The PNG file of a picture other than `none`, as it is embedded. Any thread. */
std::span<const std::byte> embeddedPicture (Picture picture) noexcept;

/** The picture decoded, at its full size, anew for each call. Any thread. */
juce::Image decodedPicture (Picture picture);

/** Takes a picture's next row, in the layout of JUCE's images in memory, premultiplied. */
using TakeRow = std::function<void (const juce::uint8* row)>;

/** Decodes the picture and hands over its rows from the top, so that of 35 MB only a row is held. True if that succeeded.
    Any thread.
*/
bool readEmbeddedPicture (Picture picture, const TakeRow& takeRow);

/** The OpenType face in which the channel's name is written. */
std::span<const std::byte> embeddedFont() noexcept;

/** That face, made once for all windows: hold it by a `juce::SharedResourcePointer`. Message thread. */
struct NameTypeface
{
    NameTypeface();

    juce::Typeface::Ptr typeface;
};

} // namespace tarvik
