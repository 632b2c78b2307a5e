// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik
{

/** The console's noise floor at one place of the chain. It has no generator yet and adds nothing. */
class AnalogNoise
{
public:
    void prepare (int, int) {}

    void release() {}

    /** Audio thread: numChannels channels of n samples, in place. */
    void process (float* const*, int, int) noexcept {}
};

} // namespace tarvik
