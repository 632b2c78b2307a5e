// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/Box.h"
#include "editor/Palette.h"
#include "editor/PictureCatalogue.h"
#include "plugin/ParameterRows.h"

#include <string_view>

namespace tarvik
{

/** Where everything on the console panel is, what it stands for and what it is called: one row for each control. They are
    painted in the order in which they stand here, from back to front; of the push buttons the lamps, and the caps last.
    A control's `legend` is its name as the panel's picture prints it, without the unit; empty for none.
*/
namespace consoleLayout
{
/** The panel's size in the pixels of its picture, and, rounded, at 100 %. */
inline constexpr int designWidth = rowOf (Picture::panel).width, designHeight = rowOf (Picture::panel).height;
inline constexpr int width = designWidth / picturePixelsPerPixel, height = (designHeight + 1) / picturePixelsPerPixel;

/** The host's index of a parameter. A name that no parameter has does not compile. */
consteval int parameter (std::string_view id) { return parameterNamed (id); }

/** Tab goes through the controls in the order of their parameters, which is the signal's; the stride leaves room for
    controls without one. JUCE's own order would be that of the pixel rows.
*/
constexpr int focusOrderOf (int parameterIndex)
{
    constexpr int stride = 10;
    return stride * (parameterIndex + 1);
}

struct KnobRow
{
    int parameter;
    const char* legend;
    Box box;
    float startDegrees, endDegrees; ///< Where values 0 and 1 point, clockwise from straight up.
    float step;                     ///< On the travel of 0 to 1; 0 is continuous.
    int style;                      ///< 0 standard, 1 large.
};

/** The fader and the trim pot. */
struct SliderRow
{
    int parameter;
    const char* legend;
    Box box;
    const char* name;
};

struct SwitchRow
{
    int parameter;
    const char* legend;
    Box box;
    int plate;
};

struct PushRow
{
    int parameter; ///< `noParameter` for the button that says what the VU meter shows.
    const char* legend;
    Box box;
    Picture lamp = Picture::none;
    Box lampBox = {};
};

/** A button with a class of its own. */
struct ButtonRow
{
    int parameter;
    const char* legend;
    Box box;
    const char* tooltip = nullptr; ///< Null for the parameter's own.
};

/** What a control without a parameter is called, and its place in the order of focus. */
struct Words
{
    const char* tooltip = "";     ///< Also its title; empty for a picture that is only shown.
    const char* description = ""; ///< For assistive technology.
    int focusOrder = 0;
};

/** A button that shows one picture, or one of three. */
struct PictureButtonRow
{
    Box box;
    Picture normal, over, pressed;
    Words words = {};
};

struct LabelRow
{
    Box box;
    const char* text;
    float height; ///< Of the font, in the editor's pixels; it does not grow with the panel.
    juce::uint32 colour;
    const char* title = "";
    bool isEditable = false;
    bool isCentred = true;
    int leftMargin = 0; ///< In the editor's pixels, where the picture's frame is in the way.
};

struct MeterRow
{
    Box box;
    const char* title;
    const char* description;
};

// Aligned by hand.
// clang-format off
inline constexpr PictureButtonRow outputLegend { { 0.0867f, 0.1172f, 0.0289f, 0.0133f }, Picture::outputLegend, Picture::none, Picture::none };

// The track plate.
inline constexpr PictureButtonRow plateMono       { { 0.6f,    0.0566f, 0.2f,    0.0965f }, Picture::plateMono, Picture::none, Picture::none };
inline constexpr PictureButtonRow plateStereo     { { 0.6f,    0.0566f, 0.2f,    0.0965f }, Picture::plateStereo, Picture::none, Picture::none };
inline constexpr LabelRow channelName             { { 0.6056f, 0.0842f, 0.1889f, 0.0517f }, "",   26.0f, palette::trackName, "Track name", false, false };
inline constexpr PictureButtonRow previousChannel { { 0.6015f, 0.1261f, 0.0267f, 0.0251f }, Picture::previousNormal, Picture::previousOver, Picture::previousPressed, { "Previous channel", "Takes the console channel before this one", focusOrderOf (parameter ("TolChannel")) - 1 } };
inline constexpr PictureButtonRow nextChannel     { { 0.7719f, 0.1261f, 0.0267f, 0.0251f }, Picture::nextNormal, Picture::nextOver, Picture::nextPressed, { "Next channel", "Takes the console channel after this one", focusOrderOf (parameter ("TolChannel")) + 1 } };
inline constexpr ButtonRow link                   { parameter ("TolLink"), "", { 0.6556f, 0.0103f, 0.0333f, 0.0369f }, "Link channels" };
inline constexpr PictureButtonRow randomChannel   { { 0.7056f, 0.0103f, 0.0333f, 0.0369f }, Picture::randomNormal, Picture::randomOver, Picture::randomPressed, { "Random Channel", "Draws one of the console's 32 channels", focusOrderOf (parameter ("TolChannel")) + 2 } };
inline constexpr PictureButtonRow randomInAll     { { 0.7533f, 0.0103f, 0.0333f, 0.0369f }, Picture::randomAllNormal, Picture::randomAllOver, Picture::randomAllPressed, { "Random Channel\nin ALL instances", "Has every instance of this process draw a console channel of its own", focusOrderOf (parameter ("TolChannel")) + 3 } };
inline constexpr LabelRow leftNumber              { { 0.6f,    0.0566f, 0.027f,  0.0256f }, "10",    15.0f, palette::channelNumber, "", true, true, 2 };
inline constexpr LabelRow rightNumber             { { 0.7f,    0.0566f, 0.027f,  0.0256f }, "11",    15.0f, palette::channelNumber, "", true, true, 1 };

inline constexpr LabelRow mixReadout    { { 0.5133f, 0.0562f, 0.06f,   0.0355f }, "0 %",   12.0f, palette::lightPrint, "Comp Mix" };
inline constexpr LabelRow filterReadout { { 0.4233f, 0.0562f, 0.06f,   0.0355f }, "20 Hz", 12.0f, palette::lightPrint, "Comp High Pass Filter" };

// The pad button is lower than the others by a pixel.
inline constexpr std::array<PushRow, 12> pushButtons
{ {
    { parameter ("pad"),         "PAD",      { 0.0126f, 0.8374f, 0.0667f, 0.0887f }, Picture::lampAmber, { 0.0378f, 0.8286f, 0.0189f, 0.0251f } },
    { noParameter,               "VU MODE",  { 0.0667f, 0.8374f, 0.0667f, 0.0892f } },
    { parameter ("unity"),       "UNITY",    { 0.12f,   0.8374f, 0.0667f, 0.0892f }, Picture::lampGreen, { 0.1444f, 0.8286f, 0.0189f, 0.0251f } },
    { parameter ("equalizer"),   "EQ IN",    { 0.2156f, 0.8374f, 0.0667f, 0.0892f }, Picture::lampGreen, { 0.2389f, 0.8286f, 0.0189f, 0.0251f } },
    { parameter ("eqPost"),      "POST",     { 0.2667f, 0.8374f, 0.0667f, 0.0892f } },
    { parameter ("midMode"),     "BOOST",    { 0.3111f, 0.4177f, 0.0667f, 0.0892f } },
    { parameter ("compLimit"),   "LIMITER",  { 0.4222f, 0.2167f, 0.0667f, 0.0892f }, Picture::lampAmber, { 0.4467f, 0.2128f, 0.0189f, 0.0251f } },
    { parameter ("compIn"),      "DYN IN",   { 0.4156f, 0.8374f, 0.0667f, 0.0892f }, Picture::lampGreen, { 0.44f,   0.8286f, 0.0189f, 0.0251f } },
    { parameter ("compNiveau"),  "NIVEAU",   { 0.4667f, 0.8374f, 0.0667f, 0.0892f }, Picture::lampAmber, { 0.4911f, 0.8286f, 0.0189f, 0.0251f } },
    { parameter ("compNuke"),    "SMASH",    { 0.5148f, 0.8374f, 0.0667f, 0.0892f }, Picture::lampRed,   { 0.54f,   0.8286f, 0.0189f, 0.0251f } },
    { parameter ("expHold"),     "HOLD",     { 0.6667f, 0.8374f, 0.0667f, 0.0892f }, Picture::lampAmber, { 0.6911f, 0.8286f, 0.0189f, 0.0251f } },
    { parameter ("expInverted"), "INVERT",   { 0.7148f, 0.8374f, 0.0667f, 0.0892f }, Picture::lampRed,   { 0.74f,   0.8286f, 0.0189f, 0.0251f } },
} };

inline constexpr Words meterMode { "VU Mode", "What the VU meter shows: the input while pressed, otherwise the output", focusOrderOf (parameter ("pad")) + 1 };

inline constexpr SliderRow levelFader { parameter ("level"), "LEVEL", { 0.8437f, 0.1552f, 0.1111f, 0.8404f }, "sldLevel" };
inline constexpr ButtonRow mute       { parameter ("mute"), "MUTE", { 0.82f,   0.0369f, 0.0611f, 0.0813f } };
inline constexpr ButtonRow phase      { parameter ("phase"), "PHASE", { 0.92f,   0.0369f, 0.0611f, 0.0813f } };

inline constexpr std::array<KnobRow, 16> knobs
{ {
    { parameter ("gain"),          "GAIN",      { 0.0444f, 0.6685f, 0.1111f, 0.1478f }, 210, 510, 0.0f,        1 },
    { parameter ("highGain"),      "GAIN",      { 0.2889f, 0.0606f, 0.1111f, 0.1478f }, 210, 510, 0.1f,        0 },
    { parameter ("midGain"),       "GAIN",      { 0.2889f, 0.2749f, 0.1111f, 0.1478f }, 120, 410, 0.0f,        0 },
    { parameter ("midFreq"),       "FREQ",      { 0.2041f, 0.3892f, 0.1111f, 0.1478f }, 240, 450, 1.0f / 7.0f, 0 },
    { parameter ("lowGain"),       "GAIN",      { 0.2889f, 0.5443f, 0.1111f, 0.1478f }, 120, 410, 0.0f,        0 },
    { parameter ("lowFreq"),       "",          { 0.2022f, 0.6685f, 0.1111f, 0.1478f }, 393, 523, 1.0f / 9.0f, 0 },
    { parameter ("compHPF"),       "SC FILTER", { 0.41f,   0.0754f, 0.0889f, 0.1182f }, 210, 510, 0.0f,        0 },
    { parameter ("compMix"),       "MIX",       { 0.5f,    0.0739f, 0.0889f, 0.1182f }, 210, 510, 0.0f,        0 },
    { parameter ("compRatio"),     "RATIO",     { 0.4889f, 0.3015f, 0.1111f, 0.1478f }, 285, 435, 0.2f,        0 },
    { parameter ("compRelease"),   "RELEASE",   { 0.4f,    0.4177f, 0.1111f, 0.1478f }, 240, 480, 0.125f,      0 },
    { parameter ("compThreshold"), "THRESHOLD", { 0.4889f, 0.5443f, 0.1111f, 0.1478f }, 210, 510, 0.0f,        0 },
    { parameter ("compInput"),     "INPUT",     { 0.4f,    0.6685f, 0.1111f, 0.1478f }, 210, 510, 0.0f,        1 },
    { parameter ("expRange"),      "RANGE",     { 0.6889f, 0.3015f, 0.1111f, 0.1478f }, 210, 510, 0.0f,        0 },
    { parameter ("expRelease"),    "RELEASE",   { 0.6f,    0.4177f, 0.1111f, 0.1478f }, 210, 510, 0.0f,        0 },
    { parameter ("expThreshold"),  "THRESHOLD", { 0.6889f, 0.5443f, 0.1111f, 0.1478f }, 210, 510, 0.0f,        0 },
    { parameter ("compOutput"),    "OUTPUT",    { 0.6f,    0.6685f, 0.1111f, 0.1478f }, 210, 510, 0.0f,        1 },
} };

inline constexpr std::array<SwitchRow, 5> switches
{ {
    { parameter ("highPass"),   "HI PASS", { 0.3156f, 0.8389f, 0.0667f, 0.0887f }, 3 },
    { parameter ("expMode"),    "MODE",      { 0.6156f, 0.8389f, 0.0667f, 0.0887f }, 2 },
    { parameter ("highFreq"),   "FREQ",      { 0.2267f, 0.1803f, 0.0667f, 0.0887f }, 3 },
    { parameter ("compAttack"), "ATTACK",    { 0.5144f, 0.4507f, 0.0667f, 0.0887f }, 2 },
    { parameter ("expAttack"),  "ATTACK",    { 0.7111f, 0.4507f, 0.0667f, 0.0887f }, 3 },
} };

inline constexpr PictureButtonRow compressorLed { { 0.5222f, 0.2335f, 0.0444f, 0.0591f }, Picture::none, Picture::none, Picture::ledRed };
inline constexpr PictureButtonRow expanderLed   { { 0.7222f, 0.2335f, 0.0444f, 0.0591f }, Picture::none, Picture::none, Picture::ledGreen };
inline constexpr SliderRow trim                 { parameter ("thd"), "THD", { 0.09f,   0.5906f, 0.02f,   0.0266f }, "sldTHD" };
inline constexpr MeterRow vuMeter               { { 0.0311f, 0.0399f, 0.1378f, 0.0931f }, "VU", "Level of the input or of the output, by VU MODE" };
inline constexpr MeterRow gainReductionMeter    { { 0.0311f, 0.2719f, 0.1378f, 0.0931f }, "Gain reduction", "By how much the compressor turns down" };
inline constexpr LabelRow debug                 { { 0.8178f, 0.0f,    0.1667f, 0.0355f }, "DEBUG", 12.0f, palette::debugPrint };

// clang-format on

/** What a control is called whose parameter hosts know by another name than the panel's. */
struct Title
{
    int parameter;
    const char* text;
};

inline constexpr Title titles[] = {
    { parameter ("equalizer"), "EQ In" },        { parameter ("midMode"), "Mid Boost" },
    { parameter ("compHPF"), "Comp SC Filter" }, { parameter ("compLimit"), "Comp Limiter" },
    { parameter ("compIn"), "Dyn In" },          { parameter ("expInverted"), "Exp Invert" },
};

constexpr const char* titleOf (int parameterIndex, const char* parameterName)
{
    for (const auto& title : titles)
        if (title.parameter == parameterIndex)
            return title.text;

    return parameterName;
}
} // namespace consoleLayout

} // namespace tarvik
