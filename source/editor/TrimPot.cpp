// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/TrimPot.h"

#include "editor/ControlGeometry.h"

namespace tarvik
{

namespace
{
constexpr int defaultSize = 18;
}

TrimPot::TrimPot() : KVLSlider (RotaryVerticalDrag, defaultSize, defaultSize) {}

void TrimPot::paint (juce::Graphics& g)
{
    dial.drawTurned (g, getLocalBounds(), trimAngle (share()));
    shadow.draw (g, getLocalBounds());
}

} // namespace tarvik
