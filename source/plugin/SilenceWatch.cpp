// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/SilenceWatch.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace tarvik
{

namespace
{
/** Whether n samples are 0, of either sign. By their bits, so that the processor's flags make no difference to what is
    silent, and so that vectors do it.
*/
bool areSilent (const float* row, int n) noexcept
{
    constexpr std::uint32_t allButSign = 0x7fffffff;
    std::uint32_t bits = 0;

    for (int i = 0; i < n; ++i)
        bits |= std::bit_cast<std::uint32_t> (row[i]);

    return (bits & allButSign) == 0;
}

int countInRow (const float* row, int n) noexcept
{
    constexpr int group = 32;
    int i = 0;

    while (n - i >= group && areSilent (row + i, group))
        i += group;

    while (i < n && areSilent (row + i, 1))
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
                            [at = n - 1 - count] (const float* row) { return ! areSilent (row + at, 1); }))
        ++count;

    return count;
}

} // namespace tarvik
