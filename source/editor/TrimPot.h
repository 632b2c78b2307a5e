// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/KVLSlider.h"
#include "editor/ScaledPictures.h"

namespace tarvik
{

/** A small pot for a screwdriver: a dial that turns under a shadow that does not. Message thread. */
class TrimPot final : public KVLSlider
{
public:
    TrimPot();

    void paint (juce::Graphics& g) override;

    /** Nothing inside has bounds. */
    void resized() override {}

private:
    ScaledPicture dial { Picture::trimDial }, shadow { Picture::trimShadow };

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (TrimPot)
};

} // namespace tarvik
