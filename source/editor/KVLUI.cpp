// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/KVLUI.h"

namespace tarvik
{

int KVLUI::parameterOf (const juce::Component& control) const
{
    const auto found = controlToParameter.find (&control);
    return found != controlToParameter.end() ? found->second : noParameter;
}

std::vector<juce::Component*> KVLUI::controlsOf (int index) const
{
    const auto found = parameterToControls.find (index);
    return found != parameterToControls.end() ? found->second : std::vector<juce::Component*> {};
}

juce::RangedAudioParameter& KVLUI::parameterAt (int index) const
{
    return dynamic_cast<juce::RangedAudioParameter&> (*processor.getParameters()[index]);
}

void KVLUI::registerControl (int index, juce::Component& control)
{
    parameterToControls[index].push_back (&control);
    controlToParameter[&control] = index;
}

juce::Rectangle<int> KVLUI::boundsOf (int index) const
{
    const auto* const control = controlsOf (index).front();
    return getLocalArea (control, control->getLocalBounds());
}

void KVLUI::setHighlight (int index, juce::Colour colour)
{
    if (! controlsOf (index).empty())
        highlights[index] = { boundsOf (index), colour };

    repaint();
}

void KVLUI::clearHighlight (int index)
{
    highlights.erase (index);
    repaint();
}

void KVLUI::resized()
{
    for (auto& [index, highlight] : highlights)
        highlight.bounds = boundsOf (index);

    repaint();
}

void KVLUI::paintOverChildren (juce::Graphics& g)
{
    constexpr float opacity = 0.8f, armShare = 0.2f, longestArm = 10.0f;

    for (const auto& [index, highlight] : highlights)
    {
        const auto r = highlight.bounds.toFloat();
        const auto arm = juce::jmin (armShare * r.getWidth(), armShare * r.getHeight(), longestArm);
        g.setColour (highlight.colour.withAlpha (opacity));

        // An L of two strokes in each corner.
        for (const auto x : { r.getX(), r.getRight() - arm })
            for (const auto y : { r.getY(), r.getBottom() - 1.0f })
                g.fillRect (x, y, arm, 1.0f);

        for (const auto x : { r.getX(), r.getRight() - 1.0f })
            for (const auto y : { r.getY(), r.getBottom() - arm })
                g.fillRect (x, y, 1.0f, arm);
    }
}

} // namespace tarvik
