// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ToggleSwitch.h"

#include "editor/ControlGeometry.h"
#include "editor/FocusMark.h"

namespace tarvik
{

namespace
{
constexpr int defaultSize = 60;
}

ToggleSwitch::ToggleSwitch() : KVLSlider (LinearVertical, defaultSize, defaultSize)
{
    constexpr float besidePlate = 0.19f, abovePlate = 0.1f; // the words are beside it
    focusOutline::setInset (*this, besidePlate, abovePlate);
}

void ToggleSwitch::setPositions (int plateNumber)
{
    plate = plateNumber;
    repaint();
}

void ToggleSwitch::paint (juce::Graphics& g)
{
    if (juce::isPositiveAndBelow (plate - 1, static_cast<int> (plates.size())))
        plates[static_cast<std::size_t> (plate - 1)].draw (g, getLocalBounds());

    levers[static_cast<std::size_t> (leverPosition (getValue()))].draw (g, getLocalBounds());
}

} // namespace tarvik
