// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik
{

/** Decides whether the plug-in may run. This build is free software and may always; a build with terms of its own puts
    its decision here and nowhere else.
*/
class LicenceCheck
{
public:
    /** Audio thread, once per block: false ends the block with silence. Must neither lock nor allocate. */
    bool permitsAudio() const noexcept { return true; }

    /** What the bottom bar says about it. Message thread. */
    const char* statusText() const { return ""; }

    /** Whether there is anything to do about it: only then has the bottom bar a button for it. Message thread. */
    bool hasPage() const { return false; }
};

} // namespace tarvik
