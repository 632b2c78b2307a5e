// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/TrackPlate.h"

#include "editor/SetInGesture.h"

#include <optional>

namespace tarvik
{

namespace layout = consoleLayout;

namespace
{
/** The number after a tag; one with too many digits becomes one that is out of range. */
std::optional<int> numberAfter (const char* tagCharacters, const juce::String& text)
{
    constexpr double outOfRange = 9999.0;
    const auto digits = text.trimCharactersAtStart (tagCharacters);

    if (digits.isEmpty() || ! digits.containsOnly ("0123456789"))
        return {};

    return static_cast<int> (std::min (outOfRange, digits.getDoubleValue()));
}
} // namespace

TrackPlate::TrackPlate (KVLProcessor& processorToShow, juce::RangedAudioParameter& channelParameter,
                        juce::RangedAudioParameter& linkParameter)
    : leftNumber (layout::leftNumber), rightNumber (layout::rightNumber), processor (processorToShow),
      channel (channelParameter), linked (linkParameter), plateMono (layout::plateMono),
      plateStereo (layout::plateStereo), previousChannel (layout::previousChannel), nextChannel (layout::nextChannel),
      randomChannel (layout::randomChannel), randomInAll (layout::randomInAll), channelName (layout::channelName)
{
    placed = {
        { &plateMono, layout::plateMono.box },         { &plateStereo, layout::plateStereo.box },
        { &channelName, layout::channelName.box },     { &previousChannel, layout::previousChannel.box },
        { &nextChannel, layout::nextChannel.box },     { &link, layout::link.box },
        { &randomChannel, layout::randomChannel.box }, { &randomInAll, layout::randomInAll.box },
        { &leftNumber, layout::leftNumber.box },       { &rightNumber, layout::rightNumber.box },
    };

    for (const auto& [control, box] : placed)
        addAndMakeVisible (control);

    setInterceptsMouseClicks (false, true);
    setExplicitFocusOrder (layout::focusOrderOf (parameterIndex::tolChannel));
    channelName.setFont (juce::Font (nameTypeface->typeface).withHeight (layout::channelName.height));
    previousChannel.onClick = [this] { stepChannel (-1); };
    nextChannel.onClick = [this] { stepChannel (1); };
    link.onClick = [this] { toggleLink(); };
    randomChannel.onClick = [this] { processor.randomChannel(); };
    randomInAll.onClick = [] { InstanceBroadcaster::get().broadcast ({ BroadcastMessage::randomChannel, 0 }); };
}

void TrackPlate::placeOn (int consoleWidth, int consoleHeight)
{
    juce::Rectangle<int> all;

    for (const auto& [control, box] : placed)
        all = all.getUnion (box.on (consoleWidth, consoleHeight));

    setBounds (all);

    for (const auto& [control, box] : placed)
        control->setBounds (box.on (consoleWidth, consoleHeight) - all.getPosition());
}

//==============================================================================
int TrackPlate::firstChannel() const { return juce::roundToInt (channel.convertFrom0to1 (channel.getValue())); }

int TrackPlate::lastChannel() const { return juce::roundToInt (channel.getNormalisableRange().end); }

int TrackPlate::numChannels() const { return processor.getMainBusNumInputChannels(); }

bool TrackPlate::isLinked() const { return linked.getValue() > 0.5f; }

void TrackPlate::show (const juce::String& trackName)
{
    const auto first = firstChannel();
    const auto isStereo = numChannels() == 2;
    const auto left = (isStereo && isLinked() ? "L:" : "") + juce::String (first) + (numChannels() > 2 ? "..." : "");
    const auto right = isLinked() ? "R:" + juce::String (first) : juce::String (std::min (first + 1, lastChannel()));
    plateMono.setVisible (! isStereo);
    plateStereo.setVisible (isStereo);
    rightNumber.setVisible (isStereo);

    for (const auto& [label, text] : { std::pair (&leftNumber, left), { &rightNumber, right } })
        if (label->getCurrentTextEditor() == nullptr) // what is being typed stays
            label->setText (text, juce::dontSendNotification);

    previousChannel.setVisible (first > 1);
    nextChannel.setVisible (first < lastChannel() + 1 - numChannels());
    channelName.setText (trackName.isNotEmpty() ? trackName : "Tarvik Plugins", juce::dontSendNotification);
}

//==============================================================================
void TrackPlate::stepChannel (int direction)
{
    const auto sharedBy = isLinked() ? 1 : numChannels(); // both sides stay in range
    const auto first = juce::jlimit (1, lastChannel() + 1 - sharedBy, firstChannel() + direction);
    setInGesture (channel, channel.convertTo0to1 (static_cast<float> (first)));
}

void TrackPlate::toggleLink()
{
    const auto wasLinked = link.getToggleState();
    linked.setValueNotifyingHost (wasLinked ? 0.0f : 1.0f);

    // Unlinked, the second side needs a channel after the first one's.
    if (wasLinked && firstChannel() == lastChannel())
        channel.setValueNotifyingHost (channel.convertTo0to1 (static_cast<float> (lastChannel() - 1)));
}

void TrackPlate::numberTyped (const juce::Label& number)
{
    const auto isRight = &number == &rightNumber;
    const auto typed = numberAfter (isRight ? " Rr.," : " Ll.,", number.getText());

    const auto shown = isRight && ! isLinked() ? std::min (firstChannel() + 1, lastChannel()) : firstChannel();

    if (! typed || *typed == shown) // a strip that does not fit in stays where it is until another number is typed
        return;

    const auto width = isRight && isLinked() ? 1 : numChannels();
    const auto first = juce::jlimit (1, lastChannel() + 1 - width, isRight ? *typed + 1 - width : *typed);
    setIfNew (channel, channel.getValueForText (juce::String (first)));
}

} // namespace tarvik
