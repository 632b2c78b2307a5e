// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tools/ToolProcess.h"

#include <cstdlib>
#include <fstream>

namespace tarvik
{
class BatchTool : public RenderTool
{
protected:
    /** Two files that take many seconds in blocks of one sample, and three that do not. */
    void writeLongAndShortFiles() const
    {
        for (const auto* const name : { "in/long1.wav", "in/long2.wav" })
            writeAudio (name, juce::AudioBuffer<float> (1, 4000000), 48000.0, 16);

        for (const auto* const name : { "in/short1.wav", "in/short2.wav", "in/short3.wav" })
            writeAudio (name, noise (1, 50), 48000.0, 16);

        fileNamed ("out").createDirectory();
    }
};

//==============================================================================
TEST_F (BatchTool, EveryFileIsAsIfRenderedAloneWhateverTheJobs)
{
    const std::pair<juce::String, juce::String> files[] = {
        { "a.wav", "a" }, { "in/b.flac", "b" }, { "in/c.aiff", "c" }, { "in/d.WAV", "d" }, { "e.flac", "e" }
    };
    int length = 20000;

    for (const auto& [name, stem] : files)
        writeAudio (name, noise (1 + length % 2, length), 44100.0, 16), length += 7001;

    writeAudio ("side.wav", noise (1, 30000));
    fileNamed ("in/notes.txt").replaceWithText ("no sound, and not tried");
    fileNamed ("list.txt").replaceWithText ("\n./e.flac\r\n");
    runWell ({ "a.wav", "x.wav", "--set", "outLevel=3", "--save-state", "first.state" });

    const std::pair<const char*, juce::StringArray> cases[] = {
        { "1", { "--program", "808 3 Dist", "--set", "thd=6 dB", "--bits", "24" } },
        { "3", { "--state", "first.state", "--set", "compExtSideChain=on", "--sidechain", "side.wav" } }
    };

    for (const auto& [jobs, settings] : cases)
    {
        for (const auto& [name, stem] : files)
            runWell (settings + juce::StringArray { name, stem + ".alone", "--save-state", "alone.vstpreset" });

        auto words = settings + juce::StringArray { "batch",  "--jobs",   jobs,    "--save-state", "out/s.vstpreset",
                                                    "--from", "list.txt", "a.wav", "in",           "out" };
        words.move (words.indexOf ("batch"), 0);

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
        EXPECT_EQ (namesIn ("out"), "a.wav b.wav c.wav d.wav e.wav s.vstpreset");
        fileNamed ("out").deleteRecursively();
    }
}

/** The program "script" gives the tool a terminal and keeps what comes there. */
TEST_F (BatchTool, ATerminalShowsABarAndIsCleanAfterIt)
{
    for (const auto* const name : { "in/one.wav", "in/two.wav" })
        writeAudio (name, noise (1, 1000));

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
    fileNamed ("in/text.wav").replaceWithText ("This is not sound.");
    const auto process = start ({ "batch", "in", "none.wav", "out", "--block", "1", "--jobs", "2" });

    // The two long ones come to a sudden end, as in a crash, while the others wait.
    for (const auto writer : writersIn ("out", 2))
        kill (writer, SIGKILL);

    const auto outcome = finish (process);
    EXPECT_EQ (outcome.status, 2);
    EXPECT_EQ (namesIn ("out"), "short1.wav short2.wav short3.wav");
    EXPECT_EQ (juce::StringArray::fromLines (outcome.err.trim()).size(), 5) << outcome.err;

    for (const auto* const words : { "long1.wav: its process was ended by signal 9", "long2.wav: its process",
                                     "text.wav: cannot read", "none.wav: cannot read", "4 of 7 files failed\n" })
        EXPECT_TRUE (outcome.err.contains (words)) << words << " is not in " << outcome.err;
}

TEST_F (BatchTool, ABatchThatIsStoppedOrDiesLeavesOnlyWholeFiles)
{
    writeLongAndShortFiles();
    writeAudio ("early.wav", noise (2, 100));
    runWell ({ "batch", "early.wav", "out" });

    for (const auto signalNumber : { SIGINT, SIGTERM, SIGKILL })
    {
        const auto process = start ({ "batch", "in", "out", "--block", "1", "--jobs", "2" });
        const auto writers = writersIn ("out", 2);
        kill (process, signalNumber); // only the parent, as from a script: a terminal tells its children too
        EXPECT_EQ (finish (process).status, -signalNumber);

        if (signalNumber == SIGKILL)
            writersIn ("out", 0); // the children end by themselves then, and soon
        else
            for (const auto writer : writers)
                EXPECT_NE (kill (writer, 0), 0) << writer;

        EXPECT_EQ (namesIn ("out"), "early.wav");
    }
}

TEST_F (BatchTool, WhatEndsWhileTheSettingsAreTriedLeavesNoNewFolder)
{
    writeAudio ("one.wav", noise (1, 100));

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
