// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/KVLEditor.h"

#include "editor/EditorSize.h"
#include "editor/SettingsMenu.h"

namespace tarvik
{

namespace
{
constexpr int statePeriodMs = 80, meterPeriodMs = 50, zoomDelayMs = 100;
constexpr int widthAt100 = 900, heightAt100 = 741;

constexpr int inLevelIndex = consoleLayout::parameter ("inLevel");
constexpr int outLevelIndex = consoleLayout::parameter ("outLevel");
constexpr double potStep = 0.0005;
constexpr int potSize = editorSize::stripHeight;

/** Where the strip's controls are, whatever the zoom. The two copy buttons share a place: one of them is visible. */
namespace stripBounds
{
using Bounds = juce::Rectangle<int>;
const Bounds slotA { 0, 0, 24, 24 };
const Bounds copy { 24, 0, 10, 24 };
const Bounds slotB { 34, 0, 24, 24 };
const Bounds inputLabel { 90, 0, 24, 24 };
const Bounds inputPot { 114, 0, potSize, potSize };
const Bounds outputLabel { 154, 0, 32, 24 };
const Bounds outputPot { 186, 0, potSize, potSize };
} // namespace stripBounds
} // namespace

KVLEditor::KVLEditor (Tarvik41Processor& processorToShow)
    : juce::AudioProcessorEditor (processorToShow), processor (processorToShow), console (processorToShow),
      menuButton (Picture::menuNormal, Picture::menuOver, Picture::menuPressed),
      slotA (Picture::slotANormal, Picture::slotAOver, Picture::slotAPressed),
      copyToB (Picture::copyToBNormal, Picture::copyToBOver, Picture::copyToBPressed),
      slotB (Picture::slotBNormal, Picture::slotBOver, Picture::slotBPressed),
      copyToA (Picture::copyToANormal, Picture::copyToAOver, Picture::copyToAPressed),
      inputPot (juce::Slider::RotaryVerticalDrag, potSize, potSize),
      outputPot (juce::Slider::RotaryVerticalDrag, potSize, potSize)
{
    setOpaque (true);
    setLookAndFeel (&look);
    addAndMakeVisible (console); // first, so that everything else is above it

    const std::tuple<PictureButton&, const char*, const char*, juce::Rectangle<int>> buttons[] {
        { menuButton, "Menu", "Settings of this instance and of all", {} }, // at the right end, which `resized` knows
        { slotA, "Slot A", "Puts the first of two sets of settings in force", stripBounds::slotA },
        { copyToB, "Copy to B", "Copies the settings in force to slot B", stripBounds::copy },
        { slotB, "Slot B", "Puts the second of two sets of settings in force", stripBounds::slotB },
        { copyToA, "Copy to A", "Copies the settings in force to slot A", stripBounds::copy },
    };

    for (const auto& [button, tooltip, description, bounds] : buttons)
    {
        button.setName ("new button");
        button.setTitle (tooltip);
        button.setTooltip (tooltip);
        button.setDescription (description);
        button.setBounds (bounds);
        button.addListener (this);
        addAndMakeVisible (button);
    }

    addAndMakeVisible (bottomBar);
    setUpPresetBox();
    addChildComponent (about);
    setUpLabel (inputLabel, "IN");
    setUpLevelPot (inputPot, inLevelIndex);
    setUpLabel (outputLabel, "OUT");
    setUpLevelPot (outputPot, outLevelIndex);
    inputLabel.setBounds (stripBounds::inputLabel);
    inputPot.setBounds (stripBounds::inputPot);
    outputLabel.setBounds (stripBounds::outputLabel);
    outputPot.setBounds (stripBounds::outputPot);

    setSize (widthAt100, heightAt100);
    updateEditorSize();
}

KVLEditor::~KVLEditor()
{
    juce::PopupMenu::dismissAllActiveMenus(); // one of them may hang on our looks
    setLookAndFeel (nullptr);
}

juce::AudioProcessorParameter& KVLEditor::parameterAt (int index) const
{
    return *processor.getParameters().getUnchecked (index);
}

void KVLEditor::setUpLabel (juce::Label& label, const char* text)
{
    constexpr float fontHeight = 15.0f;
    constexpr juce::uint32 textColour = 0xc5ffffff;

    label.setName ("new label");
    label.setText (text, juce::dontSendNotification);
    label.setFont (juce::Font (fontHeight));
    label.setJustificationType (juce::Justification::centredLeft);
    label.setColour (juce::Label::textColourId, juce::Colour (textColour));
    label.setColour (juce::TextEditor::textColourId, juce::Colours::white);
    label.setColour (juce::TextEditor::backgroundColourId, juce::Colours::transparentBlack);
    label.setAccessible (false); // the pot beside it has the same title
    addAndMakeVisible (label);
}

void KVLEditor::setUpLevelPot (KVLSlider& pot, int parameterIndex)
{
    constexpr int textBoxWidth = 50;
    constexpr double middle = 0.5;
    constexpr juce::uint32 outline = 0x66000000, text = 0xff595959, highlight = 0xff12b9ff;
    constexpr juce::uint32 pointer = 0xffe4e3de; // JUCE's own would be dark blue on black

    auto& parameter = parameterAt (parameterIndex);
    pot.setName ("new slider");
    pot.setRange (0.0, 1.0, potStep);
    pot.setTextBoxStyle (juce::Slider::NoTextBox, true, textBoxWidth, pot.getTextBoxHeight());
    pot.setColour (juce::Slider::rotarySliderOutlineColourId, juce::Colour (outline));
    pot.setColour (juce::Slider::rotarySliderFillColourId, juce::Colour (pointer));
    pot.setColour (juce::Slider::textBoxTextColourId, juce::Colour (text));
    pot.setColour (juce::Slider::textBoxHighlightColourId, juce::Colour (highlight));
    pot.setColour (juce::Slider::textBoxBackgroundColourId, juce::Colours::black);
    pot.setDoubleClickReturnValue (true, middle, juce::ModifierKeys::altModifier);
    pot.setTitle (parameter.getName (100));
    pot.setTooltip (parameterRow (parameterIndex).help);
    pot.setDescription (pot.getTooltip());
    pot.setWantsKeyboardFocus (true);
    pot.addListener (this);
    addAndMakeVisible (pot);
    OrvaneConsoleUI::attachSlider (parameter, pot);
}

/** A place for programs, which hosts have boxes of their own for: it exists and is never shown. */
void KVLEditor::setUpPresetBox()
{
    presetBox.setName ("new combo box");
    presetBox.setEditableText (false);
    presetBox.setJustificationType (juce::Justification::centredLeft);
    presetBox.setTextWhenNothingSelected ({});
    presetBox.setTextWhenNoChoicesAvailable ("(no choices)");
    presetBox.addItem ("Default", 1);
    presetBox.addListener (this);
    addChildComponent (presetBox);
}

//==============================================================================
void KVLEditor::zoomSettingChanged() { startTimer (kEditorTimerZoom, zoomDelayMs); }

void KVLEditor::updateEditorSize()
{
    // Without a screen, as under a validator, there is no display and no limit.
    const auto* const display = juce::Desktop::getInstance().getDisplays().getDisplayForRect (getScreenBounds());
    const auto size = editorSize::forZoom (processor.uiZoomSetting().getValue(),
                                           display != nullptr ? std::optional (display->totalArea) : std::nullopt);
    setBounds (getX(), getY(), size.x, size.y);
}

void KVLEditor::visibilityChanged()
{
    for (const auto timer : { kEditorTimerState, kEditorTimerMeters, kEditorTimerLicence })
        stopTimer (timer);

    if (! isVisible())
        return;

    showState();
    showMeters();
    startTimer (kEditorTimerState, statePeriodMs);
    startTimer (kEditorTimerMeters, meterPeriodMs);
}

void KVLEditor::timerCallback (int timerID)
{
    if (timerID == kEditorTimerState)
    {
        showState();
    }
    else if (timerID == kEditorTimerMeters)
    {
        showMeters();
    }
    else if (timerID == kEditorTimerZoom)
    {
        stopTimer (kEditorTimerZoom);
        updateEditorSize();
    }
}

void KVLEditor::showState()
{
    // A copy: what follows sees one state, whatever the audio thread writes meanwhile.
    const auto snapshot = processor.currentSnapshot();
    const auto isA = processor.getCurrentSlot() == 0;
    slotA.setToggleState (isA, juce::dontSendNotification);
    copyToB.setVisible (isA);
    slotB.setToggleState (! isA, juce::dontSendNotification);
    copyToA.setVisible (! isA);

    const auto showPot = [] (KVLSlider& pot, const juce::AudioProcessorParameter& parameter, double& known)
    {
        if (pot.hasUnsentStep())
            return;

        pot.setValue (static_cast<double> (parameter.getValue()), juce::sendNotificationAsync);
        known = pot.getValue();
    };

    showPot (inputPot, parameterAt (inLevelIndex), knownInput);
    showPot (outputPot, parameterAt (outLevelIndex), knownOutput);
    console.updateState (snapshot);
}

void KVLEditor::showMeters()
{
    const auto snapshot = processor.currentSnapshot(); // a copy here too
    console.updateMeters (snapshot);
}

//==============================================================================
void KVLEditor::buttonClicked (juce::Button* button)
{
    if (button == &slotA)
        processor.selectSlot (0);
    else if (button == &slotB)
        processor.selectSlot (1);
    else if (button == &menuButton)
        showMenu();
    else
        processor.copySlotToOther();
}

void KVLEditor::showMenu()
{
    const auto captured = settingsMenu::capture (processor);
    auto menu = settingsMenu::build (processor, captured);
    menu.setLookAndFeel (&look); // it would not take the window's

    // The window may close while the menu is open; the processor outlives the window.
    menu.showMenuAsync (
        juce::PopupMenu::Options().withTargetComponent (menuButton).withParentComponent (getTopLevelComponent()),
        [editor = juce::Component::SafePointer (this), captured] (int id)
        {
            if (editor == nullptr)
                return;

            settingsMenu::apply (id, juce::ModifierKeys::currentModifiers, captured, editor->processor,
                                 { [&] { editor->about.setVisible (true); }, [&] { editor->updateEditorSize(); } });
        });
}

void KVLEditor::sliderValueChanged (juce::Slider* slider)
{
    const auto isInput = slider == &inputPot;
    auto& known = isInput ? knownInput : knownOutput;

    // What the state pass puts on a pot comes by here as well, later, when the host may have moved on: that is no edit.
    if (std::abs (slider->getValue() - known) < potStep / 2.0)
        return;

    known = slider->getValue();
    parameterAt (isInput ? inLevelIndex : outLevelIndex).setValueNotifyingHost (static_cast<float> (known));
}

//==============================================================================
void KVLEditor::paint (juce::Graphics& g)
{
    using namespace editorSize;
    g.fillAll (juce::Colours::black);
    topShadow.draw (g, { 0, stripHeight, getWidth(), shadowHeight });
    bottomShadow.draw (g, { 0, getHeight() - stripHeight - shadowHeight, getWidth(), shadowHeight });
}

void KVLEditor::resized()
{
    using namespace editorSize;
    constexpr float presetShare = 0.2f;
    const auto width = static_cast<float> (getWidth());
    const auto middle = getLocalBounds().toFloat().getCentre();

    console.setBounds (0, stripHeight + shadowHeight, getWidth(), getHeight() - frameHeight);
    menuButton.setBounds (getWidth() - stripHeight, 0, stripHeight, stripHeight);
    bottomBar.setBounds (0, getHeight() - stripHeight, getWidth(), stripHeight);
    presetBox.setBounds (juce::roundToInt ((1.0f - presetShare) * width), 0,
                         juce::roundToInt (presetShare * width) - stripHeight, stripHeight);
    about.setBounds (juce::Rectangle (About::size, About::size)
                         .withPosition (juce::roundToInt (middle.x - About::size / 2.0f),
                                        juce::roundToInt (middle.y - About::size / 2.0f)));
}

void KVLEditor::setControlHighlight (ParameterControlHighlightInfo info)
{
    if (info.isHighlighted)
        console.setHighlight (info.parameterIndex, info.suggestedColour);
    else
        console.clearHighlight (info.parameterIndex);
}

int KVLEditor::getControlParameterIndex (juce::Component& control) { return console.parameterOf (control); }

} // namespace tarvik
