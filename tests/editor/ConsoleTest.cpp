// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ControlGeometry.h"
#include "tests/support/ConsoleTestTools.h"
#include "tests/support/Golden.h"
#include "tests/support/StateTestTools.h"

#include <set>

namespace tarvik
{
namespace
{
using namespace test;

/** Works the controls of a window with the mouse, each from the default settings, and writes down what the host hears:
    "(" and ")" around a gesture, "v" for a value, each with the parameter's index; and then what differs from the default.
*/
struct Hand
{
    void note (juce::Component& control, const char* action, bool withValues = true)
    {
        runMessagesFor (2); // a stepped slider tells of the wheel a little later
        log << control.getTitle() << ", " << action << ": " << t.ears.heard();

        if (withValues)
            log << differencesFromDefault (t.strip->currentSnapshot()).trim();

        log << (t.strip->meterModeSetting().getValue() == 0 ? "" : "meter=output")
            << (t.strip->getCurrentSlot() == 0 ? "" : "slot=B") << "\n";
    }

    void reset()
    {
        t.strip->selectSlot (0);
        t.strip->meterModeSetting().setValue (0);

        for (auto* const p : t.strip->getParameters())
            p->setValueNotifyingHost (p->getDefaultValue());

        t.editor->setVisible (false);
        t.editor->setVisible (true); // shows all of it at once
        runMessagesFor (2);
        t.ears.heard();
    }

    /** Upwards from anywhere but the end, and back to the default; then a notch of the wheel, down where there is room. */
    void work (juce::Slider& slider)
    {
        const auto middle = slider.getLocalBounds().toFloat().getCentre();
        const auto start = slider.getValue();
        const auto moved = middle.translated (0.0f, start > 0.9 ? 50.0f : -50.0f);
        Mouse mouse (slider);
        mouse.press (middle);
        mouse.drag (moved);
        mouse.release (moved);
        note (slider, "drag");
        mouse.click (middle, juce::ModifierKeys::altModifier);
        note (slider, "Alt");
        mouse.wheel (start < 0.1 ? Mouse::notch : -Mouse::notch);
        t.show(); // a tick in between does not undo it
        note (slider, "wheel");
    }

    void work (juce::Button& button)
    {
        const auto isRandom = button.getTitle().startsWith ("Random");

        do
        {
            t.ears.heard();
            click (button);
        } while (isRandom && differencesFromDefault (t.strip->currentSnapshot()).isEmpty());

        note (button, "click", ! isRandom);
    }

    void work (juce::Label& label)
    {
        label.showEditor();
        label.getCurrentTextEditor()->setText ("12");
        label.hideEditor (false);
        note (label, "12");
    }

    void workAll (juce::Component& parent)
    {
        for (auto* const control : parent.getChildren())
        {
            auto* const slider = dynamic_cast<juce::Slider*> (control);
            auto* const button = dynamic_cast<juce::Button*> (control);
            auto* const label = dynamic_cast<juce::Label*> (control);
            const auto isText = label != nullptr && label->isEditable();

            if ((slider == nullptr && button == nullptr && ! isText) || control->getTitle().isEmpty())
                continue;

            reset();
            const auto centre = t.editor->getLocalPoint (control, control->getLocalBounds().getCentre());
            const auto* const hit = t.editor->getComponentAt (centre);
            EXPECT_TRUE (! control->isVisible() || hit == control || control->isParentOf (hit)) << control->getTitle();
            EXPECT_TRUE (control->getDescription().isNotEmpty()) << control->getTitle();
            EXPECT_TRUE (dynamic_cast<juce::TooltipClient&> (*control).getTooltip().isNotEmpty())
                << control->getTitle();

            if (slider != nullptr)
                work (*slider);
            else if (isText)
                work (*label);
            else if (control->getTitle() != "Menu")
                work (*button);
        }
    }

