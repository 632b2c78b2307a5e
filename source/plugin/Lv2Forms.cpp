// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/Lv2Forms.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <lv2/core/lv2.h>
#include <string_view>

namespace juce::lv2_client
{
/** JUCE's own descriptor, of the stereo plug-in; none but for 0. */
const LV2_Descriptor* stereoDescriptor (std::uint32_t index);
} // namespace juce::lv2_client

namespace tarvik
{

void setLv2Buses (juce::AudioProcessor& strip, const char* uri)
{
    strip.enableAllBuses();

    if (std::string_view (uri) != lv2MonoUri)
        return;

    auto layout = strip.getBusesLayout();

    for (auto* const buses : { &layout.inputBuses, &layout.outputBuses })
        buses->fill (juce::AudioChannelSet::mono());

    strip.setBusesLayout (layout);
}

} // namespace tarvik

/** The two plug-ins differ in their name, by which the instance asks for its buses. */
LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor (std::uint32_t index)
{
    static const auto mono = []
    {
        auto descriptor = *juce::lv2_client::stereoDescriptor (0);
        descriptor.URI = tarvik::lv2MonoUri;
        return descriptor;
    }();

    return index == 1 ? &mono : juce::lv2_client::stereoDescriptor (index);
}
