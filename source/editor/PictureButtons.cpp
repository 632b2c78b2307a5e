// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/PictureButtons.h"

#include "editor/FocusMark.h"

namespace tarvik
{

namespace
{
constexpr int twoPictureSize = 55;
constexpr int linkWidth = 30, linkHeight = 25;

Picture firstOf (Picture preferred, Picture other) { return preferred != Picture::none ? preferred : other; }

std::array<Picture, 6> offAndOn (Picture off, Picture on) { return { off, off, off, on, on, on }; }

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
StateButton::StateButton (const juce::String& name, int width, int height, const std::array<Picture, 6>& picturesToShow)
    : LeftButtonOnly<juce::Button> (name)
{
    for (std::size_t i = 0; i < pictures.size(); ++i)
        pictures[i].setPicture (picturesToShow[i]);

    setToggleable (true);
    setSize (width, height);
}

void StateButton::paintButton (juce::Graphics& g, bool isHighlighted, bool isHeld)
{
    constexpr std::size_t overIndex = 1, heldIndex = 2, onIndex = 3;
    const auto index = isHeld ? heldIndex : isHighlighted ? overIndex : 0;
    pictures[index + (getToggleState() ? onIndex : 0)].draw (g, getLocalBounds());
}

namespace
{
constexpr float keyInset = 0.08f; ///< Of the focus outline, which would cut through the name below the key.
}

PhaseButton::PhaseButton()
    : StateButton ("phase", twoPictureSize, twoPictureSize, offAndOn (Picture::phaseOff, Picture::phaseOn))
{
    focusOutline::setInset (*this, keyInset, keyInset);
    setTriggeredOnMouseDown (true);
}

CutButton::CutButton()
    : StateButton ("mute", twoPictureSize, twoPictureSize, offAndOn (Picture::muteOff, Picture::muteOn))
{
    focusOutline::setInset (*this, keyInset, keyInset);
    setTriggeredOnMouseDown (true);
}

LinkButton::LinkButton()
    : StateButton ("link", linkWidth, linkHeight,
                   { Picture::linkOff, Picture::linkOffOver, Picture::linkOffPressed, Picture::linkOn,
                     Picture::linkOnOver, Picture::linkOnPressed })
{
}

} // namespace tarvik
