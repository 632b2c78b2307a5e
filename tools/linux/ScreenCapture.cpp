// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ScreenCapture.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <dlfcn.h>
#include <memory>

namespace tarvik
{
namespace
{
template <typename Function>
Function* find (void* library, const char* name)
{
    return reinterpret_cast<Function*> (dlsym (library, name));
}
} // namespace

std::vector<std::uint32_t> captureScreen (int x, int y, int width, int height)
{
    std::vector<std::uint32_t> pixels;

    // Opened by name, as JUCE does: the rest of the tool runs where there is no X.
    const std::unique_ptr<void, int (*) (void*)> xlib (dlopen ("libX11.so.6", RTLD_NOW), &dlclose);

    if (xlib == nullptr)
        return pixels;

    auto* const openDisplay = find<decltype (XOpenDisplay)> (xlib.get(), "XOpenDisplay");
    auto* const closeDisplay = find<decltype (XCloseDisplay)> (xlib.get(), "XCloseDisplay");
    auto* const getImage = find<decltype (XGetImage)> (xlib.get(), "XGetImage");
    auto* const display = openDisplay (nullptr);

    if (display == nullptr)
        return pixels;

    if (auto* const image = getImage (display, DefaultRootWindow (display), x, y, static_cast<unsigned> (width),
                                      static_cast<unsigned> (height), AllPlanes, ZPixmap))
    {
        for (int row = 0; row < height; ++row)
            for (int column = 0; column < width; ++column)
                pixels.push_back (static_cast<std::uint32_t> (XGetPixel (image, column, row)));

        XDestroyImage (image);
    }

    closeDisplay (display);
    return pixels;
}

} // namespace tarvik
