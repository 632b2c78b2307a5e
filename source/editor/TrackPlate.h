// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ConsoleLabel.h"
#include "editor/PictureButtons.h"
#include "plugin/KVLProcessor.h"

namespace tarvik
{

/** The plate with the track's name and the console channels that its sides use, and the buttons that change them. A
    strip of several main channels uses as many neighbouring console channels, the first of which is the parameter;
    linked sides share one. What is seen comes from the parameters, at the next call of `show`. Message thread.
*/
class TrackPlate final : public juce::Component
{
public:
    TrackPlate (KVLProcessor& processorToShow, juce::RangedAudioParameter& channelParameter,
                juce::RangedAudioParameter& linkParameter);

    void show (const juce::String& trackName);

    /** Takes the number that was typed over one of the two, held to what the strip fits in: a tag such as "L" and stops
        before the digits are dropped. Does nothing if the rest is not a number.
    */
    void numberTyped (const juce::Label& number);

    /** Puts itself and what is on it where the layout has them on a console of that size. */
    void placeOn (int consoleWidth, int consoleHeight);

    // What stands for a parameter, for the console to register.
    LinkButton link;
    ConsoleLabel leftNumber, rightNumber;

private:
    int firstChannel() const;
    int lastChannel() const;
    int numChannels() const;
    bool isLinked() const;
    void stepChannel (int direction);
    void toggleLink();

    KVLProcessor& processor;
    juce::RangedAudioParameter &channel, &linked;
    std::vector<std::pair<juce::Component*, Box>> placed;
    PictureButton plateMono, plateStereo, previousChannel, nextChannel, randomChannel, randomInAll;
    ConsoleLabel channelName;
    juce::SharedResourcePointer<NameTypeface> nameTypeface;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (TrackPlate)
};

} // namespace tarvik
