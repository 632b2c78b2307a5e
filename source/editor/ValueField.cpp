// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ValueField.h"

#include "editor/Palette.h"
#include "editor/SetInGesture.h"
#include "plugin/ParameterTable.h"

#include <utility>

namespace tarvik
{

ValueField::ValueField()
{
    constexpr int width = 84, height = 24;
    constexpr float fontHeight = 15.0f, selectionAlpha = 0.35f;

    const juce::Colour amber (palette::accent);
    setColour (backgroundColourId, juce::Colour (palette::fieldSheet));
    setColour (textColourId, amber);
    setColour (highlightedTextColourId, juce::Colours::white);
    setColour (highlightColourId, amber.withAlpha (selectionAlpha));
    setColour (outlineColourId, amber);
    setColour (focusedOutlineColourId, amber);
    setColour (shadowColourId, juce::Colours::transparentBlack);
    setColour (juce::CaretComponent::caretColourId, amber);

    setTitle ("Value");
    setFont (juce::Font (fontHeight));
    setJustification (juce::Justification::centred);
    setPopupMenuEnabled (false);
    setAlwaysOnTop (true);
    setSize (width, height);
    onReturnKey = [this] { close (true); };
    onEscapeKey = [this] { close (false); };
}

void ValueField::open (ValueSlider& sliderToSet, juce::RangedAudioParameter& parameterToSet)
{
    close (true);
    slider = &sliderToSet;
    parameter = &parameterToSet;

    // As a host shows it: with the unit that it adds.
    textBefore = (parameter->getCurrentValueAsText() + " " + parameter->getLabel()).trim();

    const auto place = getParentComponent()->getLocalArea (slider, slider->valuePlace());
    setBounds (
        getLocalBounds().withCentre (place.getCentre()).constrainedWithin (getParentComponent()->getLocalBounds()));
    setText (textBefore, false);
    setVisible (true);
    grabKeyboardFocus();
    selectAll();
}

void ValueField::close (bool isTaken)
{
    auto* const closed = std::exchange (slider, nullptr);

    if (closed == nullptr)
        return;

    if (hasKeyboardFocus (true)) // a press elsewhere has moved it already
        closed->grabKeyboardFocus();

    setVisible (false);

    if (! isTaken || getText() == textBefore)
        return;

    if (const auto value = typedValue (*parameter, getText()))
    {
        setInGesture (*parameter, *value);
        onValue (*closed);
    }
}

void ValueField::focusLost (FocusChangeType cause)
{
    TextEditor::focusLost (cause);
    close (true);
}

bool ValueField::keyPressed (const juce::KeyPress& key)
{
    if (! key.isKeyCode (juce::KeyPress::tabKey))
        return TextEditor::keyPressed (key);

    close (true);
    return false; // from the slider it goes on to the next control
}

} // namespace tarvik
