// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EditorSize.h"
#include "tests/support/ConsoleTestTools.h"
#include "tests/support/Golden.h"

namespace tarvik
{
namespace
{
using namespace test;

/** A strip with its window, found the way a host finds it. */
struct EditorUnderTest
{
    EditorUnderTest() : strip (makeStrip (2)), ears (*strip)
    {
        strip->uiZoomSetting().setValue (1.0);
        open();
    }

    ~EditorUnderTest() { strip->editorBeingDeleted (editor.get()); }

    void open()
    {
        editor.reset (strip->createEditorIfNeeded());
        editor->setVisible (true);
    }

    OrvaneConsoleUI& console() { return childOf<OrvaneConsoleUI> (*editor, "Console channel"); }

    juce::Button& button (const char* title) { return childOf (*editor, title); }

    juce::Slider& pot (const char* title) { return childOf<juce::Slider> (*editor, title); }

    std::unique_ptr<Tarvik41Processor> strip;
    HostEars ears;
    std::unique_ptr<juce::AudioProcessorEditor> editor;
};
} // namespace

TEST (Editor, EverythingHasItsPlaceAndThePresetBoxIsNeverShown)
{
    EditorUnderTest t;
    juce::String all;
    const auto list = [&all] (juce::Component& parent, const char* indent)
    {
        for (auto* const child : parent.getChildren())
            all << indent << (child->getTitle().isNotEmpty() ? child->getTitle() : child->getName()) << ": "
                << child->getBounds().toString() << (child->isVisible() ? "\n" : ", hidden\n");
    };

    list (*t.editor, "");
    list (childOf<ZQBar> (*t.editor, "Bottom bar"), "  ");
    expectGolden ("editor.txt", all);
}

TEST (Editor, OpensAtTheZoomOfTheSettingAndFollowsIt)
{
    EditorUnderTest t;
    EXPECT_EQ (t.editor->getBounds().withZeroOrigin(), juce::Rectangle (900, 741));
    t.strip->uiZoomSetting().setValue (1.5);
    EXPECT_EQ (t.editor->getWidth(), 900) << "a little later";
    runMessagesFor (200);
    EXPECT_EQ (t.editor->getBounds().withZeroOrigin(), juce::Rectangle (1350, 1079));
}

TEST (EditorSize, FollowsTheZoomAndStaysOnTheDisplay)
{
    const juce::Rectangle small (1024, 768), nothing (0, 0), large (1920, 1080);
    const auto nan = std::numeric_limits<double>::quiet_NaN();

    // (768 x 0.9 - 64) / 740.67 is 0.8468, less than the width allows. From a damaged project comes a window of a usable
    // size; a display that says nothing is none.
    for (const auto& [zoom, display, width, height] : { std::tuple (0.8, nothing, 720, 605),
                                                        { 0.9, nothing, 810, 673 },
                                                        { 1.2, nothing, 1080, 876 },
                                                        { 1.5, nothing, 1350, 1079 },
                                                        { 1.5, small, 762, 637 },
                                                        { 0.8, small, 720, 605 },
                                                        { 0.0, nothing, 720, 605 },
                                                        { -3.0, large, 720, 605 },
                                                        { nan, large, 900, 741 },
                                                        { 1e300, nothing, 1350, 1079 } })
        EXPECT_EQ (editorSize::forZoom (zoom, display), juce::Point (width, height)) << zoom;

    EXPECT_EQ (editorSize::forZoom (1.0, {}), juce::Point (900, 741));
}

TEST (Editor, AHostsChangeIsShownWithinATickAndNotEchoed)
{
    EditorUnderTest t;
    auto& pot = t.pot ("Input Level");
    setPlain (*t.strip, { { "inLevel", 3.333f }, { "gain", 12.0f } });
    t.ears.heard();
    runMessagesFor (250);
    EXPECT_EQ (t.ears.heard(), "");
    EXPECT_NEAR (pot.getValue(), (3.333 + 10.0) / 20.0, 0.0005);
    EXPECT_NEAR (dynamic_cast<juce::Slider&> (*t.console().controlsOf (1).front()).getValue(), 0.4, 1e-6);

    // What the mouse does goes to the host, without a gesture.
    pot.setValue (1.0, juce::sendNotificationSync);
    EXPECT_EQ (t.ears.heard(), "v38 ");
    EXPECT_FLOAT_EQ (plainOf (*t.strip, "inLevel"), 10.0f);
}

TEST (Editor, HiddenItDoesNothingAndShownAgainItIsRightAtOnce)
{
    EditorUnderTest t;
    t.editor->setVisible (false);
    setPlain (*t.strip, "outLevel", 10.0f);
    runMessagesFor (200);
    EXPECT_NEAR (t.pot ("Output Level").getValue(), 0.5, 1e-3);
    t.editor->setVisible (true);
    EXPECT_NEAR (t.pot ("Output Level").getValue(), 1.0, 1e-3);
}

TEST (Editor, TheSlotsAreChosenAndCopied)
{
    EditorUnderTest t;
    const auto state = [&t]
    {
        juce::String text;

        for (const auto* const title : { "Slot A", "Slot B" })
            text << (t.button (title).getToggleState() ? title : "");

        for (const auto* const title : { "Copy to A", "Copy to B" })
            text << (t.button (title).isVisible() ? juce::String (", ") + title : "");

        return text;
    };

    EXPECT_EQ (state(), "Slot A, Copy to B");
    setPlain (*t.strip, "gain", 20.0f);
    click (t.button ("Copy to B"));
    EXPECT_EQ (t.strip->getCurrentSlot(), 0) << "copying does not choose";
    setPlain (*t.strip, "gain", 5.0f);
    click (t.button ("Slot B"));
    EXPECT_EQ (t.strip->getCurrentSlot(), 1);
    EXPECT_FLOAT_EQ (plainOf (*t.strip, "gain"), 20.0f);
    runMessagesFor (150);
    EXPECT_EQ (state(), "Slot B, Copy to A");

    click (t.button ("Copy to A"));
    click (t.button ("Slot A"));
    EXPECT_FLOAT_EQ (plainOf (*t.strip, "gain"), 20.0f);
}

TEST (Editor, HighlightsFrameTheControl)
{
    EditorUnderTest t;
    auto& console = t.console();
    const auto plain = snapshotOf (console);
    const auto withHighlight = [&] (int index, bool isHighlighted)
    {
        t.editor->setControlHighlight ({ index, isHighlighted, juce::Colours::red });
        return snapshotOf (console);
    };

    const auto framed = withHighlight (1, true);
    const auto gain = console.controlsOf (1)[0]->getBounds();
    EXPECT_EQ (difference (framed, plain) * 900 * 677, 4 * 19) << "four L of 10 and 9 pixels";

    for (const auto& corner : { gain.getTopLeft(), gain.getBottomRight().translated (-1, -1) })
        EXPECT_NE (framed.getPixelAt (corner.x, corner.y), plain.getPixelAt (corner.x, corner.y));

    EXPECT_EQ (difference (withHighlight (38, true), framed), 0.0) << "a parameter without a control";
    EXPECT_EQ (difference (withHighlight (1, false), plain), 0.0);
    EXPECT_EQ (t.editor->getControlParameterIndex (*console.controlsOf (37).front()), 37);
    EXPECT_EQ (t.editor->getControlParameterIndex (t.pot ("Input Level")), -1);
}

TEST (Editor, TwentyCanBeOpenWhileAudioRunsAndLeaveNothingBehind)
{
    std::atomic<bool> isStopping { false };
    std::vector<std::unique_ptr<EditorUnderTest>> editors;

    for (int i = 0; i < 20; ++i)
    {
        editors.push_back (std::make_unique<EditorUnderTest>());
        editors.back()->strip->prepareToPlay (48000.0, 256);
    }

    std::thread audio (
        [&]
        {
            while (! isStopping)
                for (const auto& e : editors)
                    process (*e->strip, { noise (256, 1), noise (256, 2) }, 256);
        });

    juce::Image sheet;

    for (const auto& e : editors)
        sheet = snapshotOf (*e->editor);

    runMessagesFor (300);

    // Some go, and come back, while it plays.
    for (const std::size_t i : { 3u, 11u, 19u })
    {
        editors[i]->strip->editorBeingDeleted (editors[i]->editor.get());
        editors[i]->open();
    }

    runMessagesFor (300);
    isStopping = true;
    audio.join();
    EXPECT_GT (juce::SharedResourcePointer<juce::TooltipWindow>().getReferenceCount(), 20);
    EXPECT_GT (juce::SharedResourcePointer<ScaledPictures>()->memoryInUse(), 1000000u);
    editors.clear();
    EXPECT_EQ (juce::SharedResourcePointer<juce::TooltipWindow>().getReferenceCount(), 1);
    EXPECT_EQ (juce::SharedResourcePointer<ScaledPictures>()->memoryInUse(), 0u);
}

/** A needle that moves must not have the whole console painted. */
TEST (Editor, AMeterTickRepaintsTheMetersAlone)
{
    EditorUnderTest t;

    struct Watch : juce::CachedComponentImage
    {
        void paint (juce::Graphics&) override {}

        bool invalidateAll() override { return invalidate ({ 1, 1 }); }

        bool invalidate (const juce::Rectangle<int>& area) override
        {
            areas.add (area);
            return true;
        }

        void releaseResources() override {}

        juce::RectangleList<int> areas;
    };

    auto* const watch = new Watch(); // the component owns it
    t.editor->setCachedComponentImage (watch);
    watch->areas.clear();
    ParameterSnapshot snapshot;
    snapshot.inputMeter = 1.0f;
    snapshot.gainReductionDb = -7.0f;
    t.console().updateMeters (snapshot);
    EXPECT_FALSE (watch->areas.isEmpty());

    for (const auto* const box : { &consoleLayout::vuMeter, &consoleLayout::gainReductionMeter })
        watch->areas.subtract (box->on (900, 677).translated (0, 32));

    EXPECT_TRUE (watch->areas.isEmpty());

    // A second tick with the same levels costs nothing, and nor does a state pass in which nothing has changed.
    t.console().updateMeters (snapshot);
    t.console().updateState (t.strip->currentSnapshot());
    EXPECT_TRUE (watch->areas.isEmpty());
}

} // namespace tarvik
