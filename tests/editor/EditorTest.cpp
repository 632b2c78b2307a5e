// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ConsoleTestTools.h"

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
        editor.reset (strip->createEditorIfNeeded());
        editor->setVisible (true);
    }

    ~EditorUnderTest()
    {
        strip->editorBeingDeleted (editor.get());
        editor.reset();
    }

    template <typename Control>
    Control& child (const juce::String& title)
    {
        for (auto* const c : editor->getChildren())
            if (c->getTitle() == title)
                return dynamic_cast<Control&> (*c);

        throw std::runtime_error ("no such child");
    }

    void click (const char* title)
    {
        auto& button = child<juce::Button> (title);
        Mouse (button).click (button.getLocalBounds().getCentre().toFloat());
        runMessagesFor (5);
    }

    std::unique_ptr<Tarvik41Processor> strip;
    HostEars ears;
    std::unique_ptr<juce::AudioProcessorEditor> editor;
};
} // namespace

TEST (Editor, OpensAtTheZoomOfTheSettingAndFollowsIt)
{
    EditorUnderTest t;
    EXPECT_EQ (t.editor->getBounds().withZeroOrigin(), juce::Rectangle (900, 741));
    EXPECT_EQ (t.child<OrvaneConsoleUI> ("Console channel").getBounds(), juce::Rectangle (0, 32, 900, 677));
    t.strip->uiZoomSetting().setValue (1.5);
    EXPECT_EQ (t.editor->getWidth(), 900) << "a little later";
    runMessagesFor (200);
    EXPECT_EQ (t.editor->getBounds().withZeroOrigin(), juce::Rectangle (1350, 1079));
}

TEST (Editor, AHostsChangeIsShownWithinATickAndNotEchoed)
{
    EditorUnderTest t;
    auto& pot = t.child<juce::Slider> ("Input Level");
    auto& gain = *t.child<OrvaneConsoleUI> ("Console channel").controlsOf (1).front();
    setPlain (*t.strip, "inLevel", 3.333f);
    setPlain (*t.strip, "gain", 12.0f);
    t.ears.heard();
    runMessagesFor (250);
    EXPECT_EQ (t.ears.heard(), "");
    EXPECT_NEAR (pot.getValue(), (3.333 + 10.0) / 20.0, 0.0005);
    EXPECT_NEAR (dynamic_cast<juce::Slider&> (gain).getValue(), 0.4, 1e-6);

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
    auto& pot = t.child<juce::Slider> ("Output Level");
    EXPECT_NEAR (pot.getValue(), 0.5, 1e-3);
    t.editor->setVisible (true);
    EXPECT_NEAR (pot.getValue(), 1.0, 1e-3);
}

TEST (Editor, TheSlotsAreChosenAndCopied)
{
    EditorUnderTest t;
    const auto isShown = [&] (const char* title) { return t.child<juce::Button> (title).isVisible(); };
    const auto isOn = [&] (const char* title) { return t.child<juce::Button> (title).getToggleState(); };
    EXPECT_TRUE (isOn ("Slot A") && ! isOn ("Slot B") && isShown ("Copy to B") && ! isShown ("Copy to A"));

    setPlain (*t.strip, "gain", 20.0f);
    t.click ("Copy to B");
    EXPECT_EQ (t.strip->getCurrentSlot(), 0) << "copying does not choose";
    t.click ("Slot B");
    EXPECT_EQ (t.strip->getCurrentSlot(), 1);
    EXPECT_FLOAT_EQ (plainOf (*t.strip, "gain"), 20.0f);
    runMessagesFor (150);
    EXPECT_TRUE (! isOn ("Slot A") && isOn ("Slot B") && ! isShown ("Copy to B") && isShown ("Copy to A"));

    setPlain (*t.strip, "gain", 5.0f);
    t.click ("Copy to A");
    t.click ("Slot A");
    EXPECT_FLOAT_EQ (plainOf (*t.strip, "gain"), 5.0f);
}

TEST (Editor, HighlightsFrameTheControlAndFollowTheSize)
{
    EditorUnderTest t;
    auto& console = t.child<OrvaneConsoleUI> ("Console channel");
    const auto plain = snapshotOf (console);
    const auto framed = [&] (int index)
    {
        t.editor->setControlHighlight ({ index, true, juce::Colours::red });
        return snapshotOf (console);
    };

    const auto gain = consoleLayout::knobs[0].box.on (900, 677);
    const auto image = framed (1);
    EXPECT_EQ (difference (image, plain) * 900 * 677, 4 * 19) << "four L of 10 and 9 pixels";
    EXPECT_NE (image.getPixelAt (gain.getX(), gain.getY()), plain.getPixelAt (gain.getX(), gain.getY()));
    EXPECT_NE (image.getPixelAt (gain.getRight() - 1, gain.getBottom() - 1),
               plain.getPixelAt (gain.getRight() - 1, gain.getBottom() - 1));

    // A parameter without a control, and off again.
    EXPECT_EQ (difference (framed (38), image), 0.0);
    t.editor->setControlHighlight ({ 1, false, juce::Colours::red });
    EXPECT_EQ (difference (snapshotOf (console), plain), 0.0);

    EXPECT_EQ (t.editor->getControlParameterIndex (*console.controlsOf (37).front()), 37);
    EXPECT_EQ (t.editor->getControlParameterIndex (t.child<juce::Slider> ("Input Level")), -1);
}

TEST (Editor, TwentyCanBeOpenWhileAudioRunsAndLeaveNothingBehind)
{
    std::atomic<bool> isStopping { false };
    std::vector<std::unique_ptr<EditorUnderTest>> editors;

    for (int i = 0; i < 20; ++i)
        editors.push_back (std::make_unique<EditorUnderTest>());

    for (const auto& e : editors)
        e->strip->prepareToPlay (48000.0, 256);

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
        editors[i]->editor.reset (editors[i]->strip->createEditorIfNeeded());
        editors[i]->editor->setVisible (true);
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
    auto& console = t.child<OrvaneConsoleUI> ("Console channel");

    struct Watch : juce::CachedComponentImage
    {
        void paint (juce::Graphics&) override {}

        bool invalidateAll() override
        {
            area = 1e9;
            return true;
        }

        bool invalidate (const juce::Rectangle<int>& r) override
        {
            const auto isAMeters = meters[0].contains (r) || meters[1].contains (r);
            area += isAMeters ? r.getWidth() * r.getHeight() : 1e9;
            return true;
        }

        void releaseResources() override {}

        double area = 0.0; ///< In pixels; huge for anything besides a meter.
        const juce::Rectangle<int> meters[2] = { consoleLayout::vuMeter.on (900, 677).translated (0, 32),
                                                 consoleLayout::gainReductionMeter.on (900, 677).translated (0, 32) };
    };

    auto* const watch = new Watch(); // the component owns it
    t.editor->setCachedComponentImage (watch);
    watch->area = 0.0;
    ParameterSnapshot snapshot;
    snapshot.inputMeter = 1.0f;
    snapshot.gainReductionDb = -7.0f;
    console.updateMeters (snapshot);
    EXPECT_GT (watch->area, 0.0);
    EXPECT_LE (watch->area, 2.0 * 124 * 64);

    // A second tick with the same levels costs nothing, and nor does a state pass in which nothing has changed.
    watch->area = 0.0;
    console.updateMeters (snapshot);
    console.updateState (t.strip->currentSnapshot());
    EXPECT_EQ (watch->area, 0.0);
}

} // namespace tarvik
