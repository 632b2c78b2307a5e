// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <cstdlib>

namespace tarvik
{

/** While this lives, what the user has saved as settings neither counts nor changes: the module looks for them below
    XDG_CONFIG_HOME, which names an empty temporary folder. For Linux, for the message thread, and for programs that do
    nothing else afterwards.
*/
class ScratchSettings
{
public:
    ScratchSettings() : folder (juce::File::createTempFile ("tarvik-settings"))
    {
        folder.createDirectory();
        ::setenv ("XDG_CONFIG_HOME", folder.getFullPathName().toRawUTF8(), 1);
    }

    ~ScratchSettings() { folder.deleteRecursively(); }

    ScratchSettings (const ScratchSettings&) = delete;
    ScratchSettings& operator= (const ScratchSettings&) = delete;

private:
    const juce::File folder;
};

} // namespace tarvik
