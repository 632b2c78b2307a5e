// SPDX-License-Identifier: GPL-3.0-or-later
// JUCE includes libjpeg's header inside a namespace of its own, and asks that namespace for the type `boolean`. On Windows
// the system's headers have defined it already, outside.
#include_next <jpeglib.h>

using ::boolean;
