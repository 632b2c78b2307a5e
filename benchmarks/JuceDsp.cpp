// SPDX-License-Identifier: GPL-3.0-or-later
//
// JUCE's signal processing module, which the benchmarks alone compare with: the program itself does not link it.
#include <juce_dsp/juce_dsp.cpp>
