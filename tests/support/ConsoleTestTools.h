// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/KVLEditor.h"
#include "tests/support/EditorTestTools.h"
#include "tests/support/StripTestTools.h"

namespace tarvik::test
{

/** Counts what a host would hear of one processor. */
class HostEars final : public juce::AudioProcessorListener
{
public:
    explicit HostEars (juce::AudioProcessor& processorToHear) : processor (processorToHear)
    {
        processor.addListener (this);
    }

    ~HostEars() override { processor.removeListener (this); }

    void audioProcessorParameterChanged (juce::AudioProcessor*, int index, float) override { note ("v", index); }

    void audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int index) override { note ("(", index); }

    void audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int index) override { note (")", index); }

    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override {}

    /** What was heard since the last call: "(" and ")" around a gesture, "v" for a value, each with the index. */
    juce::String heard() { return std::exchange (log, {}); }

private:
    void note (const char* what, int index) { log << what << index << " "; }

    juce::AudioProcessor& processor;
    juce::String log;
};

/** A strip with its console, which shows it. */
struct ConsoleUnderTest
{
    explicit ConsoleUnderTest (int channels = 2) : strip (makeStrip (channels)), console (*strip), ears (*strip)
    {
        console.setVisible (true);
        show();
    }

    void show() { console.updateState (strip->currentSnapshot()); }

    juce::AudioProcessorParameter& parameter (const juce::String& id) { return test::parameter (*strip, id); }

    template <typename Control = juce::Component>
    Control& control (const juce::String& id, std::size_t which = 0)
    {
        const auto controls = console.controlsOf (parameter (id).getParameterIndex());
        EXPECT_GT (controls.size(), which) << id;
        return dynamic_cast<Control&> (*controls[which]);
    }

    /** The button whose tooltip begins so. */
    juce::Button& button (const juce::String& tooltip)
    {
        for (auto* const child : console.getChildren())
            if (auto* const found = dynamic_cast<juce::Button*> (child);
                found != nullptr && found->getTooltip().startsWith (tooltip))
                return *found;

        throw std::runtime_error ("no such button");
    }

    void click (juce::Component& component)
    {
        Mouse (component).click (component.getLocalBounds().getCentre().toFloat());
    }

    std::unique_ptr<Tarvik41Processor> strip;
    OrvaneConsoleUI console;
    HostEars ears;
};

} // namespace tarvik::test
