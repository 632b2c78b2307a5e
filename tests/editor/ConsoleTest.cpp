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
using juce::KeyPress;

void type (
    juce::Label& label, const juce::String& text, const std::function<void()>& meanwhile = [] {})
{
    label.showEditor();
    label.getCurrentTextEditor()->setText (text);
    meanwhile();
    ASSERT_NE (label.getCurrentTextEditor(), nullptr) << "closed by a tick";
    label.hideEditor (false);
}

/** Works each control of a window from the default settings, and writes down what the host hears and what then differs. */
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

    void showAnew()
    {
        t.editor->setVisible (false);
        t.editor->setVisible (true);
    }

    void reset()
    {
        t.strip->selectSlot (0);
        t.strip->meterModeSetting().setValue (0);

        for (auto* const p : t.strip->getParameters())
            p->setValueNotifyingHost (p->getDefaultValue());

        showAnew();
        runMessagesFor (2);
        t.ears.heard();
    }

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
        showAnew(); // does not undo it
        note (slider, "wheel");
        EXPECT_FALSE (slider.keyPressed ({ KeyPress::upKey, juce::ModifierKeys::altModifier, 0 })) << "the host's";
        EXPECT_TRUE (slider.keyPressed (KeyPress (start < 0.1 ? KeyPress::upKey : KeyPress::leftKey)));
        note (slider, "arrow key");
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

        if (isRandom)
            return;

        showAnew(); // as the next tick does
        EXPECT_TRUE (static_cast<juce::Component&> (button).keyPressed (KeyPress (KeyPress::returnKey)));
        note (button, "Return");
    }

    void workAll (juce::Component& parent)
    {
        const auto controls = parent.getChildren(); // a copy: a dragged slider's read-out becomes one of them

        for (auto* const control : controls)
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
            const auto tooltip = dynamic_cast<juce::TooltipClient&> (*control).getTooltip();
            EXPECT_TRUE (! control->isVisible() || hit == control || control->isParentOf (hit)) << control->getTitle();
            EXPECT_TRUE (control->getDescription().isNotEmpty() && tooltip.isNotEmpty()) << control->getTitle();

            if (slider != nullptr)
                work (*slider);
            else if (button != nullptr && control->getTitle() != "Menu")
                work (*button);
            else if (isText)
            {
                type (*label, "12");
                note (*label, "12");
            }
        }
    }

    WindowUnderTest t;
    juce::String log;
};
} // namespace

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
    const auto setNormalised = [&t] (int index, float value)
    {
        t.strip->getParameters()[index]->setValueNotifyingHost (value);
        t.show();
    };

    for (int index = 0; index < numParameters; ++index)
        for (auto* const control : t.console().controlsOf (index))
            for (const auto value : { 1.0f, 0.0f })
            {
                setNormalised (index, value);
                EXPECT_EQ (t.console().parameterOf (*control), index);

                const auto* const slider = dynamic_cast<juce::Slider*> (control);
                const auto* const button = dynamic_cast<juce::Button*> (control);
                EXPECT_TRUE (slider == nullptr || slider->getValue() == static_cast<double> (value)) << index;
                EXPECT_TRUE (button == nullptr || button->getToggleState() == (value == 1.0f)) << index;
            }

    t.console().setSize (720, 541); // the smallest zoom

    for (const auto& row : consoleLayout::pushButtons)
    {
        const auto lightOf = [&] (const Box& box, float y, bool isOn)
        {
            t.strip->meterModeSetting().setValue (isOn ? 0 : 1);
            setNormalised (std::max (row.parameter, 0), isOn ? 1.0f : 0.0f);
            const auto image = t.console().createComponentSnapshot (box.on (720, 541));
            const auto colour =
                image.getPixelAt (image.getWidth() / 2, static_cast<int> (y * static_cast<float> (image.getHeight())));
            return 0.2126 * std::pow (colour.getFloatRed(), 2.2) + 0.7152 * std::pow (colour.getFloatGreen(), 2.2)
                   + 0.0722 * std::pow (colour.getFloatBlue(), 2.2); // relative luminance, nearly
        };

        // The contrast by which one reads letters of this size: 3 to 1.
        EXPECT_GT (lightOf (row.box, 0.41f, true) + 0.05, 3.0 * (lightOf (row.box, 0.41f, false) + 0.05)) << row.legend;
        EXPECT_TRUE (row.lamp == Picture::none
                     || lightOf (row.lampBox, 0.5f, true) > lightOf (row.lampBox, 0.5f, false))
            << row.legend;
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

    const auto lightOn = [&] (const Box& box, bool isActive)
    {
        snapshot.expanderAmount = isActive ? 1.0f : 0.0f;
        snapshot.limiterActive = isActive;
        t.strip->meterModeSetting().setValue (isActive ? 1 : 0);
        t.console().updateMeters (snapshot);
        t.console().updateState (snapshot);
        EXPECT_NE (t.button ("VU Mode").getToggleState(), isActive);
        const auto image = t.console().createComponentSnapshot (box.on (900, 677));
        return lightAt (image, image.getWidth() / 2, image.getHeight() / 2);
    };

    for (const auto* const row : { &consoleLayout::expanderLed, &consoleLayout::compressorLed })
        EXPECT_GT (lightOn (row->box, true), lightOn (row->box, false) + 0.05);

    EXPECT_NE (lightOn (consoleLayout::outputLegend.box, true), lightOn (consoleLayout::outputLegend.box, false));
}

