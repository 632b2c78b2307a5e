// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EditorSize.h"
#include "editor/EmbeddedResources.h"
#include "editor/KVLEditor.h"
#include "tools/Commands.h"
#include "tools/ContactSheet.h"
#include "tools/Interruption.h"
#include "tools/PngFile.h"
#include "tools/ScratchSettings.h"
#include "tools/ToolError.h"

#include <iostream>

namespace tarvik
{

namespace
{
namespace layout = consoleLayout;

/** How large the window is drawn: at a zoom, on a screen with so many pixels for each of the window's. */
struct View
{
    const char* name;
    float zoom, pixelsPerPixel;
};

constexpr View views[] = {
    { "80 %", 0.8f, 1.0f }, { "100 %", 1.0f, 1.0f }, { "150 %", 1.5f, 1.0f }, { "scale 2", 1.0f, 2.0f }
};

struct NamedPicture
{
    juce::String name;
    juce::Image picture;
};

bool isSame (const juce::Image& a, const juce::Image& b)
{
    if (a.getBounds() != b.getBounds())
        return false;

    const juce::Image::BitmapData first (a, juce::Image::BitmapData::readOnly),
        second (b, juce::Image::BitmapData::readOnly);

    for (int y = 0; y < a.getHeight(); ++y)
        if (std::memcmp (first.getLinePointer (y), second.getLinePointer (y),
                         static_cast<std::size_t> (a.getWidth() * first.pixelStride))
            != 0)
            return false;

    return true;
}

/** Puts each control of a window into each of its states and draws it, with what is printed around it. */
class ControlPictures
{
public:
    explicit ControlPictures (const View& viewToDraw) : view (viewToDraw), editor (strip), console (consoleOf (editor))
    {
        const auto size = editorSize::atZoom (view.zoom);
        editor.setSize (size.x, size.y);
        editor.setVisible (true);
        setParameter (parameterIndex::tolChannel, 0.9f); // one of two digits, with a previous and a next one
        drawAllIn (editor);
        drawMeters();
        drawTrackPlate();
    }

    std::vector<NamedPicture> pictures;

private:
    using States = std::vector<juce::Image>;

    static OrvaneConsoleUI& consoleOf (juce::Component& window)
    {
        for (auto* const child : window.getChildren())
            if (auto* const found = dynamic_cast<OrvaneConsoleUI*> (child))
                return *found;

        throw ToolError ("the window has no console");
    }

    void setParameter (int index, float value) { strip.getParameters()[index]->setValueNotifyingHost (value); }

    /** Adds what an area and the print around it show now to a control's states, unless one of them looks the same. */
    void take (States& states, juce::Rectangle<int> area)
    {
        constexpr int shareOfSize = 8;
        const auto margin = area.getWidth() / shareOfSize;
        throwIfInterrupted();
        console.updateState (snapshot);
        console.updateMeters (snapshot);
        const auto shown = editor.createComponentSnapshot (
            area.expanded (margin).getIntersection (editor.getLocalBounds()), true, view.pixelsPerPixel);

        if (std::none_of (states.begin(), states.end(), [&] (const auto& other) { return isSame (shown, other); }))
            states.push_back (shown);
    }

    void take (States& states, const Box& box)
    {
        take (states, box.on (console.getWidth(), console.getHeight()) + console.getPosition());
    }

    /** The states side by side. */
    void keep (const juce::String& name, const States& states)
    {
        constexpr int gap = 4;
        const auto width = states.front().getWidth() + gap;
        juce::Image row (juce::Image::ARGB, width * static_cast<int> (states.size()) - gap, states.front().getHeight(),
                         true);
        juce::Graphics g (row);

        for (std::size_t i = 0; i < states.size(); ++i)
            g.drawImageAt (states[i], width * static_cast<int> (i), 0);

        pictures.push_back ({ name, row });
    }

    /** Moves what a control shows to a place in its travel; a button is on from a half. */
    void set (juce::Component& control, float value)
    {
        if (const auto index = console.parameterOf (control); index != noParameter)
            return setParameter (index, value);

        if (auto* const slider = dynamic_cast<juce::Slider*> (&control))
            return slider->setValue (static_cast<double> (value), juce::dontSendNotification);

        const auto isOn = value >= 0.5f;
        dynamic_cast<juce::Button&> (control).setToggleState (isOn, juce::dontSendNotification);
        strip.meterModeSetting().setValue (isOn ? 0 : 1); // whose button shows nothing else
    }

    void drawAllIn (juce::Component& parent)
    {
        for (auto* const control : parent.getChildren())
        {
            auto* const button = dynamic_cast<juce::Button*> (control);

            if (button == nullptr && dynamic_cast<juce::Slider*> (control) == nullptr)
                drawAllIn (*control);
            else if (control->getTitle().isNotEmpty())
                draw (*control, button);
        }
    }

