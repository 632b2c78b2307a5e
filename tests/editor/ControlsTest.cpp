// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ControlGeometry.h"
#include "editor/Fader.h"
#include "editor/OrvaneKnob.h"
#include "editor/OrvaneMeter.h"
#include "editor/PictureButtons.h"
#include "editor/ToggleSwitch.h"
#include "editor/TrimPot.h"
#include "tests/support/EditorTestTools.h"

#include <gtest/gtest.h>

namespace tarvik
{
namespace
{
using namespace test;

constexpr double degree = juce::MathConstants<double>::pi / 180.0;

/** The direction of the pointer, in degrees clockwise from straight up: where a ring between cap and edge is brightest,
    as the centre of the light around the peak.
*/
double pointerDegrees (const juce::Image& image)
{
    constexpr double step = 0.25, neighbourhood = 9.0;
    const auto size = image.getWidth();
    const auto light = [&] (double degrees)
    {
        auto sum = 0.0;

        for (const auto radius : { 0.31, 0.32, 0.33, 0.34, 0.35 })
            sum += lightAt (image, static_cast<int> (size * (0.5 + radius * std::sin (degrees * degree))),
                            static_cast<int> (size * (0.5 - radius * std::cos (degrees * degree))));

        return sum;
    };

    auto peak = 0.0, weights = 0.0, sum = 0.0;

    for (double a = 0.0; a < 360.0; a += step)
        if (light (a) > light (peak))
            peak = a;

    const auto floor = 0.8 * light (peak);

    for (double a = -neighbourhood; a <= neighbourhood; a += step)
    {
        const auto weight = std::max (0.0, light (peak + a) - floor);
        weights += weight;
        sum += weight * a;
    }

    return peak + sum / weights;
}
} // namespace

TEST (Knob, ThePointerShowsTheValueInBothStylesAndOnEveryArc)
{
    constexpr double largestError = 1.5;

    for (const auto& [style, start, end] :
         { std::tuple (0, 210.0, 510.0), { 1, 210.0, 510.0 }, { 0, 120.0, 410.0 }, { 0, 393.0, 523.0 } })
    {
        OrvaneKnob knob;
        knob.setFilmstripRange (static_cast<float> (start * degree), static_cast<float> (end * degree));
        knob.setKnobStyle (style);

        for (const auto size : { 100, 300 })
            for (const auto value : { 0.0, 0.25, 0.75, 1.0, 0.123, 0.4567, 0.871 }) // the last between two frames
            {
                knob.setSize (size, size);
                knob.setValue (value, juce::dontSendNotification);
                const auto error = pointerDegrees (snapshotOf (knob)) - (start + value * (end - start));
                EXPECT_LT (std::abs (std::remainder (error, 360.0)), largestError) << start << " at " << value;
            }
    }
}

TEST (Knob, TheCornersBelongToWhatLiesBelow)
{
    OrvaneKnob knob; // the circle's radius is 39 pixels of its 100

    for (const auto& [x, y, isHit] :
         { std::tuple (50, 12, true), { 77, 77, true }, { 50, 10, false }, { 79, 79, false } })
        EXPECT_EQ (knob.hitTest (x, y), isHit) << x << " " << y;
}

TEST (Wheel, ANotchIsAStepAndTheListenersHearOfIt)
{
    OrvaneKnob knob;
    Mouse mouse (knob);
    int calls = 0;
    knob.onValueChange = [&] { ++calls; };
    knob.setRange (0.0, 1.0, 0.1);
    knob.setValue (0.5, juce::dontSendNotification);

    mouse.wheel (Mouse::notch);
    EXPECT_NEAR (knob.getValue(), 0.6, 1e-9);
    EXPECT_TRUE (knob.hasUnsentStep());
    runMessagesFor (1);
    EXPECT_EQ (calls, 1);
    EXPECT_FALSE (knob.hasUnsentStep());
    mouse.wheel (Mouse::notch, 0, false, true);
    EXPECT_NEAR (knob.getValue(), 0.5, 1e-9) << "a reversed wheel";

    // Beyond the end nothing changes, and nothing is announced.
    knob.setValue (1.0, juce::dontSendNotification);
    runMessagesFor (1);
    mouse.wheel (Mouse::notch);
    EXPECT_EQ (knob.getValue(), 1.0);
    EXPECT_FALSE (knob.hasUnsentStep());
}

TEST (Wheel, FineMovementsAddUpAndAPauseForgetsThem)
{
    OrvaneKnob knob;
    Mouse mouse (knob);
    knob.setRange (0.0, 1.0, 0.1);
    const auto valueAfter = [&] (int movements)
    {
        while (movements-- > 0)
            mouse.wheel (0.22f, juce::ModifierKeys::ctrlModifier); // 0.11 of a step

        return knob.getValue();
    };

    EXPECT_EQ (valueAfter (4), 0.0);
    EXPECT_NEAR (valueAfter (1), 0.1, 1e-9);
    EXPECT_NEAR (valueAfter (8), 0.1, 1e-9) << "0.45 was too much";
    runMessagesFor (400);
    EXPECT_NEAR (valueAfter (1), 0.2, 1e-9) << "before the half second is over";
    EXPECT_NEAR (valueAfter (8), 0.2, 1e-9);
    runMessagesFor (600);
    EXPECT_NEAR (valueAfter (2), 0.2, 1e-9);

    // With another modifier beside it, Ctrl does not refine.
    mouse.wheel (0.2f, juce::ModifierKeys::ctrlModifier | juce::ModifierKeys::shiftModifier);
    EXPECT_NEAR (knob.getValue(), 0.3, 1e-9);
}

TEST (Wheel, AContinuousKnobOrATouchpadMovesByTheWheelsOwnMeasure)
{
    OrvaneKnob knob;
    Mouse mouse (knob);
    mouse.wheel (0.2f);
    EXPECT_NEAR (knob.getValue(), 0.03, 1e-6);
    mouse.wheel (0.2f, juce::ModifierKeys::ctrlModifier);
    EXPECT_NEAR (knob.getValue(), 0.033, 1e-6);

    // A stepped knob under a touchpad, by at least a step.
    knob.setRange (0.0, 1.0, 0.25);
    knob.setValue (0.5, juce::dontSendNotification);
    mouse.wheel (0.001f, 0, true);
    EXPECT_EQ (knob.getValue(), 0.75);
}

TEST (TrimPot, TheDialTurnsUnderAShadowThatStays)
{
    TrimPot pot;
    pot.setSize (36, 36);
    pot.setRange (-2.0, 2.0);

    // The first and the last position are 297 degrees apart, and a half points up.
    for (const auto& [value, degrees] : { std::pair (-2.0, -148.5), { -1.0, -74.25 }, { 0.0, 0.0 }, { 2.0, 148.5 } })
    {
        pot.setValue (value, juce::dontSendNotification);
        juce::Image expected (juce::Image::ARGB, 36, 36, true);
        juce::Graphics g (expected);
        g.setImageResamplingQuality (juce::Graphics::highResamplingQuality);
        g.drawImageTransformed (decodedPicture (Picture::trimDial),
                                juce::AffineTransform::rotation (static_cast<float> (degrees * degree), 18.0f, 18.0f));
        g.drawImageAt (decodedPicture (Picture::trimShadow), 0, 0);
        EXPECT_LT (difference (snapshotOf (pot), expected), 0.02) << value;
    }
}

TEST (ToggleSwitch, EachThirdOfTheTravelHasItsLeverOnTheChosenPlate)
{
    constexpr Picture plates[] = { Picture::togglePlate1, Picture::togglePlate2, Picture::togglePlate3 };
    ToggleSwitch lever;
    lever.setSize (180, 180);

    for (const auto& [value, picture] : { std::pair (0.0, Picture::toggleLow),
                                          { 0.333, Picture::toggleLow },
                                          { 1.0 / 3.0, Picture::toggleMiddle },
                                          { 0.666, Picture::toggleMiddle },
                                          { 2.0 / 3.0, Picture::toggleHigh } })
        for (int plate = 1; plate <= 3; ++plate)
        {
            lever.setPositions (plate);
            lever.setValue (value, juce::dontSendNotification);
            EXPECT_TRUE (shows (lever, { plates[plate - 1], picture })) << plate << " " << value;
        }
}

TEST (Fader, APressDoesNotMoveTheCapAndADragMovesItWithTheMouse)
{
    Fader fader;
    fader.setSize (100, 572); // a cap of 173 pixels, whose middle is between two
    constexpr double track = 572 - 173;
    Mouse mouse (fader);
    const auto capRows = [&fader]
    {
        const auto image = snapshotOf (fader);
        juce::Range<int> rows;

        for (int y = 0; y < image.getHeight(); ++y)
            if (image.getPixelAt (image.getWidth() / 2, y).getAlpha() != 0)
                rows = rows.isEmpty() ? juce::Range (y, y + 1) : rows.getUnionWith (juce::Range (y, y + 1));

        return rows;
    };

    for (const auto y : { 3.0f, 560.0f })
    {
        fader.setValue (0.1, juce::dontSendNotification);
        mouse.press ({ 50.0f, y });
        const auto start = capRows().getStart();

        for (const auto up : { 0, 1, 2, 3, 30 })
        {
            mouse.drag ({ 50.0f, y - static_cast<float> (up) });
            EXPECT_NEAR (fader.getValue(), 0.1 + up / track, 1e-6) << y;
            EXPECT_EQ (start - capRows().getStart(), up) << "pixel by pixel";
        }

        mouse.release ({ 50.0f, y - 30.0f });
    }

    for (const auto& [value, top] : { std::pair (1.0, 0), { 0.5, 199 }, { 0.0, 399 } })
    {
        fader.setValue (value, juce::dontSendNotification);
        EXPECT_TRUE (juce::Range (top, top + 173).contains (capRows())) << value;
    }
}

TEST (Buttons, EachStateHasItsPictureAndAClickFlipsNone)
{
    PhaseButton phase;
    CutButton mute;
    PictureButton cap (Picture::pushReleased, Picture::none, Picture::pushPressed);
    cap.setTriggeredOnMouseDown (true);

    for (const auto& [button, off, on, isDownWhileHeld] :
         { std::tuple (static_cast<juce::Button*> (&phase), Picture::phaseOff, Picture::phaseOn, false),
           { &mute, Picture::muteOff, Picture::muteOn, false },
           { &cap, Picture::pushReleased, Picture::pushPressed, true } })
    {
        int clicks = 0;
        button->onClick = [&clicks] { ++clicks; };
        button->setVisible (true);
        button->setSize (rowOf (off).width, rowOf (off).height);
        Mouse mouse (*button);
        mouse.enter();
        EXPECT_TRUE (shows (*button, { off }));
        mouse.press ({ 50, 50 });
        EXPECT_EQ (clicks, 1) << "on the press";
        EXPECT_TRUE (shows (*button, { isDownWhileHeld ? on : off }));
        mouse.release ({ 50, 50 });
        EXPECT_EQ (clicks, 1);
        EXPECT_TRUE (shows (*button, { off })) << "only the parameter changes what is shown";
        button->setToggleState (true, juce::dontSendNotification);
        EXPECT_TRUE (shows (*button, { on }));
    }

    constexpr Picture pictures[] = { Picture::linkOff, Picture::linkOffOver, Picture::linkOffPressed,
                                     Picture::linkOn,  Picture::linkOnOver,  Picture::linkOnPressed };
    LinkButton link;
    link.setSize (60, 50);

    for (int i = 0; i < 6; ++i)
    {
        link.setToggleState (i >= 3, juce::dontSendNotification);
        link.setState (static_cast<juce::Button::ButtonState> (i % 3)); // normal, over, down
        EXPECT_TRUE (shows (link, { pictures[i] })) << i;
    }
}

TEST (Meter, TheNeedleStandsWhereTheScaleHasTheValue)
{
    constexpr double largestError = 0.5;
    OrvaneMeter meter;

    // The direction of what is yellow, in degrees clockwise from straight up, seen from the pivot.
    const auto needle = [&meter]
    {
        const auto image = snapshotOf (meter);
        juce::Point<double> sum;

        for (int y = 0; y < image.getHeight(); ++y)
            for (int x = 0; x < image.getWidth(); ++x)
                sum += lightAt (image, x, y)
                       * juce::Point (x + 0.5 - image.getWidth() / 2.0, image.getHeight() * 83.5 / 63.0 - y - 0.5);

        return juce::radiansToDegrees (std::atan2 (sum.x, sum.y));
    };

    for (const auto& [width, height] : { std::pair (124, 63), { 372, 189 } })
    {
        meter.setSize (width, height);

        for (const auto& [dB, degrees] :
             { std::pair (15.0f, 45.0), { 99.0f, 45.0 }, { -100.0f, -45.0 }, { -0.5f, 0.0 } })
        {
            meter.setDecibels (dB);
            EXPECT_NEAR (needle(), degrees, largestError) << dB;
        }

        for (const auto& [dB, degrees] :
             { std::pair (0.0f, 45.0), { -5.0f, 15.0 }, { -10.0f, -5.0 }, { -20.0f, -45.0 }, { -60.0f, -45.0 } })
        {
            meter.setAngle (gainReductionAngle (dB));
            EXPECT_NEAR (needle(), degrees, largestError) << dB;
        }
    }

    const auto angle = meter.getAngle();
    meter.setDecibels (std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ (meter.getAngle(), angle);

    meter.setDecibels (-0.5f); // straight up, to below the rim
    const auto image = snapshotOf (meter);
    EXPECT_EQ (image.getPixelAt (186, 100), juce::Colour (0xfffee853));
    EXPECT_EQ (image.getPixelAt (186, 28).getAlpha(), 255);
    EXPECT_EQ (image.getPixelAt (186, 25).getAlpha(), 0);
}

} // namespace tarvik
