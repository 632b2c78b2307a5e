// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/NeedleMeter.h"

#include "dsp/RowOperations.h"

#include <cstddef>

namespace tarvik
{
void NeedleMeter::prepare (double rateHz, int numChannels, int maxSamples)
{
    needle.prepare (rateHz);
    numMain = numChannels;
    magnitude.assign (static_cast<std::size_t> (maxSamples), 0.0f);
    reset();
}

void NeedleMeter::reset() noexcept
{
    needle.reset();
    reading = unmeasured;
}

void NeedleMeter::process (const float* const* channels, int numSamples) noexcept
{
    rows::meanMagnitude (magnitude.data(), channels, numMain, numSamples);
    needle.process (magnitude.data(), numSamples);
    read();
}

void NeedleMeter::skip (int numSamples) noexcept
{
    needle.hold (0.0, numSamples);
    read();
}

void NeedleMeter::read() noexcept
{
    // (pi / 2) / sqrt (1.2): from a sine's mean to its amplitude, and from the sample value of 0 VU to 1.
    constexpr auto scale = static_cast<float> (1.5707964 / 1.0954451150103321);
    reading = scale * needle.getReading();
}
} // namespace tarvik
