// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ConsoleLayout.h"
#include "editor/SpokenText.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvik
{

/** A text of the console, made from its row. A number that is edited opens without what is shown around it. Message thread. */
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

private:
    void editorShown (juce::TextEditor* field) override
    {
        field->setText (getText().retainCharacters ("0123456789"), false);
        field->selectAll();
        Label::editorShown (field);
    }

    /** JUCE's own speaks the text alone; this one also says of what it is. */
    std::unique_ptr<juce::AccessibilityHandler> createAccessibilityHandler() override
    {
        juce::AccessibilityActions actions;

        if (isEditable())
            actions.addAction (juce::AccessibilityActionType::press, [this] { showEditor(); });

        return std::make_unique<juce::AccessibilityHandler> (
            *this, isEditable() ? juce::AccessibilityRole::editableText : juce::AccessibilityRole::label, actions,
            juce::AccessibilityHandler::Interfaces { std::make_unique<SpokenText> ([this] { return getText(); }) });
    }
};

} // namespace tarvik
