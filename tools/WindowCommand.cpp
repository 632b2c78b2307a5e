// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/KVLEditor.h"
#include "tools/Commands.h"
#include "tools/Interruption.h"
#include "tools/PngFile.h"
#include "tools/ScratchSettings.h"
#include "tools/ScreenCapture.h"
#include "tools/ToolError.h"

#include <iostream>

namespace juce
{
// JUCE's own, and exported by it, but in no header: what its message loop calls.
bool dispatchNextMessageOnSystemQueue (bool returnIfNoPendingMessages);
} // namespace juce

namespace tarvik
{

namespace
{
using juce::KeyPress;

void runMessagesFor (int milliseconds)
{
    const auto end = juce::Time::getMillisecondCounterHiRes() + milliseconds;

    do
    {
        throwIfInterrupted();

        if (! juce::dispatchNextMessageOnSystemQueue (true))
            juce::Thread::sleep (1);
    } while (juce::Time::getMillisecondCounterHiRes() < end);
}

template <typename Kind>
void collect (juce::Component& parent, std::vector<Kind*>& found)
{
    for (auto* const child : parent.getChildren())
    {
        if (auto* const one = dynamic_cast<Kind*> (child))
            found.push_back (one);

        collect (*child, found);
    }
}

/** The window on a screen, worked by mouse and keys as they come from the system, and captured from the screen. */
class WindowOnScreen
{
public:
    WindowOnScreen (int zoomPercent, const juce::File& folderForPictures) : editor (strip), folder (folderForPictures)
    {
        constexpr double percent = 100.0;
        constexpr int place = 40; // of the corner: beside the window there is room for what reaches over its edge
        strip.uiZoomSetting().setValue (zoomPercent / percent);
        editor.updateEditorSize();
        editor.setTopLeftPosition (place, place);
        editor.setVisible (true);
        editor.addToDesktop (0);
        editor.toFront (true);
        runMessagesFor (openingMs);
        std::vector<OrvaneConsoleUI*> consoles;
        collect (editor, consoles);
        console = consoles.at (0);
    }

    template <typename Kind>
    Kind& titled (const juce::String& title)
    {
        std::vector<Kind*> all;
        collect (editor, all);
        const auto found =
            std::find_if (all.begin(), all.end(), [&title] (const auto* each) { return each->getTitle() == title; });
        return found != all.end() ? **found : throw ToolError ("the window has no " + title);
    }

    juce::Button& button (const juce::String& title) { return titled<juce::Button> (title); }

    juce::Component& control (int parameter) { return *console->controlsOf (parameter).at (0); }

    void set (int parameter, const char* text)
    {
        auto& p = *strip.getParameters()[parameter];
        p.setValueNotifyingHost (p.getValueForText (text));
        runMessagesFor (stateMs);
    }

    /** Moves the pointer to so many pixels below a control's middle, on the screen and as the window hears of it. */
    void point (juce::Component& target, int downPixels)
    {
        juce::Desktop::setMousePosition (placeIn (target, downPixels));
        mouse (target, downPixels, 0);
    }

    /** As point, with buttons that are not the screen's own, which stays where it is. */
    void mouse (juce::Component& target, int downPixels, int modifiers)
    {
        editor.getPeer()->handleMouseEvent (juce::MouseInputSource::InputSourceType::mouse,
                                            (placeIn (target, downPixels) - editor.getScreenPosition()).toFloat(),
                                            modifiers, 0.0f, 0.0f, juce::Time::currentTimeMillis());
        runMessagesFor (reactionMs);
    }

    void click (juce::Component& target)
    {
        point (target, 0);
        mouse (target, 0, juce::ModifierKeys::leftButtonModifier);
        mouse (target, 0, 0);
    }

    void press (int keyCode)
    {
        editor.getPeer()->handleKeyPress ({ keyCode, 0, 0 });
        runMessagesFor (reactionMs);
    }

    void capture (const char* name)
    {
        constexpr juce::uint32 opaque = 0xff000000;
        const auto area = editor.getScreenBounds();
        const auto pixels = captureScreen (area.getX(), area.getY(), area.getWidth(), area.getHeight());

        if (pixels.empty())
            throw ToolError ("there is no picture of the screen");

        juce::Image image (juce::Image::RGB, area.getWidth(), area.getHeight(), false);
        auto pixel = pixels.begin();

        for (int y = 0; y < area.getHeight(); ++y)
            for (int x = 0; x < area.getWidth(); ++x)
                image.setPixelAt (x, y, juce::Colour (opaque | *pixel++));

        const auto path = folder.getChildFile (juce::String (name) + ".png").getFullPathName();
        OutputFile file (path);
        writePng (file, image);
        std::cout << path << '\n';
    }

