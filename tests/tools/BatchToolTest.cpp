// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tools/ToolProcess.h"

#include <cstdlib>
#include <fstream>

namespace tarvik
{
class BatchTool : public RenderTool
{
protected:
    /** Hidden files in the batch's folder, once there are as many as wanted. */
    juce::StringArray hiddenFiles (int numWanted) const
    {
        constexpr int mostPolls = 5000;

        for (int poll = 0; poll < mostPolls; ++poll)
        {
            auto names = namesInFolder ("out");

            while (names.size() > 0 && ! names[names.size() - 1].startsWithChar ('.'))
                names.remove (names.size() - 1); // they come first

            if (names.size() == numWanted)
                return names;

            std::this_thread::sleep_for (std::chrono::milliseconds (1));
        }

        ADD_FAILURE() << numWanted << " hidden files wanted";
        return {};
    }

    static pid_t processOf (const juce::String& hiddenFile)
    {
        return hiddenFile.fromFirstOccurrenceOf (".wav.", false, false).getIntValue();
    }

    /** Two files that take many seconds in blocks of one sample, and three that do not. */
    void writeLongAndShortFiles() const
    {
        constexpr int longEnough = 4000000, shortEnough = 50;

        for (const auto* const name : { "in/long1.wav", "in/long2.wav" })
            writeAudio (name, juce::AudioBuffer<float> (1, longEnough), 48000.0, 16);

        for (const auto* const name : { "in/short1.wav", "in/short2.wav", "in/short3.wav" })
            writeAudio (name, noise (1, shortEnough), 48000.0, 16);

        fileNamed ("out").createDirectory();
    }
};

//==============================================================================
TEST_F (BatchTool, EveryFileIsAsIfRenderedAloneWhateverTheNumberOfJobs)
{
    const std::pair<juce::String, juce::String> files[] = {
        { "a.wav", "a" }, { "in/b.flac", "b" }, { "in/c.aiff", "c" }, { "in/d.WAV", "d" }, { "e.flac", "e" }
    };
    int length = 20000;

    for (const auto& [name, stem] : files)
        writeAudio (name, noise (1 + length % 2, length), 44100.0, 16), length += 7001;

    writeAudio ("side.wav", noise (1, 30000), 44100.0);
    fileNamed ("in/notes.txt").replaceWithText ("no sound, and not tried");
    fileNamed ("list.txt").replaceWithText ("\n./e.flac\r\n");
    runWell ({ "a.wav", "x.wav", "--set", "outLevel=3", "--save-state", "first.state" });

    const std::pair<const char*, juce::StringArray> cases[] = {
        { "1", { "--program", "808 3 Dist", "--set", "thd=6 dB", "--bits", "24" } },
        { "3",
          { "--state", "first.state", "--set", "compExtSideChain=on", "--sidechain", "side.wav", "--block", "300" } }
    };

    for (const auto& [jobs, settings] : cases)
    {
        for (const auto& [name, stem] : files)
        {
            auto words = settings;
            words.addArray ({ name, stem + ".alone", "--save-state", "alone.vstpreset" });
            runWell (words);
        }

        juce::StringArray words { "batch", "--jobs", jobs, "--save-state", "out/s.vstpreset", "--from", "list.txt" };
        words.addArray (settings);
        words.addArray ({ "a.wav", "in", "out" });

        // The first time all is made, then all is kept, then all is made again.
        for (const auto isMade : { true, false, true })
        {
            const auto outcome = runWell (words);
            EXPECT_TRUE (outcome.err.isEmpty()) << outcome.err;
            EXPECT_TRUE (outcome.out.contains (isMade ? "5 rendered, 0 kept" : "0 rendered, 5 kept")) << outcome.out;

            for (const auto& [name, stem] : files)
            {
                EXPECT_EQ (bytesOf ("out/" + stem + ".wav") == bytesOf (stem + ".alone"), isMade) << name << jobs;
                fileNamed ("out/" + stem + ".wav").replaceWithText ("old");
            }

            if (! isMade)
                words.add ("--overwrite");
        }

        EXPECT_EQ (bytesOf ("out/s.vstpreset"), bytesOf ("alone.vstpreset"));
        EXPECT_EQ (namesInFolder ("out").joinIntoString (" "), "a.wav b.wav c.wav d.wav e.wav s.vstpreset");
        fileNamed ("out").deleteRecursively();
    }
}

/** The program "script" gives the tool a terminal and keeps what comes there. */
TEST_F (BatchTool, ATerminalShowsABarAndIsCleanBehindIt)
{
    for (const auto* const name : { "in/one.wav", "in/two.wav" })
        writeAudio (name, noise (1, 1000), 48000.0);

    const auto command = "cd '" + fileNamed ({}).getFullPathName() + "' && script -qec '\"" TARVIK_RENDER_TOOL
                         + "\" batch --jobs 1 in out' seen </dev/null >/dev/null";
    ASSERT_EQ (std::system (command.toRawUTF8()), 0);

    const auto seen = fileNamed ("seen").loadFileAsString();
    const auto half = juce::String::repeatedString ("#", 25) + juce::String::repeatedString (".", 25);
    EXPECT_TRUE (seen.contains ("\r[" + half + "]  50 %  1 of 2 files")) << seen;
    EXPECT_TRUE (seen.fromLastOccurrenceOf (" of 2 files", false, false).startsWith ("\r\x1b[K")) << seen;
}

TEST_F (BatchTool, FailuresAreToldByNameAndLeaveTheOthersAlone)
{
    writeLongAndShortFiles();
    fileNamed ("in/text.wav").replaceWithText ("This is no sound.");
    writeAudio ("in/three.wav", noise (3, 100), 48000.0);
    const auto process = start ({ "batch", "in", "none.wav", "out", "--block", "1", "--jobs", "2" });

    // The two long ones come to a sudden end, as in a crash, while the others wait.
    for (const auto& name : hiddenFiles (2))
        kill (processOf (name), SIGKILL);

    const auto outcome = finish (process);
    EXPECT_EQ (outcome.status, 2);
    EXPECT_EQ (namesInFolder ("out").joinIntoString (" "), "short1.wav short2.wav short3.wav");
    EXPECT_EQ (juce::StringArray::fromLines (outcome.err.trim()).size(), 6) << outcome.err;

    for (const auto* const words :
         { "long1.wav: its process was ended by signal 9", "long2.wav: its process", "text.wav: cannot read",
           "three.wav: cannot read", "none.wav: cannot read", "5 of 8 files failed\n" })
        EXPECT_TRUE (outcome.err.contains (words)) << words << " is not in " << outcome.err;
}

TEST_F (BatchTool, ABatchThatIsStoppedOrDiesLeavesOnlyWholeFiles)
{
    writeLongAndShortFiles();
    writeAudio ("early.wav", noise (2, 100), 48000.0);
    runWell ({ "batch", "early.wav", "out" });

    for (const auto signalNumber : { SIGINT, SIGTERM, SIGKILL })
    {
        const auto process = start ({ "batch", "in", "out", "--block", "1", "--jobs", "2" });
        const auto hidden = hiddenFiles (2);
        kill (process, signalNumber); // only the parent, as from a script: a terminal tells its children too
        EXPECT_EQ (finish (process).status, -signalNumber);

        if (signalNumber == SIGKILL)
            hiddenFiles (0); // the children end by themselves then, and soon
        else
            for (const auto& name : hidden)
                EXPECT_NE (kill (processOf (name), 0), 0) << name;

        EXPECT_EQ (namesInFolder ("out").joinIntoString (" "), "early.wav");
    }
}

TEST_F (BatchTool, WhatEndsWhileTheSettingsAreTriedLeavesNoNewFolder)
{
    writeAudio ("one.wav", noise (1, 100), 48000.0);

    for (const auto childDies : { false, true })
    {
        const auto process = start ({ "batch", "one.wav", "out" });
        const auto children = "/proc/" + std::to_string (process) + "/task/" + std::to_string (process) + "/children";
        pid_t child = 0;

        for (int poll = 0; poll < 20000 && child == 0; ++poll)
        {
            std::ifstream (children) >> child;
            std::this_thread::sleep_for (std::chrono::microseconds (100));
        }

        ASSERT_NE (child, 0);
        EXPECT_TRUE (fileNamed ("out").exists());
        kill (childDies ? child : process, childDies ? SIGKILL : SIGINT);
        EXPECT_EQ (finish (process).status, childDies ? 2 : -SIGINT);
        EXPECT_FALSE (fileNamed ("out").exists()) << childDies;
    }
}
} // namespace tarvik
