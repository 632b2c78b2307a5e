// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/Environment.h"

namespace tarvik
{

/** While this lives, what the user has saved as settings neither counts nor changes: the module looks for them below
    XDG_CONFIG_HOME, which names an empty temporary folder. For the message thread, and for programs that do
    nothing else afterwards.
*/
class ScratchSettings
{
public:
    ScratchSettings() : folder (juce::File::createTempFile ("tarvik-settings"))
    {
        folder.createDirectory();
        setEnvironmentVariable ("XDG_CONFIG_HOME", folder.getFullPathName());
    }

    ~ScratchSettings() { folder.deleteRecursively(); }

    ScratchSettings (const ScratchSettings&) = delete;
    ScratchSettings& operator= (const ScratchSettings&) = delete;

private:
    const juce::File folder;
};

} // namespace tarvik
