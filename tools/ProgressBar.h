// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <cstdio>
#include <unistd.h>

namespace tarvik
{

/** A bar on the terminal's error stream while a file is worked on; nothing at all where that stream is no terminal. */
class ProgressBar
{
public:
    explicit ProgressBar (juce::int64 totalSteps) : total (totalSteps), isShown (::isatty (STDERR_FILENO) != 0) {}

    ~ProgressBar()
    {
        constexpr const char* eraseLine = "\r\x1b[K";

        if (isShown)
            std::fputs (eraseLine, stderr);
    }

    ProgressBar (const ProgressBar&) = delete;
    ProgressBar& operator= (const ProgressBar&) = delete;

    void show (juce::int64 doneSteps)
    {
        constexpr int wholePerCent = 100;
        constexpr int perCentPerMark = 2;
        const auto perCent = total > 0 ? static_cast<int> (doneSteps * wholePerCent / total) : wholePerCent;

        if (! isShown || perCent == lastPerCent)
            return;

        lastPerCent = perCent;
        const auto marks = perCent / perCentPerMark;
        const auto bar = juce::String::repeatedString ("#", marks)
                         + juce::String::repeatedString (".", wholePerCent / perCentPerMark - marks);
        std::fprintf (stderr, "\r[%s] %3d %%", bar.toRawUTF8(), perCent);
        std::fflush (stderr);
    }

private:
    const juce::int64 total;
    const bool isShown;
    int lastPerCent = -1;
};

} // namespace tarvik
