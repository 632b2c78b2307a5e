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

double angleBetween (double a, double b) { return std::abs (std::remainder (a - b, 360.0)); }

struct KnobCase
{
    int style;
    double start, end; ///< Degrees.
};

constexpr KnobCase kinds[] = { { 0, 210, 510 }, { 1, 210, 510 }, { 0, 120, 410 }, { 0, 393, 523 }, { 0, 285, 435 } };
} // namespace

TEST (Knob, ThePointerShowsTheValueInBothStylesAndOnEveryArc)
{
    constexpr double largestError = 1.5;

    for (const auto& kind : kinds)
    {
        OrvaneKnob knob;
        knob.setFilmstripRange (static_cast<float> (kind.start * degree), static_cast<float> (kind.end * degree));
        knob.setKnobStyle (kind.style);

        for (const auto size : { 100, 300 })
        {
            knob.setSize (size, size);

            // Quarters of the travel, and places that lie between two frames.
            for (const auto value : { 0.0, 0.25, 0.5, 0.75, 1.0, 0.123, 0.4567, 0.871 })
            {
                knob.setValue (value, juce::dontSendNotification);
                const auto shown = pointerDegrees (snapshotOf (knob));
                EXPECT_LT (angleBetween (shown, kind.start + value * (kind.end - kind.start)), largestError)
                    << "style " << kind.style << " from " << kind.start << " at " << value << ": " << shown;
            }
        }
    }
}

TEST (Knob, TheCornersBelongToWhatLiesBelow)
{
    OrvaneKnob knob; // the circle's radius is 39 pixels of its 100

    for (const auto& [x, y, isHit] : { std::tuple (50, 50, true),
                                       { 50, 12, true },
                                       { 88, 50, true },
                                       { 77, 77, true },
                                       { 2, 2, false },
                                       { 50, 10, false },
                                       { 90, 50, false },
                                       { 79, 79, false } })
        EXPECT_EQ (knob.hitTest (x, y), isHit) << x << " " << y;
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

    mouse.wheel (Mouse::notch);
    EXPECT_NEAR (knob.getValue(), 0.6, 1e-9);
    EXPECT_TRUE (knob.hasUnsentStep());
    EXPECT_EQ (calls, 0);
    runMessagesFor (1);
    EXPECT_EQ (calls, 1);
    EXPECT_FALSE (knob.hasUnsentStep());

    mouse.wheel (-Mouse::notch);
    EXPECT_NEAR (knob.getValue(), 0.5, 1e-9);
    mouse.wheel (Mouse::notch, 0, false, true);
    EXPECT_NEAR (knob.getValue(), 0.4, 1e-9);

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

    // The step was 0.45 too much, so it takes nine more to 0.5.
    EXPECT_NEAR (valueAfter (8), 0.1, 1e-9);
    runMessagesFor (400);
    EXPECT_NEAR (valueAfter (1), 0.2, 1e-9); // starts the half second anew
    EXPECT_NEAR (valueAfter (8), 0.2, 1e-9);
    runMessagesFor (600);
    EXPECT_NEAR (valueAfter (2), 0.2, 1e-9);

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

//==============================================================================
TEST (TrimPot, TheDialTurnsThroughItsTravelUnderAShadowThatStays)
{
    const auto dial = decodedPicture (Picture::trimDial), shadow = decodedPicture (Picture::trimShadow);
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
        g.drawImageTransformed (dial,
                                juce::AffineTransform::rotation (static_cast<float> (degrees * degree), 18.0f, 18.0f));
        g.drawImageAt (shadow, 0, 0);
        EXPECT_LT (difference (snapshotOf (pot), expected), 0.02) << value;
    }
}

} // namespace tarvik
