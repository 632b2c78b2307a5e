// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/NeedleMeter.h"

#include "dsp/RowOperations.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarvik
{
namespace
{
/** (pi / 2) / sqrt (1.2): from a sine's mean to its amplitude, and from the sample value of 0 VU to 1. */
constexpr auto scale = static_cast<float> (1.5707964 / 1.0954451150103321);
} // namespace

void NeedleMeter::prepare (double rateHz)
{
    needle.prepare (rateHz);
    reading = restingReading;
}

void NeedleMeter::process (const float* const* channels, int numChannels, int n) noexcept
{
    constexpr int pieceLength = 256;
    constexpr std::size_t mostChannels = 2;
    std::array<float, pieceLength> magnitude;
    std::array<const float*, mostChannels> piece {};
    const auto count = std::min (static_cast<std::size_t> (numChannels), mostChannels);

    for (int done = 0; done < n; done += pieceLength)
    {
        const auto length = std::min (n - done, pieceLength);

        for (std::size_t c = 0; c < count; ++c)
            piece[c] = channels[c] + done;

        rows::meanMagnitude (magnitude.data(), piece.data(), static_cast<int> (count), length);
        reading = scale * needle.process (magnitude.data(), length);
    }
}
} // namespace tarvik
