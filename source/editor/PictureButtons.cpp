// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/PictureButtons.h"

namespace tarvik
{

namespace
{
constexpr int twoPictureSize = 55;
constexpr int linkWidth = 30, linkHeight = 25;

Picture firstOf (Picture wanted, Picture other) { return wanted != Picture::none ? wanted : other; }

/** The largest area in the middle of the bounds with a picture's proportions, in whole pixels. */
juce::Rectangle<int> areaFor (Picture picture, juce::Rectangle<int> bounds)
{
    const auto& row = rowOf (picture);
    const auto ratio = static_cast<float> (row.height) / static_cast<float> (row.width);
    const auto width = static_cast<float> (bounds.getWidth()), height = static_cast<float> (bounds.getHeight());
    const auto isLimitedByHeight = ratio * width > height;

    return bounds.withSizeKeepingCentre (isLimitedByHeight ? juce::roundToInt (height / ratio) : bounds.getWidth(),
                                         isLimitedByHeight ? bounds.getHeight() : juce::roundToInt (width * ratio));
}
} // namespace

PictureButton::PictureButton (Picture normalPicture, Picture overPicture, Picture pressedPicture)
    : normal (normalPicture), over (firstOf (overPicture, normalPicture)),
      pressed (firstOf (pressedPicture, over.getPicture()))
{
    setName ("new button");
}

PictureButton::PictureButton (const consoleLayout::PictureButtonRow& row)
    : PictureButton (row.normal, row.over, row.pressed)
{
    setWords (row.words);

    if (getTitle().isEmpty())
    {
        setInterceptsMouseClicks (false, false);
        setAccessible (false);
        setWantsKeyboardFocus (false);
    }
}

void PictureButton::setWords (const consoleLayout::Words& words)
{
    setTooltip (words.tooltip);
    setTitle (juce::String (words.tooltip).replace ("\n", " "));
    setDescription (words.description);
    setExplicitFocusOrder (words.focusOrder);
}

void PictureButton::paintButton (juce::Graphics& g, bool isHighlighted, bool isHeld)
{
    auto& picture = isHeld || getToggleState() ? pressed : isHighlighted ? over : normal;

    if (picture.getPicture() != Picture::none)
        picture.draw (g, areaFor (picture.getPicture(), getLocalBounds()));
}

//==============================================================================
TwoPictureButton::TwoPictureButton (const juce::String& name, Picture offPicture, Picture onPicture)
    : juce::Button (name), off (offPicture), on (onPicture)
{
    setToggleable (true);
    setTriggeredOnMouseDown (true);
    setSize (twoPictureSize, twoPictureSize);
}

void TwoPictureButton::paintButton (juce::Graphics& g, bool, bool)
{
    (getToggleState() ? on : off).draw (g, getLocalBounds());
}

//==============================================================================
LinkButton::LinkButton()
    : juce::Button ("link"), pictures {
          ScaledPicture (Picture::linkOff),        ScaledPicture (Picture::linkOffOver),
          ScaledPicture (Picture::linkOffPressed), ScaledPicture (Picture::linkOn),
          ScaledPicture (Picture::linkOnOver),     ScaledPicture (Picture::linkOnPressed)
      }
{
    setToggleable (true);
    setSize (linkWidth, linkHeight);
}

void LinkButton::paintButton (juce::Graphics& g, bool isHighlighted, bool isHeld)
{
    constexpr std::size_t overIndex = 1, heldIndex = 2, onIndex = 3;
    const auto index = isHeld ? heldIndex : isHighlighted ? overIndex : 0;
    pictures[index + (getToggleState() ? onIndex : 0)].draw (g, getLocalBounds());
}

} // namespace tarvik
