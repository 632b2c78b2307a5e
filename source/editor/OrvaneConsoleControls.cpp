// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/OrvaneConsoleUI.h"

namespace tarvik
{

namespace layout = consoleLayout;

namespace
{
/** Tab goes through the controls in the order of their parameters, which is the signal's, with room between two for
    what has none. JUCE's own order would be that of the pixel rows.
*/
constexpr int focusOrderOf (int parameter)
{
    constexpr int stride = 10;
    return stride * (parameter + 1);
}
} // namespace

void OrvaneConsoleUI::setUpSliders()
{
    for (std::size_t i = 0; i < knobs.size(); ++i)
    {
        const auto& row = layout::knobs[i];
        knobs[i].setFilmstripRange (juce::degreesToRadians (row.startDegrees), juce::degreesToRadians (row.endDegrees));
        knobs[i].setRange (0.0, 1.0, static_cast<double> (row.step));
        knobs[i].setKnobStyle (row.style);
        attachSlider (parameterAt (row.parameter), knobs[i]);
    }

    constexpr double leverStep = 0.5;

    for (std::size_t i = 0; i < switches.size(); ++i)
    {
        const auto& row = layout::switches[i];
        switches[i].setRange (0.0, 1.0, leverStep);
        switches[i].setPositions (row.plate);
        attachSlider (parameterAt (row.parameter), switches[i]);
    }

    attachSlider (parameterAt (layout::levelFader.parameter), fader);
    attachSlider (parameterAt (layout::trim.parameter), trim);
}

void OrvaneConsoleUI::attachSlider (juce::AudioProcessorParameter& parameter, juce::Slider& slider)
{
    constexpr int longestText = 5, hoverMilliseconds = 2000;
    slider.setPopupDisplayEnabled (true, false, slider.getTopLevelComponent(), hoverMilliseconds);
    const juce::String unit (parameterRow (parameter.getParameterIndex()).unitAfterText());
    slider.textFromValueFunction = [&parameter, unit] (double value)
    { return parameter.getText (static_cast<float> (value), longestText) + " " + unit; };
    slider.valueFromTextFunction = [&parameter] (const juce::String& text)
    { return static_cast<double> (parameter.getValueForText (text)); };
}

void OrvaneConsoleUI::setUpLabels()
{
    channelName.setFont (juce::Font (nameTypeface->typeface).withHeight (layout::channelName.height));
    channelName.setColour (juce::Label::backgroundColourId, juce::Colours::transparentBlack);
}

void OrvaneConsoleUI::registerControls()
{
    const auto connect = [this] (int index, auto& control)
    {
        registerControl (index, control);
        const auto& parameter = parameterAt (index);
        control.setTitle (parameter.getName (100));
        control.setDescription (parameterRow (index).help);
        control.setExplicitFocusOrder (focusOrderOf (index));

        if (control.getTooltip().isEmpty())
            control.setTooltip (parameterRow (index).help);
    };

    const auto connectAll = [&connect] (const auto& rows, auto& controls)
    {
        for (std::size_t i = 0; i < rows.size(); ++i)
            connect (rows[i].parameter, controls[i]);
    };

    connectAll (layout::knobs, knobs);
    connectAll (layout::switches, switches);
    connect (layout::levelFader.parameter, fader);
    connect (layout::trim.parameter, trim);
    connect (layout::parameter ("mute"), mute);
    connect (layout::parameter ("phase"), phase);
    connect (layout::parameter ("TolLink"), link);
    connect (layout::parameter ("TolChannel"), leftNumber);
    connect (layout::parameter ("TolChannel"), rightNumber);

    for (std::size_t i = 0; i < pushButtons.size(); ++i)
    {
        if (const auto index = layout::pushButtons[i].parameter; index != noParameter)
        {
            connect (index, *pushButtons[i]);
            continue;
        }

        pushButtons[i]->setTitle ("Meter mode");
        pushButtons[i]->setTooltip ("What the VU meter shows: the input while pressed, otherwise the output");
        pushButtons[i]->setDescription (pushButtons[i]->getTooltip());
        pushButtons[i]->setExplicitFocusOrder (focusOrderOf (layout::parameter ("pad")) + 1);
    }

    // Around the channel's number, which comes behind the strip's controls.
    auto order = focusOrderOf (parameterIndex::tolChannel);
    previousChannel.setExplicitFocusOrder (order - 1);

    for (auto* const behind : std::initializer_list<juce::Component*> { &nextChannel, &randomChannel, &randomInAll })
        behind->setExplicitFocusOrder (++order);
}

void OrvaneConsoleUI::applyParameterDefaults()
{
    for (const auto& [index, controls] : parameterToControls)
    {
        auto* const slider = controls.size() == 1 ? dynamic_cast<juce::Slider*> (controls.front()) : nullptr;

        if (slider == nullptr)
            continue;

        const auto& parameter = parameterAt (index);
        const auto fallback = static_cast<double> (parameter.getDefaultValue());

        if (parameter.isDiscrete())
            slider->setRange (0.0, 1.0, 1.0 / (parameter.getNumSteps() - 1));

        slider->setDoubleClickReturnValue (true, parameter.isOrientationInverted() ? 1.0 - fallback : fallback,
                                           juce::ModifierKeys::altModifier);
    }
}

void OrvaneConsoleUI::listenToControls()
{
    for (const auto& entry : placed)
    {
        auto* const control = entry.first;

        if (auto* const slider = dynamic_cast<juce::Slider*> (control))
        {
            slider->addListener (this);
            slider->setWantsKeyboardFocus (true);
        }
        else if (auto* const button = dynamic_cast<juce::Button*> (control))
        {
            button->addListener (this);
        }
    }
}

} // namespace tarvik
