// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/About.h"
#include "editor/FocusMark.h"
#include "editor/KVLLNF.h"
#include "editor/OrvaneConsoleUI.h"
#include "editor/ValueBubble.h"
#include "editor/ValueField.h"
#include "editor/ZQBar.h"
#include "plugin/EditorInterface.h"

namespace tarvik
{

/** The plug-in's window: the console, above it a strip with the two slots, the level pots and the menu, below it a bar.
    It polls the processor on timers, which run only while it is visible. Message thread, except `zoomSettingChanged`.
*/
class KVLEditor final : public juce::AudioProcessorEditor,
                        public ZoomableEditor,
                        public ValueWindow,
                        private juce::MultiTimer,
                        private juce::Button::Listener,
                        private juce::ComboBox::Listener,
                        private juce::Slider::Listener
{
public:
    explicit KVLEditor (Tarvik41Processor& processorToShow);
    ~KVLEditor() override;

    void zoomSettingChanged() override;

    /** Takes the size of the zoom setting, as far as the display has room. */
    void updateEditorSize();

    void visibilityChanged() override;
    void paint (juce::Graphics& g) override;
    void resized() override;
    void setControlHighlight (ParameterControlHighlightInfo info) override;
    int getControlParameterIndex (juce::Component& control) override;

    void showValue (ValueSlider& slider, bool isHeld) override { bubble.show (slider, isHeld); }

    void typeValue (ValueSlider& slider) override;

    /** Escape closes the panel with the credits. */
    bool keyPressed (const juce::KeyPress& key) override;

private:
    enum TimerID : int
    {
        kEditorTimerState,
        kEditorTimerMeters,
        kEditorTimerLicence, ///< Belongs to the licence check; never started without one.
        kEditorTimerZoom
    };

    void timerCallback (int timerID) override;
    void buttonClicked (juce::Button* button) override;

    /** The box is never shown. */
    void comboBoxChanged (juce::ComboBox*) override {}

    void sliderValueChanged (juce::Slider* slider) override;

    /** A pot of the top strip and its label. */
    struct LevelPot
    {
        LevelPot (juce::RangedAudioParameter& parameterToShow, const char* text, juce::Rectangle<int> labelBounds,
                  juce::Rectangle<int> potBounds);

        void showParameter();
        void sendChange();

        juce::RangedAudioParameter& parameter;
        juce::Label label;
        KVLSlider pot;
        double known = 0.0; ///< The last value that pot and parameter agreed on.
    };

    /** Hears of every press in the window, after the component that it is on. */
    struct Presses final : juce::MouseListener
    {
        explicit Presses (KVLEditor& editorToTell) : editor (editorToTell) { editor.addMouseListener (this, true); }

        ~Presses() override { editor.removeMouseListener (this); }

        void mouseDown (const juce::MouseEvent& event) override { editor.pressed (event); }

        void mouseDoubleClick (const juce::MouseEvent& event) override { editor.doubleClicked (event); }

        KVLEditor& editor;
    };

    void pressed (const juce::MouseEvent& event);
    void doubleClicked (const juce::MouseEvent& event);

    /** What a control, or a component in it, stands for; null for nothing. */
    juce::RangedAudioParameter* parameterOf (juce::Component* control) const;

    void showMenu();
    void showState();
    void showMeters();

    Tarvik41Processor& processor; // hides the base class's reference on purpose, with its real type
    KVLLNF look;
    juce::SharedResourcePointer<juce::TooltipWindow> tooltips;
    OrvaneConsoleUI console;
    PictureButton menuButton, slotA, copyToB, slotB, copyToA;
    ZQBar bottomBar;
    juce::ComboBox presetBox;
    About about;
    std::array<LevelPot, 2> levelPots;
    ValueBubble bubble;
    ValueField field;
    FocusMark focusMark { *this };
    Presses presses { *this };
    ScaledPicture topShadow { Picture::shadowTop }, bottomShadow { Picture::shadowBottom };

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (KVLEditor)
};

} // namespace tarvik
