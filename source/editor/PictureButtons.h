// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ConsoleLayout.h"
#include "editor/LeftButtonOnly.h"
#include "editor/ScaledPictures.h"

#include <array>

namespace tarvik
{

/** An image button that shows its pictures filtered to size: the pressed one while held or toggled on, the one for the
    mouse above it, otherwise the normal one. A missing picture is replaced by the one before it in this order: normal,
    over, pressed. The picture keeps its proportions in the middle of the bounds. A click never flips the state by
    itself. Message thread.
*/
class PictureButton : public LeftButtonOnly<juce::ImageButton>
{
public:
    PictureButton (Picture normalPicture, Picture overPicture, Picture pressedPicture);

    /** The same with its words. Without any it is only a picture: it takes neither clicks nor focus. */
    explicit PictureButton (const consoleLayout::PictureButtonRow& row);

    void setWords (const consoleLayout::Words& words);

    void paintButton (juce::Graphics& g, bool isHighlighted, bool isHeld) override;

private:
    ScaledPicture normal, over, pressed;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (PictureButton)
};

/** A button with a picture for each state: normal, under the mouse and held, first those of off and then those of on.
    Message thread.
*/
class StateButton : public LeftButtonOnly<juce::Button>
{
public:
    StateButton (const juce::String& name, int width, int height, const std::array<Picture, 6>& picturesToShow);

    void paintButton (juce::Graphics& g, bool isHighlighted, bool isHeld) override;

private:
    std::array<ScaledPicture, 6> pictures;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (StateButton)
};

struct PhaseButton final : StateButton
{
    PhaseButton();
};

struct CutButton final : StateButton
{
    CutButton();
};

struct LinkButton final : StateButton
{
    LinkButton();
};

} // namespace tarvik
