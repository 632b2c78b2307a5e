// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace juce
{
class AudioProcessorEditor;
}

namespace tarvik
{

class KVLProcessor;

/** Makes a new editor for a processor, which outlives it. Declared here and defined above, or by a program that has no
    window. Message thread; the caller owns the result.
*/
juce::AudioProcessorEditor* createStripEditor (KVLProcessor& processor);

/** What the processor asks of an open editor that can zoom. */
class ZoomableEditor
{
public:
    /** What a window can be drawn at, as a share of its own size. */
    static constexpr double lowestZoom = 0.8, highestZoom = 1.5;

    virtual ~ZoomableEditor() = default;

    /** The zoom setting has changed: take it up a little later, on the message thread. Any thread but the audio thread.
     */
    virtual void zoomSettingChanged() = 0;
};

} // namespace tarvik
