// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/OrvaneConsoleUI.h"

namespace tarvik
{

namespace layout = consoleLayout;

namespace
{
constexpr const char* sliderName = "new slider";
constexpr const char* buttonName = "new button";
constexpr const char* labelName = "new label";
constexpr juce::uint32 underPicture = 0xff323e44;
constexpr float narrowestText = 0.5f;

/** A picture that is no control, although its class could be one. */
void setShownOnly (PictureButton& picture)
{
    picture.setAccessible (false);
    picture.setWantsKeyboardFocus (false);
}
} // namespace

OrvaneConsoleUI::OrvaneConsoleUI (Tarvik41Processor& processorToShow)
    : KVLUI (processorToShow), meterMode (processorToShow.meterModeSetting()), outputLegend (layout::outputLegend),
      plateMono (layout::plateMono), plateStereo (layout::plateStereo), compressorLed (layout::compressorLed),
      expanderLed (layout::expanderLed), previousChannel (layout::previousChannel), nextChannel (layout::nextChannel),
      randomChannel (layout::randomChannel), randomInAll (layout::randomInAll)
{
    setOpaque (true);
    setTitle ("Console channel");
    placeAll();
    setUpSliders();
    setUpLabels();
    registerControls();
    applyParameterDefaults();
    listenToControls();
    setSize (layout::designWidth, layout::designHeight);
}

OrvaneConsoleUI::~OrvaneConsoleUI() = default;

//==============================================================================
void OrvaneConsoleUI::place (juce::Component& control, const Box& box, const juce::String& name)
{
    control.setName (name);
    placed.emplace_back (&control, box);
    addAndMakeVisible (control);
}

void OrvaneConsoleUI::placeKnob (std::size_t index) { place (knobs[index], layout::knobs[index].box, sliderName); }

void OrvaneConsoleUI::placeLamp (std::size_t index)
{
    const auto& row = layout::pushButtons[index];

    if (row.lamp == Picture::none || lamps[index] != nullptr)
        return;

    lamps[index] = std::make_unique<PictureButton> (Picture::none, Picture::none, row.lamp);
    lamps[index]->setInterceptsMouseClicks (false, false);
    setShownOnly (*lamps[index]); // the button beside it says the same
    place (*lamps[index], row.lampBox, buttonName);
}

void OrvaneConsoleUI::placeLabel (juce::Label& label, const layout::LabelRow& row, const juce::String& title)
{
    label.setText (row.text, juce::dontSendNotification);
    label.setFont (juce::Font (row.height));
    label.setJustificationType (row.isCentred ? juce::Justification::centred : juce::Justification::centredLeft);
    label.setBorderSize ({});                        // the boxes are hardly wider than their texts,
    label.setMinimumHorizontalScale (narrowestText); // and the smallest zoom makes them narrower
    label.setColour (juce::Label::textColourId, juce::Colour (row.colour));
    label.setColour (juce::TextEditor::textColourId, juce::Colours::black);
    label.setColour (juce::TextEditor::backgroundColourId, juce::Colours::transparentBlack);
    label.setTitle (title);

    if (row.isEditable)
    {
        label.setEditable (true, true, false);
        label.setColour (juce::Label::outlineColourId, juce::Colours::transparentBlack);
        label.setColour (juce::Label::textWhenEditingColourId, juce::Colours::black);
        label.addListener (this);
    }
    else
    {
        label.setInterceptsMouseClicks (false, false);
    }

    place (label, row.box, labelName);
}

void OrvaneConsoleUI::placePushButtons()
{
    for (std::size_t i = 0; i < pushButtons.size(); ++i)
    {
        auto& button = pushButtons[i];
        button = std::make_unique<PictureButton> (Picture::pushReleased, Picture::none, Picture::pushPressed);
        button->setToggleable (true);
        button->setTriggeredOnMouseDown (true);
        place (*button, layout::pushButtons[i].box, buttonName);
    }
}

/** From back to front: what is placed later covers what was placed before, and takes its clicks. */
void OrvaneConsoleUI::placeAll()
{
    const auto placePicture = [this] (PictureButton& button, const layout::PictureButtonRow& row)
    {
        button.setTooltip (row.tooltip);
        button.setTitle (juce::String (row.tooltip).replace ("\n", " "));
        button.setDescription (row.description);
        place (button, row.box, buttonName);
    };

    placeKnob (0);
    placePicture (outputLegend, layout::outputLegend);
    placePicture (plateMono, layout::plateMono);
    placePicture (plateStereo, layout::plateStereo);

    for (std::size_t i = 0; i < layout::pushButtons.size(); ++i)
        if (layout::pushButtons[i].parameter == layout::parameter ("compLimit"))
            placeLamp (i);

    placeLabel (mixReadout, layout::mixReadout, "Comp Mix");
    placeLabel (filterReadout, layout::filterReadout, "Comp High Pass Filter");

    for (std::size_t i = 0; i < layout::pushButtons.size(); ++i)
        placeLamp (i);

    place (fader, layout::levelFader.box, layout::levelFader.name);
    placeLabel (channelName, layout::channelName, "Track name");
    placePicture (previousChannel, layout::previousChannel);
    placePicture (nextChannel, layout::nextChannel);
    place (link, layout::link, link.getName());
    placePicture (randomChannel, layout::randomChannel);
    place (mute, layout::mute, mute.getName());
    place (phase, layout::phase, phase.getName());
    placePicture (randomInAll, layout::randomInAll);
    placeLabel (leftNumber, layout::leftNumber, "Console channel");
    placeLabel (rightNumber, layout::rightNumber, "Console channel of the right side");

    for (std::size_t i = 1; i < knobs.size(); ++i)
        placeKnob (i);

    for (std::size_t i = 0; i < switches.size(); ++i)
        place (switches[i], layout::switches[i].box, sliderName);

    placePicture (compressorLed, layout::compressorLed);
    placePicture (expanderLed, layout::expanderLed);
    place (trim, layout::trim.box, layout::trim.name);
    place (vuMeter, layout::vuMeter, "VU");
    place (gainReductionMeter, layout::gainReductionMeter, "gain reduction");
    vuMeter.setTitle ("VU");
    vuMeter.setDescription ("Level of the input or of the output, by the meter mode button");
    gainReductionMeter.setTitle ("Gain reduction");
    gainReductionMeter.setDescription ("By how much the compressor turns down");
    placeLabel (debug, layout::debug, {});
    debug.setVisible (false);
    placePushButtons();

    for (auto* const shownOnly : { &outputLegend, &plateMono, &plateStereo, &compressorLed, &expanderLed })
        setShownOnly (*shownOnly);

    for (auto* const led : { &compressorLed, &expanderLed })
        led->setInterceptsMouseClicks (false, false);

    expanderLed.setToggleState (true, juce::dontSendNotification);
    link.setTooltip (layout::linkTooltip);
}

//==============================================================================
void OrvaneConsoleUI::paint (juce::Graphics& g)
{
    g.fillAll (juce::Colour (underPicture));
    background.draw (g, getLocalBounds());
}

void OrvaneConsoleUI::resized()
{
    for (const auto& [control, box] : placed)
        control->setBounds (box.on (getWidth(), getHeight()));

    KVLUI::resized();
}

} // namespace tarvik