TEST (TrackPlate, NumbersStepsAndLinkStayInRangeAndNoTickDisturbsTyping)
{
    juce::String steps, typed;

    for (const auto& [channels, link] : { std::pair (1, 0.0f), { 1, 1.0f }, { 2, 0.0f }, { 2, 1.0f } })
    {
        WindowUnderTest t (channels);
        const auto name = juce::String (channels) + (link > 0.0f ? " linked, " : ", ");
        const auto label = [&t](std::size_t side) -> auto& { return t.control<juce::Label> ("TolChannel", side); };

        for (const auto channel : { 1.0f, 2.0f, 12.0f, 30.0f, 31.0f, 32.0f })
            for (const auto* const title : { "Previous channel", "Next channel", "Link channels" })
            {
                t.set ("TolLink", link);
                t.set ("TolChannel", channel);
                steps << name << label (0).getText() << (label (1).isVisible() ? " " + label (1).getText() : "");
                t.button (title).setVisible (true); // clicked before a tick hides it
                click (t.button (title));
                t.show();
                steps << ", " << title << (t.button (title).isVisible() ? ": " : " (hidden): ") << t.ears.heard()
                      << plainOf (*t.strip, "TolChannel") << "\n";
            }

        for (const auto side : { 0u, 1u })
            for (const auto* const text : { " l. 12", "R9", "0", "1", "32", "0000000000012", "99999999999999999999", "",
                                            "L", "L:7", "-3", "7a" })
            {
                t.set ("TolLink", link);
                t.set ("TolChannel", 20.0f);
                typed << name << label (side).getText() << " <- '" << text << "': ";
                EXPECT_GE (firstInkIn (snapshotOf (label (side))), side == 0 ? 2 : 1) << "on the plate's frame";
                type (label (side), text, [&t] { t.show(); });
                t.show();
                typed << plainOf (*t.strip, "TolChannel") << ", " << label (side).getText() << "\n";
            }
    }

    expectGolden ("track-plate.txt", steps);
    expectGolden ("typed-numbers.txt", typed);
}

TEST (TrackPlate, RandomInAllDrawsAChannelInEveryInstance)
{
    WindowUnderTest here, there;
    std::set<float> drawn;
    click (here.button ("Random Channel"));
    EXPECT_EQ (plainOf (*there.strip, "TolChannel"), 1.0f) << "for this one alone";

    for (int i = 0; i < 20; ++i)
    {
        click (here.button ("Random Channel in ALL instances"));
        drawn.insert (plainOf (*there.strip, "TolChannel"));
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
}

} // namespace tarvik
