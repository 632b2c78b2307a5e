// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ConsoleLayout.h"
#include "editor/Fader.h"
#include "editor/KVLUI.h"
#include "editor/OrvaneKnob.h"
#include "editor/OrvaneMeter.h"
#include "editor/PictureButtons.h"
#include "editor/ToggleSwitch.h"
#include "editor/TrimPot.h"
#include "plugin/Tarvik41Processor.h"

#include <array>
#include <memory>

namespace tarvik
{

/** The console channel: one picture with every control on it by proportion. Turns what the mouse does into changes of
    parameters, and shows what a snapshot says. It holds no state of its own: what is seen comes from the parameters, at
    the next call of `updateState`. Message thread.
*/
class OrvaneConsoleUI final : public KVLUI,
                              private juce::Slider::Listener,
                              private juce::Button::Listener,
                              private juce::Label::Listener
{
public:
    explicit OrvaneConsoleUI (Tarvik41Processor& processorToShow);
    ~OrvaneConsoleUI() override;

    /** Moves the needles and the expander's LED. */
    void updateMeters (const ParameterSnapshot& snapshot);

    /** Makes every control show its parameter; tells neither the host nor the processor. */
    void updateState (const ParameterSnapshot& snapshot);

    /** Gives a slider the value popup in its parameter's own words and unit. */
    static void attachSlider (juce::AudioProcessorParameter& parameter, juce::Slider& slider);

    void paint (juce::Graphics& g) override;
    void resized() override;

private:
    // Construction, in the order of painting.
    void place (juce::Component& control, const Box& box, const juce::String& name);
    void placeAll();
    void placeKnob (std::size_t index);
    void placeLamp (std::size_t index);
    void placeLabel (juce::Label& label, const consoleLayout::LabelRow& row, const juce::String& title);
    void placePushButtons();
    void setUpSliders();
    void setUpLabels();
    void registerControls();
    void applyParameterDefaults();
    void listenToControls();

    // From a control to its parameter.
    void sliderValueChanged (juce::Slider* slider) override;
    void sliderDragStarted (juce::Slider* slider) override;
    void sliderDragEnded (juce::Slider* slider) override;
    void buttonClicked (juce::Button* button) override;
    void labelTextChanged (juce::Label* label) override;
    void toggleParameter (int index);
    void setInGesture (juce::RangedAudioParameter& parameter, float plainValue);
    void stepChannel (int direction);
    void toggleLink();

    // From the parameters to the controls.
    void showParameters();
    void showChannel (const ParameterSnapshot& snapshot);

    int numMainChannels() const;
    int channelNumber() const;
    bool isLinked() const;

    ProcessorSetting<int>& meterMode;
    std::vector<std::pair<juce::Component*, Box>> placed;

    ScaledPicture background { Picture::panel };
    std::array<OrvaneKnob, consoleLayout::knobs.size()> knobs;
    Fader fader;
    TrimPot trim;
    std::array<ToggleSwitch, consoleLayout::switches.size()> switches;
    std::array<std::unique_ptr<PictureButton>, consoleLayout::pushButtons.size()> pushButtons;
    std::array<std::unique_ptr<PictureButton>, consoleLayout::pushButtons.size()> lamps; ///< Null where there is none.
    PhaseButton phase;
    CutButton mute;
    LinkButton link;
    OrvaneMeter vuMeter, gainReductionMeter;
    PictureButton outputLegend, plateMono, plateStereo, compressorLed, expanderLed;
    PictureButton previousChannel, nextChannel, randomChannel, randomInAll;
    juce::Label channelName, leftNumber, rightNumber, mixReadout, filterReadout, debug;
    juce::SharedResourcePointer<NameTypeface> nameTypeface;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (OrvaneConsoleUI)
};

} // namespace tarvik
