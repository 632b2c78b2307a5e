// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik
{

/** Counts the samples for which all of a strip's inputs have been silent, period by period. At the end of each one a strip
    that is awake may fall asleep, and the time of one that sleeps goes on by a period. So both depend on the samples
    alone and not on how the host cuts its blocks. One thread.
*/
class SilenceWatch
{
public:
    /** Samples. Longer than a slice, so that none begins and ends within one; short enough for needles to fall evenly. */
    static constexpr int period = 1024;

    /** How many samples of n are 0 in every channel, of either sign, before the first one that isn't, and after the last
        one. */
    static int countAtStart (const float* const* channels, int numChannels, int n) noexcept;
    static int countAtEnd (const float* const* channels, int numChannels, int n) noexcept;

    /** Of n samples that begin with `silent` silent ones, how many come before a period ends; n if none does. */
    int getPieceLength (int n, int silent) const noexcept { return silent < period - count ? n : period - count; }

    /** After a piece of n samples that ends with silentAtEnd silent ones: whether a period has ended. */
    bool endPiece (int n, int silentAtEnd) noexcept
    {
        count = silentAtEnd == n ? count + n : silentAtEnd;
        const auto isPeriodOver = count == period;
        count = isPeriodOver ? 0 : count;
        return isPeriodOver;
    }

    /** Begins a new period, and returns how much of the current one is over. */
    int restart() noexcept
    {
        const auto over = count;
        count = 0;
        return over;
    }

private:
    int count = 0;
};

} // namespace tarvik
