// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>

namespace tarvik
{

// clang-format off
/** Every picture of the window: its name in the code, its file's name in resources/pictures, its size in pixels, whether
    it has an alpha channel, and who draws it. The build reads the rows of this list, too, and embeds one symbol for each,
    so a row keeps to one line.
*/
#define TARVIK_PICTURES(X) \
    X (panel,             "panel",               2700, 2030, rgb,  "console panel, the whole background") \
    X (knobStandard,      "knob-standard",      29400,  300, rgba, "knobs of style 0, 98 frames") \
    X (knobLarge,         "knob-large",         29400,  300, rgba, "knobs of style 1, 98 frames") \
    X (faderCap,          "fader-cap",            300,  500, rgba, "fader") \
    X (togglePlate1,      "toggle-plate-1",       180,  180, rgba, "toggle switches, plate 1") \
    X (togglePlate2,      "toggle-plate-2",       180,  180, rgba, "toggle switches, plate 2") \
    X (togglePlate3,      "toggle-plate-3",       180,  180, rgba, "toggle switches, plate 3") \
    X (toggleLow,         "toggle-lever-low",     180,  180, rgba, "toggle switches below a third") \
    X (toggleMiddle,      "toggle-lever-middle",  180,  180, rgba, "toggle switches in the middle") \
    X (toggleHigh,        "toggle-lever-high",    180,  180, rgba, "toggle switches from two thirds") \
    X (pushReleased,      "push-released",        180,  180, rgba, "push buttons that are off") \
    X (pushPressed,       "push-pressed",         180,  180, rgba, "push buttons that are on or held") \
    X (lampAmber,         "lamp-amber",            34,   34, rgba, "lamps of pad, limiter, niveau, hold") \
    X (lampGreen,         "lamp-green",            34,   34, rgba, "lamps of unity, equaliser in, compressor in") \
    X (lampRed,           "lamp-red",              34,   34, rgba, "lamps of smash and expander inverted") \
    X (ledRed,            "led-red",               80,   80, rgba, "compressor's LED") \
    X (ledGreen,          "led-green",             80,   80, rgba, "expander's LED") \
    X (trimDial,          "trim-dial",             36,   36, rgba, "trim pots, the part that turns") \
    X (trimShadow,        "trim-shadow",           36,   36, rgba, "trim pots, the part that stays") \
    X (muteOff,           "mute-off",             110,  110, rgba, "mute button") \
    X (muteOn,            "mute-on",              110,  110, rgba, "mute button") \
    X (phaseOff,          "phase-off",            110,  110, rgba, "phase button") \
    X (phaseOn,           "phase-on",             110,  110, rgba, "phase button") \
    X (plateMono,         "plate-mono",           540,  196, rgb,  "channel display of a mono track") \
    X (plateStereo,       "plate-stereo",         540,  196, rgb,  "channel display of a stereo track") \
    X (outputLegend,      "legend-output",         78,   27, rgb,  "VU meter while it shows the output") \
    X (previousNormal,    "previous-normal",       48,   40, rgba, "previous channel") \
    X (previousOver,      "previous-over",         48,   40, rgba, "previous channel") \
    X (previousPressed,   "previous-pressed",      48,   40, rgba, "previous channel") \
    X (nextNormal,        "next-normal",           48,   40, rgba, "next channel") \
    X (nextOver,          "next-over",             48,   40, rgba, "next channel") \
    X (nextPressed,       "next-pressed",          48,   40, rgba, "next channel") \
    X (randomNormal,      "random-normal",         60,   50, rgba, "random channel") \
    X (randomOver,        "random-over",           60,   50, rgba, "random channel") \
    X (randomPressed,     "random-pressed",        60,   50, rgba, "random channel") \
    X (randomAllNormal,   "random-all-normal",     60,   50, rgba, "random channel in all instances") \
    X (randomAllOver,     "random-all-over",       60,   50, rgba, "random channel in all instances") \
    X (randomAllPressed,  "random-all-pressed",    60,   50, rgba, "random channel in all instances") \
    X (linkOff,           "link-off",              60,   50, rgba, "link button") \
    X (linkOffOver,       "link-off-over",         60,   50, rgba, "link button") \
    X (linkOffPressed,    "link-off-pressed",      60,   50, rgba, "link button") \
    X (linkOn,            "link-on",               60,   50, rgba, "link button") \
    X (linkOnOver,        "link-on-over",          60,   50, rgba, "link button") \
    X (linkOnPressed,     "link-on-pressed",       60,   50, rgba, "link button") \
    X (menuNormal,        "menu-normal",           72,   72, rgba, "editor's menu button") \
    X (menuOver,          "menu-over",             72,   72, rgba, "editor's menu button") \
    X (menuPressed,       "menu-pressed",          72,   72, rgba, "editor's menu button") \
    X (slotANormal,       "slot-a-normal",         72,   72, rgba, "editor's slot A button") \
    X (slotAOver,         "slot-a-over",           72,   72, rgba, "editor's slot A button") \
    X (slotAPressed,      "slot-a-pressed",        72,   72, rgba, "editor's slot A button, also while A is current") \
    X (slotBNormal,       "slot-b-normal",         72,   72, rgba, "editor's slot B button") \
    X (slotBOver,         "slot-b-over",           72,   72, rgba, "editor's slot B button") \
    X (slotBPressed,      "slot-b-pressed",        72,   72, rgba, "editor's slot B button, also while B is current") \
    X (copyToANormal,     "copy-to-a-normal",      30,   72, rgba, "editor's copy button while B is current") \
    X (copyToAOver,       "copy-to-a-over",        30,   72, rgba, "editor's copy button while B is current") \
    X (copyToAPressed,    "copy-to-a-pressed",     30,   72, rgba, "editor's copy button while B is current") \
    X (copyToBNormal,     "copy-to-b-normal",      30,   72, rgba, "editor's copy button while A is current") \
    X (copyToBOver,       "copy-to-b-over",        30,   72, rgba, "editor's copy button while A is current") \
    X (copyToBPressed,    "copy-to-b-pressed",     30,   72, rgba, "editor's copy button while A is current") \
    X (shadowTop,         "shadow-top",          2700,   24, rgb,  "editor, under the top strip") \
    X (shadowBottom,      "shadow-bottom",       2700,   25, rgb,  "editor, over the bottom strip") \
    X (barLogoNormal,     "bar-logo-normal",      480,   96, rgba, "bottom bar's logo") \
    X (barLogoPressed,    "bar-logo-pressed",     480,   96, rgba, "bottom bar's logo") \
    X (barLinksNormal,    "bar-links-normal",      48,   48, rgb,  "bottom bar's links button") \
    X (barLinksPressed,   "bar-links-pressed",     48,   48, rgb,  "bottom bar's links button") \
    X (barLicenceNormal,  "bar-licence-normal",    48,   48, rgb,  "bottom bar's licence button") \
    X (barLicencePressed, "bar-licence-pressed",   48,   48, rgb,  "bottom bar's licence button") \
    X (barShopNormal,     "bar-shop-normal",       48,   48, rgb,  "bottom bar's shop button") \
    X (barShopPressed,    "bar-shop-pressed",      48,   48, rgb,  "bottom bar's shop button") \
    X (aboutLogoA,        "about-logo-a",         180,   72, rgba, "About panel") \
    X (aboutLogoB,        "about-logo-b",         276,   64, rgba, "About panel")
// clang-format on

#define TARVIK_PICTURE_ID(id, file, width, height, colours, user) id,

enum class Picture
{
    TARVIK_PICTURES (TARVIK_PICTURE_ID) none ///< Draws nothing.
};

#undef TARVIK_PICTURE_ID

/** Of the pictures, for each of the window at 100 %. */
inline constexpr int picturePixelsPerPixel = 3;

inline constexpr std::size_t numPictures = static_cast<std::size_t> (Picture::none);

/** 8 bits a channel, without or with alpha. */
enum class PictureColours
{
    rgb,
    rgba
};

struct PictureRow
{
    Picture id;
    const char* name; ///< Of the file, without its ending.
    int width, height;
    PictureColours colours;
    const char* user;
};

#define TARVIK_PICTURE_ROW(id, file, width, height, colours, user) \
    PictureRow { Picture::id, file, width, height, PictureColours::colours, user },

inline constexpr std::array<PictureRow, numPictures> pictureCatalogue { { TARVIK_PICTURES (TARVIK_PICTURE_ROW) } };

#undef TARVIK_PICTURE_ROW

/** The row of a picture other than `none`. */
constexpr const PictureRow& rowOf (Picture picture) { return pictureCatalogue[static_cast<std::size_t> (picture)]; }

} // namespace tarvik
