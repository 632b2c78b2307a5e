// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/About.h"
#include "editor/FocusMark.h"
#include "editor/KVLLNF.h"
#include "editor/OrvaneConsoleUI.h"
#include "editor/ZQBar.h"
#include "plugin/EditorInterface.h"

namespace tarvik
{

/** The plug-in's window: the console, above it a strip with the two slots, the level pots and the menu, below it a bar.
    It polls the processor on timers, which run only while it is visible. Message thread, except `zoomSettingChanged`.
*/
class KVLEditor final : public juce::AudioProcessorEditor,
                        public ZoomableEditor,
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
        LevelPot (juce::AudioProcessorParameter& parameterToShow, const char* text, juce::Rectangle<int> labelBounds,
                  juce::Rectangle<int> potBounds);

        void showParameter();
        void sendChange();

        juce::AudioProcessorParameter& parameter;
        juce::Label label;
        KVLSlider pot;
        double known = 0.0; ///< The last value that pot and parameter agreed on.
    };

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
    FocusMark focusMark { *this };
    ScaledPicture topShadow { Picture::shadowTop }, bottomShadow { Picture::shadowBottom };

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (KVLEditor)
};

} // namespace tarvik
