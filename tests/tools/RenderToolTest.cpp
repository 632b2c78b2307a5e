// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/FactoryPrograms.h"
#include "tests/support/StripTestTools.h"

#include <juce_audio_formats/juce_audio_formats.h>

namespace tarvik
{
namespace
{
using Audio = juce::AudioBuffer<float>;

/** What the strip makes of the audio in this process, without noise: aligned, and as long as its input. The side chain,
    if it is not empty, has as many channels.
*/
Audio throughStrip (const Audio& in, double rateHz, const test::PlainValues& settings, int program = 0,
                    const Audio& side = {})
{
    const auto numMain = in.getNumChannels(), numAll = numMain + side.getNumChannels();
    const auto strip = test::makeNoiselessStrip (numMain, 2, numAll > numMain);
    strip->setCurrentProgram (program);
    test::setPlain (*strip, settings);
    strip->prepareToPlay (rateHz, 512);
    const auto latency = strip->getLatencySamples();
    Audio padded (numAll, in.getNumSamples() + latency), out (numMain, in.getNumSamples());
    padded.clear();

    for (int c = 0; c < numMain; ++c)
        padded.copyFrom (c, 0, in, c, 0, in.getNumSamples());

    for (int c = numMain; c < numAll; ++c)
        padded.copyFrom (c, 0, side, c - numMain, 0, std::min (side.getNumSamples(), padded.getNumSamples()));

    juce::MidiBuffer midi;
    strip->processBlock (padded, midi);

    for (int c = 0; c < numMain; ++c)
        out.copyFrom (c, 0, padded, c, latency, in.getNumSamples());

    return out;
}

void expectEqual (const Audio& actual, const Audio& expected, float tolerance = 1e-6f)
{
    ASSERT_EQ (std::pair (actual.getNumChannels(), actual.getNumSamples()),
               std::pair (expected.getNumChannels(), expected.getNumSamples()));

    for (int c = 0; c < expected.getNumChannels(); ++c)
        for (int i = 0; i < expected.getNumSamples(); ++i)
            ASSERT_NEAR (actual.getSample (c, i), expected.getSample (c, i), tolerance) << c << ", sample " << i;
}

/** A folder of its own for each test, in which the offline host runs without noise. */
class RenderTool : public testing::Test
{
protected:
    RenderTool() : folder (juce::File::createTempFile ("tarvik-render"))
    {
        const auto settings = folder.getChildFile ("Tarvik Plugins/Tarvik 41 Channel.settings");
        settings.create();
        settings.replaceWithText ("<PROPERTIES><VALUE name=\"Analog\" val=\"0\"/></PROPERTIES>");
        formats.registerBasicFormats();
    }

    ~RenderTool() override { folder.deleteRecursively(); }

    juce::File fileNamed (const juce::String& name) const { return folder.getChildFile (name); }

    /** Runs the tool in the folder and returns all that it prints. */
    juce::String run (const juce::StringArray& arguments, unsigned int expectedStatus = 0) const
    {
        const auto path = folder.getFullPathName();
        juce::ChildProcess process;

        // By a shell, whose status tells of a signal as well.
        juce::StringArray words { "sh", "-c", "env -C \"$0\" XDG_CONFIG_HOME=\"$0\" \"$@\"; exit", path,
                                  TARVIK_RENDER_TOOL };
        words.addArray (arguments);
        process.start (words);
        const auto printed = process.readAllProcessOutput();
        EXPECT_TRUE (process.waitForProcessToFinish (60000)); // or there is no status yet
        EXPECT_EQ (process.getExitCode(), expectedStatus) << arguments.joinIntoString (" ") << "\n" << printed;
        return printed;
    }

    static Audio noise (int numChannels, int numSamples, unsigned int seed = 41)
    {
        Audio audio (numChannels, numSamples);

        for (int c = 0; c < numChannels; ++c)
            audio.copyFrom (c, 0, test::noise (numSamples, seed++, 0.5f).data(), numSamples);

        return audio;
    }

    juce::MemoryBlock bytesOf (const juce::String& name) const
    {
        juce::MemoryBlock bytes;
        EXPECT_TRUE (fileNamed (name).loadFileAsData (bytes)) << name;
        return bytes;
    }

