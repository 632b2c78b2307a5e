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
namespace
{
using namespace test;

constexpr double degree = juce::MathConstants<double>::pi / 180.0;

/** True if the component shows these pictures over one another and nothing else, at their own size. */
bool shows (juce::Component& component, std::initializer_list<Picture> pictures)
{
    juce::Image expected (juce::Image::ARGB, component.getWidth(), component.getHeight(), true);
    juce::Graphics g (expected);

    for (const auto picture : pictures)
        g.drawImageAt (decodedPicture (picture), 0, 0);

    return difference (snapshotOf (component), expected) == 0.0;
}
} // namespace

TEST (ToggleSwitch, EachThirdOfTheTravelHasItsLeverOnTheChosenPlate)
{
    const std::pair<double, Picture> levers[] {
        { 0.0, Picture::toggleLow },    { 0.333, Picture::toggleLow },    { 1.0 / 3.0, Picture::toggleMiddle },
        { 0.5, Picture::toggleMiddle }, { 0.666, Picture::toggleMiddle }, { 2.0 / 3.0, Picture::toggleHigh },
        { 1.0, Picture::toggleHigh },
    };
    constexpr Picture plates[] = { Picture::togglePlate1, Picture::togglePlate2, Picture::togglePlate3 };
    ToggleSwitch lever;
    lever.setSize (180, 180);
    EXPECT_TRUE (shows (lever, { Picture::togglePlate1, Picture::toggleLow }));

    for (int plate = 1; plate <= 3; ++plate)
    {
        lever.setPositions (plate);

        for (const auto& [value, picture] : levers)
        {
            lever.setValue (value, juce::dontSendNotification);
            EXPECT_TRUE (shows (lever, { plates[plate - 1], picture })) << plate << " " << value;
        }
    }
}

TEST (ToggleSwitch, APressPutsTheLeverWhereTheMouseIsAndTheWheelMovesItOneOn)
{
    ToggleSwitch lever;
    lever.setRange (0.0, 1.0, 0.5);
    lever.setSize (90, 90); // as at 150 %
    Mouse mouse (lever);

    for (const auto& [y, value] : { std::pair (8.0f, 1.0), { 45.0f, 0.5 }, { 82.0f, 0.0 }, { 12.0f, 1.0 } })
    {
        mouse.click ({ 45.0f, y });
        EXPECT_EQ (lever.getValue(), value) << y;
    }

    mouse.wheel (-0.195f);
    EXPECT_EQ (lever.getValue(), 0.5);
}

