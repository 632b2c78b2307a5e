// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ValueSlider.h"

#include <juce_audio_processors/juce_audio_processors.h>

namespace tarvik
{

/** The field in which a slider's value is typed, one for a window, over the slider. Return, Tab and a press elsewhere take
    the text, Escape leaves; a text that is not a value of the parameter, or that was not touched, changes nothing. What is
    taken is one gesture with one value. Message thread.
*/
class ValueField final : public juce::TextEditor
{
public:
    ValueField();

    void open (ValueSlider& sliderToSet, juce::RangedAudioParameter& parameterToSet);

    /** Closes it, if it is open. */
    void close (bool isTaken);

    /** Called after a value was set. */
    std::function<void (ValueSlider&)> onValue;

    bool keyPressed (const juce::KeyPress& key) override;

    /** Takes the text before a press on the slider itself begins a drag, which JUCE's `onFocusLost` comes too late for. */
    void focusLost (FocusChangeType cause) override;

    void parentSizeChanged() override { close (false); }

private:
    ValueSlider* slider = nullptr; ///< Null while closed.
    juce::RangedAudioParameter* parameter = nullptr;
    juce::String textBefore;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (ValueField)
};

} // namespace tarvik
