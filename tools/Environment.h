// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <cstdlib>

namespace tarvik
{

/** For this process and those that it starts. While there is no other thread. */
inline void setEnvironmentVariable (const char* name, const juce::String& value)
{
#if JUCE_WINDOWS
    ::_wputenv_s (juce::String (name).toWideCharPointer(), value.toWideCharPointer());
#else
    ::setenv (name, value.toRawUTF8(), 1);
#endif
}

/** JUCE would join an X screen even if no window opens, and the process would end with it. Windows has no such screens. */
inline void joinNoScreen()
{
#if ! JUCE_WINDOWS
    setEnvironmentVariable ("DISPLAY", ":65000");
#endif
}

} // namespace tarvik