//==============================================================================
TEST (Fader, APressAnywhereDoesNotMoveTheCapAndADragMovesItWithTheMouse)
{
    Fader fader;
    fader.setSize (100, 569); // as at 100 %
    constexpr double track = 569 - 172;
    Mouse mouse (fader);

    for (const auto start : { 0.75, 0.1 })
    {
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

    EXPECT_TRUE (fader.hitTest (0, 568));
}

TEST (Fader, TheMiddleOfTheCapRunsFromEndToEndOfTheTrack)
{
    Fader fader; // 300 by 1706, where the cap is 516 high
    const auto cap = decodedPicture (Picture::faderCap);
    ASSERT_EQ (fader::capHeight (1706), 516);

    for (const auto& [value, top] : { std::pair (1.0, 0), { 0.5, 595 }, { 0.0, 1190 } })
    {
        fader.setValue (value, juce::dontSendNotification);
        const auto image = snapshotOf (fader);
        const auto rows = [&] (int from, int to)
        {
            double light = 0.0;

            for (int y = from; y < to; ++y)
                for (int x = 0; x < 300; x += 10)
                    light += static_cast<double> (image.getPixelAt (x, y).getFloatAlpha());

            return light;
        };

        EXPECT_EQ (rows (0, top), 0.0) << value;
        EXPECT_GT (rows (top, top + 516), 1000.0) << value;
        EXPECT_EQ (rows (top + 516, 1706), 0.0) << value;
    }
}

TEST (Fader, ThePixelsOfADragAreThePixelsOfTheCap)
{
    Fader fader;
    fader.setSize (100, 572); // a cap of 173 pixels, whose middle is between two
    Mouse mouse (fader);
    const auto capTop = [&]
    {
        const auto image = snapshotOf (fader);
        int y = 0;

        while (image.getPixelAt (50, y).getAlpha() < 128)
            ++y;

        return y;
    };

    mouse.press ({ 50.0f, 500.0f });
    const auto first = capTop();

    for (int i = 1; i <= 20; ++i)
    {
        mouse.drag ({ 50.0f, 500.0f - static_cast<float> (i) });
        EXPECT_EQ (first - capTop(), i);
    }
}

//==============================================================================
TEST (Buttons, PhaseAndMuteShowTheirStateAndActOnThePressWithoutChangingIt)
{
    const auto check = [] (juce::Button& button, Picture off, Picture on)
    {
        int clicks = 0;
        button.onClick = [&] { ++clicks; };
        EXPECT_EQ (button.getWidth(), 55);
        button.setVisible (true);
        button.setSize (110, 110);
        EXPECT_TRUE (shows (button, { off }));
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
    check (phase, Picture::phaseOff, Picture::phaseOn);
    CutButton mute;
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

TEST (Buttons, ALampIsOnlyThereWhenLitAndStaysInsideItsSocket)
{
    PictureButton lamp (Picture::none, Picture::none, Picture::lampAmber);
    lamp.setSize (34, 34);
    EXPECT_TRUE (shows (lamp, {}));
    lamp.setToggleState (true, juce::dontSendNotification);
    EXPECT_TRUE (shows (lamp, { Picture::lampAmber }));
    EXPECT_FALSE (shows (lamp, {}));
}

TEST (Buttons, ACapGoesDownUnderTheFingerAndStaysDownWhileItsParameterIsOn)
{
    PictureButton cap (Picture::pushReleased, Picture::none, Picture::pushPressed);
    cap.setVisible (true);
    cap.setTriggeredOnMouseDown (true);
    cap.setSize (180, 181); // the picture keeps its shape
    const auto square = [&] { return snapshotOf (cap).getClippedImage ({ 0, 0, 180, 180 }); };
    const auto isDown = [&] { return difference (square(), decodedPicture (Picture::pushPressed)) == 0.0; };
    const auto isUp = [&] { return difference (square(), decodedPicture (Picture::pushReleased)) == 0.0; };

    EXPECT_TRUE (isUp());
    Mouse mouse (cap);
    mouse.enter();
    EXPECT_TRUE (isUp());
    mouse.press ({ 90, 90 });
    EXPECT_TRUE (isDown());
    mouse.release ({ 90, 90 });
    EXPECT_TRUE (isUp());
    cap.setToggleState (true, juce::dontSendNotification);
    EXPECT_TRUE (isDown());
}

//==============================================================================
namespace
{
/** The direction of what is yellow, in degrees clockwise from straight up, seen from the pivot. */
double needleDegrees (juce::Component& component)
{
    const auto image = snapshotOf (component);
    const auto pivotX = component.getWidth() / 2.0, pivotY = component.getHeight() * 83.5 / 63.0;
    double x = 0.0, y = 0.0;

    for (int row = 0; row < image.getHeight(); ++row)
    {
        for (int column = 0; column < image.getWidth(); ++column)
        {
            const auto light = lightAt (image, column, row);
            x += light * (column + 0.5 - pivotX);
            y += light * (pivotY - row - 0.5);
        }
    }

    return std::atan2 (x, y) / degree;
}
} // namespace

TEST (Meter, TheNeedleStandsWhereTheScaleHasTheValue)
{
    constexpr double largestError = 0.5;
    OrvaneMeter meter;

    for (const auto width : { 124, 372 })
    {
        meter.setSize (width, width == 124 ? 63 : 189);

        for (const auto& [dB, degrees] :
             { std::pair (-16.0f, -45.0), { -0.5f, 0.0 }, { 15.0f, 45.0 }, { 99.0f, 45.0 }, { -100.0f, -45.0 } })
        {
            meter.setDecibels (dB);
            EXPECT_NEAR (needleDegrees (meter), degrees, largestError) << dB;
        }

        for (const auto& [dB, degrees] :
             { std::pair (0.0f, 45.0), { -5.0f, 15.0 }, { -10.0f, -5.0 }, { -20.0f, -45.0 }, { -60.0f, -45.0 } })
        {
            meter.setAngle (gainReductionAngle (dB));
            EXPECT_NEAR (needleDegrees (meter), degrees, largestError) << dB;
        }
    }

    const auto angle = meter.getAngle();
    meter.setDecibels (std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ (meter.getAngle(), angle);
}

TEST (Meter, TheNeedleIsYellowAndEndsBelowTheRim)
{
    OrvaneMeter meter;
    meter.setSize (372, 189);
    meter.setDecibels (-0.5f); // straight up
    const auto image = snapshotOf (meter);
    EXPECT_EQ (image.getPixelAt (186, 100), juce::Colour (0xfffee853));
    EXPECT_EQ (image.getPixelAt (186, 28).getAlpha(), 255);
    EXPECT_EQ (image.getPixelAt (186, 25).getAlpha(), 0);
}

} // namespace tarvik
