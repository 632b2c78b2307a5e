// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ControlGeometry.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvik
{

/** The needle of a meter; its glass and its scale are in the panel's picture. Message thread. */
class OrvaneMeter final : public juce::Component
{
public:
    OrvaneMeter();

    /** Points at a level in dB, limited to -16 to 15; one that is not a number is ignored. */
    void setDecibels (float level);

    /** Points in a direction, in radians clockwise from straight up, where the scale has a value in dB; a direction that is
        not a number is ignored.
    */
    void setAngle (float radians, float scaleDb);

    float getAngle() const noexcept { return angle; }

    void paint (juce::Graphics& g) override;

private:
    std::unique_ptr<juce::AccessibilityHandler> createAccessibilityHandler() override;

    /** What the needle covers, with the soft edge of its line. */
    juce::Rectangle<int> needleArea() const;

    float angle, decibels = meter::lowestDb;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (OrvaneMeter)
};

} // namespace tarvik
