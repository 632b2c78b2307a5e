// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ConsoleTestTools.h"
#include "tests/support/Golden.h"

#include <gmock/gmock.h>

namespace tarvik
{
namespace
{
using namespace test;
using juce::ModifierKeys;

/** IDs of all parameters that a slider, or a button, of the console stands for. */
template <typename Control>
std::vector<juce::String> idsOf (ConsoleUnderTest& t)
{
    std::vector<juce::String> ids;

    for (auto* const p : t.strip->getParameters())
        if (const auto controls = t.console.controlsOf (p->getParameterIndex());
            controls.size() == 1 && dynamic_cast<Control*> (controls[0]) != nullptr)
            ids.push_back (parameterID (*p));

    return ids;
}

juce::String gesture (const juce::AudioProcessorParameter& parameter, int values)
{
    const auto index = juce::String (parameter.getParameterIndex()) + " ";
    return "(" + index + juce::String::repeatedString ("v" + index, values) + ")" + index;
}
} // namespace

TEST (Console, EverythingIsWhereTheDrawingHasIt)
{
    ConsoleUnderTest t; // as large as the drawing
    juce::String all;

    for (auto* const child : t.console.getChildren())
        all << child->getTitle().paddedRight (' ', 36) << child->getBounds().toString() << "\n";

    expectGolden ("console.txt", all);

    // A third of it, rounded anew.
    t.console.setSize (900, 677);
    EXPECT_EQ (t.control ("gain").getBounds(), juce::Rectangle (40, 453, 100, 100));
    EXPECT_EQ (t.control ("level").getBounds(), juce::Rectangle (759, 105, 100, 569));
    EXPECT_EQ (t.control ("expInverted").getBounds(), juce::Rectangle (643, 567, 60, 60));
}

TEST (Console, EveryControlIsReachedByTheMouseAtItsCentreAndHasWords)
{
    ConsoleUnderTest t;
    t.console.setSize (900, 677);
    juce::String without;

    for (auto* const p : t.strip->getParameters())
    {
        const auto index = p->getParameterIndex();

        if (t.console.controlsOf (index).empty())
        {
            without << parameterID (*p) << " ";
            continue;
        }

        auto& control = *t.console.controlsOf (index)[0];
        auto* const hit = t.console.getComponentAt (control.getBounds().getCentre());
        EXPECT_TRUE (hit == &control || control.isParentOf (hit)) << control.getTitle();
        EXPECT_EQ (t.console.parameterOf (control), index);
        EXPECT_TRUE (control.getTitle().isNotEmpty()) << index;
        EXPECT_TRUE (dynamic_cast<juce::TooltipClient&> (control).getTooltip().isNotEmpty()) << control.getTitle();
    }

    EXPECT_EQ (without, "compExtSideChain expExtSideChain inLevel outLevel ") << "in the menu and above the console";
}

TEST (Console, ADragIsOneGestureAndAltClickAndDoubleClickReturnToTheDefault)
{
    ConsoleUnderTest t;
    const auto sliders = idsOf<juce::Slider> (t);
    EXPECT_EQ (sliders.size(), 23u);

    for (const auto& id : sliders)
    {
        SCOPED_TRACE (id);
        auto& p = t.parameter (id);
        auto& slider = t.control<juce::Slider> (id);
        Mouse mouse (slider);
        const auto home = p.getDefaultValue(), far = home > 0.5f ? 0.0f : 1.0f;
        const auto middle = slider.getLocalBounds().getCentre().toFloat();

        for (const auto isAltClick : { true, false })
        {
            p.setValueNotifyingHost (far);
            t.show();
            EXPECT_NEAR (slider.getValue(), static_cast<double> (far), 1e-6) << "the host's value is shown";
            t.ears.heard();
            mouse.click (middle, isAltClick ? ModifierKeys::altModifier : 0, isAltClick ? 1 : 2);
            EXPECT_NEAR (p.getValue(), home, 1e-6f);

            if (isAltClick)
            {
                EXPECT_EQ (t.ears.heard(), gesture (p, 1));
            }
        }

        // From one end to the other and back; a switch goes where it is pressed.
        const auto travel = static_cast<float> (slider.getHeight() + 300);
        p.setValueNotifyingHost (0.0f);
        t.show();
        t.ears.heard();
        mouse.press (dynamic_cast<ToggleSwitch*> (&slider) != nullptr ? middle.withY (179.0f) : middle);
        mouse.drag (middle.translated (0.0f, -travel));
        EXPECT_EQ (p.getValue(), 1.0f);
        mouse.drag (middle.translated (0.0f, travel));
        EXPECT_EQ (p.getValue(), 0.0f);
        mouse.release (middle);
        EXPECT_EQ (t.ears.heard(), gesture (p, 2));
    }
}

TEST (Console, ANotchOfTheWheelMovesEverySliderUpAndDownAndItsParameterWithIt)
{
    ConsoleUnderTest t;

    for (const auto& id : idsOf<juce::Slider> (t))
    {
        SCOPED_TRACE (id);
        auto& p = t.parameter (id);
        auto& slider = t.control<juce::Slider> (id);
        p.setValueNotifyingHost (0.5f);
        t.show();
        const auto before = p.getValue();
        Mouse mouse (slider);
        mouse.wheel (Mouse::notch);
        t.show(); // a tick in between does not undo it
        runMessagesFor (2);
        EXPECT_GT (p.getValue(), before);
        EXPECT_LE (p.getValue(),
                   before + (p.isDiscrete() ? 1.0f / static_cast<float> (p.getNumSteps() - 1) : 0.1f) + 1e-6f);
        EXPECT_FLOAT_EQ (p.getValue(), static_cast<float> (slider.getValue()));
        mouse.wheel (-Mouse::notch);
        runMessagesFor (2);
        EXPECT_NEAR (p.getValue(), before, 1e-3f);
    }
}

TEST (Console, EveryButtonTogglesItsParameterInAGestureAndIsShownAtTheNextTick)
{
    ConsoleUnderTest t;
    auto buttons = idsOf<juce::Button> (t);
    std::erase (buttons, "TolLink"); // below
    EXPECT_EQ (buttons.size(), 13u); // 11 with a parameter, mute, phase

    for (const auto& id : buttons)
    {
        SCOPED_TRACE (id);
        auto& p = t.parameter (id);
        auto& button = t.control<juce::Button> (id);
        const auto before = p.getValue();
        EXPECT_EQ (button.getToggleState(), before > 0.5f);
        t.ears.heard();

        click (button);
        EXPECT_EQ (p.getValue(), 1.0f - before);
        EXPECT_EQ (t.ears.heard(), gesture (p, 1));
        EXPECT_EQ (button.getToggleState(), before > 0.5f) << "only a tick shows it";
        t.show();
        EXPECT_EQ (button.getToggleState(), before < 0.5f);
    }
}

TEST (Console, ALampIsLitWithItsButton)
{
    ConsoleUnderTest t;

    for (const auto& row : consoleLayout::pushButtons)
    {
        if (row.lamp == Picture::none)
            continue;

        const auto lampOf = [&] (float value)
        {
            t.strip->getParameters()[row.parameter]->setValueNotifyingHost (value);
            t.show();
            return t.console.createComponentSnapshot (row.lampBox.on (2700, 2030));
        };
        EXPECT_GT (difference (lampOf (0.0f), lampOf (1.0f)), 0.1) << row.parameter;
    }
}

TEST (Console, TheNeedlesAndLedsShowTheSnapshot)
{
    ConsoleUnderTest t;
    const auto& vu = childOf<OrvaneMeter> (t.console, "VU");
    const auto& reduction = childOf<OrvaneMeter> (t.console, "Gain reduction");
    ParameterSnapshot snapshot;
    const auto show = [&] { t.console.updateMeters (snapshot); };
    snapshot.inputMeter = 1.0f;
    snapshot.outputMeter = 0.1f;
    snapshot.gainReductionDb = -5.0f;
    show();
    EXPECT_FLOAT_EQ (vu.getAngle(), meterAngle (0.0f));
    EXPECT_NEAR (juce::radiansToDegrees (reduction.getAngle()), 15.0f, 1e-3f);

    click (childOf (t.console, "Meter mode"));
    EXPECT_EQ (t.strip->meterModeSetting().getValue(), 1);
    show();
    EXPECT_FLOAT_EQ (vu.getAngle(), meterAngle (-20.0f));

    // A mode that nobody knows leaves the needle where it is; silence is at the left.
    t.strip->meterModeSetting().setValue (7);
    snapshot.outputMeter = -50.0f;
    show();
    EXPECT_FLOAT_EQ (vu.getAngle(), meterAngle (-20.0f));
    t.strip->meterModeSetting().setValue (1);
    show();
    EXPECT_FLOAT_EQ (vu.getAngle(), meterAngle (-16.0f));

    const auto ledAt = [&] (float activity)
    {
        snapshot.expanderAmount = activity;
        show();
        return snapshotOf (t.console).getClippedImage (consoleLayout::expanderLed.box.on (2700, 2030));
    };
    const auto dark = ledAt (0.0f), lit = ledAt (1.0f);
    EXPECT_GT (difference (dark, lit), 0.1);
    EXPECT_EQ (difference (ledAt (std::numeric_limits<float>::quiet_NaN()), lit), 0.0);
}

TEST (Console, PreviousAndNextStayInRangeAndHideAtItsEnds)
{
    ConsoleUnderTest stereo, mono (1);

    for (const auto& [t, channel, button, wanted, isLast] : { std::tuple (&stereo, 5, "Next channel", 6, false),
                                                              { &stereo, 5, "Previous channel", 4, false },
                                                              { &stereo, 1, "Previous channel", 1, true },
                                                              { &stereo, 31, "Next channel", 31, true },
                                                              { &mono, 31, "Next channel", 32, true } })
    {
        t->set ("TolChannel", static_cast<float> (channel));
        click (childOf (t->console, button));
        EXPECT_EQ (t->channel(), wanted) << channel << button;
        EXPECT_EQ (t->ears.heard(), wanted != channel ? gesture (t->parameter ("TolChannel"), 1) : juce::String());
        t->show();
        EXPECT_EQ (childOf (t->console, button).isVisible(), ! isLast) << channel << button;
    }

    EXPECT_FALSE (mono.control ("TolChannel", 1).isVisible());
}

TEST (Console, LinkSharesAChannelAndUnlinkingMakesRoomForTheSecond)
{
    ConsoleUnderTest t;
    const auto numbers = [&t] {
        return t.control<juce::Label> ("TolChannel").getText() + " "
               + t.control<juce::Label> ("TolChannel", 1).getText();
    };
    const auto clickLink = [&t]
    {
        click (t.control ("TolLink"));
        t.show();
    };

    t.set ("TolChannel", 12);
    EXPECT_EQ (numbers(), "12 13");
    clickLink();
    EXPECT_EQ (numbers(), "L:12 R:12");
    t.set ("TolChannel", 32);
    clickLink();
    EXPECT_EQ (numbers(), "31 32");
}

TEST (Console, ANumberCanBeTypedAndNoTickDisturbsIt)
{
    constexpr auto unchanged = 20;
    ConsoleUnderTest stereo, mono (1);

    for (const auto& [t, side, isLinked, text, wanted] : { std::tuple (&stereo, 0u, false, "7", 7),
                                                           { &stereo, 0u, false, " l. 12", 12 },
                                                           { &stereo, 0u, false, "0", 1 },
                                                           { &stereo, 0u, false, "32", 31 },
                                                           { &mono, 0u, false, "32", 32 },
                                                           { &mono, 0u, false, "99", 32 },
                                                           { &stereo, 0u, false, "0000000000012", 12 },
                                                           { &mono, 0u, false, "99999999999999999999", 32 },
                                                           { &stereo, 1u, false, "R9", 8 },
                                                           { &stereo, 1u, true, "9", 9 },
                                                           { &stereo, 1u, false, "1", 1 },
                                                           { &stereo, 1u, false, "99999999999", 31 },
                                                           { &stereo, 1u, true, "40", 32 },

                                                           // The colon of the shown tag is not dropped.
                                                           { &stereo, 0u, false, "L:7", unchanged },
                                                           { &stereo, 0u, false, "", unchanged },
                                                           { &stereo, 0u, false, "L", unchanged },
                                                           { &stereo, 0u, false, "-3", unchanged },
                                                           { &stereo, 0u, false, "7a", unchanged },
                                                           { &stereo, 0u, false, "R7", unchanged },
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
        EXPECT_EQ (t->channel(), wanted) << text << side;
        EXPECT_EQ (label.getText() == shown, wanted == unchanged) << "the tick puts the number back";
    }
}

TEST (Console, RandomDrawsAChannelHereAndInAllInEveryInstance)
{
    ConsoleUnderTest here, there;

    for (const auto* const button : { "Random Channel", "Random Channel in ALL instances" })
    {
        std::set<int> drawnHere, drawnThere;

        for (int i = 0; i < 20; ++i)
        {
            click (childOf (here.console, button));
            drawnHere.insert (here.channel());
            drawnThere.insert (there.channel());
        }

        const auto isForAll = juce::String (button).contains ("ALL");
        EXPECT_GT (drawnHere.size(), 3u) << button;
        EXPECT_EQ (drawnThere.size() > 3, isForAll) << button;
        EXPECT_EQ (there.ears.heard().contains ("(40 "), isForAll);
    }
}

TEST (Console, TextsAreTheTracksAndTheParameters)
{
    ConsoleUnderTest t;
    EXPECT_TRUE (labelTexts (t.console).contains ("Tarvik Plugins"));
    t.strip->updateTrackProperties ({ "Lead vocal", {} });
    t.set ("compMix", 0.47f);
    t.set ("compHPF", 120.0f);

    for (const auto* const text : { "Lead vocal", "47 %", "120.0 Hz" })
        EXPECT_TRUE (labelTexts (t.console).contains (text)) << text;

    auto& gain = t.control<juce::Slider> ("gain");
    EXPECT_EQ (gain.getTextFromValue (0.4), "12.00 dB");
    EXPECT_NEAR (gain.getValueFromText ("12 dB"), 0.4, 1e-6);
    EXPECT_EQ (t.control<juce::Slider> ("compRatio").getTextFromValue (0.8), "10:1 ");
    EXPECT_NEAR (t.control<juce::Slider> ("expRelease").getValueFromText ("0.2 s"), 0.5, 1e-3);

    // Numbers fit their fields at the smallest zoom.
    t.console.setSize (720, 541);
    const auto& label = t.control<juce::Label> ("TolChannel", 1);
    const auto narrowest = label.getFont().getStringWidthFloat ("R:28") * label.getMinimumHorizontalScale();
    EXPECT_LE (narrowest, static_cast<float> (label.getWidth() - label.getBorderSize().getLeftAndRight()));
}

} // namespace tarvik
