// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/StateTestTools.h"
#include "tests/tools/ToolProcess.h"

#include <cstring>
#include <sys/stat.h>

namespace tarvik
{

/** A folder of recordings and states, most of which have something wrong with them. */
class Mistakes : public RenderTool
{
protected:
    void SetUp() override
    {
        for (const auto* const name : { "in.wav", "in.flac", "folder/two.wav", "other/two.flac" })
            writeAudio (name, noise (2, 5000));

        writeAudio ("slow.wav", noise (2, 5000), 22050.0);
        writeAudio ("silent.wav", noise (1, 0));
        writeAudio ("three.wav", noise (3, 5000));
        fileNamed ("text.wav").replaceWithText ("This is not sound.");
        fileNamed ("empty").createDirectory();
        fileNamed ("links").createDirectory();
        fileNamed ("folder/two.wav").createSymbolicLink (fileNamed ("links/in.wav"), true);
        ASSERT_EQ (mkfifo (fileNamed ("pipe").getFullPathName().toRawUTF8(), 0600), 0);
        runWell ({ "in.wav", "first.wav", "--save-state", "good.vstpreset" });
        fileNamed ("states").createDirectory();
        fileNamed ("good.vstpreset").copyFileTo (fileNamed ("states/in.wav"));

        constexpr std::size_t sumOfAllSamples = 30, classID = 12, presetFrame = 48;
        cut ("cut.wav", "in.wav");
        cut ("cut.flac", "in.flac");
        cut ("short.vstpreset", "good.vstpreset");
        cut ("short.state", "good.vstpreset", presetFrame);
        flip ("bad.flac", "in.flac", bytesOf ("in.flac").getSize() / 2);
        flip ("sum.flac", "in.flac", sumOfAllSamples);
        flip ("foreign.vstpreset", "good.vstpreset", classID);
        auto preset = bytesOf ("good.vstpreset");
        std::memset (&preset[preset.getSize() / 2], 0, 16); // within the saved document
        write ("broken.vstpreset", preset);

        // The one never ends its elements, the other is longer than what the module takes.
        const std::string open = "<Tarvik41Channel>", close = "</Tarvik41Channel>";
        write ("deep.state", test::blockOfText (juce::String::repeatedString (open, 400000).toStdString()));
        write ("long.state", test::blockOfText (open + std::string (1 << 20, ' ') + close));
    }

    void write (const char* name, const juce::MemoryBlock& bytes) const
    {
        fileNamed (name).replaceWithData (bytes.getData(), bytes.getSize());
    }

    void cut (const char* name, const char* from, std::size_t numDropped = 0) const
    {
        auto bytes = bytesOf (from);
        bytes.removeSection (0, numDropped);
        bytes.setSize (bytes.getSize() / 2);
        write (name, bytes);
    }

    void flip (const char* name, const char* from, std::size_t at) const
    {
        auto bytes = bytesOf (from);
        bytes[at] = static_cast<char> (bytes[at] ^ 1);
        write (name, bytes);
    }

    /** All that is in the test's folder, with the times at which it was written. */
    juce::String contents() const
    {
        juce::ChildProcess list;
        list.start (juce::StringArray { "ls", "-lR", "--full-time", fileNamed ({}).getFullPathName() });
        return list.readAllProcessOutput();
    }
};

TEST_F (Mistakes, EachIsOneLineStatusTwoAndNoFile)
{
    const auto table = juce::File (TARVIK_GOLDEN_FOLDER).getSiblingFile ("tools/mistakes.txt");
    const auto before = contents();
    int count = 0;

    for (const auto& line : juce::StringArray::fromLines (table.loadFileAsString()))
    {
        if (! line.contains ("=> "))
            continue;

        auto words = juce::StringArray::fromTokens (line.upToFirstOccurrenceOf ("=>", false, false).trim(), " ", "\"");

        for (auto& word : words)
            word = word.unquoted();

        const auto outcome = run (words);
        SCOPED_TRACE (line + "\n" + outcome.err);
        EXPECT_EQ (outcome.status, 2);
        EXPECT_TRUE (outcome.err.startsWith ("tarvik41-render: "));
        EXPECT_EQ (outcome.err.indexOfChar ('\n'), outcome.err.length() - 1);
        EXPECT_TRUE (outcome.err.contains (line.fromFirstOccurrenceOf ("=> ", false, false)));
        ASSERT_EQ (contents(), before);
        ++count;
    }

    EXPECT_GT (count, 60);
    EXPECT_TRUE (run ({}).err.contains ("INPUT OUTPUT"));
}

} // namespace tarvik
