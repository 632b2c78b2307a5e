// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik
{

/** Leaves a note of the installed product where the platform keeps such notes: the registry of Windows, which nothing
    in the program reads. Platforms without a registry keep none, and this does nothing there.
*/
inline void recordProduct() {}

} // namespace tarvik
