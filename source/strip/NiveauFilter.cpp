// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/NiveauFilter.h"

#include "dsp/AnalogBiquad.h"
#include "dsp/MZTiCoefs.h"
#include "dsp/RampTimes.h"
#include "dsp/RowOperations.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

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

    Design design;
    design.numerator = analogue.numerator;
    design.denominator = analogue.denominator;
    design.sampleRate = rateHz;
    design.design();
    return design.taps;
}
} // namespace

void NiveauFilter::prepare (double rateHz, int numChannels, int maxSamples)
{
    std::vector<double> taps;

    for (const auto& shelf : shelves)
    {
        const auto shelfTaps = designShelf (shelf, rateHz);
        taps.insert (taps.end(), shelfTaps.begin(), shelfTaps.end());
    }

    cascades.resize (static_cast<std::size_t> (std::max (numChannels, 0)));
    cascadePointers.clear();

    for (auto& cascade : cascades)
    {
        cascade.setTaps (taps);
        cascadePointers.push_back (&cascade);
    }

    onRamp.prepare (rampSteps (rateHz));

    const auto rowLength = static_cast<std::size_t> (std::max (maxSamples, 0));
    wetShare.resize (rowLength);
    dryShare.resize (rowLength);
    wet.resize (rowLength * cascades.size());
    wetRows.clear();

    for (std::size_t c = 0; c < cascades.size(); ++c)
        wetRows.push_back (wet.data() + c * rowLength);
}

void NiveauFilter::reset() noexcept
{
    onRamp.snap();

    for (auto& cascade : cascades)
        cascade.clear();
}

bool NiveauFilter::beginSlice() noexcept
{
    const auto wasOff = isOff();
    onRamp.takeRequest();

    if (wasOff && ! isOff())
        for (auto& cascade : cascades)
            cascade.clear();

    return onRamp.restsAtOne();
}

void NiveauFilter::process (float* const* channels, int n) noexcept
{
    if (beginSlice())
        return processSideBySide (cascadePointers, channels, n);

    if (isOff())
        return;

    // The fade scales the filter's input, not its output: fading out, what it remembers rings on.
    onRamp.fill (wetShare.data(), n);
    rows::combine (rows::ScalarOperation::subtractFrom, dryShare.data(), wetShare.data(), 1.0f, n);

    for (std::size_t c = 0; c < cascades.size(); ++c)
    {
        rows::multiply (wetRows[c], channels[c], wetShare.data(), n);
        rows::multiply (channels[c], dryShare.data(), n);
    }

    processSideBySide (cascadePointers, wetRows.data(), n);

    for (std::size_t c = 0; c < cascades.size(); ++c)
        rows::add (channels[c], wetRows[c], n);
}

} // namespace tarvik
