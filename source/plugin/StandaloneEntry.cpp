// SPDX-License-Identifier: GPL-3.0-or-later
#include <juce_gui_basics/juce_gui_basics.h>

#include <cstdlib>
#include <iostream>
#include <string>

// Made by JUCE's wrapper.
juce::JUCEApplicationBase* juce_CreateApplication();

/** JUCE's program asks the main screen for its size, and crashes without one: this one says so and ends with status 1.
*/
int main (int argc, char* argv[])
{
    juce::JUCEApplicationBase::createInstance = &juce_CreateApplication;
    const juce::ScopedJuceInitialiser_GUI untilTheEnd;

    if (juce::Desktop::getInstance().getDisplays().getPrimaryDisplay() == nullptr)
    {
        const auto* const display = std::getenv ("DISPLAY"); // there is no other thread yet
        std::cerr << "tarvik41-channel: there is no screen for its window: "
                  << (display != nullptr ? "'" + std::string (display) + "' cannot be opened" : "DISPLAY is not set")
                  << std::endl;
        return EXIT_FAILURE;
    }

    return juce::JUCEApplicationBase::main (argc, const_cast<const char**> (argv)); // JUCE's signature
}
