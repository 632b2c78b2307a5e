// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ControlGeometry.h"
#include "editor/EditorSize.h"
#include "tests/support/ConsoleTestTools.h"
#include "tests/support/Golden.h"

namespace tarvik
{
namespace
{
using namespace test;
}

TEST (Editor, EverythingHasItsPlaceAndThePresetBoxIsNeverShown)
{
    WindowUnderTest t;
    const auto places = [&t] (juce::Component& frame, bool areOnConsole)
    {
        juce::String all;

        for (auto* const child : allIn (frame))
            if (t.console().isParentOf (child) == areOnConsole)
                all << child->getTitle().paddedRight (' ', 36)
                    << frame.getLocalArea (child, child->getLocalBounds()).toString()
                    << (child->isVisible() ? "\n" : ", hidden\n");

        return all;
    };

    expectGolden ("editor.txt", places (*t.editor, false));
    t.console().setSize (2700, 2030); // as the drawing has it
    expectGolden ("console.txt", places (t.console(), true));
    t.console().setSize (900, 677);
    EXPECT_EQ (t.control ("gain").getBounds(), juce::Rectangle (40, 453, 100, 100)) << "rounded anew";
}

TEST (Editor, ItsSizeFollowsTheZoomAndStaysOnTheDisplay)
{
    const juce::Rectangle small (1024, 768), narrow (1000, 2000), nothing (0, 0), large (1920, 1080);
    const auto nan = std::numeric_limits<double>::quiet_NaN();

    // (768 x 0.9 - 64) / 740.67 is 0.8468, less than the width allows. A display without an area sets no limit.
    for (const auto& [zoom, display, width, height] : { std::tuple (0.8, small, 720, 605),
                                                        { 1.0, nothing, 900, 741 },
                                                        { 1.2, nothing, 1080, 876 },
                                                        { 1.5, small, 762, 637 },
                                                        { 1.5, narrow, 900, 741 },
                                                        { -3.0, large, 720, 605 },
                                                        { nan, large, 900, 741 },
                                                        { 1e300, nothing, 1350, 1079 } })
        EXPECT_EQ (editorSize::forZoom (zoom, display), juce::Point (width, height)) << zoom;

    WindowUnderTest t;
    t.strip->uiZoomSetting().setValue (1.5);
    runMessagesFor (200);
    EXPECT_EQ (t.editor->getBounds().withZeroOrigin(), juce::Rectangle (1350, 1079));
}

TEST (Editor, AHostsChangeIsShownWithinATickUnlessHidden)
{
    WindowUnderTest t;
    auto& pot = childOf<juce::Slider> (*t.editor, "Input Level");
    setPlain (*t.strip, { { "inLevel", 3.333f }, { "gain", 12.0f } });
    t.ears.heard();
    runMessagesFor (250);
    EXPECT_EQ (t.ears.heard(), "") << "an echo";
    EXPECT_NEAR (pot.getValue(), (3.333 + 10.0) / 20.0, 0.0005);
    EXPECT_NEAR (t.control<juce::Slider> ("gain").getValue(), 0.4, 1e-6);

    t.editor->setVisible (false);
    setPlain (*t.strip, { { "inLevel", 10.0f }, { "gain", 48.0f } });
    runMessagesFor (200);
    EXPECT_LT (std::max (pot.getValue(), t.control<juce::Slider> ("gain").getValue()), 0.9);
    t.editor->setVisible (true);
    EXPECT_EQ (pot.getValue(), 1.0) << "at once";
    EXPECT_EQ (t.control<juce::Slider> ("gain").getValue(), 1.0);
}

TEST (Editor, TheSlotsAreChosenAndCopied)
{
    WindowUnderTest t;
    const auto clicked = [&t] (const char* button)
    {
        click (t.button (button));
        runMessagesFor (150);
        juce::String shown;

        for (const auto* const title : { "Slot A", "Slot B", "Copy to A", "Copy to B" })
            if (auto& b = t.button (title); b.isVisible() && (b.getToggleState() || b.getTitle().startsWith ("Copy")))
                shown << title << " ";

        return shown << plainOf (*t.strip, "gain");
    };

    setPlain (*t.strip, "gain", 20.0f);
    EXPECT_EQ (clicked ("Copy to B"), "Slot A Copy to B 20") << "copying does not choose";
    setPlain (*t.strip, "gain", 5.0f);
    EXPECT_EQ (clicked ("Slot B"), "Slot B Copy to A 20");
    EXPECT_EQ (t.strip->getCurrentSlot(), 1);
    clicked ("Copy to A");
    EXPECT_EQ (clicked ("Slot A"), "Slot A Copy to B 20");
}

TEST (Editor, TheMenusOpenInItsWindowAndOutliveItWithoutHarm)
{
    WindowUnderTest t;
    HeadlessWindow window (*t.editor);

    const auto modal = []
    {
        runMessagesFor (20);
        return juce::Component::getCurrentlyModalComponent();
    };
    const auto choose = [&] (int row)
    {
        click (t.button ("Menu"));

        while (row-- > 0)
            window.press (juce::KeyPress::downKey);

        window.press (juce::KeyPress::returnKey);
        modal();
    };

    for (const auto* const button : { "Menu", "Manual and links" })
    {
        click (t.button (button));
        auto* const menu = modal();
        ASSERT_NE (menu, nullptr);
        EXPECT_EQ (menu->getParentComponent(), &window);

        // The sheet is what reaches its edge, without a frame, and behind the round corners is the window.
        const auto sheet = snapshotOf (*menu);
        EXPECT_EQ (sheet.getPixelAt (0, 0).getAlpha(), 0);

        for (const auto& edge : { juce::Point (40, 0), juce::Point (0, 40), juce::Point (4, 4) })
            EXPECT_EQ (sheet.getPixelAt (edge.x, edge.y), juce::Colour (palette::menuSheet)) << "not our look";

        window.press (juce::KeyPress::escapeKey);
        EXPECT_EQ (modal(), nullptr);
    }

    auto& about = childOf<About> (*t.editor, "About");
    EXPECT_FALSE (about.isVisible());
    choose (1);
    EXPECT_TRUE (about.isVisible());

    t.ears.heard();
    choose (8); // About, five sub-menus, the compressor's key, the expander's
    EXPECT_EQ (t.ears.heard(), "(34 v34 )34 ");

    click (t.button ("Menu"));
    ASSERT_NE (modal(), nullptr);
    t.strip->editorBeingDeleted (t.editor.get());
    t.editor.reset();
    EXPECT_EQ (modal(), nullptr);
    t.open();
}

TEST (Editor, HighlightsFrameTheControl)
{
    WindowUnderTest t;
    const auto plain = snapshotOf (t.console());

    for (const auto* const id : { "gain", "TolLink" }) // the other is on the track plate
    {
        const auto index = t.editor->getControlParameterIndex (t.control (id));
        const auto corner = t.console().getLocalPoint (&t.control (id), juce::Point<int>());
        t.editor->setControlHighlight ({ index, true, juce::Colours::red });
        EXPECT_NE (snapshotOf (t.console()).getPixelAt (corner.x, corner.y), plain.getPixelAt (corner.x, corner.y));
        t.editor->setControlHighlight ({ index, false, juce::Colours::red });
        EXPECT_EQ (difference (snapshotOf (t.console()), plain), 0.0);
    }
}

TEST (Editor, TwentyCanBeOpenWhileAudioRunsAndLeaveNothing)
{
    std::atomic<bool> isStopping { false };
    std::vector<WindowUnderTest> windows (20);

    for (auto& w : windows)
        w.strip->prepareToPlay (48000.0, 256);

    std::thread audio (
        [&]
        {
            while (! isStopping)
                for (auto& w : windows)
                    process (*w.strip, { noise (256, 1), noise (256, 2) }, 256);
        });

    // Some go, and come back, while it plays.
    for (const std::size_t i : { 3u, 11u, 19u })
    {
        runMessagesFor (200);
        windows[i].strip->editorBeingDeleted (windows[i].editor.get());
        windows[i].open();
    }

    for (auto& w : windows)
        snapshotOf (*w.editor);

    EXPECT_GT (childOf<OrvaneMeter> (*windows[0].editor, "VU").getAngle(), meterAngle (meter::lowestDb));

    isStopping = true;
    audio.join();
    EXPECT_GT (juce::SharedResourcePointer<juce::TooltipWindow>().getReferenceCount(), 20);
    windows.clear();
    EXPECT_EQ (juce::SharedResourcePointer<juce::TooltipWindow>().getReferenceCount(), 1);

    // Their pictures stay for the next window, and no control holds one.
    EXPECT_GT (ScaledPictures::getInstance()->memoryInUse(), 1000000u);
    ScaledPictures::getInstance()->releaseUnused();
    EXPECT_EQ (ScaledPictures::getInstance()->memoryInUse(), 0u);
}

/** A needle that moves must not have the whole console painted, but all that it leaves and enters. */
TEST (Editor, AMeterTickRepaintsTheNeedlesAlone)
{
    WindowUnderTest t;
    HeadlessWindow window (*t.editor);
    ParameterSnapshot snapshot;
    auto before = snapshotOf (*t.editor);

    for (const auto step : { 1, 2, 7, 13, 20 })
    {
        snapshot.inputMeter = 0.1f * static_cast<float> (step);
        snapshot.gainReductionDb = -static_cast<float> (step);
        window.repainted.clear();
        t.console().updateMeters (snapshot);
        const auto after = snapshotOf (*t.editor);
        int numMeterPixels = 0;

        for (const auto* const row : { &consoleLayout::vuMeter, &consoleLayout::gainReductionMeter })
        {
            const auto box = row->box.on (900, 677).translated (0, 32);
            numMeterPixels += box.getWidth() * box.getHeight();

            for (int y = box.getY(); y < box.getBottom(); ++y)
                for (int x = box.getX(); x < box.getRight(); ++x)
                    ASSERT_TRUE (before.getPixelAt (x, y) == after.getPixelAt (x, y)
                                 || window.repainted.containsPoint (x, y))
                        << step << " " << x << " " << y;
        }

        int numRepainted = 0;

        for (const auto& area : window.repainted)
            numRepainted += area.getWidth() * area.getHeight();

        EXPECT_GT (numRepainted, 0);
        EXPECT_LT (numRepainted, numMeterPixels * 7 / 10);
        before = after;
    }

    window.repainted.clear();

    // A second tick with the same levels costs nothing, nor does a state pass in which nothing has changed.
    t.console().updateMeters (snapshot);
    t.show();
    EXPECT_TRUE (window.repainted.isEmpty());
}

} // namespace tarvik
