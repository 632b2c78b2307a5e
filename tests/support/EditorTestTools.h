// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ScaledPictures.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <stdexcept>

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
    static constexpr float notch = 0.195f; ///< Of a usual wheel in X11.

    explicit Mouse (juce::Component& target) : component (target) {}

    void press (juce::Point<float> place, int modifiers = 0)
    {
        downPlace = place;
        downModifiers = modifiers | juce::ModifierKeys::leftButtonModifier;
        downTime = nextTime();
        component.mouseDown (event (place));
    }

    void drag (juce::Point<float> place)
    {
        wasDragged = true;
        component.mouseDrag (event (place));
    }

    void release (juce::Point<float> place)
    {
        component.mouseUp (event (place));
        wasDragged = false;
    }

    void click (juce::Point<float> place, int modifiers = 0)
    {
        press (place, modifiers);
        release (place);
    }

    void enter() { component.mouseEnter (event ({})); }

    void wheel (float deltaY, int modifiers = 0, bool isSmooth = false, bool isReversed = false)
    {
        downModifiers = modifiers;
        component.mouseWheelMove (event ({}), { 0.0f, deltaY, isReversed, isSmooth, false });
    }

private:
    /** Sliders ignore a second wheel event of the same time. */
    juce::Time nextTime() { return juce::Time (++lastTime); }

    juce::MouseEvent event (juce::Point<float> place)
    {
        const auto& mouse = juce::Desktop::getInstance().getMainMouseSource();
        return juce::MouseEvent (mouse, place, downModifiers, mouse.defaultPressure, 0.0f, 0.0f, 0.0f, 0.0f, &component,
                                 &component, nextTime(), downPlace, downTime, 1, wasDragged);
    }

    juce::Component& component;
    juce::Point<float> downPlace;
    juce::Time downTime;
    juce::int64 lastTime = 1000;
    int downModifiers = 0;
    bool wasDragged = false;
};

inline void click (juce::Component& component)
{
    Mouse (component).click (component.getLocalBounds().getCentre().toFloat());
    runMessagesFor (5);
}

/** All of that kind in a component, at any depth, in the order of painting. */
template <typename Control = juce::Component>
std::vector<Control*> allIn (juce::Component& parent)
{
    std::vector<Control*> all;

    for (auto* const child : parent.getChildren())
    {
        if (auto* const control = dynamic_cast<Control*> (child))
            all.push_back (control);

        const auto within = allIn<Control> (*child);
        all.insert (all.end(), within.begin(), within.end());
    }

    return all;
}

/** The one of that kind that has the title, at any depth. */
template <typename Control = juce::Button>
Control& childOf (juce::Component& parent, const juce::String& title)
{
    for (auto* const control : allIn<Control> (parent))
        if (control->getTitle() == title)
            return *control;

    throw std::runtime_error ("no such child: " + title.toStdString());
}

/** The texts of all labels in a component. */
inline juce::StringArray labelTexts (juce::Component& parent)
{
    juce::StringArray texts;

    for (const auto* const label : allIn<juce::Label> (parent))
        texts.add (label->getText());

    return texts;
}

/** One line for each row of a menu, sub-menus indented: "id text", with "*" before the text for a tick. */
inline juce::String rowsOf (const juce::PopupMenu& menu, const juce::String& indent = {})
{
    juce::String text;

    for (juce::PopupMenu::MenuItemIterator i (menu); i.next();)
    {
        const auto& item = i.getItem();
        text << indent << (item.isSeparator ? "--" : juce::String (item.itemID) + (item.isTicked ? " *" : " "))
             << item.text << (item.isEnabled || item.isSeparator ? "\n" : " (disabled)\n");

        if (item.subMenu != nullptr)
            text << rowsOf (*item.subMenu, indent + "  ");
    }

    return text;
}

/** What a component draws, at one image pixel for each of its own. */
inline juce::Image snapshotOf (juce::Component& component)
{
    return component.createComponentSnapshot (component.getLocalBounds());
}

/** The first column with anything in it; the image's width without any. */
inline int firstInkIn (const juce::Image& image)
{
    for (int x = 0; x < image.getWidth(); ++x)
        for (int y = 0; y < image.getHeight(); ++y)
            if (image.getPixelAt (x, y).getAlpha() > 0)
                return x;

    return image.getWidth();
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

/** True if the component shows these pictures over one another and nothing else, at their own size. */
inline bool shows (juce::Component& component, std::initializer_list<Picture> pictures)
{
    juce::Image expected (juce::Image::ARGB, component.getWidth(), component.getHeight(), true);
    juce::Graphics g (expected);

    for (const auto picture : pictures)
        g.drawImageAt (decodedPicture (picture), 0, 0);

    return difference (snapshotOf (component), expected) == 0.0;
}

/** From 0 to 1, with what is transparent as black. */
inline double lightAt (const juce::Image& image, int x, int y)
{
    const auto colour = image.getPixelAt (x, y);
    return static_cast<double> (colour.getFloatAlpha() * colour.getPerceivedBrightness());
}

} // namespace tarvik::test
