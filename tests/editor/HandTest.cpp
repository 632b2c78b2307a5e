// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ConsoleTestTools.h"

namespace tarvik
{
namespace
{
using namespace test;
using juce::KeyPress;
using Keys = juce::ModifierKeys;

/** The strip's editor in a window that hears mouse and keys as from a system. */
struct HandUnderTest : WindowUnderTest
{
    HandUnderTest() : window (*editor)
    {
        show();
        runMessagesFor (20);
        ears.heard();
    }

    ~HandUnderTest() { Keys::currentModifiers = {}; }

    /** A control by its parameter; the two pots above the panel, too. */
    juce::Component& at (const juce::String& id)
    {
        if (! id.contains ("inLevel"))
            return control (id);

        return childOf<juce::Slider> (*editor, "Input Level");
    }

    juce::Point<float> middleOf (juce::Component& c)
    {
        return editor->getLocalArea (&c, c.getLocalBounds()).getCentre().toFloat();
    }

    /** The keyboard goes to a control, whose parameter is put somewhere. */
    void focus (const juce::String& id, float share)
    {
        parameter (id).setValueNotifyingHost (share);
        editor->setVisible (false);
        editor->setVisible (true);
        at (id).grabKeyboardFocus();
        runMessagesFor (5);
        ears.heard();
    }

    void press (int keyCode, int modifiers = 0)
    {
        window.press (keyCode, modifiers);
        runMessagesFor (5);
    }

    bool hasKeyboard (const juce::Component& c) { return juce::Component::getCurrentlyFocusedComponent() == &c; }

    ValueField& field() { return childOf<ValueField> (*editor, "Value"); }

    bool isBubbleShown() { return allIn<ValueBubble> (*editor).front()->isVisible(); }