    /** The file's kind goes by its name. bitDepth 32 is floating point. */
    void writeAudio (const juce::String& name, const Audio& audio, double rate = 44100.0, int bitDepth = 24)
    {
        fileNamed (name).deleteFile(); // a stream would append to it
        auto* const format = formats.findFormatForFileExtension (fileNamed (name).getFileExtension());
        const std::unique_ptr<juce::AudioFormatWriter> writer (
            format->createWriterFor (fileNamed (name).createOutputStream().release(), rate,
                                     static_cast<unsigned int> (audio.getNumChannels()), bitDepth, {}, 0));
        ASSERT_TRUE (audio.getNumSamples() == 0
                     || writer->writeFromAudioSampleBuffer (audio, 0, audio.getNumSamples()));
    }

    std::unique_ptr<juce::AudioFormatReader> readerFor (const juce::String& name)
    {
        return std::unique_ptr<juce::AudioFormatReader> (formats.createReaderFor (fileNamed (name)));
    }

    Audio readAudio (const juce::String& name)
    {
        const auto reader = readerFor (name);
        Audio audio (static_cast<int> (reader->numChannels), static_cast<int> (reader->lengthInSamples));
        reader->read (audio.getArrayOfWritePointers(), audio.getNumChannels(), 0, audio.getNumSamples());
        return audio;
    }

private:
    const juce::File folder;
    juce::AudioFormatManager formats;
};
} // namespace

TEST_F (RenderTool, EveryKindAndLengthComesBackInPlaceAndWhole)
{
    for (const auto& [name, bits, channels, length, rate, block] :
         { std::tuple ("a.wav", 16, 2, 100000, 44100.0, "512"),
           { "b.wav", 32, 1, 257, 8000.0, "1" },
           { "c.flac", 24, 2, 100000, 96000.0, "65536" },
           { "d.aiff", 24, 2, 255, 192000.0, "100" },
           { "e.wav", 32, 2, 0, 44100.0, "512" } })
    {
        SCOPED_TRACE (name);
        writeAudio (name, noise (channels, length), rate, bits);
        const auto printed = run ({ "--set", "inLevel=-7 dB", "--set", "compIn=off", "--set", "outLevel=1.5", "--block",
                                    block, name, "out.wav" });
        EXPECT_EQ (printed.contains ("gain reduction"), length > 0.5 * rate) << "the needle rises for so long";
        EXPECT_EQ (readerFor ("out.wav")->sampleRate, rate);
        EXPECT_TRUE (readerFor ("out.wav")->usesFloatingPointData);
        const test::PlainValues settings { { "inLevel", -7.0f }, { "outLevel", 1.5f }, { "compIn", 0.0f } };
        const auto out = readAudio ("out.wav");
        expectEqual (out, throughStrip (readAudio (name), rate, settings), 2e-6f);

        for (int c = 0; c < (length > 0 ? channels : 0); ++c)
        {
            const auto decibels = [] (float gain) { return juce::String (juce::Decibels::gainToDecibels (gain), 2); };
            const auto peak = decibels (out.getMagnitude (c, 0, length)),
                       rms = decibels (out.getRMSLevel (c, 0, length));
            EXPECT_TRUE (printed.contains (peak + " dBFS, RMS " + rms.paddedLeft (' ', 7))) << printed << peak << rms;
        }
    }
}

TEST_F (RenderTool, ADamagedFlacFileIsRefused)
{
    writeAudio ("in.flac", noise (2, 5000));
    auto bytes = bytesOf ("in.flac");
    auto& sumOfAllSamples = bytes[30];
    sumOfAllSamples = static_cast<char> (~sumOfAllSamples);

    for (const auto length : { bytes.getSize(), bytes.getSize() / 2 })
    {
        fileNamed ("in.flac").replaceWithData (bytes.getData(), length);
        EXPECT_TRUE (run ({ "in.flac", "out.wav" }, 2).contains ("damaged")) << length;
        EXPECT_FALSE (fileNamed ("out.wav").exists());
    }
}

TEST_F (RenderTool, TwentyFourBitsAreRoundedAndClippingIsReported)
{
    writeAudio ("in.wav", noise (1, 1000), 44100.0, 32);
    const auto printed = run ({ "--set", "compIn=off", "--set", "outLevel=7", "--bits", "24", "in.wav", "o.wav" });
    auto expected = throughStrip (readAudio ("in.wav"), 44100.0, { { "outLevel", 7.0f }, { "compIn", 0.0f } });
    const auto peakDb = juce::Decibels::gainToDecibels (expected.getMagnitude (0, 1000));
    EXPECT_TRUE (printed.contains (juce::String (peakDb, 2) + " dBFS")) << printed;

    constexpr float halfStep = 0.5f / 8388608.0f;
    const auto out = readAudio ("o.wav");
    EXPECT_EQ (readerFor ("o.wav")->bitsPerSample, 24U);
    int numBeyond = 0;
    double sumOfErrors = 0.0;

    for (int i = 0; i < expected.getNumSamples(); ++i)
    {
        const auto unclipped = expected.getSample (0, i), clipped = juce::jlimit (-1.0f, 1.0f, unclipped);
        numBeyond += unclipped != clipped ? 1 : 0;
        expected.setSample (0, i, clipped);

        if (unclipped == clipped && clipped > 0.0f)
            sumOfErrors += static_cast<double> (out.getSample (0, i)) - static_cast<double> (clipped);
    }

    EXPECT_TRUE (printed.contains (" " + juce::String (numBeyond) + " samples were beyond full scale")) << printed;
    expectEqual (out, expected, halfStep + 2e-7f);

    // Cut off instead of rounded, towards zero or downwards, those above zero would lie half a step too low on average.
    EXPECT_NEAR (sumOfErrors / expected.getNumSamples(), 0.0, 0.25 * static_cast<double> (halfStep));
}

TEST_F (RenderTool, StateProgramAndSettingsAreAllHeardInThisOrder)
{
    writeAudio ("in.wav", noise (2, 2000), 44100.0, 32);
    const auto in = readAudio ("in.wav");
    const auto expect = [&] (juce::StringArray arguments, const test::PlainValues& settings, int program = 0)
    {
        arguments.addArray ({ "in.wav", "out.wav" });
        SCOPED_TRACE (arguments.joinIntoString (" "));
        run (arguments);
        expectEqual (readAudio ("out.wav"), throughStrip (in, 44100.0, settings, program));
    };

    // The last one wins, wherever the other options stand, and what it does not name is kept.
    const test::PlainValues stored { { "inLevel", -9.0f }, { "compIn", 0.0f } };
    expect ({ "--set", "inLevel=9", "--set", "inLevel=-9", "--set", "compIn=off", "--save-state", "s.vstpreset" },
            stored);
    expect ({ "--state", "s.vstpreset", "--save-state", "bare" }, stored);
    const auto bare = bytesOf ("bare");
    EXPECT_NE (juce::AudioProcessor::getXmlFromBinary (bare.getData(), static_cast<int> (bare.getSize())), nullptr);
    expect ({ "--state", "bare" }, stored);
    expect ({ "--set", "outLevel=2", "--state", "s.vstpreset" },
            { { "inLevel", -9.0f }, { "compIn", 0.0f }, { "outLevel", 2.0f } });
    expect ({ "--state", "s.vstpreset", "--program", "Default" }, {});

    // A setting that names the value from before the program is a setting all the same.
    ASSERT_NE (factoryPrograms()[3].snapshot.gain.get(), 0.0f);
    expect ({ "--program", "808 3 dist" }, {}, 3);
    expect ({ "--program", "3", "--set", "gain=0", "--set", "unity=off" }, { { "gain", 0.0f }, { "unity", 0.0f } }, 3);
}

TEST_F (RenderTool, ASidechainOfAnyWidthAndLengthIsHeardByItsDetector)
{
    const test::PlainValues ducked { { "compExtSideChain", 1.0f }, { "compThreshold", -20.0f } };

    for (const auto numMain : { 1, 2 })
        for (const auto numSide : { 1, 2 })
            for (const auto sideLength : { 700, 5000 })
            {
                SCOPED_TRACE (testing::PrintToString (std::tuple (numMain, numSide, sideLength)));
                writeAudio ("in.wav", noise (numMain, 2000), 48000.0, 32);
                writeAudio ("side.wav", noise (numSide, sideLength, 7), 48000.0, 32);
                run ({ "in.wav", "out.wav", "--sidechain", "side.wav", "--set", "compExtSideChain=on", "--set",
                       "compThreshold=-20" });

                // One channel feeds both, two are averaged for one; after its end comes silence.
                const auto given = readAudio ("side.wav");
                Audio side (numMain, 3000);
                side.clear();

                for (int c = 0; c < numMain; ++c)
                    for (int s = 0; s < numSide; ++s)
                        if (numMain == 1 || numSide == 1 || c == s)
                            side.addFrom (c, 0, given, s, 0, std::min (sideLength, 3000),
                                          numSide > numMain ? 0.5f : 1.0f);

                expectEqual (readAudio ("out.wav"), throughStrip (readAudio ("in.wav"), 48000.0, ducked, 0, side));
            }
}
} // namespace tarvik
