// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>
#include <juce_core/juce_core.h>

#include <algorithm>
#include <cstdlib>

namespace tarvik::test
{

/** Holds a text against the file of that name in tests/golden, line by line. With TARVIK_WRITE_GOLDEN set in the
    environment the file is written anew instead: that is how it came into being, and a look at the difference before
    committing it is the review.
*/
inline void expectGolden (const char* fileName, const juce::String& actual)
{
    const auto file = juce::File (TARVIK_GOLDEN_FOLDER).getChildFile (fileName);

    if (std::getenv ("TARVIK_WRITE_GOLDEN") != nullptr)
        file.replaceWithText (actual);

    const auto expectedLines = juce::StringArray::fromLines (file.loadFileAsString());
    const auto actualLines = juce::StringArray::fromLines (actual);

    for (int i = 0; i < std::max (actualLines.size(), expectedLines.size()); ++i)
        EXPECT_EQ (actualLines[i], expectedLines[i]) << fileName << ", line " << i + 1;
}

} // namespace tarvik::test
