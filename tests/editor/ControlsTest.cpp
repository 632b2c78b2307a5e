// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ControlGeometry.h"
#include "editor/Fader.h"
#include "editor/OrvaneMeter.h"
#include "editor/PictureButtons.h"
#include "editor/ToggleSwitch.h"
#include "tests/support/EditorTestTools.h"

#include <gtest/gtest.h>

namespace tarvik
{

using namespace test;

TEST (ToggleSwitch, EachThirdOfTheTravelHasItsLeverOnTheChosenPlate)
{
    constexpr Picture plates[] = { Picture::togglePlate1, Picture::togglePlate2, Picture::togglePlate3 };
    ToggleSwitch lever;
    lever.setSize (180, 180);

    for (const auto& [value, picture] : { std::pair (0.0, Picture::toggleLow),
                                          { 0.333, Picture::toggleLow },
                                          { 1.0 / 3.0, Picture::toggleMiddle },
                                          { 0.666, Picture::toggleMiddle },
                                          { 2.0 / 3.0, Picture::toggleHigh },
                                          { 1.0, Picture::toggleHigh } })
        for (int plate = 1; plate <= 3; ++plate)
        {
            lever.setPositions (plate);
            lever.setValue (value, juce::dontSendNotification);
            EXPECT_TRUE (shows (lever, { plates[plate - 1], picture })) << plate << " " << value;
        }
}

//==============================================================================
TEST (Fader, APressAnywhereDoesNotMoveTheCapAndADragMovesItWithTheMouse)
{
    Fader fader;
    fader.setSize (100, 569); // as at 100 %
    constexpr double track = 569 - 172;
    Mouse mouse (fader);

    for (const auto start : { 0.75, 0.1 })
        for (const auto y : { 3.0f, 284.0f, 560.0f })
        {
            fader.setValue (start, juce::dontSendNotification);
            mouse.press ({ 50.0f, y });
            EXPECT_NEAR (fader.getValue(), start, 1e-6) << y;
            mouse.drag ({ 50.0f, y - 30.0f });
            EXPECT_NEAR (fader.getValue(), start + 30.0 / track, 1e-6) << y;
            mouse.release ({ 50.0f, y - 30.0f });
        }
}

TEST (Fader, TheCapRunsFromEndToEndOfTheTrackAndPixelByPixelWithTheMouse)
{
    Fader fader; // 300 by 1706
    const auto capRows = [&fader]
    {
        const auto image = snapshotOf (fader);
        const auto isEmpty = [&] (int y) { return image.getPixelAt (image.getWidth() / 2, y).getAlpha() == 0; };
        auto first = 0, last = image.getHeight() - 1;

        while (isEmpty (first))
            ++first;

        while (isEmpty (last))
            --last;

        return std::pair (first, last);
    };

    for (const auto& [value, top] : { std::pair (1.0, 0), { 0.5, 595 }, { 0.0, 1190 } })
    {
        fader.setValue (value, juce::dontSendNotification);

        // The cap is 516 high, with a transparent margin.
        const auto [first, last] = capRows();
        EXPECT_GE (first, top) << value;
        EXPECT_LT (last, top + 516) << value;
        EXPECT_GT (last - first, 400) << value;
    }

    fader.setSize (100, 572); // a cap of 173 pixels, whose middle is between two
    Mouse mouse (fader);
    mouse.press ({ 50.0f, 500.0f });
    const auto start = capRows().first;

    for (int i = 1; i <= 20; ++i)
    {
        mouse.drag ({ 50.0f, 500.0f - static_cast<float> (i) });
        EXPECT_EQ (start - capRows().first, i);
    }
}

//==============================================================================
TEST (Buttons, PhaseAndMuteShowTheirStateAndActOnThePressWithoutChangingIt)
{
    const auto check = [] (juce::Button& button, Picture off, Picture on)
    {
        int clicks = 0;
        button.onClick = [&] { ++clicks; };
        button.setVisible (true);
        button.setSize (110, 110);
        Mouse mouse (button);
        mouse.press ({ 50, 50 });
        EXPECT_EQ (clicks, 1);
        mouse.release ({ 50, 50 });
        EXPECT_EQ (clicks, 1);
        EXPECT_TRUE (shows (button, { off })) << "only the parameter changes what is shown";
        button.setToggleState (true, juce::dontSendNotification);
        EXPECT_TRUE (shows (button, { on }));
    };

    PhaseButton phase;
    CutButton mute;
    check (phase, Picture::phaseOff, Picture::phaseOn);
    check (mute, Picture::muteOff, Picture::muteOn);
}

TEST (Buttons, LinkHasAPictureForEachOfItsSixStates)
{
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

TEST (Buttons, ALampIsOnlyThereWhenLitAndACapGoesDownUnderTheFingerOrWhileItsParameterIsOn)
{
    PictureButton lamp (Picture::none, Picture::none, Picture::lampAmber);
    lamp.setSize (34, 34);
    EXPECT_TRUE (shows (lamp, {}));
    lamp.setToggleState (true, juce::dontSendNotification);
    EXPECT_TRUE (shows (lamp, { Picture::lampAmber }));

    PictureButton cap (Picture::pushReleased, Picture::none, Picture::pushPressed);
    cap.setVisible (true);
    cap.setTriggeredOnMouseDown (true);
    cap.setSize (180, 181); // the picture keeps its shape
    Mouse mouse (cap);
    mouse.enter();
    EXPECT_TRUE (shows (cap, { Picture::pushReleased }));
    mouse.press ({ 90, 90 });
    EXPECT_TRUE (shows (cap, { Picture::pushPressed }));
    mouse.release ({ 90, 90 });
    EXPECT_TRUE (shows (cap, { Picture::pushReleased }));
    cap.setToggleState (true, juce::dontSendNotification);
    EXPECT_TRUE (shows (cap, { Picture::pushPressed }));
}

//==============================================================================
TEST (Meter, TheNeedleStandsWhereTheScaleHasTheValueAndEndsBelowTheRim)
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
             { std::pair (-16.0f, -45.0), { 15.0f, 45.0 }, { 99.0f, 45.0 }, { -100.0f, -45.0 }, { -0.5f, 0.0 } })
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

    meter.setDecibels (-0.5f); // straight up
    const auto image = snapshotOf (meter);
    EXPECT_EQ (image.getPixelAt (186, 100), juce::Colour (0xfffee853));
    EXPECT_EQ (image.getPixelAt (186, 28).getAlpha(), 255);
    EXPECT_EQ (image.getPixelAt (186, 25).getAlpha(), 0);
}

} // namespace tarvik
