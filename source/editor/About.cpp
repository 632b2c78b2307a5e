// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/About.h"

#include "editor/Palette.h"

namespace tarvik
{

namespace
{
constexpr float cornerSize = 20.0f; ///< At the panel's usual size.
constexpr float bodyHeight = 13.0f, versionHeight = 14.0f, lineHeight = 0.0833f;

struct TextRow
{
    const char* text; ///< Null for the version's.
    Box box;
    float height;
    int fontStyle, justification;
    juce::uint32 colour;
};

using Style = juce::Font::FontStyleFlags;
using At = juce::Justification;
constexpr auto white = palette::aboutPrint;

constexpr TextRow textRows[] = {
    { nullptr, { 0.03f, 0.06f, 0.94f, lineHeight }, versionHeight, Style::plain, At::centred, white },
    { "The Tarvik developers", { 0.48f, 0.2f, 0.51f, lineHeight }, bodyHeight, Style::bold, At::centredLeft, white },
    { "Programming\nGraphics\nCircuit modeling",
      { 0.48f, 0.2833f, 0.51f, 0.21f },
      bodyHeight,
      Style::plain,
      At::topLeft,
      palette::aboutRole },
    { "The Tarvik designers", { 0.48f, 0.54f, 0.51f, lineHeight }, bodyHeight, Style::bold, At::centredLeft, white },
    { "Concept\nTest, Tuning",
      { 0.48f, 0.6233f, 0.51f, 0.1333f },
      bodyHeight,
      Style::plain,
      At::topLeft,
      palette::aboutRole },
};

constexpr Box linkBox { 0.25f, 0.85f, 0.5f, lineHeight };
constexpr Box productLogoBox { 0.0644f, 0.2167f, 0.3f, 0.12f }, makerLogoBox { 0.0111f, 0.5367f, 0.46f, 0.1067f };
} // namespace

About::About (const Sites& sites) : link ("Tarvik Plugins Website", juce::URL (sites.maker))
{
    setTitle ("About");
    setWantsKeyboardFocus (true);
    const auto built =
        juce::Time::getCompilationDate().formatted (JucePlugin_Name " " JucePlugin_VersionString " (build %Y-%m-%d)");

    for (std::size_t i = 0; i < texts.size(); ++i)
    {
        const auto& row = textRows[i];
        texts[i].setText (row.text != nullptr ? row.text : built, juce::dontSendNotification);
        texts[i].setFont (juce::Font (row.height, row.fontStyle));
        texts[i].setJustificationType (row.justification);
        texts[i].setColour (juce::Label::textColourId, juce::Colour (row.colour));
        texts[i].setInterceptsMouseClicks (false, false); // a click on a letter is one on the panel
        addAndMakeVisible (texts[i]);
    }

    link.setColour (juce::HyperlinkButton::textColourId, juce::Colour (palette::aboutLink));
    link.setFont (juce::Font (bodyHeight), false);
    link.setEnabled (sites.maker.isNotEmpty());
    link.setInterceptsMouseClicks (link.isEnabled(), false); // else a click on it is one on the panel
    addAndMakeVisible (link);
    setSize (size, size);
}

void About::paint (juce::Graphics& g)
{
    const auto corner = cornerSize * static_cast<float> (getWidth()) / static_cast<float> (size);
    g.setColour (juce::Colour (palette::aboutSheet));
    g.fillRoundedRectangle (getLocalBounds().toFloat(), corner);
    productLogo.draw (g, productLogoBox.on (getWidth(), getHeight()));
    makerLogo.draw (g, makerLogoBox.on (getWidth(), getHeight()));
}

void About::resized()
{
    for (std::size_t i = 0; i < texts.size(); ++i)
        texts[i].setBounds (textRows[i].box.on (getWidth(), getHeight()));

    link.setBounds (linkBox.on (getWidth(), getHeight()));
}

void About::open()
{
    focusedBefore = getCurrentlyFocusedComponent();
    setVisible (true);
    grabKeyboardFocus();
}

void About::close()
{
    if (hasKeyboardFocus (true) && focusedBefore != nullptr)
        focusedBefore->grabKeyboardFocus();

    setVisible (false);
}

void About::mouseUp (const juce::MouseEvent&) { close(); }

} // namespace tarvik
