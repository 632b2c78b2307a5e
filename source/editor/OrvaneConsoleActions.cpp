// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ChannelNumbers.h"
#include "editor/OrvaneConsoleUI.h"

namespace tarvik
{

namespace layout = consoleLayout;

namespace
{
/** On a slider 0 is at its start; an inverted parameter has its end there. The same both ways. */
float turnedFor (const juce::AudioProcessorParameter& parameter, float value)
{
    return parameter.isOrientationInverted() ? 1.0f - value : value;
}
} // namespace

void OrvaneConsoleUI::sliderValueChanged (juce::Slider* slider)
{
    if (const auto index = parameterOf (*slider); index >= 0)
    {
        auto& parameter = parameterAt (index);
        parameter.setValueNotifyingHost (turnedFor (parameter, static_cast<float> (slider->getValue())));
    }
}

void OrvaneConsoleUI::sliderDragStarted (juce::Slider* slider)
{
    if (const auto index = parameterOf (*slider); index >= 0)
        parameterAt (index).beginChangeGesture();
}

void OrvaneConsoleUI::sliderDragEnded (juce::Slider* slider)
{
    if (const auto index = parameterOf (*slider); index >= 0)
        parameterAt (index).endChangeGesture();
}

//==============================================================================
void OrvaneConsoleUI::setInGesture (juce::RangedAudioParameter& parameter, float plainValue)
{
    parameter.beginChangeGesture();
    parameter.setValueNotifyingHost (parameter.convertTo0to1 (plainValue));
    parameter.endChangeGesture();
}

void OrvaneConsoleUI::toggleParameter (int index)
{
    auto& parameter = parameterAt (index);
    parameter.beginChangeGesture();
    parameter.setValueNotifyingHost (1.0f - parameter.getValue());
    parameter.endChangeGesture();
}

void OrvaneConsoleUI::stepChannel (int direction)
{
    auto& channel = parameterAt (parameterIndex::tolChannel);
    const auto range = channel.getNormalisableRange();
    const auto spare = isLinked() ? 0 : numMainChannels() - 1;
    const auto wanted = static_cast<float> (channelNumber() + direction);

    // Upwards the last side of the strip stays in range as well.
    setInGesture (channel, direction < 0 ? std::max (wanted, range.start)
                                         : std::min (wanted, range.end - static_cast<float> (spare)));
}

void OrvaneConsoleUI::toggleLink()
{
    const auto wasLinked = link.getToggleState();
    auto& channel = parameterAt (parameterIndex::tolChannel);
    parameterAt (parameterIndex::tolLink).setValueNotifyingHost (wasLinked ? 0.0f : 1.0f);

    // Unlinked, the second side needs a channel behind the first one's.
    const auto last = channel.getNormalisableRange().end;

    if (wasLinked && channelNumber() == juce::roundToInt (last))
        channel.setValueNotifyingHost (channel.convertTo0to1 (last - 1.0f));
}

void OrvaneConsoleUI::buttonClicked (juce::Button* button)
{
    if (button == &previousChannel)
        stepChannel (-1);
    else if (button == &nextChannel)
        stepChannel (1);
    else if (button == &randomChannel)
        processor.randomChannel();
    else if (button == &randomInAll)
        InstanceBroadcaster::get().broadcast ({ BroadcastMessage::randomChannel, 0 });
    else if (button == &link)
        toggleLink();
    else if (const auto index = parameterOf (*button); index >= 0)
        toggleParameter (index);
    else if (std::any_of (pushButtons.begin(), pushButtons.end(),
                          [&] (const auto& push) { return push.get() == button; }))
        meterMode.setValue (1 - meterMode.getValue()); // the one push button without a parameter
}

void OrvaneConsoleUI::labelTextChanged (juce::Label* label)
{
    using namespace channelNumbers;

    const auto text = label->getText();
    const auto number = label == &leftNumber ? fromLeftText (text, numMainChannels())
                                             : fromRightText (text, numMainChannels(), isLinked());

    if (! number)
        return;

    auto& channel = parameterAt (parameterIndex::tolChannel);
    channel.setValueNotifyingHost (channel.getValueForText (juce::String (*number)));
}

} // namespace tarvik
