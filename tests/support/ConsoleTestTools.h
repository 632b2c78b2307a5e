// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/KVLEditor.h"
#include "tests/support/EditorTestTools.h"
#include "tests/support/StripTestTools.h"

namespace tarvik::test
{

/** A strip with its console, which shows it. */
struct ConsoleUnderTest
{
    explicit ConsoleUnderTest (int channels = 2) : strip (makeStrip (channels)), console (*strip), ears (*strip)
    {
        console.setVisible (true);
        show();
    }

    void show() { console.updateState (strip->currentSnapshot()); }

    /** Puts a parameter there as a host does, and shows it. */
    void set (const juce::String& id, float plain)
    {
        setPlain (*strip, id, plain);
        show();
        ears.heard();
    }

    int channel() const { return strip->currentSnapshot().tolChannel; }

    juce::AudioProcessorParameter& parameter (const juce::String& id) { return test::parameter (*strip, id); }

    template <typename Control = juce::Component>
    Control& control (const juce::String& id, std::size_t which = 0)
    {
        return dynamic_cast<Control&> (*console.controlsOf (parameter (id).getParameterIndex()).at (which));
    }

    std::unique_ptr<Tarvik41Processor> strip;
    OrvaneConsoleUI console;
    HostEars ears;
};

} // namespace tarvik::test
