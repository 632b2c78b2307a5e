// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ScreenCapture.h"

#include <windows.h>

namespace tarvik
{

std::vector<std::uint32_t> captureScreen (int x, int y, int width, int height)
{
    constexpr std::uint32_t colours = 0xffffff; // without the byte that is none
    const auto screen = ::GetDC (nullptr);
    const auto memory = ::CreateCompatibleDC (screen);
    std::vector<std::uint32_t> pixels;

    BITMAPINFO info {};
    info.bmiHeader.biSize = sizeof (info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height; // the rows from the top
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* data = nullptr;

    if (const auto bitmap = ::CreateDIBSection (memory, &info, DIB_RGB_COLORS, &data, nullptr, 0))
    {
        const auto previous = ::SelectObject (memory, bitmap);

        if (::BitBlt (memory, 0, 0, width, height, screen, x, y, SRCCOPY) != 0)
        {
            ::GdiFlush();
            const auto* const first = static_cast<const std::uint32_t*> (data);
            pixels.assign (first, first + static_cast<std::ptrdiff_t> (width) * height);

            for (auto& pixel : pixels)
                pixel &= colours;
        }

        ::SelectObject (memory, previous);
        ::DeleteObject (bitmap);
    }

    ::DeleteDC (memory);
    ::ReleaseDC (nullptr, screen);
    return pixels;
}

} // namespace tarvik
