// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

#include <vector>

namespace tarvik
{

/** Pictures with captions on one sheet, in lines as a text's words. */
class ContactSheet
{
public:
    /** Pictures under one another, below their caption. */
    void add (const juce::String& caption, std::vector<juce::Image> pictures);

    juce::Image draw() const;

private:
    struct Entry
    {
        int width() const;
        int height() const;
        void draw (juce::Graphics& g, int x, int y) const;

        juce::String caption;
        std::vector<juce::Image> pictures;
    };

    int layOut (juce::Graphics* g) const;

    std::vector<Entry> entries;
};

} // namespace tarvik
