// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_data_structures/juce_data_structures.h>

namespace tarvik
{

/** Where the user's defaults for all instances live: "Tarvik 41 Channel.settings" in a folder "Tarvik Plugins" of the
   user's application data, as XML. That is the folder that XDG_CONFIG_HOME names; where the variable is not set, ~/.config
   on Linux and %APPDATA% on Windows.
*/
juce::PropertiesFile::Options settingsFileOptions();

} // namespace tarvik
