// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/KVLSlider.h"
#include "editor/ScaledPictures.h"

#include <array>

namespace tarvik
{

/** A lever with three positions: 0 below, a half, and 1 above. A press puts it where the mouse is. Message thread. */
class ToggleSwitch final : public KVLSlider
{
public:
    ToggleSwitch();

    /** Which plate is under the lever, 1 to 3; any other number shows none. */
    void setPositions (int plateNumber);

    void paint (juce::Graphics& g) override;

private:
    int plate = 1;
    std::array<ScaledPicture, 3> plates { ScaledPicture (Picture::togglePlate1), ScaledPicture (Picture::togglePlate2),
                                          ScaledPicture (Picture::togglePlate3) };
    std::array<ScaledPicture, 3> levers { ScaledPicture (Picture::toggleLow), ScaledPicture (Picture::toggleMiddle),
                                          ScaledPicture (Picture::toggleHigh) };

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (ToggleSwitch)
};

} // namespace tarvik
