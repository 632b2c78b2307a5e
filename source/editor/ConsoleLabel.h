// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ConsoleLayout.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvik
{

/** A text of the console, made from its row. Message thread. */
class ConsoleLabel final : public juce::Label
{
public:
    explicit ConsoleLabel (const consoleLayout::LabelRow& row) : juce::Label ("new label", row.text)
    {
        constexpr float narrowestText = 0.5f;
        setFont (juce::Font (row.height));
        setJustificationType (row.isCentred ? juce::Justification::centred : juce::Justification::centredLeft);
        setBorderSize ({ 0, row.leftMargin, 0, 0 }); // the boxes are hardly wider than their texts
        setMinimumHorizontalScale (narrowestText);   // and the smallest zoom makes them narrower
        setColour (textColourId, juce::Colour (row.colour));
        setColour (juce::TextEditor::textColourId, juce::Colours::black);
        setColour (juce::TextEditor::backgroundColourId, juce::Colours::transparentBlack);
        setTitle (row.title);
        setEditable (row.isEditable, row.isEditable, false);
        setInterceptsMouseClicks (row.isEditable, row.isEditable);
    }
};

} // namespace tarvik
