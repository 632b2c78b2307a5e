// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ConsoleTestTools.h"
#include "tests/support/Golden.h"

namespace tarvik
{
namespace
{
using namespace test;
using juce::KeyPress;

/** The strip's editor in a window that has the keyboard, as a host has it. */
struct KeyboardUnderTest : WindowUnderTest
{
    KeyboardUnderTest() : window (*editor)
    {
        set ("TolChannel", 16.0f);
        runMessagesFor (20);
    }

    void press (int keyCode, int modifiers = 0)
    {
        window.press (keyCode, modifiers);
        runMessagesFor (20);
    }

    juce::Image pictureAround (juce::Component& c)
    {
        return editor->createComponentSnapshot (editor->getLocalArea (&c, c.getLocalBounds()));
    }

    HeadlessWindow window;
};

/** The control that has the keyboard; for a text that is being edited its field. */
juce::Component* focusedControl()
{
    auto* const focused = juce::Component::getCurrentlyFocusedComponent();
    return dynamic_cast<juce::TextEditor*> (focused) != nullptr ? focused->getParentComponent() : focused;
}
} // namespace

TEST (Keyboard, TabVisitsEveryControlOnceInTheSignalsOrder)
{
    KeyboardUnderTest t;
    t.editor->grabKeyboardFocus(); // as a host gives it
    auto* const start = focusedControl();
    juce::String visited;

    do
    {
        visited << focusedControl()->getTitle() << "\n";
        t.press (KeyPress::tabKey);
    } while (focusedControl() != start && visited.length() < 5000);

    expectGolden ("tab-order.txt", visited);
}

TEST (Keyboard, ReturnPressesAButton)
{
    KeyboardUnderTest t;
    t.control ("mute").grabKeyboardFocus();
    t.press (KeyPress::returnKey);
    runMessagesFor (50);
    EXPECT_EQ (plainOf (*t.strip, "mute"), 1.0f);
}

TEST (Keyboard, TheFocusIsOutlinedForThoseWhoTabAndNotForTheMouse)
{
    KeyboardUnderTest t;
    auto &gain = t.control ("gain"), &level = t.control ("level");
    const auto plain = t.pictureAround (gain), plainLevel = t.pictureAround (level);
    gain.grabKeyboardFocus();
    runMessagesFor (20);
    EXPECT_EQ (difference (t.pictureAround (gain), plain), 0.0) << "as after a click";

    t.press (KeyPress::tabKey);
    t.press (KeyPress::tabKey, juce::ModifierKeys::shiftModifier);
    EXPECT_EQ (focusedControl(), &gain);
    EXPECT_GT (difference (t.pictureAround (gain), plain), 0.03);

    t.window.click (t.editor->getLocalBounds().getBottomLeft().toFloat().translated (200.0f, -1.0f));
    level.grabKeyboardFocus();
    runMessagesFor (20);
    EXPECT_EQ (difference (t.pictureAround (gain), plain), 0.0);
    EXPECT_EQ (difference (t.pictureAround (level), plainLevel), 0.0);
}

} // namespace tarvik
