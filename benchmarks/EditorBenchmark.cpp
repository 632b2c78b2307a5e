// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ImageResampling.h"
#include "editor/KVLEditor.h"

#include <benchmark/benchmark.h>

#include <png.h>

namespace tarvik
{
namespace
{
using juce::Image;

/** Paints a component as a window would, into memory. */
void paintOnce (juce::Component& component, Image& canvas)
{
    juce::Graphics g (canvas);
    component.paintEntireComponent (g, false);
}

void knob (benchmark::State& state)
{
    const auto size = static_cast<int> (state.range (0));
    OrvaneKnob knob;
    knob.setFilmstripRange (juce::degreesToRadians (210.0f), juce::degreesToRadians (510.0f));
    knob.setSize (size, size);
    Image canvas (Image::RGB, size, size, true);
    paintOnce (knob, canvas);
    double value = 0.0;

    for (auto _ : state)
    {
        value = value < 1.0 ? value + 0.0123 : 0.0;
        knob.setValue (value, juce::dontSendNotification);
        paintOnce (knob, canvas);
    }
}

BENCHMARK (knob)->Name ("Editor/Knob")->Arg (100)->Arg (120)->Arg (150)->Unit (benchmark::kMicrosecond);

/** What a tick of both needles has to paint: the meters' areas of the console, with what lies in them. */
void meterTick (benchmark::State& state)
{
    Tarvik41Processor strip;
    OrvaneConsoleUI console (strip);
    console.setSize (static_cast<int> (state.range (0)), static_cast<int> (state.range (1)));
    Image canvas (Image::RGB, console.getWidth(), console.getHeight(), true);
    paintOnce (console, canvas);
    ParameterSnapshot snapshot;
    float level = 0.1f;

    for (auto _ : state)
    {
        level = level < 2.0f ? level * 1.1f : 0.1f;
        snapshot.inputMeter = level;
        snapshot.gainReductionDb = -5.0f * level;
        console.updateMeters (snapshot);

        for (const auto& box : { consoleLayout::vuMeter.box, consoleLayout::gainReductionMeter.box })
        {
            juce::Graphics g (canvas);
            g.reduceClipRegion (box.on (console.getWidth(), console.getHeight()));
            console.paintEntireComponent (g, false);
        }
    }
}

BENCHMARK (meterTick)
    ->Name ("Editor/MeterTick")
    ->Args ({ 900, 677 })
    ->Args ({ 1350, 1015 })
    ->Unit (benchmark::kMicrosecond);

void statePass (benchmark::State& state)
{
    Tarvik41Processor strip;
    OrvaneConsoleUI console (strip);
    console.setSize (900, 677);

    for (auto _ : state)
        console.updateState (strip.currentSnapshot());
}

BENCHMARK (statePass)->Name ("Editor/StatePass")->Unit (benchmark::kMicrosecond);

/** The whole console, and what one gets by shrinking its picture with JUCE's renderer at each repaint. */
void wholeConsole (benchmark::State& state)
{
    Tarvik41Processor strip;
    OrvaneConsoleUI console (strip);
    console.setSize (static_cast<int> (state.range (0)), static_cast<int> (state.range (1)));
    Image canvas (Image::RGB, console.getWidth(), console.getHeight(), true);
    paintOnce (console, canvas);

    for (auto _ : state)
        paintOnce (console, canvas);
}

BENCHMARK (wholeConsole)
    ->Name ("Editor/WholeConsole")
    ->Args ({ 900, 677 })
    ->Args ({ 1350, 1015 })
    ->Unit (benchmark::kMillisecond);

void backgroundByJuce (benchmark::State& state)
{
    const auto picture = decodedPicture (Picture::panel);
    Image canvas (Image::RGB, static_cast<int> (state.range (0)), static_cast<int> (state.range (1)), true);

    for (auto _ : state)
    {
        juce::Graphics g (canvas);
        g.drawImage (picture, canvas.getBounds().toFloat());
    }
}

BENCHMARK (backgroundByJuce)->Name ("Editor/BackgroundByJuce")->Args ({ 900, 677 })->Unit (benchmark::kMillisecond);

/** From the click in the host to the first whole picture, with nothing decoded yet. */
void firstOpen (benchmark::State& state)
{
    Tarvik41Processor strip;
    strip.uiZoomSetting().setValue (1.0);
    auto& pictures = *ScaledPictures::getInstance();

    for (auto _ : state)
    {
        state.PauseTiming();
        pictures.releaseUnused();
        state.ResumeTiming();

        KVLEditor editor (strip);
        editor.setVisible (true);
        Image canvas (Image::RGB, editor.getWidth(), editor.getHeight(), true);
        paintOnce (editor, canvas);
    }

    state.counters["scaled MB"] = static_cast<double> (pictures.memoryInUse()) / 1e6;
}

BENCHMARK (firstOpen)->Name ("Editor/FirstOpen")->Iterations (3)->Unit (benchmark::kMillisecond);

/** What libpng alone takes for nearly all that the first window shows: the panel and the knobs, one after the other. */
void libpngAlone (benchmark::State& state)
{
    for (auto _ : state)
        for (const auto picture : { Picture::panel, Picture::knobStandard, Picture::knobLarge })
        {
            const auto file = embeddedPicture (picture);
            png_image header {};
            header.version = PNG_IMAGE_VERSION;
            png_image_begin_read_from_memory (&header, file.data(), file.size());
            std::vector<png_byte> pixels (PNG_IMAGE_SIZE (header));
            png_image_finish_read (&header, nullptr, pixels.data(), 0, nullptr);
            benchmark::DoNotOptimize (pixels.data());
        }
}

BENCHMARK (libpngAlone)->Name ("Editor/LibpngAlone")->Iterations (3)->Unit (benchmark::kMillisecond);

/** The next window of the same size, whether the first is still open or not. */
void laterOpen (benchmark::State& state)
{
    Tarvik41Processor strip;
    strip.uiZoomSetting().setValue (1.0);
    std::optional<KVLEditor> first (std::in_place, strip);
    first->setVisible (true);
    Image canvas (Image::RGB, first->getWidth(), first->getHeight(), true);
    paintOnce (*first, canvas);
    first.reset();

    for (auto _ : state)
    {
        KVLEditor editor (strip);
        editor.setVisible (true);
        paintOnce (editor, canvas);
    }

    state.counters["scaled MB"] = static_cast<double> (ScaledPictures::getInstance()->memoryInUse()) / 1e6;
}

BENCHMARK (laterOpen)->Name ("Editor/LaterOpen")->Unit (benchmark::kMillisecond);

void shrinkStrip (benchmark::State& state)
{
    const auto strip = decodedPicture (Picture::knobStandard);

    for (auto _ : state)
        benchmark::DoNotOptimize (resampled (strip, 100, 100, numFramesOf (Picture::knobStandard)));
}

BENCHMARK (shrinkStrip)->Name ("Editor/ShrinkStrip")->Unit (benchmark::kMillisecond);

void decodeStrip (benchmark::State& state)
{
    const auto file = embeddedPicture (Picture::knobStandard);

    for (auto _ : state)
        benchmark::DoNotOptimize (juce::ImageFileFormat::loadFrom (file.data(), file.size()));
}

BENCHMARK (decodeStrip)->Name ("Editor/DecodeStrip")->Unit (benchmark::kMillisecond);
} // namespace
} // namespace tarvik
