// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ContactSheet.h"

#include "editor/Palette.h"

#include <algorithm>

namespace tarvik
{

namespace
{
constexpr int sheetWidth = 2760;
constexpr int margin = 24, captionHeight = 26;
constexpr juce::uint32 paperColour = 0xff4a5157;

juce::Font captionFont() { return { captionHeight * 0.7f }; }
} // namespace

int ContactSheet::Entry::width() const
{
    auto widest = captionFont().getStringWidth (caption);

    for (const auto& picture : pictures)
        widest = std::max (widest, picture.getWidth());

    return widest;
}

int ContactSheet::Entry::height() const
{
    auto sum = captionHeight - margin;

    for (const auto& picture : pictures)
        sum += picture.getHeight() + margin;

    return sum;
}

void ContactSheet::Entry::draw (juce::Graphics& g, int x, int y) const
{
    g.setColour (juce::Colour (palette::lightPrint));
    g.setFont (captionFont());
    g.drawText (caption, x, y, width(), captionHeight, juce::Justification::centredLeft);
    g.setOpacity (1.0f);
    y += captionHeight;

    for (const auto& picture : pictures)
    {
        g.drawImageAt (picture, x, y);
        y += picture.getHeight() + margin;
    }
}

void ContactSheet::add (const juce::String& caption, std::vector<juce::Image> pictures)
{
    entries.push_back ({ caption, std::move (pictures) });
}

/** Places the entries line by line and draws them if there is something to draw on. Returns the height. */
int ContactSheet::layOut (juce::Graphics* g) const
{
    int x = margin, y = margin, lineHeight = 0;

    for (const auto& entry : entries)
    {
        if (x > margin && x + entry.width() > sheetWidth - margin)
        {
            x = margin;
            y += lineHeight + margin;
            lineHeight = 0;
        }

        if (g != nullptr)
            entry.draw (*g, x, y);

        x += entry.width() + margin;
        lineHeight = std::max (lineHeight, entry.height());
    }

    return y + lineHeight + margin;
}

juce::Image ContactSheet::draw() const
{
    juce::Image sheet (juce::Image::RGB, sheetWidth, layOut (nullptr), false);
    juce::Graphics g (sheet);
    g.fillAll (juce::Colour (paperColour));
    layOut (&g);
    return sheet;
}

} // namespace tarvik
