// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/KVLEditor.h"
#include "tests/support/EditorTestTools.h"
#include "tests/support/StripTestTools.h"

namespace tarvik::test
{

/** A strip with its window at 100 %, found the way a host finds it. */
struct WindowUnderTest
{
    explicit WindowUnderTest (int channels = 2) : strip (makeStrip (channels)), ears (*strip)
    {
        strip->uiZoomSetting().setValue (1.0);
        open();
    }

    ~WindowUnderTest() { strip->editorBeingDeleted (editor.get()); }

    void open()
    {
        editor.reset (strip->createEditorIfNeeded());
        editor->setVisible (true);
    }

    OrvaneConsoleUI& console() { return childOf<OrvaneConsoleUI> (*editor, "Console channel"); }

    void show() { console().updateState (strip->currentSnapshot()); }

    /** Puts a parameter there as a host does, and shows it. */
    void set (const juce::String& id, float plain)
    {
        setPlain (*strip, id, plain);
        show();
        ears.heard();
    }

    juce::RangedAudioParameter& parameter (const juce::String& id) { return test::parameter (*strip, id); }

    static int indexOf (const juce::String& id)
    {
        int index = 0;

        while (id != parameterTable()[static_cast<std::size_t> (index)].id)
            ++index;

        return index;
    }

    template <typename Control = juce::Component>
    Control& control (const juce::String& id, std::size_t which = 0)
    {
        return dynamic_cast<Control&> (*console().controlsOf (indexOf (id)).at (which));
    }

    juce::Button& button (const juce::String& title) { return childOf (*editor, title); }

    std::unique_ptr<Tarvik41Processor> strip;
    HostEars ears;
    std::unique_ptr<juce::AudioProcessorEditor> editor;
};

} // namespace tarvik::test
