// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ControlGeometry.h"
#include "editor/KVLSlider.h"
#include "editor/ScaledPictures.h"

namespace tarvik
{

/** A console knob, drawn from a film strip of its positions and rotated by the fraction of a frame. Only the round body
    answers to the mouse. Message thread.
*/
class OrvaneKnob final : public KVLSlider
{
public:
    OrvaneKnob();

    /** Where values 0 and 1 point, in radians clockwise from straight up; below two turns. */
    void setFilmstripRange (float startRadians, float endRadians);

    /** 0 is the standard knob, 1 the large one; any other draws nothing. */
    void setKnobStyle (int style);

    /** The copy of its strip that it draws at a display's scale. */
    ScaledPictures::Copy stripCopyFor (float scale) const { return strip.copyFor (getLocalBounds(), scale); }

    void holdStrip (float scale) { strip.hold (getLocalBounds(), scale); }

    bool hitTest (int x, int y) override;
    void paint (juce::Graphics& g) override;

    /** Nothing inside has bounds. */
    void resized() override {}

private:
    RotaryArc arc;
    ScaledPicture strip { Picture::knobStandard };

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (OrvaneKnob)
};

} // namespace tarvik
