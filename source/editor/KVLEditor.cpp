// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/KVLEditor.h"

#include "editor/EditorSize.h"
#include "editor/Palette.h"
#include "editor/PendingRepaints.h"
#include "editor/SetInGesture.h"
#include "editor/SettingsMenu.h"

namespace tarvik
{

namespace
{
constexpr int statePeriodMs = 80, meterPeriodMs = 50, zoomDelayMs = 100;
constexpr double potStep = 0.0005;
constexpr int stripHeight = editorSize::stripHeight;

using Bounds = juce::Rectangle<int>; // of the top strip's controls, whatever the zoom

juce::RangedAudioParameter& parameterAt (Tarvik41Processor& processor, int index)
{
    return dynamic_cast<juce::RangedAudioParameter&> (*processor.getParameters().getUnchecked (index));
}
} // namespace

KVLEditor::LevelPot::LevelPot (juce::RangedAudioParameter& parameterToShow, const char* text, Bounds labelBounds,
                               Bounds potBounds)
    : parameter (parameterToShow), label ("new label", text),
      pot (juce::Slider::RotaryVerticalDrag, stripHeight, stripHeight)
{
    constexpr int textBoxWidth = 50;
    constexpr double middle = 0.5;

    label.setBounds (labelBounds);
    label.setColour (juce::Label::textColourId, juce::Colour (palette::topStripPrint));
    label.setAccessible (false); // the pot beside it has the same title
    pot.setBounds (potBounds);
    pot.setRange (0.0, 1.0, potStep);
    pot.setTextBoxStyle (juce::Slider::NoTextBox, true, textBoxWidth, pot.getTextBoxHeight());
    pot.setColour (juce::Slider::rotarySliderOutlineColourId, juce::Colour (palette::potOutline));
    pot.setColour (juce::Slider::rotarySliderFillColourId, juce::Colour (palette::lightPrint));
    pot.setColour (juce::Slider::textBoxTextColourId, juce::Colour (palette::potText));
    pot.setColour (juce::Slider::textBoxHighlightColourId, juce::Colour (palette::potTextHighlight));
    pot.setColour (juce::Slider::textBoxBackgroundColourId, juce::Colours::black);
    pot.setDoubleClickReturnValue (true, middle, juce::ModifierKeys::altModifier);
    pot.setTitle (parameter.getName (100));
    pot.setTooltip (parameterRow (parameter.getParameterIndex()).help);
    pot.setDescription (pot.getTooltip());
    pot.setWantsKeyboardFocus (true);
    OrvaneConsoleUI::attachSlider (parameter, pot);
}

KVLEditor::KVLEditor (Tarvik41Processor& processorToShow)
    : juce::AudioProcessorEditor (processorToShow), processor (processorToShow), console (processorToShow),
      menuButton (Picture::menuNormal, Picture::menuOver, Picture::menuPressed),
      slotA (Picture::slotANormal, Picture::slotAOver, Picture::slotAPressed),
      copyToB (Picture::copyToBNormal, Picture::copyToBOver, Picture::copyToBPressed),
      slotB (Picture::slotBNormal, Picture::slotBOver, Picture::slotBPressed),
      copyToA (Picture::copyToANormal, Picture::copyToAOver, Picture::copyToAPressed), levelPots {
          LevelPot (parameterAt (processor, parameterNamed ("inLevel")), "IN", Bounds (90, 0, 24, stripHeight),
                    Bounds (114, 0, stripHeight, stripHeight)),
          LevelPot (parameterAt (processor, parameterNamed ("outLevel")), "OUT", Bounds (154, 0, 32, stripHeight),
                    Bounds (186, 0, stripHeight, stripHeight))
      }
{
    setOpaque (true);
    setLookAndFeel (&look);
    addAndMakeVisible (console); // first, so that everything else is above it

    // The two copy buttons share a place: one of them is visible.
    const std::tuple<PictureButton&, const char*, const char*, Bounds> buttons[] {
        { menuButton, "Menu", "Settings of this instance and of all", {} }, // at the right end, which `resized` knows
        { slotA, "Slot A", "Uses the first of two sets of settings", { 0, 0, 24, stripHeight } },
        { copyToB, "Copy to B", "Copies the current settings to slot B", { 24, 0, 10, stripHeight } },
        { slotB, "Slot B", "Uses the second of two sets of settings", { 34, 0, 24, stripHeight } },
        { copyToA, "Copy to A", "Copies the current settings to slot A", { 24, 0, 10, stripHeight } },
    };

    for (const auto& [button, title, description, bounds] : buttons)
    {
        button.setWords ({ title, description });
        button.setBounds (bounds);
        button.addListener (this);
        addAndMakeVisible (button);
    }

    addAndMakeVisible (bottomBar);
    presetBox.setName ("new combo box");
    presetBox.addItem ("Default", 1);
    presetBox.addListener (this);
    addChildComponent (presetBox); // for programs, which hosts show themselves: never visible
    addChildComponent (about);

    for (auto& level : levelPots)
    {
        addAndMakeVisible (level.label);
        addAndMakeVisible (level.pot);
        level.pot.addListener (this);
    }

    addChildComponent (bubble);
    addChildComponent (field);
    field.onValue = [this] (ValueSlider& slider)
    {
        showState();
        bubble.show (slider, false);
    };

    const auto size = editorSize::atZoom (1.0f);
    setSize (size.x, size.y);
    updateEditorSize();
}

KVLEditor::~KVLEditor()
{
    // For the next window one size is kept: ours, which our controls still hold.
    ScaledPictures::getInstance()->releaseUnused();
    juce::PopupMenu::dismissAllActiveMenus(); // one of them may use our look
    setLookAndFeel (nullptr);
}

//==============================================================================
void KVLEditor::zoomSettingChanged() { startTimer (kEditorTimerZoom, zoomDelayMs); }

void KVLEditor::updateEditorSize()
{
    stopTimer (kEditorTimerZoom);

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
        showState();
    else if (timerID == kEditorTimerMeters)
        showMeters();
    else if (timerID == kEditorTimerZoom)
        updateEditorSize();

    paintWithoutRefresh();
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

    for (auto& level : levelPots)
        level.showParameter();

    console.updateState (snapshot);
}

void KVLEditor::showMeters()
{
    console.updateMeters (ParameterSnapshot (processor.currentSnapshot())); // a copy here too
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
    menu.setLookAndFeel (&look); // a menu does not inherit the window's

    // The window may close while the menu is open; the processor outlives the window.
    menu.showMenuAsync (
        juce::PopupMenu::Options().withTargetComponent (menuButton).withParentComponent (getTopLevelComponent()),
        [editor = juce::Component::SafePointer (this), captured] (int id)
        {
            if (editor == nullptr)
                return;

            settingsMenu::apply (id, juce::ModifierKeys::currentModifiers, captured, editor->processor,
                                 { [&] { editor->about.open(); }, [&] { editor->updateEditorSize(); } });
        });
}

void KVLEditor::sliderValueChanged (juce::Slider* slider)
{
    for (auto& level : levelPots)
        if (slider == &level.pot)
            level.sendChange();
}

void KVLEditor::LevelPot::showParameter()
{
    if (pot.hasUnsentStep())
        return;

    pot.setValue (static_cast<double> (parameter.getValue()), juce::sendNotificationAsync);
    known = pot.getValue();
}

void KVLEditor::LevelPot::sendChange()
{
    // The notification of what the state pass set comes later, when the host may have moved on: not an edit.
    if (std::abs (pot.getValue() - known) < potStep / 2.0)
        return;

    known = pot.getValue();
    setIfNew (parameter, static_cast<float> (known));
}

//==============================================================================
juce::RangedAudioParameter* KVLEditor::parameterOf (juce::Component* control) const
{
    for (; control != nullptr && control != this; control = control->getParentComponent())
    {
        for (const auto& level : levelPots)
            if (control == &level.pot || control == &level.label)
                return &level.parameter;

        if (const auto index = console.parameterOf (*control); index != noParameter)
            return &parameterAt (processor, index);
    }

    return nullptr;
}

void KVLEditor::typeValue (ValueSlider& slider)
{
    if (auto* const parameter = parameterOf (&slider))
    {
        bubble.hide();
        field.open (slider, *parameter);
    }
}

bool KVLEditor::keyPressed (const juce::KeyPress& key)
{
    const auto closes = about.isVisible() && key == juce::KeyPress (juce::KeyPress::escapeKey);

    if (closes)
        about.close();

    return closes;
}

void KVLEditor::pressed (const juce::MouseEvent& event)
{
    auto* const control = event.eventComponent;

    if (control != &field)
        field.close (true);

    if (control != &about && ! about.isParentOf (control))
        about.close();

    if (! event.mods.isPopupMenu())
        return;

    const auto* const parameter = parameterOf (control);
    const auto* const host = getHostContext();

    if (parameter != nullptr && host != nullptr)
        if (const auto menu = host->getContextMenuForParameter (parameter))
            menu->showNativeMenu (event.getEventRelativeTo (this).getPosition());
}

void KVLEditor::doubleClicked (const juce::MouseEvent& event)
{
    if (event.mods.isPopupMenu())
        return;

    if (event.eventComponent == &console)
        if (auto* const knob = console.knobNamedAt (event.getPosition()))
            typeValue (*knob);

    for (auto& level : levelPots)
        if (event.eventComponent == &level.label)
            typeValue (level.pot);
}

//==============================================================================
void KVLEditor::paint (juce::Graphics& g)
{
    using editorSize::shadowHeight;
    g.fillAll (juce::Colours::black);
    topShadow.draw (g, { 0, stripHeight, getWidth(), shadowHeight });
    bottomShadow.draw (g, { 0, getHeight() - stripHeight - shadowHeight, getWidth(), shadowHeight });
}

void KVLEditor::resized()
{
    constexpr float presetShare = 0.2f;
    const auto width = static_cast<float> (getWidth());

    bubble.hide(); // its control is elsewhere now
    console.setBounds (0, editorSize::frameHeight / 2, getWidth(), getHeight() - editorSize::frameHeight);
    menuButton.setBounds (getWidth() - stripHeight, 0, stripHeight, stripHeight);
    bottomBar.setBounds (0, getHeight() - stripHeight, getWidth(), stripHeight);
    presetBox.setBounds (juce::roundToInt ((1.0f - presetShare) * width), 0,
                         juce::roundToInt (presetShare * width) - stripHeight, stripHeight);
    about.setBounds (juce::roundToInt ((width - About::size) / 2.0f),
                     juce::roundToInt (static_cast<float> (getHeight() - About::size) / 2.0f), About::size,
                     About::size);
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
