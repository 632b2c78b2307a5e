// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/EditorTestTools.h"
#include "tests/support/StateTestTools.h"
#include "tests/support/StripTestTools.h"
#include "tests/tools/ToolProcess.h"

#include <juce_graphics/juce_graphics.h>

namespace tarvik
{
namespace
{
/** The commands that show the window; none of them loads the module. */
class WindowTool : public RenderTool
{
protected:
    juce::Image draw (const juce::StringArray& arguments)
    {
        runWell (arguments);
        return juce::ImageFileFormat::loadFrom (fileNamed (arguments[arguments.size() - 1]));
    }
};
} // namespace

TEST_F (WindowTool, TheLayoutHasEveryScaleWhereTheKnobWillPoint)
{
    const auto layout = juce::JSON::parse (runWell ({ "list", "layout" }).out);

    const auto placeOf = [&] (const char* parameter, const char* text, const char* place)
    {
        for (const auto& control : *layout["controls"].getArray())
            if (control["parameter"] == parameter && control["scale"].isArray())
                for (const auto& mark : *control["scale"].getArray())
                    if (mark["text"] == text)
                        return static_cast<double> (mark[place]);

        ADD_FAILURE() << parameter << " has no mark " << text;
        return 0.0;
    };

    EXPECT_EQ (placeOf ("gain", "0", "degrees"), 270.0);
    EXPECT_EQ (placeOf ("compHPF", "90", "degrees"), 360.0);
    EXPECT_EQ (placeOf ("lowFreq", "-15 dB", "degrees"), 523.0);
    EXPECT_EQ (placeOf ("level", "-10", "y"), 1168.0); // the middle of the fader
    EXPECT_EQ (placeOf ("level", "10", "y"), 573.0);
}

TEST_F (WindowTool, TheWindowIsDrawnWithoutAScreenAtItsZoomAndWithItsSettings)
{
    const auto plain = draw ({ "screenshot", "plain.png" });
    EXPECT_EQ (plain.getBounds(), juce::Rectangle (900, 741));
    EXPECT_EQ (draw ({ "screenshot", "--zoom", "80", "small.png" }).getBounds(), juce::Rectangle (720, 605));

    const auto turned = draw ({ "screenshot", "--set", "gain=48", "turned.png" });
    juce::Rectangle<int> changed;

    for (int y = 0; y < plain.getHeight(); ++y)
        for (int x = 0; x < plain.getWidth(); ++x)
            if (plain.getPixelAt (x, y) != turned.getPixelAt (x, y))
                changed = changed.isEmpty() ? juce::Rectangle (x, y, 1, 1) : changed.getUnion ({ x, y, 1, 1 });

    // The gain knob, and nothing else.
    EXPECT_FALSE (changed.isEmpty());
    EXPECT_TRUE (juce::Rectangle (40, 485, 100, 100).contains (changed)) << changed.toString();
}

TEST_F (WindowTool, TheWindowShowsASavedStateAndTheSlotThatIsAskedFor)
{
    const auto strip = test::makeStrip (2);
    test::setPlain (*strip, "gain", 48.0f);
    const auto state = test::saved (*strip);
    fileNamed ({}).createDirectory();
    fileNamed ("saved.state").replaceWithData (state.getData(), state.getSize());

    const auto fromState = draw ({ "screenshot", "--state", "saved.state", "state.png" });
    EXPECT_EQ (test::difference (fromState, draw ({ "screenshot", "--set", "gain=48", "set.png" })), 0.0);

    const auto otherSlot = draw ({ "screenshot", "--state", "saved.state", "--slot", "B", "b.png" });
    const juce::Rectangle<int> gainKnob (40, 485, 100, 100), slotButtons (0, 0, 58, 24);

    for (const auto& area : { gainKnob, slotButtons })
        EXPECT_GT (test::difference (fromState.getClippedImage (area), otherSlot.getClippedImage (area)), 0.05);

    const auto program = draw ({ "screenshot", "--state", "saved.state", "--program", "Drum Buss 1", "program.png" });
    EXPECT_GT (test::difference (fromState, program), 0.01) << "a program behind a state counts";
}

TEST_F (WindowTool, AllPicturesComeOnOneSheet)
{
    const auto sheet = draw ({ "pictures", "sheet.png" });
    EXPECT_GT (sheet.getWidth(), 2700);
    EXPECT_GT (sheet.getHeight(), 2030);
}

} // namespace tarvik
