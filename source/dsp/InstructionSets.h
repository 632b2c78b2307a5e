// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace tarvik
{
/** Vector code is compiled once for each instruction set that it gains by, and every call goes to the best one that the
    processor has. Asking the processor is slow, so it is done here, once, instead of by whichever call happens to come first.

    Called when a processor object is made, on whatever thread makes it; also harmless while audio runs elsewhere,
    since it stores the same answer again. It reaches every vector file of the program. */
void selectInstructionSet() noexcept;

/** One instruction set: Highway's bit for it, and its name ("SSE4", "AVX2", ...). */
struct InstructionSet
{
    std::int64_t target = 0;
    const char* name = "";
};

/** Those that this machine has and the program was compiled for, best first; never empty. For tests and benchmarks,
    outside the life of a ScopedInstructionSet. */
std::vector<InstructionSet> supportedInstructionSets();

/** Lets the whole program use no better instruction set than this for the object's life. For tests and benchmarks with no audio
    running; such objects do not nest. The argument is one of supportedInstructionSets(). */
class ScopedInstructionSet
{
public:
    explicit ScopedInstructionSet (InstructionSet set) noexcept;
    ~ScopedInstructionSet();

    ScopedInstructionSet (const ScopedInstructionSet&) = delete;
    ScopedInstructionSet& operator= (const ScopedInstructionSet&) = delete;
};
} // namespace tarvik