    static constexpr int openingMs = 1000, stateMs = 150, reactionMs = 60, tooltipMs = 1200;

private:
    static juce::Point<int> placeIn (juce::Component& target, int downPixels)
    {
        return target.localPointToGlobal (target.getLocalBounds().getCentre().translated (0, downPixels));
    }

    Tarvik41Processor strip;
    KVLEditor editor;
    OrvaneConsoleUI* console = nullptr;
    const juce::File folder;
};

void drawMenus (WindowOnScreen& window)
{
    constexpr const char* subMenus[] = { "menu-calibration", "menu-oversampling", "menu-noise", "menu-sensitivity",
                                         "menu-zoom" };
    window.click (window.button ("Menu"));
    window.capture ("menu");
    window.press (KeyPress::downKey); // About

    for (const auto* const name : subMenus)
    {
        window.press (KeyPress::downKey);
        window.press (KeyPress::rightKey);
        window.capture (name);
        window.press (KeyPress::leftKey);
    }

    window.press (KeyPress::escapeKey);
    window.click (window.button ("Manual and links"));
    window.capture ("menu-links");
    window.press (KeyPress::escapeKey);
}

void drawBubblesAndFields (WindowOnScreen& window)
{
    constexpr auto level = parameterNamed ("level"), gain = parameterNamed ("gain");
    constexpr int held = juce::ModifierKeys::leftButtonModifier, drag = 10;

    window.set (level, "-4");
    window.set (gain, "12");

    for (const auto& [control, name] : { std::pair (&window.control (level), "bubble-fader"),
                                         { &window.control (gain), "bubble-knob" },
                                         { &window.titled<juce::Component> ("Input Level"), "bubble-pot" } })
    {
        window.point (*control, 0);
        window.mouse (*control, 0, held);
        window.mouse (*control, drag, held);
        window.mouse (*control, 0, held);
        window.capture (name);
        window.mouse (*control, 0, 0);
    }

    window.control (gain).grabKeyboardFocus();
    window.press (KeyPress::returnKey);
    window.capture ("typed-value");
    window.press (KeyPress::escapeKey);
    window.click (window.control (parameterIndex::tolChannel));
    window.capture ("typed-channel");
    window.press (KeyPress::escapeKey);
}

void drawFocus (WindowOnScreen& window)
{
    window.press (KeyPress::tabKey); // from here on the outline shows

    for (const auto& [parameter, name] : { std::pair (parameterNamed ("gain"), "focus-knob"),
                                           { parameterNamed ("level"), "focus-fader" },
                                           { parameterNamed ("compIn"), "focus-button" },
                                           { parameterNamed ("compAttack"), "focus-switch" },
                                           { parameterNamed ("mute"), "focus-mute" } })
    {
        window.control (parameter).grabKeyboardFocus();
        runMessagesFor (WindowOnScreen::reactionMs);
        window.capture (name);
    }
}

void drawAbout (WindowOnScreen& window)
{
    window.click (window.button ("Menu"));
    window.press (KeyPress::downKey);
    window.press (KeyPress::returnKey);
    window.capture ("about");
    window.press (KeyPress::escapeKey);
}

/** The last, since a tooltip stays until the mouse goes. */
void drawTooltip (WindowOnScreen& window)
{
    window.point (window.control (parameterNamed ("compMix")), 0);
    runMessagesFor (WindowOnScreen::tooltipMs);
    window.capture ("tooltip");
}
} // namespace

void writeWindowPictures (const CommandLine& line)
{
    if (juce::Desktop::getInstance().getDisplays().displays.isEmpty())
        throw ToolError ("a window needs a screen (scripts/review-window has one)");

    const auto folder = juce::File::getCurrentWorkingDirectory().getChildFile (line.outputPath);

    if (const auto made = folder.createDirectory(); made.failed())
        throw ToolError (made.getErrorMessage());

    const ScratchSettings settings;
    WindowOnScreen window (line.zoomPercent, folder);

    for (auto* const draw : { drawMenus, drawBubblesAndFields, drawFocus, drawAbout, drawTooltip })
        draw (window);
}

} // namespace tarvik
