// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <cstdio>
#include <functional>
#include <unistd.h>

namespace tarvik
{

/** Takes how many of how many steps are done. */
using ShowProgress = std::function<void (juce::int64 doneSteps, juce::int64 totalSteps)>;

constexpr int wholePerCent = 100;

inline int perCentOf (juce::int64 doneSteps, juce::int64 totalSteps)
{
    return totalSteps > 0 ? static_cast<int> (doneSteps * wholePerCent / totalSteps) : wholePerCent;
}

/** A bar on the terminal's error stream while there is work; nothing at all where that stream is not a terminal. */
class ProgressBar
{
public:
    ProgressBar() = default;

    ~ProgressBar() { erase(); }

    ProgressBar (const ProgressBar&) = delete;
    ProgressBar& operator= (const ProgressBar&) = delete;

    /** Makes room for other lines on the terminal; the next `show` draws the bar again. */
    void erase()
    {
        constexpr const char* eraseLine = "\r\x1b[K";

        if (! isShown || lastPerCent < 0)
            return;

        std::fputs (eraseLine, stderr);
        std::fflush (stderr);
        lastPerCent = -1;
    }

    void show (int perCent, const juce::String& label = {})
    {
        constexpr int perCentPerMark = 2;

        if (! isShown || (perCent == lastPerCent && label == lastLabel))
            return;

        lastPerCent = perCent;
        lastLabel = label;
        const auto marks = perCent / perCentPerMark;
        const auto bar = juce::String::repeatedString ("#", marks)
                         + juce::String::repeatedString (".", wholePerCent / perCentPerMark - marks);
        std::fprintf (stderr, "\r[%s] %3d %%  %s", bar.toRawUTF8(), perCent, label.toRawUTF8());
        std::fflush (stderr);
    }

private:
    const bool isShown = ::isatty (STDERR_FILENO) != 0;
    int lastPerCent = -1; ///< Negative: the line is empty.
    juce::String lastLabel;
};

} // namespace tarvik
