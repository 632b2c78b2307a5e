// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/IppMinMax.h"

#include "dsp/RowOperations.h"

namespace tarvik
{
void ippMinMax::min (float* row, int n, float limit) noexcept { rows::minimum (row, limit, n); }

void ippMinMax::min (double* row, int n, double limit) noexcept { rows::minimum (row, limit, n); }

void ippMinMax::max (float* row, int n, float limit) noexcept { rows::maximum (row, limit, n); }

void ippMinMax::max (double* row, int n, double limit) noexcept { rows::maximum (row, limit, n); }
} // namespace tarvik
