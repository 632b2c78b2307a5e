// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/PrivateState.h"

#include <string_view>

namespace tarvik
{

namespace
{
using namespace std::string_view_literals;

constexpr auto untilSwitch = "\0\0\0\0\0\0\0\0"      // for hosts whose JUCE knows no private part
                             "JUCEPrivateData\0\1\1" // a tree of this name with one property
                             "Bypass\0\1\1"sv;       // that has this name and one byte
constexpr auto afterSwitch = "\0"                    // no branches
                             "\x1d\0\0\0\0\0\0\0"    // so the tree takes 29 bytes
                             "JUCEPrivateData"sv;
constexpr char on = 2, off = 3; ///< How JUCE writes the two truth values.
constexpr auto wholeSize = untilSwitch.size() + 1 + afterSwitch.size();
} // namespace

bool endsInPrivateState (const void* data, int sizeInBytes) noexcept
{
    if (sizeInBytes < static_cast<int> (wholeSize))
        return false;

    const std::string_view state (static_cast<const char*> (data), static_cast<std::size_t> (sizeInBytes));
    const auto tail = state.substr (state.size() - wholeSize);
    const auto isSwitch = tail[untilSwitch.size()] == on || tail[untilSwitch.size()] == off;
    return isSwitch && tail.substr (0, untilSwitch.size()) == untilSwitch
           && tail.substr (untilSwitch.size() + 1) == afterSwitch;
}

} // namespace tarvik
