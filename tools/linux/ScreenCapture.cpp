// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ScreenCapture.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace tarvik
{

std::vector<std::uint32_t> captureScreen (int x, int y, int width, int height)
{
    auto* const display = XOpenDisplay (nullptr);
    std::vector<std::uint32_t> pixels;

    if (display == nullptr)
        return pixels;

    if (auto* const image = XGetImage (display, DefaultRootWindow (display), x, y, static_cast<unsigned> (width),
                                       static_cast<unsigned> (height), AllPlanes, ZPixmap))
    {
        for (int row = 0; row < height; ++row)
            for (int column = 0; column < width; ++column)
                pixels.push_back (static_cast<std::uint32_t> (XGetPixel (image, column, row)));

        XDestroyImage (image);
    }

    XCloseDisplay (display);
    return pixels;
}

} // namespace tarvik
