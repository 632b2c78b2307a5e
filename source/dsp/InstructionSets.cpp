// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/InstructionSets.h"

#include <hwy/targets.h>

namespace tarvik
{
void selectInstructionSet() noexcept { hwy::GetChosenTarget().Update (hwy::SupportedTargets()); }

std::vector<InstructionSet> supportedInstructionSets()
{
    std::vector<InstructionSet> sets;

    for (const auto target : hwy::SupportedAndGeneratedTargets())
        sets.push_back ({ target, hwy::TargetName (target) });

    return sets;
}

/** Better sets have lower bits. Those below the forced one stay, for the code that is not compiled for it. */
ScopedInstructionSet::ScopedInstructionSet (InstructionSet set) noexcept
{
    hwy::SetSupportedTargetsForTest (hwy::SupportedTargets() & ~(set.target - 1));
    selectInstructionSet();
}

ScopedInstructionSet::~ScopedInstructionSet()
{
    hwy::SetSupportedTargetsForTest (0);
    selectInstructionSet();
}
} // namespace tarvik