    WindowUnderTest t;
    juce::String log;
};
} // namespace

TEST (Console, EverythingIsWhereTheDrawingHasIt)
{
    WindowUnderTest t;
    t.console().setSize (2700, 2030);
    juce::String all;

    for (auto* const child : allIn (t.console()))
        if (child->getParentComponent() == &t.console() || dynamic_cast<TrackPlate*> (child->getParentComponent()))
            all << child->getTitle().paddedRight (' ', 36)
                << t.console().getLocalArea (child, child->getLocalBounds()).toString() << "\n";

    expectGolden ("console.txt", all);

    // A third of it, rounded anew.
    t.console().setSize (900, 677);
    EXPECT_EQ (t.control ("gain").getBounds(), juce::Rectangle (40, 453, 100, 100));
    EXPECT_EQ (t.control ("expInverted").getBounds(), juce::Rectangle (643, 567, 60, 60));
}

TEST (Console, EachControlMovesItsOwnParameterAsTheHostHears)
{
    Hand hand;
    hand.workAll (*hand.t.editor);
    hand.workAll (hand.t.console());
    hand.workAll (*hand.t.control ("TolLink").getParentComponent());
    expectGolden ("gestures.txt", hand.log);
}

TEST (Console, ButtonsLampsAndSlidersFollowTheirParameters)
{
    WindowUnderTest t;

    for (int index = 0; index < numParameters; ++index)
        for (auto* const control : t.console().controlsOf (index))
            for (const auto value : { 1.0f, 0.0f })
            {
                t.strip->getParameters()[index]->setValueNotifyingHost (value);
                t.show();
                EXPECT_EQ (t.console().parameterOf (*control), index);
                const auto* const slider = dynamic_cast<juce::Slider*> (control);
                const auto* const button = dynamic_cast<juce::Button*> (control);
                EXPECT_TRUE (slider == nullptr || slider->getValue() == static_cast<double> (value)) << index;
                EXPECT_TRUE (button == nullptr || button->getToggleState() == (value == 1.0f)) << index;
            }

    for (const auto& row : consoleLayout::pushButtons)
    {
        if (row.lamp == Picture::none)
            continue;

        const auto lampAt = [&] (float value)
        {
            t.strip->getParameters()[row.parameter]->setValueNotifyingHost (value);
            t.show();
            return t.console().createComponentSnapshot (row.lampBox.on (900, 677));
        };
        EXPECT_GT (difference (lampAt (0.0f), lampAt (1.0f)), 0.1) << row.parameter;
    }
}

TEST (Console, TheNeedlesAndLedsShowTheSnapshot)
{
    WindowUnderTest t;
    const auto& vu = childOf<OrvaneMeter> (*t.editor, "VU");
    ParameterSnapshot snapshot;
    const auto vuAngle = [&] (int mode)
    {
        t.strip->meterModeSetting().setValue (mode);
        t.console().updateMeters (snapshot);
        return vu.getAngle();
    };
    snapshot.inputMeter = 1.0f;
    snapshot.outputMeter = 0.5f;
    snapshot.gainReductionDb = -5.0f;
    EXPECT_FLOAT_EQ (vuAngle (0), meterAngle (0.0f));
    EXPECT_FLOAT_EQ (vuAngle (1), meterAngle (-6.0206f));
    EXPECT_NEAR (juce::radiansToDegrees (childOf<OrvaneMeter> (*t.editor, "Gain reduction").getAngle()), 15.0f, 1e-3f);

    // An unknown mode leaves the needle where it is; silence is at the left.
    snapshot.outputMeter = -50.0f;
    EXPECT_FLOAT_EQ (vuAngle (7), meterAngle (-6.0206f));
    EXPECT_FLOAT_EQ (vuAngle (1), meterAngle (-16.0f));

    const auto pictureAt = [&] (const Box& box, float activity, bool isLimiting, int mode)
    {
        snapshot.expanderAmount = activity;
        snapshot.limiterActive = isLimiting;
        t.strip->meterModeSetting().setValue (mode);
        t.console().updateMeters (snapshot);
        t.console().updateState (snapshot);
        EXPECT_EQ (t.button ("Meter mode").getToggleState(), mode == 0);
        return t.console().createComponentSnapshot (box.on (900, 677));
    };

    for (const auto* const row :
         { &consoleLayout::expanderLed, &consoleLayout::compressorLed, &consoleLayout::outputLegend })
        EXPECT_GT (difference (pictureAt (row->box, 0.0f, false, 0), pictureAt (row->box, 1.0f, true, 1)), 0.1);

    const auto& led = consoleLayout::expanderLed.box;
    const auto lit = pictureAt (led, 1.0f, true, 0);
    EXPECT_EQ (difference (pictureAt (led, std::numeric_limits<float>::quiet_NaN(), false, 1), lit), 0.0);
}

TEST (TrackPlate, StepsStayInRangeAndLinkedSidesShareAChannel)
{
    WindowUnderTest stereo, mono (1);

    for (const auto& [t, isLinked, channel, button, wanted, heard, isLast, numbers] :
         { std::tuple (&stereo, false, 5, "Next channel", 6, "(40 v40 )40 ", false, "6 7"),
           { &stereo, false, 5, "Previous channel", 4, "(40 v40 )40 ", false, "4 5" },
           { &stereo, false, 2, "Previous channel", 1, "(40 v40 )40 ", true, "1 2" },
           { &stereo, false, 30, "Next channel", 31, "(40 v40 )40 ", true, "31 32" },
           { &stereo, false, 31, "Next channel", 31, "", true, "31 32" },
           { &stereo, true, 32, "TOL Link", 31, "v41 v40 ", false, "31 32" },
           { &stereo, true, 12, "TOL Link", 12, "v41 ", false, "12 13" },
           { &stereo, false, 12, "TOL Link", 12, "v41 ", false, "L:12 R:12" },
           { &mono, false, 31, "Next channel", 32, "(40 v40 )40 ", true, "32" } })
    {
        t->set ("TolLink", isLinked ? 1.0f : 0.0f);
        t->set ("TolChannel", static_cast<float> (channel));
        click (t->button (button));
        EXPECT_EQ (t->ears.heard(), heard) << channel << button;
        t->show();
        EXPECT_EQ (plainOf (*t->strip, "TolChannel"), static_cast<float> (wanted)) << channel << button;
        EXPECT_EQ (t->button (button).isVisible(), ! isLast) << channel << button;
        juce::String shown;

        for (const auto side : { 0u, 1u })
            if (auto& label = t->control<juce::Label> ("TolChannel", side); label.isVisible())
                shown << " " << label.getText();

        EXPECT_EQ (shown.trim(), juce::String (numbers));
    }
}

TEST (TrackPlate, ANumberCanBeTypedAndNoTickDisturbsIt)
{
    constexpr auto unchanged = 20;
    WindowUnderTest stereo, mono (1);

    for (const auto& [t, side, isLinked, text, wanted] : { std::tuple (&stereo, 0u, false, " l. 12", 12),
                                                           { &stereo, 0u, false, "32", 31 },
                                                           { &mono, 0u, false, "99", 32 },
                                                           { &mono, 0u, false, "99999999999999999999", 32 },
                                                           { &stereo, 1u, false, "R9", 8 },
                                                           { &stereo, 1u, true, "9", 9 },
                                                           { &stereo, 1u, false, "1", 1 },
                                                           { &stereo, 1u, true, "40", 32 },

                                                           // The colon of the shown tag is not dropped.
                                                           { &stereo, 0u, false, "L:7", unchanged },
                                                           { &stereo, 0u, false, "-3", unchanged },
                                                           { &stereo, 0u, false, "7a", unchanged },
                                                           { &stereo, 1u, false, "L9", unchanged } })
    {
        t->set ("TolLink", isLinked ? 1.0f : 0.0f);
        t->set ("TolChannel", unchanged);
        auto& label = t->control<juce::Label> ("TolChannel", side);
        const auto shown = label.getText();
        label.showEditor();
        label.getCurrentTextEditor()->setText (text);
        t->show();
        EXPECT_NE (label.getCurrentTextEditor(), nullptr) << "a tick has closed it";
        label.hideEditor (false);
        t->show();
        EXPECT_EQ (plainOf (*t->strip, "TolChannel"), static_cast<float> (wanted)) << text << side;
        EXPECT_EQ (label.getText() == shown, wanted == unchanged) << "the tick puts the number back";
    }
}

TEST (TrackPlate, RandomInAllDrawsAChannelInEveryInstance)
{
    WindowUnderTest here, there;
    std::set<float> drawn;

    for (int i = 0; i < 40; ++i)
    {
        click (here.button (i < 20 ? "Random Channel" : "Random Channel in ALL instances"));
        drawn.insert (plainOf (*there.strip, "TolChannel"));
        EXPECT_TRUE (i >= 20 || drawn.size() == 1u) << "for this one alone";
    }

    EXPECT_GT (drawn.size(), 3u);
}

TEST (Console, TextsAreTheTracksAndTheParameters)
{
    WindowUnderTest t;
    EXPECT_TRUE (labelTexts (t.console()).contains ("Tarvik Plugins"));
    t.strip->updateTrackProperties ({ "Lead vocal", {} });
    setPlain (*t.strip, { { "compMix", 0.47f }, { "compHPF", 120.0f } });
    t.show();

    for (const auto* const text : { "Lead vocal", "47 %", "120.0 Hz" })
        EXPECT_TRUE (labelTexts (t.console()).contains (text)) << text;

    auto& gain = t.control<juce::Slider> ("gain");
    EXPECT_EQ (gain.getTextFromValue (0.4), "12.00 dB");
    EXPECT_NEAR (gain.getValueFromText ("12 dB"), 0.4, 1e-6);
    EXPECT_EQ (t.control<juce::Slider> ("compRatio").getTextFromValue (0.8), "10:1 ");

    // Numbers fit their fields at the smallest zoom.
    t.console().setSize (720, 541);
    const auto& label = t.control<juce::Label> ("TolChannel", 1);
    const auto narrowest = label.getFont().getStringWidthFloat ("R:28") * label.getMinimumHorizontalScale();
    EXPECT_LE (narrowest, static_cast<float> (label.getWidth() - label.getBorderSize().getLeftAndRight()));
}

} // namespace tarvik
