// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik
{

/** A moving needle. The chain feeds it; it has no ballistics yet, so it shows nothing and its reading stays where a
   meter without a signal rests.
*/
class NeedleMeter
{
public:
    void prepare (double) noexcept {}

    /** Audio thread: n samples of the mono mean. */
    void process (const float*, int) noexcept {}

    /** Linear, 1 is 0 VU; below zero while nothing has been measured. */
    float getReading() const noexcept { return restingReading; }

private:
    static constexpr float restingReading = -50.0f;
};

} // namespace tarvik
