// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/WetDryFader.h"

#include "dsp/RowOperations.h"
#include "strip/RampTimes.h"

namespace tarvik
{

void WetDryFader::prepare (double rateHz, int numChannels, int maxSamples)
{
    fade.prepare (rampSteps (rateHz));
    rowLength = static_cast<std::size_t> (maxSamples);
    storage.assign (static_cast<std::size_t> (numChannels + firstDryRow) * rowLength, 0.0f);
    isActive = false;
}

void WetDryFader::release()
{
    storage = {};
    rowLength = 0;
}

void WetDryFader::begin (const float* const* channels, int numChannels, int n) noexcept
{
    isActive = ! fade.restsAtOne();

    if (! isActive)
        return;

    fade.fill (rowAt (wetRow), n);
    rows::fill (rowAt (dryShareRow), 1.0f, n);
    rows::subtract (rowAt (dryShareRow), rowAt (wetRow), n);

    for (int c = 0; c < numChannels; ++c)
        rows::multiply (rowAt (firstDryRow + c), channels[c], rowAt (dryShareRow), n);
}

void WetDryFader::end (float* const* channels, int numChannels, int n) noexcept
{
    if (! isActive)
        return;

    for (int c = 0; c < numChannels; ++c)
    {
        rows::multiply (channels[c], rowAt (wetRow), n);
        rows::add (channels[c], rowAt (firstDryRow + c), n);
    }
}

} // namespace tarvik
