// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ConsoleTestTools.h"

#include <gmock/gmock.h>

namespace tarvik
{
namespace
{
using namespace test;
using juce::ModifierKeys;

constexpr int firstOfPanel = 0, lastOfPanel = 37; // of the parameters that have a slider or a toggle, but two

bool isMenusAlone (const juce::String& id) { return id == "compExtSideChain" || id == "expExtSideChain"; }

/** IDs of all parameters that a slider, or a button, of the console stands for. */
template <typename Control>
std::vector<juce::String> idsOf (ConsoleUnderTest& t)
{
    std::vector<juce::String> ids;

    for (int i = firstOfPanel; i <= lastOfPanel; ++i)
    {
        const auto id = parameterID (*t.strip->getParameters()[i]);

        if (! isMenusAlone (id) && dynamic_cast<Control*> (&t.control (id)) != nullptr)
            ids.push_back (id);
    }

    return ids;
}

juce::String gesture (const juce::AudioProcessorParameter& parameter, int values)
{
    const auto index = juce::String (parameter.getParameterIndex()) + " ";
    return "(" + index + juce::String::repeatedString ("v" + index, values) + ")" + index;
}
} // namespace

TEST (Console, EveryControlIsReachedByTheMouseAtItsCentreAndHasWords)
{
    ConsoleUnderTest t;
    t.console.setSize (900, 677);

    for (int i = firstOfPanel; i <= parameterIndex::tolLink; ++i)
    {
        const auto id = parameterID (*t.strip->getParameters()[i]);
        const auto isAboveTheConsole = id == "inLevel" || id == "outLevel";

        if (isMenusAlone (id) || isAboveTheConsole)
        {
            EXPECT_TRUE (t.console.controlsOf (i).empty()) << id;
            continue;
        }

        auto& control = t.control (id);
        const auto centre = control.getBounds().getCentre();
        auto* const hit = t.console.getComponentAt (centre);
        EXPECT_TRUE (hit == &control || control.isParentOf (hit)) << id;
        EXPECT_EQ (t.console.parameterOf (control), i);
        EXPECT_TRUE (control.getTitle().isNotEmpty()) << id;
        EXPECT_TRUE (dynamic_cast<juce::TooltipClient&> (control).getTooltip().isNotEmpty()) << id;
    }
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
        const auto home = p.getDefaultValue();
        const auto far = home > 0.5f ? 0.0f : 1.0f;

        p.setValueNotifyingHost (far);
        t.show();
        EXPECT_NEAR (slider.getValue(), static_cast<double> (far), 1e-6) << "the host's value is shown";
        t.ears.heard();

        mouse.click (slider.getLocalBounds().getCentre().toFloat(), ModifierKeys::altModifier);
        EXPECT_NEAR (p.getValue(), home, 1e-6f);
        EXPECT_EQ (t.ears.heard(), gesture (p, 1));

        p.setValueNotifyingHost (far);
        t.show();
        mouse.press (slider.getLocalBounds().getCentre().toFloat(), 0, 2);
        mouse.release (slider.getLocalBounds().getCentre().toFloat());
        EXPECT_NEAR (p.getValue(), home, 1e-6f);

        // From one end to the other and back; a switch goes where it is pressed.
        const auto middle = slider.getLocalBounds().getCentre().toFloat();
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
    constexpr float notch = 0.195f;
    ConsoleUnderTest t;

    for (const auto& id : idsOf<juce::Slider> (t))
    {
        SCOPED_TRACE (id);
        auto& p = t.parameter (id);
        auto& slider = t.control<juce::Slider> (id);
        const auto step = static_cast<float> (slider.getInterval());
        p.setValueNotifyingHost (0.5f);
        t.show();
        const auto before = p.getValue();
        Mouse mouse (slider);
        mouse.wheel (notch);
        t.show(); // a tick in between does not undo it
        runMessagesFor (2);
        EXPECT_GT (p.getValue(), before);
        EXPECT_LE (p.getValue(), before + (p.isDiscrete() ? step : 0.1f) + 1e-6f);
        EXPECT_FLOAT_EQ (p.getValue(), static_cast<float> (slider.getValue()));
        mouse.wheel (-notch);
        runMessagesFor (2);
        EXPECT_NEAR (p.getValue(), before, 1e-3f);
    }
}

TEST (Console, EveryButtonTogglesItsParameterInAGestureAndIsShownAtTheNextTick)
{
    ConsoleUnderTest t;
    const auto buttons = idsOf<juce::Button> (t);
    EXPECT_EQ (buttons.size(), 13u); // 11 with a parameter, mute, phase

    for (const auto& id : buttons)
    {
        SCOPED_TRACE (id);
        auto& p = t.parameter (id);
        auto& button = t.control<juce::Button> (id);
        const auto before = p.getValue();
        EXPECT_EQ (button.getToggleState(), before > 0.5f);
        t.ears.heard();

        t.click (button);
        EXPECT_EQ (p.getValue(), 1.0f - before);
        EXPECT_EQ (t.ears.heard(), gesture (p, 1));
        EXPECT_EQ (button.getToggleState(), before > 0.5f) << "only a tick shows it";
        t.show();
        EXPECT_EQ (button.getToggleState(), before < 0.5f);
    }
}

TEST (Console, ATickTellsTheHostNothing)
{
    ConsoleUnderTest t;

    for (auto* const p : t.strip->getParameters())
        p->setValueNotifyingHost (0.37f);

    t.ears.heard();

    for (int i = 0; i < 3; ++i)
    {
        t.show();
        t.console.updateMeters (t.strip->currentSnapshot());
        runMessagesFor (2);
    }

    EXPECT_EQ (t.ears.heard(), "");
}

TEST (Console, ALampIsLitWithItsButton)
{
    ConsoleUnderTest t;

    for (const auto& row : consoleLayout::pushButtons)
    {
        if (row.lamp == Picture::none)
            continue;

        t.strip->getParameters()[row.parameter]->setValueNotifyingHost (0.0f);
        t.show();
        const auto dark = snapshotOf (t.console);
        t.strip->getParameters()[row.parameter]->setValueNotifyingHost (1.0f);
        t.show();
        const auto lit = snapshotOf (t.console);

        const auto lamp = row.lampBox.on (2700, 2030);
        const auto both = lamp.getUnion (row.box.on (2700, 2030));
        EXPECT_GT (difference (dark.getClippedImage (lamp), lit.getClippedImage (lamp)), 0.1);
        const auto inside = difference (dark.getClippedImage (both), lit.getClippedImage (both));
        EXPECT_NEAR (difference (dark, lit) * 2700 * 2030, inside * both.getWidth() * both.getHeight(), 0.5)
            << "nothing else changes";
    }
}

TEST (Console, TheNeedlesAndLedsShowTheSnapshot)
{
    ConsoleUnderTest t;
    ParameterSnapshot snapshot;
    std::vector<OrvaneMeter*> meters;

    for (auto* const child : t.console.getChildren())
        if (auto* const meter = dynamic_cast<OrvaneMeter*> (child))
            meters.push_back (meter);

    ASSERT_EQ (meters.size(), 2u);
    auto& vu = *meters[meters[0]->getY() < meters[1]->getY() ? 0 : 1];
    auto& reduction = *meters[&vu == meters[0] ? 1 : 0];

    const auto show = [&] { t.console.updateMeters (snapshot); };
    snapshot.inputMeter = 1.0f;
    snapshot.outputMeter = 0.1f;
    snapshot.gainReductionDb = -5.0f;
    show();
    EXPECT_FLOAT_EQ (vu.getAngle(), meterAngle (0.0f));
    EXPECT_NEAR (juce::radiansToDegrees (reduction.getAngle()), 15.0f, 1e-3f);

    t.click (t.button ("What the VU meter shows"));
    EXPECT_EQ (t.strip->meterModeSetting().getValue(), 1);
    show();
    EXPECT_FLOAT_EQ (vu.getAngle(), meterAngle (-20.0f));

    // A mode that nobody knows leaves the needle where it is; silence is at the left.
    t.strip->meterModeSetting().setValue (7);
    snapshot.outputMeter = 1.0f;
    show();
    EXPECT_FLOAT_EQ (vu.getAngle(), meterAngle (-20.0f));
    t.strip->meterModeSetting().setValue (1);
    snapshot.outputMeter = -50.0f;
    show();
    EXPECT_FLOAT_EQ (vu.getAngle(), meterAngle (-16.0f));

    const auto led = consoleLayout::expanderLed.box.on (2700, 2030);
    const auto ledAt = [&] (float activity)
    {
        snapshot.expanderAmount = activity;
        show();
        return snapshotOf (t.console).getClippedImage (led);
    };
    const auto dark = ledAt (0.0f), lit = ledAt (1.0f);
    EXPECT_GT (difference (dark, lit), 0.1);
    EXPECT_EQ (difference (ledAt (std::numeric_limits<float>::quiet_NaN()), lit), 0.0);
}

TEST (Console, PreviousAndNextStayInRangeAndHideAtItsEnds)
{
    ConsoleUnderTest stereo, mono (1);
    const auto channelAfter = [] (ConsoleUnderTest& t, int channel, const char* tooltip)
    {
        setPlain (*t.strip, "TolChannel", static_cast<float> (channel));
        t.show();
        t.click (t.button (tooltip));
        return juce::roundToInt (plainOf (*t.strip, "TolChannel"));
    };

    EXPECT_EQ (channelAfter (stereo, 5, "Next"), 6);
    EXPECT_EQ (channelAfter (stereo, 5, "Previous"), 4);
    EXPECT_EQ (channelAfter (stereo, 1, "Previous"), 1);
    EXPECT_FALSE (stereo.button ("Previous").isVisible());
    EXPECT_EQ (channelAfter (stereo, 31, "Next"), 31);
    EXPECT_FALSE (stereo.button ("Next").isVisible());
    EXPECT_EQ (stereo.control<juce::Label> ("TolChannel", 1).getText(), "32");
    EXPECT_EQ (channelAfter (mono, 31, "Next"), 32);
    mono.show();
    EXPECT_FALSE (mono.button ("Next").isVisible());
    EXPECT_FALSE (mono.control ("TolChannel", 1).isVisible());

    setPlain (*stereo.strip, "TolChannel", 9);
    stereo.show();
    stereo.ears.heard();
    stereo.click (stereo.button ("Next"));
    EXPECT_EQ (stereo.ears.heard(), gesture (stereo.parameter ("TolChannel"), 1));
}

TEST (Console, LinkSharesAChannelAndUnlinkingMakesRoomForTheSecond)
{
    ConsoleUnderTest t;
    auto& left = t.control<juce::Label> ("TolChannel", 0);
    auto& right = t.control<juce::Label> ("TolChannel", 1);
    setPlain (*t.strip, "TolChannel", 12);
    t.show();
    EXPECT_EQ (left.getText() + " " + right.getText(), "12 13");

    t.click (t.control ("TolLink"));
    t.show();
    EXPECT_EQ (left.getText() + " " + right.getText(), "L:12 R:12");

    setPlain (*t.strip, "TolChannel", 32);
    t.show();
    t.click (t.control ("TolLink"));
    t.show();
    EXPECT_EQ (left.getText() + " " + right.getText(), "31 32");
}

TEST (Console, ANumberCanBeTypedAndNoTickDisturbsIt)
{
    ConsoleUnderTest t;
    auto& left = t.control<juce::Label> ("TolChannel", 0);
    auto& right = t.control<juce::Label> ("TolChannel", 1);
    const auto type = [&] (juce::Label& label, const char* text)
    {
        label.showEditor();
        label.getCurrentTextEditor()->setText (text);
        t.show();
        EXPECT_NE (label.getCurrentTextEditor(), nullptr) << "a tick has closed it";
        label.hideEditor (false);
        t.show();
        return juce::roundToInt (plainOf (*t.strip, "TolChannel"));
    };

    EXPECT_EQ (type (left, "L 17"), 17);
    EXPECT_EQ (left.getText(), "17");
    EXPECT_EQ (type (right, "9"), 8);
    EXPECT_EQ (type (left, "loud"), 8);
    EXPECT_EQ (left.getText(), "8") << "the tick puts the number back";
    EXPECT_EQ (type (left, ""), 8);
    EXPECT_EQ (type (left, "L:17"), 8);
    EXPECT_EQ (type (right, "R99999999999"), 31);
    EXPECT_EQ (type (left, "0"), 1);
    EXPECT_EQ (type (left, "99999999999"), 31);
}

TEST (Console, RandomInAllReachesEveryInstance)
{
    ConsoleUnderTest here, there;
    std::set<int> drawn;

    for (int i = 0; i < 20; ++i)
    {
        there.ears.heard();
        here.click (here.button ("Random Channel\nin ALL"));
        EXPECT_THAT (there.ears.heard().toStdString(), testing::StartsWith ("(40 "));
        drawn.insert (juce::roundToInt (plainOf (*there.strip, "TolChannel")));
    }

    EXPECT_GT (drawn.size(), 3u);
}

TEST (Console, TheNameIsTheTracksOrTheMakers)
{
    ConsoleUnderTest t;
    const auto texts = [&]
    {
        juce::StringArray found;

        for (auto* const child : t.console.getChildren())
            if (const auto* const label = dynamic_cast<juce::Label*> (child))
                found.add (label->getText());

        return found;
    };
    EXPECT_TRUE (texts().contains ("Tarvik Plugins"));
    t.strip->updateTrackProperties ({ "Lead vocal", {} });
    setPlain (*t.strip, "compMix", 0.47f);
    setPlain (*t.strip, "compHPF", 120.0f);
    t.show();
    EXPECT_TRUE (texts().contains ("Lead vocal"));
    EXPECT_TRUE (texts().contains ("47 %"));
    EXPECT_TRUE (texts().contains ("120.0 Hz"));
}

TEST (Console, NumbersFitTheirFieldsAtTheSmallestZoom)
{
    ConsoleUnderTest t;
    t.console.setSize (720, 541);

    for (const auto which : { 0u, 1u })
    {
        const auto& label = t.control<juce::Label> ("TolChannel", which);
        const auto narrowest = label.getFont().getStringWidthFloat ("R:28") * label.getMinimumHorizontalScale();
        EXPECT_LE (narrowest, static_cast<float> (label.getWidth() - label.getBorderSize().getLeftAndRight()));
    }
}

TEST (Console, ValuesAreShownAndTypedInTheParametersWords)
{
    ConsoleUnderTest t;
    auto& gain = t.control<juce::Slider> ("gain");
    EXPECT_EQ (gain.getTextFromValue (0.4), "12.00 dB");
    EXPECT_NEAR (gain.getValueFromText ("12 dB"), 0.4, 1e-6);
    EXPECT_EQ (t.control<juce::Slider> ("compRatio").getTextFromValue (0.8), "10:1 ");
    EXPECT_NEAR (t.control<juce::Slider> ("expRelease").getValueFromText ("0.2 s"), 0.5, 1e-3);
}

} // namespace tarvik
