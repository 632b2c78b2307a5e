// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <stdexcept>

namespace tarvik
{

/** What the user must be told before the tool gives up: one line, without the tool's name and without a full stop. */
class ToolError : public std::runtime_error
{
public:
    explicit ToolError (const juce::String& message) : std::runtime_error (message.toStdString()) {}
};

} // namespace tarvik
