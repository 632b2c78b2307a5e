// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/EditorTestTools.h"
#include "tests/support/StateTestTools.h"
#include "tests/support/StripTestTools.h"
#include "tests/tools/ToolProcess.h"

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

TEST_F (WindowTool, TheWindowShowsItsZoomSettingsStateAndSlot)
{
    const auto plain = draw ({ "screenshot", "plain.png" });
    EXPECT_EQ (plain.getBounds(), juce::Rectangle (900, 741));
    EXPECT_EQ (draw ({ "screenshot", "--zoom", "80", "small.png" }).getBounds(), juce::Rectangle (720, 605));

    const auto sheet = draw ({ "pictures", "sheet.png" });
    EXPECT_TRUE (sheet.getWidth() > 2700 && sheet.getHeight() > 2030);

    const auto strip = test::makeStrip (2);
    test::setPlain (*strip, "gain", 48.0f);
    const auto state = test::saved (*strip);
    fileNamed ("saved.state").replaceWithData (state.getData(), state.getSize());

    const juce::Rectangle<int> gainKnob (40, 485, 100, 100);
    const auto fromState = draw ({ "screenshot", "--state", "saved.state", "state.png" });
    EXPECT_EQ (test::difference (fromState, draw ({ "screenshot", "--set", "gain=48", "set.png" })), 0.0);

    const auto otherSlot = draw ({ "screenshot", "--state", "saved.state", "--slot", "B", "b.png" });

    for (const auto& area : { gainKnob, juce::Rectangle (0, 0, 58, 24) }) // and the slots' buttons
        EXPECT_GT (test::difference (fromState.getClippedImage (area), otherSlot.getClippedImage (area)), 0.05);

    const auto program = draw ({ "screenshot", "--state", "saved.state", "--program", "Drum Buss 1", "program.png" });
    EXPECT_GT (test::difference (fromState, program), 0.01) << "a program after a state counts";
}

} // namespace tarvik
