// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik::benchmarks
{
// Multiply-adds of 32-bit floats that this core does in a second with the instruction set that is enabled now, when
// nothing else holds it up: independent sums in registers. Where the set has no fused multiply-add, one multiplication
// and one addition count as one. The best of several short runs; takes some milliseconds.
double measureMultiplyAddPeak();
} // namespace tarvik::benchmarks
