// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/About.h"

namespace tarvik
{

namespace
{
constexpr juce::uint32 sheetColour = 0xe81d1d1d, workColour = 0xaaffffff, linkColour = 0xccffffff;
constexpr float cornerSize = 20.0f; ///< At the panel's usual size.
constexpr float bodyHeight = 13.0f, versionHeight = 14.0f;

/** A place as shares of the panel's width and height. */
struct Place
{
    float x, y, w, h;

    juce::Rectangle<int> on (juce::Rectangle<int> panel) const
    {
        return panel.toFloat().getProportion (juce::Rectangle (x, y, w, h)).toNearestInt();
    }
};

constexpr float lineHeight = 0.0833f;
constexpr Place versionPlace { 0.03f, 0.06f, 0.94f, lineHeight };
constexpr Place productLogoPlace { 0.0644f, 0.2167f, 0.3f, 0.12f }, makerLogoPlace { 0.0111f, 0.5367f, 0.46f, 0.1067f };
constexpr Place developersPlace { 0.48f, 0.2f, 0.51f, lineHeight },
    developersWorkPlace { 0.48f, 0.2833f, 0.51f, 0.21f };
constexpr Place designersPlace { 0.48f, 0.54f, 0.51f, lineHeight },
    designersWorkPlace { 0.48f, 0.6233f, 0.51f, 0.1333f };
constexpr Place linkPlace { 0.25f, 0.85f, 0.5f, lineHeight };
} // namespace

About::About (const Sites& sites) : link ("Tarvik Plugins Website", juce::URL (sites.maker))
{
    setTitle ("About");

    const auto addText =
        [this] (juce::Label& label, const juce::String& text, const juce::Font& font, juce::Justification justification)
    {
        label.setText (text, juce::dontSendNotification);
        label.setFont (font);
        label.setJustificationType (justification);
        label.setColour (juce::Label::textColourId, juce::Colours::white);
        label.setInterceptsMouseClicks (false, false); // a click on a letter is one on the panel
        addAndMakeVisible (label);
    };

    const juce::Font regular (bodyHeight), bold (bodyHeight, juce::Font::bold);
    addText (version,
             juce::Time::getCompilationDate().formatted (JucePlugin_Name " " JucePlugin_VersionString " (build %F)"),
             juce::Font (versionHeight), juce::Justification::centred);
    addText (developers, "The Tarvik developers", bold, juce::Justification::centredLeft);
    addText (developersWork, "Programming\nGraphics\nCircuit modeling", regular, juce::Justification::topLeft);
    addText (designers, "The Tarvik designers", bold, juce::Justification::centredLeft);
    addText (designersWork, "Concept\nTest, Tuning", regular, juce::Justification::topLeft);

    for (auto* const work : { &developersWork, &designersWork })
        work->setColour (juce::Label::textColourId, juce::Colour (workColour));

    link.setColour (juce::HyperlinkButton::textColourId, juce::Colour (linkColour));
    link.setFont (regular, false);
    link.setEnabled (sites.maker.isNotEmpty());
    link.setInterceptsMouseClicks (link.isEnabled(), false); // else a click on it is one on the panel
    addAndMakeVisible (link);
    setSize (size, size);
}

void About::paint (juce::Graphics& g)
{
    const auto corner = cornerSize * static_cast<float> (getWidth()) / static_cast<float> (size);
    g.setColour (juce::Colour (sheetColour));
    g.fillRoundedRectangle (getLocalBounds().toFloat(), corner);
    productLogo.draw (g, productLogoPlace.on (getLocalBounds()));
    makerLogo.draw (g, makerLogoPlace.on (getLocalBounds()));
}

void About::resized()
{
    const std::pair<juce::Component&, Place> children[] {
        { version, versionPlace },     { developers, developersPlace },       { developersWork, developersWorkPlace },
        { designers, designersPlace }, { designersWork, designersWorkPlace }, { link, linkPlace },
    };

    for (const auto& [child, place] : children)
        child.setBounds (place.on (getLocalBounds()));
}

void About::mouseUp (const juce::MouseEvent&) { setVisible (false); }

} // namespace tarvik
