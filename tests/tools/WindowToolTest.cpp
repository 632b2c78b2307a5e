// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/EditorTestTools.h"
#include "tests/support/StripTestTools.h"
#include "tests/tools/ToolProcess.h"

#include <juce_graphics/juce_graphics.h>

namespace tarvik
{
namespace
{
constexpr int failure = 2;

/** The commands that show the window; none of them loads the module. */
class WindowTool : public RenderTool
{
protected:
    juce::Image draw (const juce::StringArray& arguments)
    {
        const auto outcome = run (arguments);
        EXPECT_EQ (outcome.status, 0) << outcome.err;
        return juce::ImageFileFormat::loadFrom (fileNamed (arguments[arguments.size() - 1]));
    }
};
} // namespace

TEST_F (WindowTool, TheLayoutHasEveryScaleWhereTheKnobWillPoint)
{
    const auto outcome = run ({ "list", "layout" });
    ASSERT_EQ (outcome.status, 0) << outcome.err;
    const auto layout = juce::JSON::parse (outcome.out);

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
    EXPECT_EQ (placeOf ("expRelease", "0.2", "degrees"), 360.0);
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
    juce::MemoryBlock state;
    strip->getStateInformation (state);
    fileNamed ({}).createDirectory();
    fileNamed ("saved.state").replaceWithData (state.getData(), state.getSize());

    const auto fromState = draw ({ "screenshot", "--state", "saved.state", "state.png" });
    EXPECT_EQ (test::difference (fromState, draw ({ "screenshot", "--set", "gain=48", "set.png" })), 0.0);

    const auto otherSlot = draw ({ "screenshot", "--state", "saved.state", "--slot", "B", "b.png" });
    const juce::Rectangle<int> gainKnob (40, 485, 100, 100), slotButtons (0, 0, 58, 24);
    EXPECT_GT (test::difference (fromState.getClippedImage (gainKnob), otherSlot.getClippedImage (gainKnob)), 0.05);
    EXPECT_GT (test::difference (fromState.getClippedImage (slotButtons), otherSlot.getClippedImage (slotButtons)),
               0.05);

    const auto program = draw ({ "screenshot", "--state", "saved.state", "--program", "Drum Buss 1", "program.png" });
    EXPECT_GT (test::difference (fromState, program), 0.01) << "a program behind a state counts";
}

TEST_F (WindowTool, AllPicturesComeOnOneSheet)
{
    const auto sheet = draw ({ "pictures", "sheet.png" });
    EXPECT_GT (sheet.getWidth(), 2700);
    EXPECT_GT (sheet.getHeight(), 2030);
}

TEST_F (WindowTool, WrongArgumentsAreRefusedInOneLine)
{
    for (const auto& arguments : { juce::StringArray { "pictures" },
                                   { "pictures", "a", "b" },
                                   { "screenshot" },
                                   { "list", "layout", "x" },
                                   { "screenshot", "--bits", "24", "x.png" },
                                   { "screenshot", "--zoom", "7", "x.png" },
                                   { "screenshot", "--slot", "C", "x.png" },
                                   { "screenshot", "--state", "missing", "x.png" },
                                   { "list", "--slot", "A" },
                                   { "list", "--zoom", "100" },
                                   { "screenshot", "missing.wav", "x.png" } })
    {
        const auto outcome = run (arguments);
        EXPECT_EQ (outcome.status, failure) << arguments.joinIntoString (" ");
        EXPECT_EQ (juce::StringArray::fromLines (outcome.err.trim()).size(), 1) << outcome.err;
    }
}

} // namespace tarvik
