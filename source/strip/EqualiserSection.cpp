// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/EqualiserSection.h"

#include "dsp/RowOperations.h"

namespace tarvik
{

namespace
{
/** 10 to the power 0.771, +15.42 dB: the loss of the network at rest, 5100 ohms over 5100 + 25000. */
constexpr float makeupGain = 5.9020108f;
} // namespace

void EqualiserSection::prepare (double rateHz, int numChannels, int maxSamples)
{
    fader.prepare (rateHz, numChannels, maxSamples);
}

void EqualiserSection::release() { fader.release(); }

void EqualiserSection::reset() noexcept { fader.fade.snap(); }

void EqualiserSection::update (const ParameterSnapshot& snapshot, bool force) noexcept
{
    const bool equalizer = snapshot.equalizer;

    if (force || equalizer != lastEqualizer)
    {
        lastEqualizer = equalizer;
        fader.fade.request (equalizer ? 1.0 : 0.0);
    }
}

void EqualiserSection::process (float* const* channels, int numChannels, int n) noexcept
{
    fader.begin (channels, numChannels, n);

    for (int c = 0; c < numChannels; ++c)
        rows::scale (channels[c], makeupGain, n);

    fader.end (channels, numChannels, n);
}

} // namespace tarvik
