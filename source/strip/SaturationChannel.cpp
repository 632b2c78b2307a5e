// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/SaturationChannel.h"

#include "dsp/AnalogBiquad.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <numbers>

namespace tarvik
{
namespace
{
/** The rows of the component table; a row's number is part of its random seed. */
enum Part : std::size_t
{
    highPassHz,
    highPassQ,
    lowPassHz,
    lowPassQ,
    outputGain
};

constexpr std::array<Component, 5> outputFilters { {
    { "high pass, Hz", 6.0, 0.03 },
    { "high pass, Q", 0.5, 0.03 },
    { "low pass, Hz", 35000.0, 0.03 },
    { "low pass, Q", 0.55, 0.03 },
    { "gain", 1.0, 0.01 },
} };

constexpr std::size_t maxTogether = 2;
} // namespace

SaturationChannel::SaturationChannel() : components (outputFilters) {}

void SaturationChannel::setVariant (int variant) noexcept
{
    if (variant == components.getActiveChannel())
        return;

    components.setActiveChannel (variant);
    designFilters();
    highPass.bringInCoefficients();
    lowPass.bringInCoefficients();
}

/** H(s) = s^2 / (s^2 + s w0 / Q + w0^2), then H(s) = gain w0^2 / (s^2 + s w0 / Q + w0^2). */
void SaturationChannel::designFilters() noexcept
{
    constexpr auto unused = 1.0;
    const auto make = [&] (AnalogBiquad::Type type, Part frequency, Part q)
    {
        const auto omega0 = 2.0 * std::numbers::pi * components.getActive (frequency);
        return AnalogBiquad::make (type, components.getActive (q), unused, unused, omega0);
    };

    const auto high = make (AnalogBiquad::Type::highPass, highPassHz, highPassQ);
    auto low = make (AnalogBiquad::Type::lowPass, lowPassHz, lowPassQ);

    for (auto& coefficient : low.numerator)
        coefficient *= components.getActive (outputGain);

    highPass.setAnalogue (high.numerator, high.denominator);
    lowPass.setAnalogue (low.numerator, low.denominator);
}

void SaturationChannel::prepare (double rateHz, int maxSamples)
{
    designFilters();
    highPass.prepare (rateHz, 1, maxSamples);
    lowPass.prepare (rateHz, 1, maxSamples);
    shaper.reset();
}

void SaturationChannel::reset() noexcept
{
    shaper.reset();
    highPass.reset();
    lowPass.reset();
}

//==============================================================================
/** In pieces, up to the sample at which the next move of a filter ends: what rests keeps 64 bits between its two filters,
    what moves doesn't. */
void SaturationChannel::filter (std::span<SaturationChannel* const> channels, float* const* rows, int n) noexcept
{
    std::array<BiquadCascade*, maxTogether> highPasses {};
    std::array<BiquadCascade*, maxTogether> lowPasses {};
    std::array<Filter*, maxTogether> highPassFilters {};
    std::array<Filter*, maxTogether> lowPassFilters {};
    std::array<float*, maxTogether> pieces {};
    std::array<bool, maxTogether> rests {};

    for (int done = 0, length = 0; done < n; done += length)
    {
        auto allRest = true, noneRests = true;
        length = n - done;

        for (std::size_t c = 0; c < channels.size(); ++c)
        {
            auto& high = *(highPassFilters[c] = &channels[c]->highPass);
            auto& low = *(lowPassFilters[c] = &channels[c]->lowPass);
            const auto highRests = high.beginSlice(), lowRests = low.beginSlice();
            rests[c] = highRests && lowRests;

            if (! rests[c])
                length = low.getPieceLength (high.getPieceLength (length));

            allRest = allRest && rests[c];
            noneRests = noneRests && ! rests[c];
            highPasses[c] = high.getActiveCascades().front();
            lowPasses[c] = low.getActiveCascades().front();
            pieces[c] = rows[c] + done;
        }

        const auto run = [&] (std::size_t first, std::size_t count)
        {
            auto* const* const piece = pieces.data() + first;

            if (rests[first])
                return processInTurn (std::span (highPasses).subspan (first, count),
                                      std::span (lowPasses).subspan (first, count), piece, length);

            Filter::processTogether (std::span (highPassFilters).subspan (first, count), piece, length);
            Filter::processTogether (std::span (lowPassFilters).subspan (first, count), piece, length);
        };

        if (allRest || noneRests)
            run (0, channels.size());
        else
            for (std::size_t c = 0; c < channels.size(); ++c)
                run (c, 1);
    }
}
} // namespace tarvik
