// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Golden.h"
#include "tests/support/StateTestTools.h"
#include "tests/support/StripTestTools.h"

namespace tarvik
{

using namespace test;

TEST (State, BothSlotsComeBackByteForByteAndSoundTheSame)
{
    Tarvik41Processor original;
    std::mt19937 random (17);

    for (int slot = 0; slot < 2; ++slot)
    {
        original.selectSlot (slot);
        setRandomly (original, random);
    }

    setPlain (original, "mute", 0.0f);
    original.calibrationSetting().setValue (21.0);
    original.oversamplingSetting().setValue (8);
    original.analogSetting().setValue (false);
    const auto block = saved (original);
    Tarvik41Processor reopened;
    load (reopened, block);
    EXPECT_EQ (saved (reopened), block);
    EXPECT_EQ (reopened.getCurrentSlot(), 1);

    for (int slot = 0; slot < 2; ++slot)
        EXPECT_EQ (differencesFromDefault (reopened.getSlot (slot)), differencesFromDefault (original.getSlot (slot)));

    for (const auto& row : parameterRows)
        EXPECT_FLOAT_EQ (plainOf (reopened, row.id), plainOf (original, row.id)) << row.id;

    const auto play = [] (Tarvik41Processor& strip)
    {
        strip.prepareToPlay (48000.0, 256);
        return process (strip, { noise (9600, 1, 0.3f), noise (9600, 2, 0.3f), Signal (9600), Signal (9600) }, 256);
    };
    EXPECT_EQ (play (reopened), play (original));
}

TEST (State, MissingBadAndForeignFieldsTakeDefaultsAndStayInRange)
{
    Tarvik41Processor strip;
    setPlain (strip, { { "gain", 9.0f }, { "equalizer", 0.0f } });
    strip.copySlotToOther();
    load (strip, blockOfText (
                     "<Tarvik41Channel currentData='7' Calibration='nan' Oversampling='4.9' MeterMode='nan' "
                     "LimiterSensitivity=' 1.5e0 '><data0 lowFreq='99' midFreq='-3' highGain='7.9' expThreshold='nan' "
                     "expRelease='1e9' compNuke='1' pad=' 1 ' equalizer='nan' noSuchThing='5'/></Tarvik41Channel>"));

    const auto& a = strip.getSlot (0);
    EXPECT_EQ (strip.getCurrentSlot(), 0);
    EXPECT_EQ (a.gain.get(), 0.0f) << "unknown to the project, so at its default";
    EXPECT_EQ (a.lowFreq.get(), 9);
    EXPECT_EQ (a.midFreq.get(), 0);
    EXPECT_EQ (a.highGain.get(), 7);
    EXPECT_EQ (a.expThreshold.get(), -30.0f);
    EXPECT_EQ (a.expRelease.get(), 1.6f);
    EXPECT_TRUE (a.compNuke && a.pad);
    EXPECT_TRUE (a.equalizer) << "not a number, so at its default";
    EXPECT_EQ (strip.getSlot (1).gain.get(), 9.0f) << "a slot that the project lacks keeps what it had";
    EXPECT_FLOAT_EQ (strip.getCalibrationGain(), 8.70143032f);
    EXPECT_EQ (settingsOf (strip), "nan 4 1 1.2 1 0");

    for (const auto& [text, slot] :
         { std::pair ("1.9", 1), { "-1", 1 }, { "2", 1 }, { "nan", 1 }, { " 0 ", 0 }, { "\n1\t", 1 }, { "0.5", 0 } })
    {
        load (strip, blockOfText (std::string ("<Tarvik41Channel currentData='") + text + "'/>"));
        EXPECT_EQ (strip.getCurrentSlot(), slot) << text;
    }
}

TEST (State, TheDocumentKeepsItsNamesAndTheirOrder)
{
    const auto text = std::string (textOf (saved (*std::make_unique<Tarvik41Processor>())));
    const std::string key = "BuildDate=\"";
    const auto start = text.find (key) + key.size(), end = text.find ('"', start);
    EXPECT_EQ (juce::Time::fromISO8601 (juce::String (text.substr (start, end - start))),
               juce::Time::getCompilationDate());
    expectGolden ("state.txt", juce::String (text.substr (0, start) + text.substr (end))
                                   .replace ("Version=\"" JucePlugin_VersionString, "Version=\"")
                                   .replace ("\" ", "\"\n"));
}

/** Where a host asks a fresh instance for its state, today's defaults must not become the project's settings. */
TEST (State, OneHostsFormatSavesSettingsOnlyAfterALoad)
{
    const auto strip = makeStripFor (juce::AudioProcessor::wrapperType_AAX);
    EXPECT_EQ (savedXml (*strip)->getNumAttributes(), 3);
    load (*strip, {}); // nothing in it, and a load all the same
    EXPECT_EQ (savedXml (*strip)->getNumAttributes(), 9);
}

TEST (State, SlotsAreSelectedCopiedAndNamedTogether)
{
    Tarvik41Processor strip;
    setPlain (strip, "gain", 11.0f);
    HostEars host (strip);
    strip.copySlotToOther();
    EXPECT_EQ (host.heard(), "") << "copying is not heard";
    strip.updateTrackProperties ({ "Snare", juce::Colours::red });
    setPlain (strip, "gain", 3.0f);
    host.heard();
    strip.selectSlot (1);
    EXPECT_EQ (host.heard(), "v1 all ");
    EXPECT_FLOAT_EQ (plainOf (strip, "gain"), 11.0f);
    strip.selectSlot (2);
    EXPECT_EQ (strip.getCurrentSlot(), 1);
    EXPECT_FLOAT_EQ (strip.getSlot (0).gain, 3.0f);

    for (const auto* const slot : { &strip.getSlot (0), &strip.getSlot (1) })
        EXPECT_EQ (slot->trackName + juce::Colour (slot->trackColour.get()).toString(), "Snareffff0000");
}

/** What a person or a program may do to the text without changing what it says; and what is not the strip's at all. */
TEST (State, AnyTextOfTheSameDocumentLoads)
{
    const auto references = juce::String::repeatedString ("&amp;&#65;", 300).toStdString();
    const auto elements = juce::String::repeatedString ("<other><data0 gain=\"1\"/></other>", 2000).toStdString();
    const auto inside = [] (const std::string& text)
    { return "<Tarvik41Channel>" + text + "<data0 gain=\"9\"/></Tarvik41Channel>"; };
    const auto plain = inside ("");

    for (const auto& [gain, texts] :
         { std::pair (9.0f, std::vector { plain, inside ("<!-- a comment -->"), inside ("<![CDATA[ <data0/> ]]>"),
                                          inside (references), inside (elements), inside ("<?an instruction?>text"),
                                          "<!DOCTYPE x>" + plain, "\xef\xbb\xbf<?xml version=\"1.0\"?>" + plain,
                                          "<?xml version=\"1.0\" encoding=\"UTF-16\"?><!-- before -->" + plain,
                                          " \n<?xml version=\"1.0\"?>\n" + plain + "and more <",
                                          "<Tarvik41Channel note=\"" + references
                                              + "\"><data0 gain='9'  ></data0></Tarvik41Channel>" }),
           { 0.0f,
             { "<tarvik41channel><data0 gain=\"9\"/></tarvik41channel>", "<Tarvik41Channel><data0 gain=\"9\"/>",
               "<Other>" + plain + "</Other>" } } })
        for (const auto& text : texts)
        {
            Tarvik41Processor strip;
            load (strip, blockOfText (text));
            EXPECT_EQ (strip.getSlot (0).gain.get(), gain) << text.substr (0, 200);
        }
}

/** Every preset file under tests/plugin/states, saved by some build of ours, still says what it said then. */
TEST (State, ProjectsSavedByEarlierBuildsLoad)
{
    auto presets = juce::File (TARVIK_GOLDEN_FOLDER)
                       .getSiblingFile ("plugin/states")
                       .findChildFiles (juce::File::findFiles, false, "*.vstpreset");
    presets.sort();
    juce::String all;

    for (const auto& preset : presets)
    {
        juce::MemoryBlock file;
        ASSERT_TRUE (preset.loadFileAsData (file));
        file.removeSection (0, 48); // the preset's own frame, in front of the component's state

        // Nothing of what was there before may show through.
        Tarvik41Processor strip;

        for (int slot = 0; slot < 2; ++slot)
            for (auto* const p : (strip.selectSlot (slot), strip.getParameters()))
                p->setValueNotifyingHost (1.0f);

        load (strip, file);
        all << preset.getFileNameWithoutExtension() << ": slot " << strip.getCurrentSlot() << ", settings "
            << settingsOf (strip) << "\n  A:" << differencesFromDefault (strip.getSlot (0))
            << "\n  B:" << differencesFromDefault (strip.getSlot (1)) << "\n";
    }

    expectGolden ("states.txt", all);
}

} // namespace tarvik