    void draw (juce::Component& control, juce::Button* button)
    {
        const auto wasVisible = control.isVisible(); // of two that share a place one is
        const auto area = editor.getLocalArea (&control, control.getLocalBounds());
        States states;

        for (const auto value : { 1.0f, 0.5f, 0.0f })
        {
            set (control, value);
            control.setVisible (true);
            take (states, area);

            if (button != nullptr)
                for (const auto state :
                     { juce::Button::buttonOver, juce::Button::buttonDown, juce::Button::buttonNormal })
                {
                    button->setState (state);
                    take (states, area);
                }
        }

        control.setVisible (wasVisible);
        keep (control.getTitle(), states);
    }

    void drawMeters()
    {
        constexpr std::pair<const char*, const Box*> subjects[] = { { "VU", &layout::vuMeter.box },
                                                                    { "Gain reduction",
                                                                      &layout::gainReductionMeter.box },
                                                                    { "Limiting", &layout::compressorLed.box },
                                                                    { "Active", &layout::expanderLed.box } };

        for (const auto& [name, box] : subjects)
        {
            States states;

            for (const auto level : { 0.0f, 0.3f, 1.0f })
            {
                constexpr float deepest = -20.0f;
                snapshot.inputMeter = snapshot.outputMeter = snapshot.expanderAmount = level;
                snapshot.gainReductionDb = deepest * level;
                snapshot.limiterActive = level > 0.0f;
                strip.meterModeSetting().setValue (level == 1.0f ? 1 : 0);
                take (states, *box);
            }

            keep (name, states);
        }
    }

    void drawTrackPlate()
    {
        States states;

        for (const auto link : { 0.0f, 1.0f })
        {
            setParameter (parameterIndex::tolLink, link);
            take (states, layout::plateStereo.box);
        }

        const auto mono = juce::AudioChannelSet::mono();
        juce::AudioProcessor::BusesLayout buses;
        buses.inputBuses = { mono, juce::AudioChannelSet::disabled() };
        buses.outputBuses = { mono };
        strip.setBusesLayout (buses);
        take (states, layout::plateStereo.box);
        keep ("Channel", states);
    }

    const View& view;
    ParameterSnapshot snapshot; ///< What the window shows besides the parameters.
    Tarvik41Processor strip;
    KVLEditor editor;
    OrvaneConsoleUI& console;
};

using Images = std::map<Picture, juce::Image>;

/** The window's pictures from a folder; none for no folder. */
Images imagesIn (const juce::String& path)
{
    Images images;

    if (path.isEmpty())
        return images;

    const auto folder = fileAt (path);

    for (const auto& row : pictureCatalogue)
    {
        auto& image = images[row.id];
        image = juce::ImageFileFormat::loadFrom (folder.getChildFile (juce::String (row.name) + ".png"));

        if (image.getBounds() != juce::Rectangle (row.width, row.height))
            throw ToolError (folder.getFullPathName() + " has no " + row.name
                             + ".png of the size that the window needs");
    }

    return images;
}

bool readRows (const juce::Image& image, const TakeRow& takeRow)
{
    const juce::Image::BitmapData pixels (image, juce::Image::BitmapData::readOnly);

    for (int y = 0; y < pixels.height; ++y)
        takeRow (pixels.getLinePointer (y));

    return true;
}

/** With the highest last, so that they fill their lines. */
std::vector<NamedPicture> draw (const View& view)
{
    auto pictures = ControlPictures (view).pictures;
    std::stable_sort (pictures.begin(), pictures.end(),
                      [] (const auto& a, const auto& b) { return a.picture.getHeight() < b.picture.getHeight(); });
    return pictures;
}
} // namespace

void writeControlSheet (const CommandLine& line)
{
    OutputFile file (line.outputPath);
    const ScratchSettings settings;
    const auto images = imagesIn (line.picturesPath);
    auto& pictures = *ScaledPictures::getInstance();
    ContactSheet sheet;

    for (const auto& view : views)
    {
        const auto now = draw (view);
        auto before = now;

        if (! images.empty())
        {
            pictures.releaseUnused();
            pictures.readPicture = [&images] (Picture picture, const TakeRow& takeRow)
            { return readRows (images.at (picture), takeRow); };
            before = draw (view);
            pictures.releaseUnused();
            pictures.readPicture = readEmbeddedPicture;
        }

        for (std::size_t i = 0; i < now.size(); ++i)
            if (const auto name = now[i].name + ", " + view.name; isSame (before[i].picture, now[i].picture))
                sheet.add (name, { now[i].picture });
            else
                sheet.add (name + ", now and before", { now[i].picture, before[i].picture });
    }

    writePng (file, sheet.draw());
    std::cout << line.outputPath << '\n';
}

} // namespace tarvik
