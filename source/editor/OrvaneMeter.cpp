// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/OrvaneMeter.h"

#include "editor/Palette.h"
#include "editor/SpokenText.h"
#include "plugin/ParameterText.h"

namespace tarvik
{

namespace
{
constexpr int defaultWidth = 124;
} // namespace

OrvaneMeter::OrvaneMeter() : angle (meterAngle (meter::lowestDb))
{
    setSize (defaultWidth, juce::roundToInt (meter::designHeight));
}

void OrvaneMeter::setDecibels (float level)
{
    setAngle (meterAngle (level), juce::jlimit (meter::lowestDb, meter::highestDb, level));
}

void OrvaneMeter::setAngle (float radians, float scaleDb)
{
    // A needle that does not move costs nothing.
    if (! std::isfinite (radians) || radians == angle)
        return;

    repaint (needleArea());
    angle = radians;
    decibels = scaleDb;
    repaint (needleArea());
}

juce::Rectangle<int> OrvaneMeter::needleArea() const
{
    const auto height = static_cast<float> (getHeight());
    const auto scale = height / meter::designHeight;
    const juce::Point pivot (static_cast<float> (getWidth()) / 2.0f, scale * meter::pivotY);
    const auto tip = pivot.getPointOnCircumference (scale * (meter::pivotY - meter::needleTipY), angle);
    const auto foot = pivot + (tip - pivot) * ((pivot.y - height) / (pivot.y - tip.y)); // on the lower edge

    return juce::Rectangle (tip, foot).expanded (meter::needleThickness).getSmallestIntegerContainer();
}

std::unique_ptr<juce::AccessibilityHandler> OrvaneMeter::createAccessibilityHandler()
{
    return std::make_unique<juce::AccessibilityHandler> (
        *this, juce::AccessibilityRole::label, juce::AccessibilityActions(),
        juce::AccessibilityHandler::Interfaces {
            std::make_unique<SpokenText> ([this] { return decimalText (decibels, 1) + " dB"; }) });
}

void OrvaneMeter::paint (juce::Graphics& g)
{
    const auto scale = static_cast<float> (getHeight()) / meter::designHeight;
    const auto x = static_cast<float> (getWidth()) / 2.0f;
    const auto pivotY = scale * meter::pivotY;

    g.addTransform (juce::AffineTransform::rotation (angle, x, pivotY));
    g.setColour (juce::Colour (palette::needle));
    g.drawLine (x, pivotY, x, scale * meter::needleTipY, meter::needleThickness);
}

} // namespace tarvik
