// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/SilenceWatch.h"

#include <algorithm>

namespace tarvik
{

namespace
{
/** Samples that are looked at together, so that vectors do it. */
constexpr int group = 16;

bool isGroupSilent (const float* row) noexcept
{
    int numHeard = 0;

    for (int i = 0; i < group; ++i)
        numHeard += row[i] != 0.0f ? 1 : 0;

    return numHeard == 0;
}

int countInRow (const float* row, int n) noexcept
{
    int i = 0;

    while (n - i >= group && isGroupSilent (row + i))
        i += group;

    while (i < n && row[i] == 0.0f)
        ++i;

    return i;
}
} // namespace

int SilenceWatch::countAtStart (const float* const* channels, int numChannels, int n) noexcept
{
    for (int c = 0; c < numChannels; ++c)
        n = countInRow (channels[c], n);

    return n;
}

int SilenceWatch::countAtEnd (const float* const* channels, int numChannels, int n) noexcept
{
    int count = 0;

    while (count < n
           && std::none_of (channels, channels + numChannels,
                            [at = n - 1 - count] (const float* row) { return row[at] != 0.0f; }))
        ++count;

    return count;
}

} // namespace tarvik
