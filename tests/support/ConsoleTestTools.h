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

        while (id != parameterRow (index).id)
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

/** A window on no screen around one component: it has the keyboard, and keys come as from a system. */
class HeadlessWindow final : public juce::Component
{
public:
    explicit HeadlessWindow (juce::Component& content)
    {
        juce::Displays::Display only;
        only.isMain = true;
        only.totalArea = only.userArea = { 1920, 1080 };
        displays().add (only); // without a screen there is none, and JUCE opens no menu
        addAndMakeVisible (content);
        setSize (content.getWidth(), content.getHeight());
        setVisible (true);
        addToDesktop (0);
    }

    ~HeadlessWindow() override
    {
        removeFromDesktop();
        displays().clear();
    }

    void press (int keyCode, int modifiers = 0) { getPeer()->handleKeyPress ({ keyCode, modifiers, 0 }); }

    /** The mouse is there, with these buttons and keys down. */
    void mouse (juce::Point<float> place, int buttonsAndKeys = 0)
    {
        juce::ModifierKeys::currentModifiers = buttonsAndKeys;
        getPeer()->handleMouseEvent (juce::MouseInputSource::InputSourceType::mouse, place, buttonsAndKeys, 0.0f, 0.0f,
                                     juce::Time::currentTimeMillis());
    }

    void click (juce::Point<float> place)
    {
        for (const auto button : { 0, +juce::ModifierKeys::leftButtonModifier, 0 })
            mouse (place, button);
    }

    juce::RectangleList<int> repainted; ///< What is to be drawn anew.

private:
    juce::ComponentPeer* createNewPeer (int style, void*) override { return new Peer (*this, style); }

    static juce::Array<juce::Displays::Display>& displays()
    {
        return const_cast<juce::Displays&> (juce::Desktop::getInstance().getDisplays()).displays;
    }

    struct Peer final : juce::ComponentPeer
    {
        using juce::ComponentPeer::ComponentPeer;

        void* getNativeHandle() const override { return &component; } // else nothing is accessible

        void setVisible (bool) override {}

        void setTitle (const juce::String&) override {}

        void setBounds (const juce::Rectangle<int>&, bool) override {}

        juce::Rectangle<int> getBounds() const override { return component.getLocalBounds(); }

        juce::Point<float> localToGlobal (juce::Point<float> place) override { return place; }

        juce::Point<float> globalToLocal (juce::Point<float> place) override { return place; }

        void setMinimised (bool) override {}

        bool isMinimised() const override { return false; }

        void setFullScreen (bool) override {}

        bool isFullScreen() const override { return false; }

        void setIcon (const juce::Image&) override {}

        bool contains (juce::Point<int>, bool) const override { return true; }

        OptionalBorderSize getFrameSizeIfPresent() const override { return OptionalBorderSize (getFrameSize()); }

        juce::BorderSize<int> getFrameSize() const override { return {}; }

        bool setAlwaysOnTop (bool) override { return true; }

        void toFront (bool) override {}

        void toBehind (juce::ComponentPeer*) override {}

        bool isFocused() const override { return true; }

        void grabFocus() override {}

        void repaint (const juce::Rectangle<int>& area) override
        {
            static_cast<HeadlessWindow&> (component).repainted.add (area);
        }

        void performAnyPendingRepaintsNow() override {}

        void setAlpha (float) override {}

        juce::StringArray getAvailableRenderingEngines() override { return {}; }

        void textInputRequired (juce::Point<int>, juce::TextInputTarget&) override {}
    };
};

} // namespace tarvik::test
