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
    const auto ring = t.pictureAround (gain);
    EXPECT_EQ (ring.getPixelAt (50, 11), juce::Colour (palette::accent));
    EXPECT_EQ (difference (ring.getClippedImage ({ 0, 0, 100, 10 }), plain.getClippedImage ({ 0, 0, 100, 10 })), 0.0)
        << "through the numerals";
    EXPECT_EQ (ring.getPixelAt (30, 11), plain.getPixelAt (30, 11)) << "not round";
    level.grabKeyboardFocus();
    runMessagesFor (20);
    EXPECT_EQ (t.pictureAround (level).getPixelAt (50, 1), juce::Colour (palette::accent));
    EXPECT_EQ (t.pictureAround (level).getPixelAt (1, 300), plainLevel.getPixelAt (1, 300)) << "through the scale";

    auto& number = t.control<juce::Label> ("TolChannel");
    number.showEditor();
    EXPECT_EQ (snapshotOf (number).getPixelAt (12, 0), juce::Colour (palette::accent));
    number.hideEditor (true);

    t.window.click (t.editor->getLocalBounds().getBottomLeft().toFloat().translated (200.0f, -1.0f));
    level.grabKeyboardFocus();
    runMessagesFor (20);
    EXPECT_EQ (difference (t.pictureAround (gain), plain), 0.0);
    EXPECT_EQ (difference (t.pictureAround (level), plainLevel), 0.0);
}

} // namespace tarvik
