// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/SettingsFile.h"

#include <gtest/gtest.h>

namespace tarvik::test
{

/** Each test begins with no settings file, and leaves none behind. */
class SettingsFileTest : public testing::Test
{
protected:
    SettingsFileTest() { file().deleteFile(); }

    ~SettingsFileTest() override { file().deleteFile(); }

    static juce::File file() { return settingsFileOptions().getDefaultFile(); }

    static void write (const juce::String& key, const juce::String& value)
    {
        juce::PropertiesFile properties (settingsFileOptions());
        properties.setValue (key, value);
        ASSERT_TRUE (properties.save());
    }
};

} // namespace tarvik::test