    HeadlessWindow window;
};
} // namespace

TEST (Hand, AValueIsTypedOverItsControlAsOneChange)
{
    HandUnderTest t;

    for (const auto& [id, text, plain, heard] : { std::tuple ("gain", "-3.25 dB", -3.25f, "(1 v1 )1 "),
                                                  { "thd", " +2", 2.0f, "(0 v0 )0 " },
                                                  { "level", "-12,5", -12.5f, "(37 v37 )37 " },
                                                  { "inLevel", "99", 10.0f, "(38 v38 )38 " },
                                                  { "compRelease", "auto", 8.0f, "(19 v19 )19 " },
                                                  { "compRelease", "100", 2.0f, "(19 v19 )19 " },
                                                  { "compHPF", "off", 20.0f, "(15 v15 )15 " },
                                                  { "compMix", "47", 0.47f, "(14 v14 )14 " },
                                                  { "expRelease", "-5", 0.025f, "(30 v30 )30 " },
                                                  { "lowGain", "800", 1.0f, "(10 v10 )10 " },
                                                  { "compMix", "54 %", 0.5432f, "" }, // as it stood: not rounded
                                                  { "compRelease", "fast", 4.0f, "" },
                                                  { "gain", "loud", 20.592f, "" },
                                                  { "gain", "", 20.592f, "" } })
    {
        t.focus (id, 0.5432f);
        t.press (KeyPress::returnKey);
        ASSERT_TRUE (t.hasKeyboard (t.field())) << id;
        t.field().setText (text);
        t.press (KeyPress::returnKey);
        EXPECT_EQ (t.ears.heard(), heard) << id << " " << text;
        EXPECT_NEAR (plainOf (*t.strip, id), plain, 0.005f) << id << " " << text;
        EXPECT_TRUE (t.hasKeyboard (t.at (id)) && ! t.field().isVisible()) << id;
    }

    for (const auto key : { +KeyPress::escapeKey, +KeyPress::tabKey })
    {
        t.focus ("gain", 0.0f);
        t.press (KeyPress::returnKey);
        t.field().setText ("6");
        t.press (key);
        EXPECT_EQ (plainOf (*t.strip, "gain"), key == KeyPress::tabKey ? 6.0f : -12.0f);
        EXPECT_TRUE (t.hasKeyboard (t.at (key == KeyPress::tabKey ? "pad" : "gain")));
    }
}

TEST (Hand, ADoubleClickOnANameOpensTheFieldAndAPressElsewhereTakesIt)
{
    for (const auto& [id, toName] : { std::pair ("gain", juce::Point (0.0f, 53.0f)), { "inLevel", { -25.0f, 0.0f } } })
    {
        HandUnderTest t;
        const auto control = t.middleOf (t.at (id));
        const auto doubleClick = [&t] (juce::Point<float> place)
        {
            t.window.click (place);
            t.window.click (place);
            runMessagesFor (5);
            return t.field().isVisible();
        };

        for (const auto& [value, elsewhere] : { std::pair (3, juce::Point (450.0f, 20.0f)), { 4, control } })
        {
            ASSERT_TRUE (doubleClick (control + toName)) << id;
            t.field().setTopLeftPosition (0, 99); // beside the control
            t.field().setText (juce::String (value));
            t.window.click (elsewhere);
            EXPECT_FALSE (t.field().isVisible());
            EXPECT_EQ (plainOf (*t.strip, id), value);
            EXPECT_FALSE (t.ears.heard().contains ("(1 (1")) << "a gesture within a drag's";
        }

        EXPECT_FALSE (doubleClick (control));
        EXPECT_EQ (plainOf (*t.strip, id), 0.0f) << "on the control it is the default";
    }
}

TEST (Hand, TheBubbleStaysTwoSecondsAfterDragWheelAndKey)
{
    HandUnderTest t;
    const auto middle = t.middleOf (t.at ("gain"));
    const auto isLeft = [&t] (int milliseconds)
    {
        runMessagesFor (milliseconds);
        return t.isBubbleShown();
    };
    t.window.mouse (middle, Keys::leftButtonModifier);
    t.window.mouse (middle.translated (0.0f, -9.0f), Keys::leftButtonModifier);
    EXPECT_TRUE (isLeft (2200)) << "held";
    t.window.mouse (middle);
    EXPECT_TRUE (isLeft (1500));
    Mouse (t.at ("gain")).wheel (Mouse::notch);
    EXPECT_TRUE (isLeft (1500));
    t.press (KeyPress::upKey);
    EXPECT_TRUE (isLeft (1500));
    EXPECT_FALSE (isLeft (1000));
    Mouse (t.at ("highGain")).wheel (Mouse::notch);
    EXPECT_TRUE (isLeft (5)) << "a stepped knob";
}

TEST (Hand, AnArrowKeyIsAHundredthOrAStepAndATenthOfItWithShiftOrCtrl)
{
    HandUnderTest t;

    for (const auto& [id, from, step, fineStep] : { std::tuple ("gain", 0.5f, 0.01f, 0.001f),
                                                    { "level", 0.5f, 0.01f, 0.001f },
                                                    { "inLevel", 0.5f, 0.01f, 0.001f },
                                                    { "compRelease", 0.5f, 0.125f, 0.125f },
                                                    { "compAttack", 0.5f, 0.5f, 0.5f },
                                                    { "expRelease", 0.0f, 0.01f, 0.0094f } }) // a millisecond
    {
        const auto movedBy = [&, name = id, start = from] (int key, int modifiers)
        {
            t.focus (name, start);
            t.press (key, modifiers);
            return t.parameter (name).getValue() - start;
        };
        constexpr float grid = 6e-4f;
        EXPECT_NEAR (movedBy (KeyPress::upKey, 0), step, grid) << id;
        EXPECT_EQ (t.ears.heard().removeCharacters ("()0123456789 "), "v") << id;
        EXPECT_NEAR (movedBy (KeyPress::rightKey, Keys::shiftModifier), fineStep, grid) << id;
        EXPECT_NEAR (movedBy (KeyPress::upKey, Keys::ctrlModifier), fineStep, grid) << id;
        EXPECT_NEAR (movedBy (KeyPress::leftKey, 0), from > 0.0f ? -step : 0.0f, grid) << id;
        movedBy (KeyPress::upKey, Keys::altModifier);
        EXPECT_EQ (t.ears.heard(), "") << "left to the host";
    }
}

TEST (Hand, ADragIsFineWithShiftOrCtrlAndAPressAloneSendsNoValue)
{
    HandUnderTest t;
    constexpr int left = Keys::leftButtonModifier;

    for (auto* const p : t.strip->getParameters())
        p->setValueNotifyingHost (0.3071f); // where the fader's pixels round

    t.show();
    t.ears.heard();

    for (auto* const slider : allIn<ValueSlider> (*t.editor))
    {
        const auto place = t.middleOf (*slider);
        const auto isLever = dynamic_cast<ToggleSwitch*> (slider) != nullptr; // goes to where it is pressed
        t.window.mouse (place);
        t.window.mouse (place, left);
        t.window.mouse (place);

        const auto heard = t.ears.heard();
        EXPECT_TRUE (isLever || ! heard.contains ("v")) << slider->getTitle() << " " << heard;
    }

    for (const auto& [id, travel] : { std::pair ("gain", 250.0f), { "level", 399.0f } })
        for (const auto fine : { +Keys::shiftModifier, +Keys::ctrlModifier })
        {
            t.set (id, 0.0f);
            const auto& p = t.parameter (id);
            const auto place = t.middleOf (t.at (id));
            const auto start = p.getValue();
            t.window.mouse (place);
            t.window.mouse (place, left);

            for (int y = 1; y <= 40; ++y) // as slow as a mouse can be
                t.window.mouse (place.translated (0.0f, static_cast<float> (-y)), left | fine);

            EXPECT_NEAR (p.getValue() - start, 4.0f / travel, 5e-4f) << id;
            t.window.mouse (place.translated (0.0f, -60.0f), left);
            EXPECT_NEAR (p.getValue() - start, 24.0f / travel, 5e-4f) << "goes on from there";
            t.window.mouse (place);
        }
}

TEST (Hand, TheRightButtonOpensTheHostsMenuAndDoesNothingElse)
{
    struct Host final : juce::AudioProcessorEditorHostContext
    {
        struct Menu final : juce::HostProvidedContextMenu
        {
            explicit Menu (juce::String& whereOpened) : where (whereOpened) {}

            juce::PopupMenu getEquivalentPopupMenu() const override { return {}; }

            void showNativeMenu (juce::Point<int> place) const override { where << "at " << place.toString() << " "; }

            juce::String& where;
        };

        std::unique_ptr<juce::HostProvidedContextMenu>
        getContextMenuForParameter (const juce::AudioProcessorParameter* p) const override
        {
            opened << p->getParameterIndex() << " ";
            return p->getParameterIndex() == 35 ? nullptr : std::make_unique<Menu> (opened); // not for everything
        }

        mutable juce::String opened;
    } host;

    HandUnderTest t;
    const auto press = [&t] (juce::Component& c)
    {
        const auto place = t.middleOf (c);

        t.window.mouse (place);
        t.window.mouse (place, Keys::rightButtonModifier);
        t.window.mouse (place.translated (0.0f, -9.0f), Keys::rightButtonModifier);
        t.window.mouse (place);

        runMessagesFor (5);
    };
    const auto pressAll = [&]
    {
        for (const auto* const id : { "gain", "level", "highPass", "mute", "pad", "TolChannel", "inLevel" })
            press (t.at (id));

        press (t.button ("Slot B"));
        press (t.button ("Menu"));
    };

    pressAll(); // a host without menus
    t.editor->setHostContext (&host);
    pressAll();
    EXPECT_EQ (t.ears.heard(), "");
    EXPECT_EQ (t.strip->getCurrentSlot(), 0);
    EXPECT_EQ (juce::Component::getNumCurrentlyModalComponents(), 0) << "no menu, no field";
    EXPECT_EQ (host.opened, "1 at 90, 535 37 at 809, 421 13 at 314, 630 35 2 at 41, 629 40 at 552, 78 38 at 126, 12 ");

    // Pressed while the left one is down, it neither ends nor keeps the drag, and a key does nothing.
    const auto place = t.middleOf (t.at ("gain"));

    for (const auto buttons : { +Keys::leftButtonModifier, Keys::leftButtonModifier | Keys::rightButtonModifier, 0 })
    {
        t.window.mouse (place, buttons);
        t.press (buttons != 0 ? +KeyPress::upKey : +KeyPress::escapeKey);
    }

    EXPECT_EQ (t.ears.heard(), "(1 )1 ");
    t.editor->setHostContext (nullptr);
}

TEST (Hand, AboutGoesAtEscapeAndAtAPressBesideIt)
{
    HandUnderTest t;
    auto& about = childOf<About> (*t.editor, "About");

    for (const auto isByKey : { true, false })
    {
        t.focus ("gain", 0.5f);
        about.open();

        if (isByKey)
            t.press (KeyPress::escapeKey);
        else
            t.window.click ({ 450.0f, 20.0f });

        EXPECT_FALSE (about.isVisible());
        EXPECT_TRUE (t.hasKeyboard (t.at ("gain")) || ! isByKey);
    }
}

TEST (Hand, ALinkedChannelsNumberOpensBare)
{
    HandUnderTest t;
    t.set ("TolLink", 1.0f);

    for (const auto& [channel, side] : { std::pair (17, 0u), { 17, 1u }, { 32, 0u }, { 32, 1u } })
    {
        t.set ("TolChannel", static_cast<float> (channel));
        auto& number = t.control<juce::Label> ("TolChannel", side);
        t.window.click (t.middleOf (number));
        ASSERT_NE (number.getCurrentTextEditor(), nullptr);
        EXPECT_EQ (number.getCurrentTextEditor()->getText(), juce::String (channel));
        t.press (KeyPress::returnKey);
        EXPECT_EQ (t.ears.heard(), "") << "nothing was typed";
    }
}

TEST (Hand, WhatIsNamedIsSpokenWithItsValue)
{
    HandUnderTest t;
    t.set ("compMix", 0.47f);
    ParameterSnapshot snapshot;
    snapshot.inputMeter = 0.5f;
    snapshot.gainReductionDb = -7.0f;
    t.console().updateMeters (snapshot);
    juce::String values;

    for (auto* const c : allIn (*t.editor))
        if (auto* const handler = c->getAccessibilityHandler(); handler != nullptr && c->getTitle().isNotEmpty())
        {
            EXPECT_EQ (handler->getTitle(), c->getTitle()) << "a dead title";

            if (const auto* const value = handler->getValueInterface())
                if (juce::StringArray ({ "VU", "Gain reduction", "Comp Mix", "Channel number" })
                        .contains (c->getTitle()))
                    values << c->getTitle() << " " << value->getCurrentValueAsString().trim() << ", ";
        }

    EXPECT_EQ (values, "Channel number 1, Comp Mix 47 %, Comp Mix 47 %, VU -6.0 dB, Gain reduction -7.0 dB, ");
    EXPECT_EQ (t.at ("equalizer").getTitle(), "EQ In") << "the panel's name, not the host's";
}

} // namespace tarvik
