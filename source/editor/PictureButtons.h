// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ConsoleLayout.h"
#include "editor/ScaledPictures.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <array>

namespace tarvik
{

/** An image button that shows its pictures filtered to size: the pressed one while held or toggled on, the one for the
    mouse above it, otherwise the normal one. For a missing picture the one before it in this order serves: normal,
    over, pressed. The picture keeps its proportions in the middle of the bounds. A click never flips the state by
    itself. Message thread.
*/
class PictureButton : public juce::ImageButton
{
public:
    PictureButton (Picture normalPicture, Picture overPicture, Picture pressedPicture);

    /** The same with its words. Without any it is a picture that is only shown: it takes neither clicks nor focus. */
    explicit PictureButton (const consoleLayout::PictureButtonRow& row);

    void setWords (const consoleLayout::Words& words);

    void paintButton (juce::Graphics& g, bool isHighlighted, bool isHeld) override;

private:
    ScaledPicture normal, over, pressed;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (PictureButton)
};

/** A button that shows one of two pictures by its toggle state, and acts on the press. Message thread. */
class TwoPictureButton : public juce::Button
{
public:
    TwoPictureButton (const juce::String& name, Picture offPicture, Picture onPicture);

    void paintButton (juce::Graphics& g, bool isHighlighted, bool isHeld) override;

private:
    ScaledPicture off, on;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (TwoPictureButton)
};

class PhaseButton final : public TwoPictureButton
{
public:
    PhaseButton() : TwoPictureButton ("phase", Picture::phaseOff, Picture::phaseOn) {}
};

class CutButton final : public TwoPictureButton
{
public:
    CutButton() : TwoPictureButton ("mute", Picture::muteOff, Picture::muteOn) {}
};

/** Shows whether two channels are linked, and under the mouse and held looks different in both states. Message
    thread. */
class LinkButton final : public juce::Button
{
public:
    LinkButton();

    void paintButton (juce::Graphics& g, bool isHighlighted, bool isHeld) override;

private:
    std::array<ScaledPicture, 6> pictures;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (LinkButton)
};

} // namespace tarvik
