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
        drawParameters();
        drawOthers (editor);
        drawMeters();
        drawTrackPlate();
    }

    std::vector<NamedPicture> pictures;

private:
    static OrvaneConsoleUI& consoleOf (juce::Component& window)
    {
        for (auto* const child : window.getChildren())
            if (auto* const found = dynamic_cast<OrvaneConsoleUI*> (child))
                return *found;

        throw ToolError ("the window has no console");
    }

    /** The controls' places on the console, or others in the window, with the print around them. */
    juce::Rectangle<int> around (juce::Rectangle<int> area) const
    {
        constexpr int shareOfSize = 8;
        return area.expanded (area.getWidth() / shareOfSize, area.getWidth() / shareOfSize)
            .getIntersection (editor.getLocalBounds());
    }

    juce::Rectangle<int> onConsole (const Box& box) const
    {
        return around (box.on (console.getWidth(), console.getHeight()) + console.getPosition());
    }

    juce::Rectangle<int> of (juce::Component& control) const
    {
        return around (editor.getLocalArea (&control, control.getLocalBounds()));
    }

    /** Adds what the area shows now to a control's states, unless one of them looks the same. */
    void take (std::vector<juce::Image>& states, juce::Rectangle<int> area)
    {
        throwIfInterrupted();
        console.updateState (strip.currentSnapshot());
        const auto shown = editor.createComponentSnapshot (area, true, view.pixelsPerPixel);

        if (std::none_of (states.begin(), states.end(), [&] (const auto& other) { return isSame (shown, other); }))
            states.push_back (shown);
    }

    void takeButton (std::vector<juce::Image>& states, juce::Button& button)
    {
        for (const auto state : { juce::Button::buttonOver, juce::Button::buttonDown, juce::Button::buttonNormal })
        {
            button.setState (state);
            take (states, of (button));
        }
    }

    void keep (const juce::String& name, const std::vector<juce::Image>& states)
    {
        constexpr int gap = 4;
        int width = -gap;

        for (const auto& state : states)
            width += state.getWidth() + gap;

        juce::Image row (juce::Image::ARGB, width, states.front().getHeight(), true);
        juce::Graphics g (row);
        int x = 0;

        for (const auto& state : states)
        {
            g.drawImageAt (state, x, 0);
            x += state.getWidth() + gap;
        }

        pictures.push_back ({ name, row });
    }

    void drawParameters()
    {
        for (int index = 0; index < numParameters; ++index)
        {
            auto& parameter = *strip.getParameters()[index];
            const auto controls = console.controlsOf (index);

            if (controls.empty() || index == parameterIndex::tolChannel)
                continue;

            std::vector<juce::Image> states;
            auto* const button = dynamic_cast<juce::Button*> (controls.front());

            for (const auto value : { 0.0f, 0.5f, 1.0f })
            {
                parameter.setValueNotifyingHost (value);
                take (states, of (*controls.front()));

                if (button != nullptr)
                    takeButton (states, *button);
            }

            parameter.setValueNotifyingHost (parameter.getDefaultValue());
            keep (parameter.getName (100), states);
        }
    }

    /** Buttons and pots without a place on the console's list of parameters. */
    void drawOthers (juce::Component& parent)
    {
        for (auto* const child : parent.getChildren())
        {
            std::vector<juce::Image> states;
            const auto isParameter = console.parameterOf (*child) != noParameter;

            if (auto* const button = dynamic_cast<juce::Button*> (child);
                button != nullptr && button->getTitle().isNotEmpty() && ! isParameter)
            {
                const auto wasVisible = button->isVisible();
                button->setVisible (true);

                for (const auto isOn : { true, false })
                {
                    button->setToggleState (isOn, juce::dontSendNotification);
                    takeButton (states, *button);
                }

                button->setVisible (wasVisible);
                keep (button->getTitle(), states);
            }
            else if (auto* const slider = dynamic_cast<juce::Slider*> (child); slider != nullptr && ! isParameter)
            {
                for (const auto value : { 0.0, 1.0, 0.5 })
                {
                    slider->setValue (value, juce::dontSendNotification);
                    take (states, of (*slider));
                }

                keep (slider->getTitle(), states);
            }
            else if (child->isVisible() && button == nullptr)
            {
                drawOthers (*child);
            }
        }
    }

    void drawMeters()
    {
        std::vector<juce::Image> vu, reduction, compressor, expander;

        for (const auto level : { 0.0f, 0.1f, 1.0f })
        {
            constexpr float deepest = -20.0f;
            ParameterSnapshot snapshot;
            snapshot.inputMeter = snapshot.outputMeter = level;
            snapshot.gainReductionDb = deepest * level;
            snapshot.limiterActive = level > 0.0f;
            snapshot.expanderAmount = level;
            console.updateMeters (snapshot);
            const auto takeLit = [&] (std::vector<juce::Image>& states, const Box& box)
            {
                console.updateState (snapshot);
                states.push_back (editor.createComponentSnapshot (onConsole (box), true, view.pixelsPerPixel));
            };
            strip.meterModeSetting().setValue (level == 1.0f ? 1 : 0);
            takeLit (vu, layout::vuMeter.box);
            takeLit (reduction, layout::gainReductionMeter.box);
            takeLit (compressor, layout::compressorLed.box);
            takeLit (expander, layout::expanderLed.box);
        }

        keep ("VU", vu);
        keep ("Gain reduction", reduction);
        keep ("Limiting", compressor);
        keep ("Active", expander);
    }

    void drawTrackPlate()
    {
        std::vector<juce::Image> states;
        auto& parameters = strip.getParameters();
        parameters[parameterIndex::tolChannel]->setValueNotifyingHost (0.9f);

        for (const auto link : { 0.0f, 1.0f })
        {
            parameters[parameterIndex::tolLink]->setValueNotifyingHost (link);
            take (states, onConsole (layout::plateStereo.box));
        }

        const auto mono = juce::AudioChannelSet::mono();
        juce::AudioProcessor::BusesLayout buses;
        buses.inputBuses = { mono, juce::AudioChannelSet::disabled() };
        buses.outputBuses = { mono };
        strip.setBusesLayout (buses);
        take (states, onConsole (layout::plateStereo.box));
        keep ("Channel", states);
    }

    const View& view;
    Tarvik41Processor strip;
    KVLEditor editor;
    OrvaneConsoleUI& console;
};

