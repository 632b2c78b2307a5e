// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/System.h"

#include <juce_events/juce_events.h>

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace tarvik
{

/** The words that main() gets have lost every character that the system's code page lacks: they are taken from the system
    itself.
*/
juce::StringArray startProgram (int, char**)
{
    for (auto* const stream : { stdin, stdout, stderr })
        ::_setmode (::_fileno (stream), _O_BINARY);

    ::SetConsoleOutputCP (CP_UTF8);
    return juce::JUCEApplicationBase::getCommandLineParameterArray();
}

juce::String fileIdentity (const juce::File& file)
{
    return file.exists() ? juce::String::toHexString (file.getVolumeSerialNumber()) + ":"
                               + juce::String::toHexString (static_cast<juce::int64> (file.getFileIdentifier()))
                         : juce::String();
}

juce::File openableModule (const juce::File& bundle)
{
    return bundle.isDirectory() ? bundle.getChildFile ("Contents/x86_64-win").getChildFile (bundle.getFileName())
                                : bundle;
}

} // namespace tarvik
