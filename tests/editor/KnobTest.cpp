// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/OrvaneKnob.h"
#include "editor/TrimPot.h"
#include "tests/support/EditorTestTools.h"

#include <gtest/gtest.h>

namespace tarvik
{
namespace
{
using namespace test;

constexpr double degree = juce::MathConstants<double>::pi / 180.0;

/** Light between pixels. */
double lightAt (const juce::Image& image, juce::Point<double> place)
{
    const auto x = place.x - 0.5, y = place.y - 0.5;
    const auto left = static_cast<int> (x), top = static_cast<int> (y);
    const auto right = x - left, bottom = y - top;
    return (1 - bottom)
               * ((1 - right) * test::lightAt (image, left, top) + right * test::lightAt (image, left + 1, top))
           + bottom
                 * ((1 - right) * test::lightAt (image, left, top + 1)
                    + right * test::lightAt (image, left + 1, top + 1));
}

/** The direction of the pointer, in degrees clockwise from straight up: where a circle between cap and edge is brightest,
    as the centre of the light around the peak.
*/
double pointerDegrees (const juce::Image& image)
{
    constexpr double step = 0.25, neighbourhood = 9.0, radius = 0.33;
    const auto size = image.getWidth();

    const auto light = [&] (double degrees)
    {
        const auto angle = degrees * degree;
        return lightAt (
            image, { size / 2.0 + radius * size * std::sin (angle), size / 2.0 - radius * size * std::cos (angle) });
    };

    double brightest = 0.0, place = 0.0;

    for (double a = 0.0; a < 360.0; a += step)
    {
        // Over a few degrees, so that a glint of one pixel is no pointer.
        const auto around = light (a - 1.0) + light (a) + light (a + 1.0);

        if (around > brightest)
        {
            brightest = around;
            place = a;
        }
    }

    double weights = 0.0, sum = 0.0;
    const auto floor = 0.8 * light (place);

    for (double a = -neighbourhood; a <= neighbourhood; a += step)
    {
        const auto weight = std::max (0.0, light (place + a) - floor);
        weights += weight;
        sum += weight * a;
    }

    return place + sum / weights;
}

double angleBetween (double a, double b) { return std::abs (std::remainder (a - b, 360.0)); }

struct KnobCase
{
    int style;
    double start, end; ///< Degrees.
};

std::unique_ptr<OrvaneKnob> knobOf (const KnobCase& kind)
{
    auto knob = std::make_unique<OrvaneKnob>();
    knob->setFilmstripRange (static_cast<float> (kind.start * degree), static_cast<float> (kind.end * degree));
    knob->setKnobStyle (kind.style);
    return knob;
}

constexpr KnobCase kinds[] = { { 0, 210, 510 }, { 1, 210, 510 }, { 0, 120, 410 }, { 0, 393, 523 }, { 0, 285, 435 } };
} // namespace

TEST (Knob, ThePointerShowsTheValueInBothStylesAndOnEveryArc)
{
    constexpr double largestError = 1.5;

    for (const auto& kind : kinds)
    {
        const auto knob = knobOf (kind);

        for (const auto size : { 100, 300 })
        {
            knob->setSize (size, size);

            // Quarters of the travel, and places that lie between two frames.
            for (const auto value : { 0.0, 0.25, 0.5, 0.75, 1.0, 0.123, 0.4567, 0.871 })
            {
                knob->setValue (value, juce::dontSendNotification);
                const auto shown = pointerDegrees (snapshotOf (*knob));
                const auto meant = kind.start + value * (kind.end - kind.start);
                EXPECT_LT (angleBetween (shown, meant), largestError)
                    << "style " << kind.style << " from " << kind.start << " at " << value << ": " << shown;
            }
        }
    }
}

TEST (Knob, MovesSmoothlyBetweenTwoFrames)
{
    const auto knob = knobOf (kinds[0]);
    knob->setSize (300, 300);

    // A frame is 3.67 degrees, and each step of a hundredth is 3.
    for (int i = 20; i < 40; ++i)
    {
        knob->setValue (i / 100.0, juce::dontSendNotification);
        const auto before = pointerDegrees (snapshotOf (*knob));
        knob->setValue ((i + 1) / 100.0, juce::dontSendNotification);
        EXPECT_NEAR (std::remainder (pointerDegrees (snapshotOf (*knob)) - before, 360.0), 3.0, 1.0) << i;
    }
}

TEST (Knob, TheFrameIsTheNearestAndTheResidueTheRest)
{
    constexpr auto halfFrame = 360.0 / 98.0 / 2.0 * degree;

    for (const auto& kind : kinds)
    {
        const RotaryArc arc { static_cast<float> (kind.start * degree), static_cast<float> (kind.end * degree) };

        for (float value = 0.0f; value <= 1.0f; value += 1.0f / 512.0f)
        {
            const auto frame = filmstripFrame (value, arc);
            const auto residue = filmstripResidue (value, arc);
            ASSERT_TRUE (juce::isPositiveAndBelow (frame, 98)) << kind.start << " " << value;
            ASSERT_LE (std::abs (static_cast<double> (residue)), halfFrame + 1e-4) << kind.start << " " << value;

            const auto shown = 180.0 + frame * 360.0 / 98.0 + static_cast<double> (residue) / degree;
            const auto meant = kind.start + static_cast<double> (value) * (kind.end - kind.start);
            ASSERT_LT (angleBetween (shown, meant), 0.01) << kind.start << " " << value;
        }
    }

    // Before an arc is set, a whole turn ends on the last frame and a frame's turn.
    EXPECT_EQ (filmstripFrame (1.0f, RotaryArc()), 97);
    EXPECT_NEAR (static_cast<double> (filmstripResidue (1.0f, RotaryArc())), 2.0 * halfFrame, 1e-5);
}

TEST (Knob, TheCornersBelongToWhatLiesBelow)
{
    juce::Component parent, below;
    OrvaneKnob knob;
    parent.setSize (200, 200);
    parent.setVisible (true);
    below.setBounds (parent.getLocalBounds());
    knob.setBounds (50, 50, 100, 100);
    parent.addAndMakeVisible (below);
    parent.addAndMakeVisible (knob);

    // The circle's radius is 39 pixels.
    for (const auto& [x, y] : { std::pair (100, 100), { 100, 62 }, { 138, 100 }, { 127, 127 } })
        EXPECT_EQ (parent.getComponentAt (x, y), &knob) << x << " " << y;

    for (const auto& [x, y] : { std::pair (52, 52), { 100, 60 }, { 140, 100 }, { 129, 129 } })
        EXPECT_EQ (parent.getComponentAt (x, y), &below) << x << " " << y;
}

TEST (Knob, AnUnknownStyleDrawsNothing)
{
    const auto knob = knobOf ({ 2, 210, 510 });
    EXPECT_EQ (difference (snapshotOf (*knob), juce::Image (juce::Image::ARGB, 100, 100, true)), 0.0);
}

TEST (Knob, DragAndResetByAltClickAndDoubleClickAreGestures)
{
    struct Listener : juce::Slider::Listener
    {
        void sliderValueChanged (juce::Slider*) override { log += "v"; }

        void sliderDragStarted (juce::Slider*) override { log += "("; }

        void sliderDragEnded (juce::Slider*) override { log += ")"; }

        juce::String log;
    } listener;

    OrvaneKnob knob;
    Mouse mouse (knob);
    knob.addListener (&listener);
    knob.setDoubleClickReturnValue (true, 0.25, juce::ModifierKeys::altModifier);

    // 250 pixels are the whole travel.
    mouse.press ({ 50, 50 });
    mouse.drag ({ 50, 0 });
    mouse.drag ({ 50, -75 });
    mouse.release ({ 50, -75 });
    EXPECT_NEAR (knob.getValue(), 0.5, 1e-6);
    EXPECT_EQ (std::exchange (listener.log, {}), "(vv)");

    mouse.click ({ 50, 50 }, juce::ModifierKeys::altModifier);
    EXPECT_EQ (knob.getValue(), 0.25);
    EXPECT_EQ (std::exchange (listener.log, {}), "(v)");

    knob.setValue (1.0, juce::dontSendNotification);
    mouse.press ({ 50, 50 }, 0, 2);
    mouse.release ({ 50, 50 });
    EXPECT_EQ (knob.getValue(), 0.25);
}

//==============================================================================
TEST (Wheel, OneNotchIsOneStepAndTheListenersHearOfIt)
{
    OrvaneKnob knob;
    Mouse mouse (knob);
    int calls = 0;
    knob.onValueChange = [&] { ++calls; };
    knob.setRange (0.0, 1.0, 0.1);
    knob.setValue (0.5, juce::dontSendNotification);

    constexpr float notch = 0.195f;
    mouse.wheel (notch);
    EXPECT_NEAR (knob.getValue(), 0.6, 1e-9);
    EXPECT_TRUE (knob.hasUnsentStep());
    EXPECT_EQ (calls, 0);
    runMessagesFor (1);
    EXPECT_EQ (calls, 1);
    EXPECT_FALSE (knob.hasUnsentStep());

    mouse.wheel (-notch);
    EXPECT_NEAR (knob.getValue(), 0.5, 1e-9);
    mouse.wheel (notch, 0, false, true);
    EXPECT_NEAR (knob.getValue(), 0.4, 1e-9);

    // Beyond the end nothing changes, and nothing is announced.
    knob.setValue (1.0, juce::dontSendNotification);
    runMessagesFor (1);
    mouse.wheel (notch);
    EXPECT_EQ (knob.getValue(), 1.0);
    EXPECT_FALSE (knob.hasUnsentStep());
}

TEST (Wheel, FineMovementsAddUpAndAPauseForgetsThem)
{
    OrvaneKnob knob;
    Mouse mouse (knob);
    knob.setRange (0.0, 1.0, 0.1);
    const auto fine = [&] { mouse.wheel (0.22f, juce::ModifierKeys::ctrlModifier); }; // 0.11 of a step

    for (int i = 0; i < 5; ++i)
    {
        EXPECT_EQ (knob.getValue(), 0.0) << i;
        fine();
    }

    EXPECT_NEAR (knob.getValue(), 0.1, 1e-9);

    // The step was 0.45 too much, so it takes nine more to 0.5.
    for (int i = 0; i < 8; ++i)
        fine();

    EXPECT_NEAR (knob.getValue(), 0.1, 1e-9);
    runMessagesFor (400);
    fine(); // starts the half second anew
    EXPECT_NEAR (knob.getValue(), 0.2, 1e-9);

    for (int i = 0; i < 8; ++i)
        fine();

    runMessagesFor (600);
    fine();
    fine();
    EXPECT_NEAR (knob.getValue(), 0.2, 1e-9);

    // With another modifier beside it, Ctrl does not refine.
    mouse.wheel (0.2f, juce::ModifierKeys::ctrlModifier | juce::ModifierKeys::shiftModifier);
    EXPECT_NEAR (knob.getValue(), 0.3, 1e-9);
}

TEST (Wheel, AContinuousKnobMovesByTheWheelsOwnMeasureAndCtrlRefinesIt)
{
    OrvaneKnob knob;
    Mouse mouse (knob);
    mouse.wheel (0.2f);
    EXPECT_NEAR (knob.getValue(), 0.03, 1e-6);
    mouse.wheel (0.2f, juce::ModifierKeys::ctrlModifier);
    EXPECT_NEAR (knob.getValue(), 0.033, 1e-6);

    // So does a stepped one under a touchpad, by at least a step.
    knob.setRange (0.0, 1.0, 0.25);
    knob.setValue (0.5, juce::dontSendNotification);
    mouse.wheel (0.001f, 0, true);
    EXPECT_EQ (knob.getValue(), 0.75);
}

TEST (Wheel, WhatASliderCannotTakeGoesToItsParent)
{
    struct Parent : juce::Component
    {
        void mouseWheelMove (const juce::MouseEvent&, const juce::MouseWheelDetails& wheel) override
        {
            received = wheel.deltaY;
        }

        float received = 0.0f;
    } parent;

    for (const auto interval : { 0.0, 0.1 })
    {
        OrvaneKnob knob;
        parent.addAndMakeVisible (knob);
        knob.setRange (0.0, 1.0, interval);
        knob.setEnabled (false);
        Mouse (knob).wheel (0.2f);
        EXPECT_EQ (std::exchange (parent.received, 0.0f), 0.2f) << interval;
        EXPECT_EQ (knob.getValue(), 0.0);
    }
}

//==============================================================================
TEST (TrimPot, TheDialTurnsThroughItsTravelUnderAShadowThatStays)
{
    // The first and the last position are 297 degrees apart, and a half points up.
    EXPECT_NEAR (static_cast<double> (trimAngle (0.0f)) / degree, -148.5, 1e-3);
    EXPECT_NEAR (static_cast<double> (trimAngle (0.5f)) / degree, 0.0, 1e-6);
    EXPECT_NEAR (static_cast<double> (trimAngle (1.0f)) / degree, 148.5, 1e-3);

    TrimPot pot;
    pot.setSize (36, 36);
    pot.setValue (0.5, juce::dontSendNotification);
    const auto middle = snapshotOf (pot);
    pot.setRange (-2.0, 2.0);
    pot.setValue (0.0, juce::dontSendNotification);
    EXPECT_EQ (difference (snapshotOf (pot), middle), 0.0) << "only the share of the travel counts";

    const auto dial = decodedPicture (Picture::trimDial), shadow = decodedPicture (Picture::trimShadow);

    for (const auto share : { 0.0, 0.25, 1.0 })
    {
        pot.setValue (share * 4.0 - 2.0, juce::dontSendNotification);

        juce::Image expected (juce::Image::ARGB, 36, 36, true);
        juce::Graphics g (expected);
        g.setImageResamplingQuality (juce::Graphics::highResamplingQuality);
        g.drawImageTransformed (
            dial, juce::AffineTransform::rotation (static_cast<float> ((share - 0.5) * 297.0 * degree), 18.0f, 18.0f));
        g.drawImageAt (shadow, 0, 0);
        EXPECT_LT (difference (snapshotOf (pot), expected), 0.02) << share;
    }
}

} // namespace tarvik
