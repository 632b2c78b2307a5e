// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/NiveauFilter.h"

#include "dsp/AnalogBiquad.h"
#include "dsp/MZTiCoefs.h"

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace tarvik
{

namespace
{
using Design = MZTiCoefs<double, 2, 2>;

struct Shelf
{
    AnalogBiquad::Type type;
    double cutoffHz;
    double gainExponent; ///< of 10
};

constexpr std::array<Shelf, 2> shelves { {
    { AnalogBiquad::Type::lowShelf, 125.0, -0.9 },
    { AnalogBiquad::Type::highShelf, 8000.0, 0.9 },
} };

Design::Taps designShelf (const Shelf& shelf, double rateHz)
{
    constexpr double q = 0.3;
    const auto gain = std::pow (10.0, shelf.gainExponent);
    const auto omega = 2.0 * std::numbers::pi * shelf.cutoffHz;
    const auto analogue = AnalogBiquad::make (shelf.type, q, gain, std::sqrt (gain), omega);
    return Design::tapsFor (analogue.numerator, analogue.denominator, rateHz);
}
} // namespace

void NiveauFilter::prepare (double rateHz, int channels, int maxSamples)
{
    CascadeBanks::prepare (rateHz, channels, maxSamples);

    std::vector<double> taps;

    for (const auto& shelf : shelves)
    {
        const auto shelfTaps = designShelf (shelf, rateHz);
        taps.insert (taps.end(), shelfTaps.begin(), shelfTaps.end());
    }

    settle (taps);
}

void NiveauFilter::reset() noexcept
{
    onRamp.snap();
    settle();
}

bool NiveauFilter::beginSlice() noexcept
{
    const auto wasOut = isOut();
    onRamp.takeRequest();

    if (wasOut && ! isOut())
        settle();

    return isIdle();
}

} // namespace tarvik
