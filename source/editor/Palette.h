// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik
{

/** Every colour of the window that is not in a picture, as alpha, red, green and blue. */
namespace palette
{
inline constexpr juce::uint32 lightPrint = 0xffe4e3de; ///< Read-outs of the console, and the level pots' pointers.
inline constexpr juce::uint32 trackName = 0xe5d56223;
inline constexpr juce::uint32 channelNumber = 0xffaa362b;
inline constexpr juce::uint32 debugPrint = 0xffff0000;
inline constexpr juce::uint32 needle = 0xfffee853;
inline constexpr juce::uint32 accent = 0xfff2a43a; ///< The panel's amber: focus, editing, and what is lit.

inline constexpr juce::uint32 fieldSheet = 0xf01a1f22; ///< Under a value that is being typed.

inline constexpr juce::uint32 topStripPrint = 0xc5ffffff;
inline constexpr juce::uint32 potOutline = 0x66000000;
inline constexpr juce::uint32 potText = 0xff595959;
inline constexpr juce::uint32 potTextHighlight = 0xff12b9ff;
inline constexpr juce::uint32 statusPrint = 0xd2ffffff;

inline constexpr juce::uint32 menuSheet = 0xfffcfcfc;
inline constexpr juce::uint32 menuHighlight = 0xff626c77;
inline constexpr juce::uint32 menuPrint = 0xff2a3136;
inline constexpr juce::uint32 menuHighlightedPrint = 0xffffffff;
inline constexpr juce::uint32 menuTick = 0xffc47a14; ///< The panel's amber, dark enough for a light sheet.

inline constexpr juce::uint32 aboutSheet = 0xe81d1d1d;
inline constexpr juce::uint32 aboutPrint = 0xffffffff;
inline constexpr juce::uint32 aboutRole = 0xaaffffff;
inline constexpr juce::uint32 aboutLink = 0xccffffff;
} // namespace palette

} // namespace tarvik
