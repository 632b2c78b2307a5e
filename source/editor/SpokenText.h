// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>

namespace tarvik
{

/** What assistive technology reads as the value of something that is only shown. Message thread. */
class SpokenText final : public juce::AccessibilityTextValueInterface
{
public:
    explicit SpokenText (std::function<juce::String()> textToSpeak) : text (std::move (textToSpeak)) {}

    bool isReadOnly() const override { return true; }

    juce::String getCurrentValueAsString() const override { return text(); }

    void setValueAsString (const juce::String&) override {}

private:
    std::function<juce::String()> text;
};

} // namespace tarvik
