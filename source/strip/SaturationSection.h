// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/ParameterSnapshot.h"
#include "strip/RampRow.h"
#include "strip/SaturationChannel.h"

#include <array>
#include <memory>
#include <vector>

namespace tarvik
{
/** The harmonic stage after the equaliser: the harmonics, overdrive where "THD" is above 0 dB, and the output filters.
    Every audio channel is the console channel that "TOL Channel" says or, unlinked, one of its neighbours. Takes any
    finite or other sample; what leaves is finite. */
class SaturationSection
{
public:
    // A ControlledStage.
    void prepare (double rateHz, int numChannels, int maxSamples);
    void reset() noexcept;
    void release();
    void update (const ParameterSnapshot& snapshot, bool force) noexcept;
    void process (float* const* channels, int numSamples) noexcept;
    bool isSettled() noexcept;

private:
    void overdrive (float* row, const float* mix, int n) noexcept;

    /** Only ever grows: the filters inside may not be destroyed on every thread that prepares. */
    std::vector<std::unique_ptr<SaturationChannel>> channelObjects;
    std::vector<SaturationChannel*> inUse;
    RampRow<LinearRamp> harmonicScale { 1.0 };
    RampRow<LinearRamp> overdriveMix { 0.0 };
    std::vector<float> bent;          ///< work row of the overdrive
    std::array<float, 2> lastBent {}; ///< the newest sample that each channel's output filters have had
    float lastThdDb = 0.0f;
};
} // namespace tarvik
