// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/System.h"

#include <sys/stat.h>

namespace tarvik
{

juce::StringArray startProgram (int argc, char** argv)
{
    juce::StringArray words;

    for (int i = 1; i < argc; ++i)
        words.add (juce::String::fromUTF8 (argv[i]));

    return words;
}

juce::String fileIdentity (const juce::File& file)
{
    struct stat status = {};

    return ::stat (file.getFullPathName().toRawUTF8(), &status) == 0
               ? juce::String (status.st_dev) + ":" + juce::String (status.st_ino)
               : juce::String();
}

juce::File openableModule (const juce::File& bundle) { return bundle; }

} // namespace tarvik
