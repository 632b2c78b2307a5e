// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/OversamplerBank.h"

namespace tarvik
{

void OversamplerBank::prepare (int channels, int factor, int maxSliceSize)
{
    samplers.setup (channels, factor);

    if (factor > lowestFactor)
        oversampledBuffer.setSize (channels, factor * maxSliceSize, false, true, true);
    else
        release();
}

void OversamplerBank::release() { oversampledBuffer.setSize (0, 0); }

void OversamplerBank::upsample (int channel, const float* row, int n) noexcept
{
    samplers.up (channel, row, processingRow (channel), n);
}

void OversamplerBank::downsample (int channel, float* row, int n) noexcept
{
    samplers.down (channel, processingRow (channel), row, n);
}

} // namespace tarvik
