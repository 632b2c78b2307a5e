// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik
{

/** While this lives, instances of the module that this process makes start with settings from a temporary file: noise
    off and a given oversampling factor, everything else as compiled. What the user has saved neither counts nor
    changes.

    The module finds the file by XDG_CONFIG_HOME, which is set for this process and given back at the end. So this is
    for Linux, for the message thread, and for one object at a time.
*/
class ScratchSettings
{
public:
    /** Throws `ToolError` if the file cannot be written. */
    explicit ScratchSettings (int oversamplingFactor);

    ~ScratchSettings();

    ScratchSettings (const ScratchSettings&) = delete;
    ScratchSettings& operator= (const ScratchSettings&) = delete;

private:
    const juce::File folder;
    const juce::String configBefore;
};

} // namespace tarvik
