// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <cmath>

namespace tarvik
{

/** The arithmetic of the controls, apart from any component. Angles run clockwise from straight up, in radians unless
    the name says degrees. Any thread.
*/
namespace filmstrip
{
inline constexpr int frameCount = 98;
inline constexpr int frameSize = 300; ///< Side of a frame in the picture, in pixels.

/** The pointer's direction in the first and in the last frame: one turn less a frame, from straight down. */
inline constexpr float firstFrameAngle = 3.1415927f;
inline constexpr float lastFrameAngle = 9.3606634f;

inline constexpr float anglePerFrame = (lastFrameAngle - firstFrameAngle) / static_cast<float> (frameCount - 1);

/** The frame, with a fraction, that shows an angle; negative for angles before the first one's. */
constexpr float framePosition (float angle) { return (angle - firstFrameAngle) / anglePerFrame; }
} // namespace filmstrip

/** The angles that a rotary control's values 0 and 1 stand for, and the frames, with a fraction, that they reach. One
    that nobody has set is a whole turn over a strip's frames, of which the last is one frame short of it.
*/
struct RotaryArc
{
    constexpr RotaryArc() = default;

    constexpr RotaryArc (float startAngle, float endAngle)
        : start (startAngle), end (endAngle), firstFrame (filmstrip::framePosition (startAngle)),
          lastFrame (filmstrip::framePosition (endAngle))
    {
    }

    constexpr float angleAt (float value) const { return start + (end - start) * value; }

    constexpr float frameAt (float value) const { return firstFrame + (lastFrame - firstFrame) * value; }

    float start = filmstrip::firstFrameAngle;
    float end = 9.424778f;
    float firstFrame = 0.0f;
    float lastFrame = filmstrip::frameCount - 1;
};

/** The frame of the strip that comes nearest to a value of 0 to 1 on an arc. */
inline int filmstripFrame (float value, const RotaryArc& arc)
{
    // The count keeps a negative frame number legal.
    const auto nearest = std::floor (arc.frameAt (value) + static_cast<float> (filmstrip::frameCount) + 0.5f);
    return static_cast<int> (nearest) % filmstrip::frameCount;
}

/** By how much that frame has to be turned to stand where the value is, from minus pi to pi: the rest of a frame. */
inline float filmstripResidue (float value, const RotaryArc& arc)
{
    const auto drawn =
        filmstrip::firstFrameAngle + filmstrip::anglePerFrame * static_cast<float> (filmstripFrame (value, arc));
    return std::remainder (arc.angleAt (value) - drawn, juce::MathConstants<float>::twoPi);
}

/** A trim pot's angle at a share of its travel: 297 degrees of turn around straight up. */
inline float trimAngle (float share)
{
    constexpr float eighthsOfATurn = 6.6f;
    return (share - 0.5f) * eighthsOfATurn * juce::MathConstants<float>::pi / 4.0f;
}

/** What a toggle switch's lever shows. */
enum class LeverPosition
{
    low,
    middle,
    high
};

/** By thirds of the value's travel; the lower limit of a third belongs to it. */
constexpr LeverPosition leverPosition (double value)
{
    if (value < 1.0 / 3.0)
        return LeverPosition::low;

    return value < 2.0 / 3.0 ? LeverPosition::middle : LeverPosition::high;
}

//==============================================================================
namespace fader
{
/** The cap's height for a component's, in pixels. */
inline int capHeight (int height)
{
    constexpr float capShare = 0.3027f;
    return juce::roundToInt (capShare * static_cast<float> (height));
}

/** Where the middle of the cap is at value 1: the track's upper end. */
inline int trackTop (int height) { return capHeight (height) / 2; }

inline int trackHeight (int height) { return height - capHeight (height); }
} // namespace fader

//==============================================================================
namespace meter
{
/** A meter is drawn for this height and scaled to any other. Its pivot lies below its lower edge. */
inline constexpr float designHeight = 63.0f;
inline constexpr float pivotY = 83.5f;
inline constexpr float needleTipY = 9.0f;
inline constexpr float needleThickness = 2.0f; ///< In pixels at every size.

inline constexpr float lowestDb = -16.0f;
inline constexpr float highestDb = 15.0f;
inline constexpr float lowestReductionDb = -20.0f;
} // namespace meter

/** The needle's angle for a level in dB, held to the scale; an eighth of a turn to either side. */
inline float meterAngle (float decibels)
{
    constexpr float quarterTurn = 1.5707964f, eighthTurn = 0.7853982f;
    constexpr auto scale = meter::highestDb - meter::lowestDb;
    return (juce::jlimit (meter::lowestDb, meter::highestDb, decibels) - meter::lowestDb) / scale * quarterTurn
           - eighthTurn;
}

/** The needle's angle for a gain reduction, 0 to -20 dB: at rest on the right, 6 degrees for each of the first 5 dB,
    then 4 for each.
*/
inline float gainReductionAngle (float reductionDb)
{
    const auto r = juce::jlimit (meter::lowestReductionDb, 0.0f, reductionDb);
    const auto degrees = std::max (6.0f * r + 45.0f, 4.0f * r + 35.0f);
    return degrees * juce::MathConstants<float>::pi / 180.0f;
}

} // namespace tarvik