/** Makes the window use the pictures of a folder, under the keys of JUCE's cache by which it finds those of the module. */
void usePicturesOf (const juce::File& folder)
{
    for (const auto& row : pictureCatalogue)
    {
        const auto image = juce::ImageFileFormat::loadFrom (folder.getChildFile (juce::String (row.name) + ".png"));

        if (image.getBounds() != juce::Rectangle (row.width, row.height))
            throw ToolError (folder.getFullPathName() + " has no " + row.name
                             + ".png of the size that the window needs");

        juce::ImageCache::addImageToCache (image,
                                           reinterpret_cast<juce::pointer_sized_int> (embeddedPicture (row.id).data()));
    }
}

std::vector<NamedPicture> draw (const View& view) { return ControlPictures (view).pictures; }
} // namespace

void writeControlSheet (const CommandLine& line)
{
    OutputFile file (line.outputPath);
    const ScratchSettings settings;
    const juce::File otherPictures = juce::File::getCurrentWorkingDirectory().getChildFile (line.picturesPath);
    ContactSheet sheet;

    for (const auto& view : views)
    {
        const auto now = draw (view);
        auto before = now;

        if (line.picturesPath.isNotEmpty())
        {
            juce::ImageCache::releaseUnusedImages();
            usePicturesOf (otherPictures);
            before = draw (view);
            juce::ImageCache::releaseUnusedImages();
        }

        for (std::size_t i = 0; i < now.size(); ++i)
        {
            std::vector<juce::Image> both { now[i].picture };

            if (! isSame (before[i].picture, now[i].picture))
                both.push_back (before[i].picture);

            sheet.add (now[i].name + ", " + view.name + (both.size() > 1 ? ", now and before" : ""), both);
        }
    }

    writePng (file, sheet.draw());
    std::cout << line.outputPath << '\n';
}

} // namespace tarvik
