// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik::test
{

/** Counts what the calling thread must not do while it processes audio: memory taken or given back, and mutexes locked.
 */
class RealTimeTrap
{
public:
    RealTimeTrap() noexcept;  ///< Arms the trap for this thread, at zero.
    ~RealTimeTrap() noexcept; ///< Disarms it.

    RealTimeTrap (const RealTimeTrap&) = delete;
    RealTimeTrap& operator= (const RealTimeTrap&) = delete;

    int allocations() const noexcept;
    int locks() const noexcept;
};

} // namespace tarvik::test
