// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace juce
{
// JUCE's own, and exported by it, but in no header: what its message loop calls.
bool dispatchNextMessageOnSystemQueue (bool returnIfNoPendingMessages);
} // namespace juce

namespace tarvik::test
{

/** Delivers messages and timer calls for a while. */
inline void runMessagesFor (int milliseconds)
{
    const auto end = juce::Time::getMillisecondCounterHiRes() + milliseconds;

    do
    {
        if (! juce::dispatchNextMessageOnSystemQueue (true))
            juce::Thread::sleep (1);
    } while (juce::Time::getMillisecondCounterHiRes() < end);
}

/** The left button and the wheel over one component, sending what a window would send. */
class Mouse
{
public:
    explicit Mouse (juce::Component& target) : component (target) {}

    void press (juce::Point<float> place, int modifiers = 0, int clicks = 1)
    {
        downPlace = place;
        downModifiers = modifiers;
        downTime = nextTime();
        component.mouseDown (event (place, clicks));

        if (clicks == 2)
            component.mouseDoubleClick (event (place, clicks));
    }

    void drag (juce::Point<float> place)
    {
        wasDragged = true;
        component.mouseDrag (event (place, 1));
    }

    void release (juce::Point<float> place)
    {
        component.mouseUp (event (place, 1));
        wasDragged = false;
    }

    void click (juce::Point<float> place, int modifiers = 0)
    {
        press (place, modifiers);
        release (place);
    }

    void enter() { component.mouseEnter (event ({}, 0)); }

    /** One notch of a usual wheel in X11 is 0.195. */
    void wheel (float deltaY, int modifiers = 0, bool isSmooth = false, bool isReversed = false)
    {
        component.mouseWheelMove ({ source(),
                                    {},
                                    juce::ModifierKeys (modifiers),
                                    0.0f,
                                    0.0f,
                                    0.0f,
                                    0.0f,
                                    0.0f,
                                    &component,
                                    &component,
                                    nextTime(),
                                    {},
                                    downTime,
                                    0,
                                    false },
                                  { 0.0f, deltaY, isReversed, isSmooth, false });
    }

private:
    static juce::MouseInputSource source() { return juce::Desktop::getInstance().getMainMouseSource(); }

    /** Sliders ignore a second wheel event of the same time. */
    juce::Time nextTime() { return juce::Time (++lastTime); }

    juce::MouseEvent event (juce::Point<float> place, int clicks)
    {
        return { source(),
                 place,
                 juce::ModifierKeys (downModifiers | juce::ModifierKeys::leftButtonModifier),
                 juce::MouseInputSource::defaultPressure,
                 0.0f,
                 0.0f,
                 0.0f,
                 0.0f,
                 &component,
                 &component,
                 nextTime(),
                 downPlace,
                 downTime,
                 clicks,
                 wasDragged };
    }

    juce::Component& component;
    juce::Point<float> downPlace;
    juce::Time downTime;
    juce::int64 lastTime = 1000;
    int downModifiers = 0;
    bool wasDragged = false;
};

/** What a component draws, at one image pixel for each of its own. */
inline juce::Image snapshotOf (juce::Component& component, float scale = 1.0f)
{
    return component.createComponentSnapshot (component.getLocalBounds(), true, scale);
}

/** From 0 to 1, with what is transparent as black. */
inline double lightAt (const juce::Image& image, int x, int y)
{
    const auto colour = image.getPixelAt (x, y);
    return static_cast<double> (colour.getFloatAlpha() * colour.getPerceivedBrightness());
}

/** The share of pixels that differ. */
inline double difference (const juce::Image& a, const juce::Image& b)
{
    int count = 0;

    for (int y = 0; y < a.getHeight(); ++y)
        for (int x = 0; x < a.getWidth(); ++x)
            count += a.getPixelAt (x, y) != b.getPixelAt (x, y);

    return count / static_cast<double> (a.getWidth() * a.getHeight());
}

} // namespace tarvik::test
