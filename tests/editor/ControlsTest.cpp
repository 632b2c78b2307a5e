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

#include <complex>

namespace tarvik
{
namespace
{
using namespace test;

constexpr double degree = juce::MathConstants<double>::pi / 180.0;

/** The direction of the pointer, in degrees clockwise from straight up: the centre of what is brightest on a ring between
    cap and edge.
*/
double pointerDegrees (const juce::Image& image)
{
    const auto size = image.getWidth();
    std::vector<double> light (1440);

    for (std::size_t i = 0; i < light.size(); ++i)
        for (const auto radius : { 0.31, 0.32, 0.33, 0.34, 0.35 })
        {
            const auto place = std::polar (size * radius, 0.25 * degree * static_cast<double> (i));
            light[i] += lightAt (image, static_cast<int> (0.5 * size + place.imag()),
                                 static_cast<int> (0.5 * size - place.real()));
        }

    const auto peak = static_cast<std::size_t> (std::max_element (light.begin(), light.end()) - light.begin());
    std::complex<double> sum;

    for (auto i = peak + 1404; i <= peak + 1476; ++i) // 9 degrees to either side
        sum +=
            std::polar (std::max (0.0, light[i % 1440] - 0.8 * light[peak]), 0.25 * degree * static_cast<double> (i));

    return std::arg (sum) / degree;
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
            for (const auto value : { 0.0, 0.25, 0.871, 1.0 }) // the third between two frames
            {
                knob.setSize (size, size);
                knob.setValue (value, juce::dontSendNotification);
                const auto error = pointerDegrees (snapshotOf (knob)) - (start + value * (end - start));
                EXPECT_LT (std::abs (std::remainder (error, 360.0)), largestError) << start << " at " << value;
            }

        EXPECT_TRUE (knob.hitTest (150, 36) && ! knob.hitTest (237, 237)) << "a circle of 39 of its 100 pixels";
    }
}

TEST (Wheel, ANotchIsAStepAndFineMovementsAddUpUntilAPause)
{
    constexpr int ctrl = juce::ModifierKeys::ctrlModifier, shift = juce::ModifierKeys::shiftModifier;
    constexpr float fine = 0.22f; // with Ctrl 0.11 of a step
    OrvaneKnob knob;
    Mouse mouse (knob);
    const auto turn = [&] (double expected, int movements, float delta, int keys, const char* why,
                           bool isSmooth = false, bool isReversed = false)
    {
        while (movements-- > 0)
            mouse.wheel (delta, keys, isSmooth, isReversed);

        EXPECT_NEAR (knob.getValue(), expected, 1e-6) << why;
    };

    knob.setRange (0.0, 1.0, 0.1);
    turn (0.0, 1, -0.2f, 0, "the range's end");
    EXPECT_FALSE (knob.hasUnsentStep()) << "nothing moved, and nothing will be told";
    turn (0.0, 4, fine, ctrl, "0.44 of a step");
    turn (0.1, 1, fine, ctrl, "0.55");
    EXPECT_TRUE (knob.hasUnsentStep());
    turn (0.1, 8, fine, ctrl, "0.45 was too much");
    runMessagesFor (600);
    EXPECT_FALSE (knob.hasUnsentStep());
    turn (0.1, 2, fine, ctrl, "begun anew after a pause");
    turn (0.2, 1, 0.2f, ctrl | shift, "another modifier: not fine");
    turn (0.1, 1, Mouse::notch, 0, "a reversed wheel", false, true);
    turn (0.2, 1, 0.001f, 0, "a touchpad moves at least a step", true);
    knob.setRange (0.0, 1.0);
    turn (0.23, 1, 0.2f, 0, "a continuous knob: the wheel's own measure");
    turn (0.233, 1, 0.2f, ctrl, "finely");
}

TEST (TrimPot, TheDialTurnsUnderAShadowThatStays)
{
    TrimPot pot;
    pot.setSize (36, 36);
    pot.setRange (-2.0, 2.0);

    for (const auto& [value, degrees] : { std::pair (-2.0, -148.5), { -1.0, -74.25 } }) // 0 points up
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

TEST (ToggleSwitch, EachThirdOfTheTravelHasItsLever)
{
    ToggleSwitch lever;
    lever.setSize (180, 180);

    for (const auto& [plate, plateUnder, value, picture] :
         { std::tuple (1, Picture::togglePlate1, 0.333, Picture::toggleLow),
           { 2, Picture::togglePlate2, 1.0 / 3.0, Picture::toggleMiddle },
           { 3, Picture::togglePlate3, 0.666, Picture::toggleMiddle },
           { 1, Picture::togglePlate1, 2.0 / 3.0, Picture::toggleHigh } })
    {
        lever.setPositions (plate);
        lever.setValue (value, juce::dontSendNotification);
        EXPECT_TRUE (shows (lever, { plateUnder, picture })) << plate << " " << value;
    }
}

TEST (Fader, APressDoesNotMoveTheCapAndADragMovesItWithTheMouse)
{
    Fader fader;
    fader.setSize (100, 572); // a cap of 173 pixels, whose middle is between two
    Mouse mouse (fader);
    const auto topOfCap = [&fader]
    {
        const auto image = snapshotOf (fader);
        int y = 0;

        while (image.getPixelAt (50, y).getAlpha() == 0)
            ++y;

        return y;
    };

    for (const auto y : { 3.0f, 560.0f })
    {
        fader.setValue (0.1, juce::dontSendNotification);
        const auto start = topOfCap();
        mouse.press ({ 50.0f, y });

        for (const auto up : { 0, 1, 30 })
        {
            mouse.drag ({ 50.0f, y - static_cast<float> (up) });
            EXPECT_NEAR (fader.getValue(), 0.1 + up / (572.0 - 173.0), 1e-6) << y;
            EXPECT_EQ (start - topOfCap(), up) << "pixel by pixel";
            EXPECT_NEAR (fader.valuePlace().getY() - topOfCap(), 24, 2) << "where the bubble points: below the shadow";
        }
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
        EXPECT_TRUE (clicks == 1 && shows (*button, { off })) << "only the parameter changes what is shown";
        button->setToggleState (true, juce::dontSendNotification);
        EXPECT_TRUE (shows (*button, { on }));
    }

    LinkButton link;
    link.setSize (60, 50);
    EXPECT_TRUE (shows (link, { Picture::linkOff }));
    link.setToggleState (true, juce::dontSendNotification);
    link.setState (juce::Button::buttonDown);
    EXPECT_TRUE (shows (link, { static_cast<Picture> (static_cast<int> (Picture::linkOff) + 5) }));
}

TEST (Meter, TheNeedleStandsWhereTheScaleHasTheValue)
{
    constexpr double largestError = 0.5;
    OrvaneMeter meter;
    meter.setSize (372, 189);

    for (const auto& [angle, degrees] : { std::pair (meterAngle (99.0f), 45.0),
                                          { meterAngle (-0.5f), 0.0 },
                                          { gainReductionAngle (0.0f), 45.0 },
                                          { gainReductionAngle (-60.0f), -45.0 } })
    {
        meter.setAngle (angle, 0.0f);
        const auto image = snapshotOf (meter);
        juce::Point<double> sum; // of the direction of what is yellow, seen from the pivot

        for (int y = 0; y < 189; ++y)
            for (int x = 0; x < 372; ++x)
                sum += lightAt (image, x, y) * juce::Point (x + 0.5 - 186.0, 250.5 - y - 0.5);

        EXPECT_NEAR (std::atan2 (sum.x, sum.y) / degree, degrees, largestError) << angle;
    }

    meter.setDecibels (-0.5f); // straight up, to below the rim
    meter.setDecibels (std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ (snapshotOf (meter).getPixelAt (186, 28), juce::Colour (0xfffee853));
    EXPECT_EQ (snapshotOf (meter).getPixelAt (186, 25).getAlpha(), 0);
}

} // namespace tarvik
