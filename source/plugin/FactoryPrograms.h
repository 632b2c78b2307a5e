// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/ParameterSnapshot.h"

#include <array>

namespace tarvik
{

struct FactoryProgram
{
    const char* name = "";
    ParameterSnapshot snapshot;
};

inline constexpr int numFactoryPrograms = 26;

/** The programs in the host's order, the same for all instances and never changed. */
const std::array<FactoryProgram, numFactoryPrograms>& factoryPrograms();

} // namespace tarvik
