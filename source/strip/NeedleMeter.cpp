// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/NeedleMeter.h"

#include "dsp/RowOperations.h"

#include <algorithm>
#include <array>
#include <limits>

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

void NeedleMeter::process (const float* row, int n) noexcept
{
    constexpr int pieceLength = 256;
    std::array<float, pieceLength> magnitude;

    for (int done = 0; done < n; done += pieceLength)
    {
        const auto length = std::min (n - done, pieceLength);
        rows::absolute (magnitude.data(), row + done, length);
        rows::clampToFinite (magnitude.data(), std::numeric_limits<float>::max(), length);
        reading = scale * needle.process (magnitude.data(), length);
    }
}
} // namespace tarvik
