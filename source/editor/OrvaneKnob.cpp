// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/OrvaneKnob.h"

#include "editor/FocusMark.h"

namespace tarvik
{

namespace
{
constexpr int defaultSize = 100;

/** Of the circle that answers to the mouse, as a share of the width. */
constexpr float hitRadius = 0.39f;
} // namespace

OrvaneKnob::OrvaneKnob() : KVLSlider (RotaryVerticalDrag, defaultSize, defaultSize)
{
    constexpr float ringInset = 0.1f; // over the ticks, within the numerals
    focusOutline::setInset (*this, ringInset, ringInset);
}

void OrvaneKnob::setFilmstripRange (float startRadians, float endRadians)
{
    setRotaryParameters (startRadians, endRadians, true);
    arc = { startRadians, endRadians };
    repaint();
}

void OrvaneKnob::setKnobStyle (int style)
{
    constexpr Picture strips[] = { Picture::knobStandard, Picture::knobLarge };
    strip.setPicture (juce::isPositiveAndBelow (style, 2) ? strips[style] : Picture::none);
    repaint();
}

bool OrvaneKnob::hitTest (int x, int y)
{
    const auto fromCentre = juce::Point<int> (x, y).toFloat() - getLocalBounds().toFloat().getCentre();
    return fromCentre.getDistanceFromOrigin() <= static_cast<float> (getWidth()) * hitRadius;
}

void OrvaneKnob::paint (juce::Graphics& g)
{
    const auto value = share();
    strip.drawFrame (g, getLocalBounds(), filmstripFrame (value, arc), filmstripResidue (value, arc));
}

} // namespace tarvik
