// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/Box.h"
#include "editor/ScaledPictures.h"
#include "editor/Sites.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <array>

namespace tarvik
{

/** The panel with the version and the credits. A click on it hides it. It has the keyboard while it is open. Message
    thread.
*/
class About final : public juce::Component
{
public:
    static constexpr int size = 300; ///< Width and height that suit the font sizes.

    explicit About (const Sites& sites = Sites::configured());

    void open();

    /** Gives the keyboard back. */
    void close();

    void paint (juce::Graphics& g) override;
    void resized() override;
    void mouseUp (const juce::MouseEvent& event) override;

private:
    juce::Component::SafePointer<juce::Component> focusedBefore;
    std::array<juce::Label, 5> texts;
    juce::HyperlinkButton link;
    ScaledPicture productLogo { Picture::aboutLogoA }, makerLogo { Picture::aboutLogoB };

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (About)
};

} // namespace tarvik
