// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/OrvaneConsoleUI.h"

#include "editor/ControlGeometry.h"
#include "editor/FocusMark.h"
#include "editor/SetInGesture.h"

namespace tarvik
{

namespace layout = consoleLayout;

namespace
{
constexpr int meterShowsInput = 0, meterShowsOutput = 1;

/** From a parameter's value to a slider's or back: an inverted parameter has its end where the slider has 0. */
float turnedFor (const juce::AudioProcessorParameter& parameter, float value)
{
    return parameter.isOrientationInverted() ? 1.0f - value : value;
}
} // namespace

OrvaneConsoleUI::PushButton::PushButton (const layout::PushRow& row)
    : cap (Picture::pushReleased, Picture::none, Picture::pushPressed),
      lamp (layout::PictureButtonRow { row.lampBox, Picture::none, Picture::none, row.lamp })
{
    cap.setToggleable (true);
    cap.setTriggeredOnMouseDown (true);
    constexpr float capInset = 0.19f; // round the well of the cap, which is half of the button's width
    focusOutline::setInset (cap, capInset, capInset);
}

OrvaneConsoleUI::OrvaneConsoleUI (Tarvik41Processor& processorToShow)
    : KVLUI (processorToShow), meterMode (processorToShow.meterModeSetting()), outputLegend (layout::outputLegend),
      trackPlate (processorToShow, parameterAt (parameterIndex::tolChannel), parameterAt (parameterIndex::tolLink)),
      mixReadout (layout::mixReadout), filterReadout (layout::filterReadout), compressorLed (layout::compressorLed),
      expanderLed (layout::expanderLed), debug (layout::debug)
{
    setOpaque (true);
    setTitle ("Console channel");

    // In the order of the table: what is placed later covers what was placed before, and takes its clicks.
    place (outputLegend, layout::outputLegend.box);
    placeTrackPlate();
    place (mixReadout, layout::mixReadout.box);
    place (filterReadout, layout::filterReadout.box);

    for (const auto& row : layout::pushButtons)
        if (auto& lamp = pushButtons.emplace_back (row).lamp; row.lamp != Picture::none)
            place (lamp, row.lampBox);

    placeSlider (fader, layout::levelFader.box, layout::levelFader.parameter);
    fader.setName (layout::levelFader.name);
    placeButton (mute, layout::mute.box, layout::mute.parameter);
    placeButton (phase, layout::phase.box, layout::phase.parameter);
    placeKnobsAndSwitches();
    place (compressorLed, layout::compressorLed.box);
    place (expanderLed, layout::expanderLed.box);
    expanderLed.setToggleState (true, juce::dontSendNotification);
    placeSlider (trim, layout::trim.box, layout::trim.parameter);
    trim.setName (layout::trim.name);
    placeMeter (vuMeter, layout::vuMeter);
    placeMeter (gainReductionMeter, layout::gainReductionMeter);
    place (debug, layout::debug.box);
    debug.setVisible (false);

    for (std::size_t i = 0; i < pushButtons.size(); ++i)
        placeButton (pushButtons[i].cap, layout::pushButtons[i].box, layout::pushButtons[i].parameter);

    applyParameterDefaults();
    setSize (layout::designWidth, layout::designHeight);
}

//==============================================================================
void OrvaneConsoleUI::place (juce::Component& control, const Box& box)
{
    placed.emplace_back (&control, box);
    addAndMakeVisible (control);
}

void OrvaneConsoleUI::placeSlider (ValueSlider& slider, const Box& box, int parameter)
{
    place (slider, box);
    connect (parameter, slider);
    attachSlider (parameterAt (parameter), slider);
    slider.addListener (this);
    slider.setWantsKeyboardFocus (true);
}

void OrvaneConsoleUI::placeButton (juce::Button& button, const Box& box, int parameter)
{
    place (button, box);
    button.addListener (this);

    if (parameter != noParameter)
        connect (parameter, button);
    else
        dynamic_cast<PictureButton&> (button).setWords (layout::meterMode);
}

void OrvaneConsoleUI::placeMeter (OrvaneMeter& meter, const layout::MeterRow& row)
{
    place (meter, row.box);
    meter.setTitle (row.title);
    meter.setDescription (row.description);
}

void OrvaneConsoleUI::placeTrackPlate()
{
    addAndMakeVisible (trackPlate);
    trackPlate.link.setTooltip (layout::link.tooltip);
    trackPlate.link.setTitle (layout::link.tooltip);
    trackPlate.leftNumber.setTitle ("Channel number");
    trackPlate.rightNumber.setTitle ("Right channel number");
    connect (layout::link.parameter, trackPlate.link);

    for (auto* const number : { &trackPlate.leftNumber, &trackPlate.rightNumber })
    {
        connect (parameterIndex::tolChannel, *number);
        number->addListener (this);
    }
}

void OrvaneConsoleUI::placeKnobsAndSwitches()
{
    for (std::size_t i = 0; i < knobs.size(); ++i)
    {
        const auto& row = layout::knobs[i];
        knobs[i].setFilmstripRange (juce::degreesToRadians (row.startDegrees), juce::degreesToRadians (row.endDegrees));
        knobs[i].setRange (0.0, 1.0, static_cast<double> (row.step));
        knobs[i].setKnobStyle (row.style);
        placeSlider (knobs[i], row.box, row.parameter);
    }

    constexpr double leverStep = 0.5;

    for (std::size_t i = 0; i < switches.size(); ++i)
    {
        const auto& row = layout::switches[i];
        switches[i].setRange (0.0, 1.0, leverStep);
        switches[i].setPositions (row.plate);
        placeSlider (switches[i], row.box, row.parameter);
    }
}

/** Registers a control and gives it the parameter's words. */
void OrvaneConsoleUI::connect (int index, juce::Component& control)
{
    registerControl (index, control);
    const auto& parameter = parameterAt (index);
    const auto* const help = parameterRow (index).help;

    if (control.getTitle().isEmpty())
        control.setTitle (layout::titleOf (index, parameter.getName (100).toRawUTF8()));

    control.setDescription (help);
    control.setExplicitFocusOrder (layout::focusOrderOf (index));

    if (auto& tooltip = dynamic_cast<juce::SettableTooltipClient&> (control); tooltip.getTooltip().isEmpty())
        tooltip.setTooltip (help);
}

void OrvaneConsoleUI::attachSlider (juce::RangedAudioParameter& parameter, ValueSlider& slider)
{
    const juce::String unit (parameterRow (parameter.getParameterIndex()).unitAfterText());
    constexpr int longestText = 5;
    slider.textFromValueFunction = [&parameter, unit] (double value)
    { return parameter.getText (static_cast<float> (value), longestText) + " " + unit; };
    slider.valueFromTextFunction = [&parameter] (const juce::String& text)
    { return static_cast<double> (parameter.getValueForText (text)); };
    slider.legalPosition = [&parameter] (double position)
    {
        const auto value = turnedFor (parameter, static_cast<float> (position));
        return static_cast<double> (turnedFor (parameter, parameter.convertTo0to1 (parameter.convertFrom0to1 (value))));
    };
}

void OrvaneConsoleUI::applyParameterDefaults()
{
    for (const auto& [index, controls] : parameterToControls)
    {
        auto& parameter = parameterAt (index);
        auto* const slider = dynamic_cast<juce::Slider*> (controls.front());
        auto* const button = dynamic_cast<juce::Button*> (controls.front());

        if (slider != nullptr || button != nullptr)
            shown.push_back ({ parameter, button, slider, dynamic_cast<KVLSlider*> (slider) });

        if (slider == nullptr)
            continue;

        if (parameter.isDiscrete())
            slider->setRange (0.0, 1.0, 1.0 / (parameter.getNumSteps() - 1));

        slider->setDoubleClickReturnValue (true,
                                           static_cast<double> (turnedFor (parameter, parameter.getDefaultValue())),
                                           juce::ModifierKeys::altModifier);
    }
}

void OrvaneConsoleUI::paint (juce::Graphics& g)
{
    if (const auto scale = ScaledPicture::scaleOf (g); scale != std::exchange (pictureScale, scale))
        makeLargePictures();

    background.draw (g, getLocalBounds());
}

/** The panel and the strips of the knobs, which are nearly all that a first window has to decode, at once. */
void OrvaneConsoleUI::makeLargePictures()
{
    std::vector<ScaledPictures::Copy> copies { background.copyFor (getLocalBounds(), pictureScale) };

    for (const auto& knob : knobs)
        copies.push_back (knob.stripCopyFor (pictureScale));

    ScaledPictures::getInstance()->makeTogether (copies);
    background.hold (getLocalBounds(), pictureScale);

    for (auto& knob : knobs)
        knob.holdStrip (pictureScale);
}

void OrvaneConsoleUI::resized()
{
    for (const auto& [control, box] : placed)
        control->setBounds (box.on (getWidth(), getHeight()));

    trackPlate.placeOn (getWidth(), getHeight());
    pictureScale = 0.0f; // other sizes
    KVLUI::resized();
}

ValueSlider* OrvaneConsoleUI::knobNamedAt (juce::Point<int> place)
{
    constexpr float shareOfHeight = 0.18f; // how far names and read-outs stand off a knob's square
    ValueSlider* nearest = nullptr;
    const auto distanceTo = [place] (const juce::Component& knob)
    { return knob.getBounds().getCentre().getDistanceSquaredFrom (place); };

    for (auto& knob : knobs)
        if (knob.getBounds()
                .expanded (0, juce::roundToInt (shareOfHeight * static_cast<float> (knob.getHeight())))
                .contains (place)
            && (nearest == nullptr || distanceTo (knob) < distanceTo (*nearest)))
            nearest = &knob;

    return nearest;
}

//==============================================================================
void OrvaneConsoleUI::sliderValueChanged (juce::Slider* slider)
{
    auto& parameter = parameterAt (parameterOf (*slider));
    setIfNew (parameter, turnedFor (parameter, static_cast<float> (slider->getValue())));
}

void OrvaneConsoleUI::sliderDragStarted (juce::Slider* slider)
{
    parameterAt (parameterOf (*slider)).beginChangeGesture();
}

void OrvaneConsoleUI::sliderDragEnded (juce::Slider* slider) { parameterAt (parameterOf (*slider)).endChangeGesture(); }

void OrvaneConsoleUI::toggleParameter (int index)
{
    auto& parameter = parameterAt (index);
    setInGesture (parameter, 1.0f - parameter.getValue());
}

void OrvaneConsoleUI::buttonClicked (juce::Button* button)
{
    if (const auto index = parameterOf (*button); index != noParameter)
        toggleParameter (index);
    else
        meterMode.setValue (1 - meterMode.getValue()); // the one button without a parameter
}

//==============================================================================
void OrvaneConsoleUI::updateMeters (const ParameterSnapshot& snapshot)
{
    if (const auto activity = snapshot.expanderAmount.get(); std::isfinite (activity))
        expanderLed.setAlpha (juce::jlimit (0.0f, 1.0f, activity));

    if (const auto mode = meterMode.getValue(); mode == meterShowsInput || mode == meterShowsOutput)
    {
        const auto& level = mode == meterShowsInput ? snapshot.inputMeter : snapshot.outputMeter;
        vuMeter.setDecibels (juce::Decibels::gainToDecibels (level.get()));
    }

    const auto reductionDb = juce::jlimit (meter::lowestReductionDb, 0.0f, snapshot.gainReductionDb.get());
    gainReductionMeter.setAngle (gainReductionAngle (reductionDb), reductionDb);
}

void OrvaneConsoleUI::showParameters()
{
    for (const auto& [parameter, button, slider, wheeled] : shown)
    {
        const auto value = turnedFor (parameter, parameter.getValue());

        if (button != nullptr)
            button->setToggleState (value > 0.5f, juce::dontSendNotification);
        else if (wheeled == nullptr || ! wheeled->hasUnsentStep()) // the parameter does not have a wheel's step yet
            slider->setValue (static_cast<double> (value), juce::dontSendNotification);
    }
}

void OrvaneConsoleUI::updateState (const ParameterSnapshot& snapshot)
{
    showParameters();
    trackPlate.show (snapshot.trackName);
    compressorLed.setToggleState (snapshot.limiterActive, juce::dontSendNotification);
    outputLegend.setVisible (meterMode.getValue() == meterShowsOutput);

    for (auto& push : pushButtons)
    {
        if (parameterOf (push.cap) == noParameter)
            push.cap.setToggleState (meterMode.getValue() == meterShowsInput, juce::dontSendNotification);

        push.lamp.setToggleState (push.cap.getToggleState(), juce::dontSendNotification);
    }

    for (const auto& [readout, index] :
         { std::pair (&mixReadout, layout::parameter ("compMix")), { &filterReadout, layout::parameter ("compHPF") } })
        readout->setText (parameterAt (index).getCurrentValueAsText(), juce::dontSendNotification);
}

} // namespace tarvik
