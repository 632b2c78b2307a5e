// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ChannelNumbers.h"
#include "editor/ControlGeometry.h"
#include "editor/OrvaneConsoleUI.h"

namespace tarvik
{

namespace layout = consoleLayout;

namespace
{
constexpr const char* nameOfNamelessTrack = "Tarvik Plugins";
constexpr int meterShowsInput = 0, meterShowsOutput = 1;
} // namespace

int OrvaneConsoleUI::numMainChannels() const
{
    return processor.getBusCount (true) > 0 ? processor.getChannelCountOfBus (true, 0) : 0;
}

int OrvaneConsoleUI::channelNumber() const
{
    const auto& channel = parameterAt (parameterIndex::tolChannel);
    return juce::roundToInt (channel.convertFrom0to1 (channel.getValue()));
}

bool OrvaneConsoleUI::isLinked() const { return parameterAt (parameterIndex::tolLink).getValue() > 0.5f; }

//==============================================================================
void OrvaneConsoleUI::updateMeters (const ParameterSnapshot& snapshot)
{
    constexpr float silenceDb = -100.0f;
    const auto activity = snapshot.expanderAmount.get();

    if (std::isfinite (activity))
        expanderLed.setAlpha (juce::jlimit (0.0f, 1.0f, activity));

    if (meterMode.getValue() == meterShowsInput)
        vuMeter.setDecibels (juce::Decibels::gainToDecibels (snapshot.inputMeter.get(), silenceDb));
    else if (meterMode.getValue() == meterShowsOutput)
        vuMeter.setDecibels (juce::Decibels::gainToDecibels (snapshot.outputMeter.get(), silenceDb));

    gainReductionMeter.setAngle (gainReductionAngle (snapshot.gainReductionDb));
}

void OrvaneConsoleUI::showParameters()
{
    for (const auto& [index, controls] : parameterToControls)
    {
        const auto& parameter = parameterAt (index);
        const auto value = parameter.isOrientationInverted() ? 1.0f - parameter.getValue() : parameter.getValue();

        for (auto* const control : controls)
        {
            // The listeners have not heard of a wheel's step yet, so the parameter is behind.
            if (const auto* const kvl = dynamic_cast<KVLSlider*> (control); kvl != nullptr && kvl->hasUnsentStep())
                continue;

            if (auto* const slider = dynamic_cast<juce::Slider*> (control))
                slider->setValue (static_cast<double> (value), juce::dontSendNotification);
            else if (auto* const button = dynamic_cast<juce::Button*> (control))
                button->setToggleState (value > 0.5f, juce::dontSendNotification);
        }
    }

    for (std::size_t i = 0; i < lamps.size(); ++i)
        if (lamps[i] != nullptr)
            lamps[i]->setToggleState (pushButtons[i]->getToggleState(), juce::dontSendNotification);
}

void OrvaneConsoleUI::showChannel (const ParameterSnapshot& snapshot)
{
    const auto number = channelNumber();
    const auto channels = numMainChannels();
    const auto isStereo = channels == 2;

    plateMono.setVisible (! isStereo);
    plateStereo.setVisible (isStereo);
    rightNumber.setVisible (isStereo);

    // What is being typed stays.
    if (leftNumber.getCurrentTextEditor() == nullptr)
    {
        leftNumber.setVisible (true);
        leftNumber.setText (channelNumbers::leftText (number, channels, isLinked()), juce::dontSendNotification);
    }

    if (isStereo && rightNumber.getCurrentTextEditor() == nullptr)
        rightNumber.setText (channelNumbers::rightText (number, isLinked()), juce::dontSendNotification);

    previousChannel.setVisible (number > 1);
    nextChannel.setVisible (number < channelNumbers::numChannels + 1 - channels);
    channelName.setText (snapshot.trackName.isNotEmpty() ? snapshot.trackName : nameOfNamelessTrack,
                         juce::dontSendNotification);
}

void OrvaneConsoleUI::updateState (const ParameterSnapshot& snapshot)
{
    showParameters();
    showChannel (snapshot);
    compressorLed.setToggleState (snapshot.limiterActive, juce::dontSendNotification);
    mixReadout.setText (parameterAt (layout::parameter ("compMix")).getCurrentValueAsText(),
                        juce::dontSendNotification);
    filterReadout.setText (parameterAt (layout::parameter ("compHPF")).getCurrentValueAsText(),
                           juce::dontSendNotification);

    for (std::size_t i = 0; i < pushButtons.size(); ++i)
        if (layout::pushButtons[i].parameter == noParameter)
            pushButtons[i]->setToggleState (meterMode.getValue() == meterShowsInput, juce::dontSendNotification);

    outputLegend.setVisible (meterMode.getValue() == meterShowsOutput);
}

} // namespace tarvik
