// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/Fader.h"
#include "editor/KVLUI.h"
#include "editor/OrvaneKnob.h"
#include "editor/OrvaneMeter.h"
#include "editor/ToggleSwitch.h"
#include "editor/TrackPlate.h"
#include "editor/TrimPot.h"
#include "plugin/Tarvik41Processor.h"

#include <array>
#include <deque>

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

    /** Moves the needles and the expander's LED. */
    void updateMeters (const ParameterSnapshot& snapshot);

    /** Makes every control show its parameter; tells neither the host nor the processor. */
    void updateState (const ParameterSnapshot& snapshot);

    /** Gives a slider its parameter's own words, unit and steps. */
    static void attachSlider (juce::RangedAudioParameter& parameter, ValueSlider& slider);

    /** The knob whose name, numerals or read-out a point of the panel is among; null for none. */
    ValueSlider* knobNamedAt (juce::Point<int> place);

    void paint (juce::Graphics& g) override;
    void resized() override;

private:
    struct PushButton
    {
        explicit PushButton (const consoleLayout::PushRow& row);

        PictureButton cap, lamp;
    };

    /** A parameter and what shows it: a button or a slider, which may take steps of the wheel. */
    struct Shown
    {
        juce::RangedAudioParameter& parameter;
        juce::Button* button;
        juce::Slider* slider;
        KVLSlider* wheeled;
    };

    // Construction.
    void place (juce::Component& control, const Box& box);
    void placeSlider (ValueSlider& slider, const Box& box, int parameter);
    void placeButton (juce::Button& button, const Box& box, int parameter);
    void placeMeter (OrvaneMeter& meter, const consoleLayout::MeterRow& row);
    void placeTrackPlate();
    void placeKnobsAndSwitches();
    void connect (int parameter, juce::Component& control);
    void applyParameterDefaults();

    // From a control to its parameter.
    void sliderValueChanged (juce::Slider* slider) override;
    void sliderDragStarted (juce::Slider* slider) override;
    void sliderDragEnded (juce::Slider* slider) override;
    void buttonClicked (juce::Button* button) override;

    void labelTextChanged (juce::Label* label) override { trackPlate.numberTyped (*label); }

    void toggleParameter (int index);
    void showParameters();
    void makeLargePictures();

    ProcessorSetting<int>& meterMode;
    std::vector<std::pair<juce::Component*, Box>> placed;

    ScaledPicture background { Picture::panel };
    float pictureScale = 0.0f; ///< Of the display, for which the large pictures are held; 0 before the first picture.
    PictureButton outputLegend;
    TrackPlate trackPlate;
    ConsoleLabel mixReadout, filterReadout;
    Fader fader;
    CutButton mute;
    PhaseButton phase;
    std::array<OrvaneKnob, consoleLayout::knobs.size()> knobs;
    std::array<ToggleSwitch, consoleLayout::switches.size()> switches;
    PictureButton compressorLed, expanderLed;
    TrimPot trim;
    OrvaneMeter vuMeter, gainReductionMeter;
    ConsoleLabel debug;
    std::deque<PushButton> pushButtons; ///< In the order of their rows.
    std::vector<Shown> shown;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (OrvaneConsoleUI)
};

} // namespace tarvik
