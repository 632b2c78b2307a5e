// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/PictureCatalogue.h"

#include <juce_graphics/juce_graphics.h>

#include <span>

namespace tarvik
{

/** The PNG file of a picture other than `none`, as it is embedded. Any thread. */
std::span<const std::byte> embeddedPicture (Picture picture) noexcept;

/** The picture decoded, at its full size. JUCE keeps it for five seconds after its last use. Message thread. */
juce::Image decodedPicture (Picture picture);

/** The OpenType face in which the channel's name is written. */
std::span<const std::byte> embeddedFont() noexcept;

/** That face, made once for all windows: hold it by a `juce::SharedResourcePointer`. Message thread. */
struct NameTypeface
{
    NameTypeface();

    juce::Typeface::Ptr typeface;
};

} // namespace tarvik
