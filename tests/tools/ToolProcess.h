// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>
#include <juce_audio_formats/juce_audio_formats.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tarvik
{

inline juce::StringArray operator+ (juce::StringArray words, const juce::StringArray& more)
{
    words.addArray (more);
    return words;
}

/** A folder of its own for each test, in which the offline host runs without a display and with its own settings file,
    which turns the noise off.
*/
class RenderTool : public testing::Test
{
protected:
    struct Outcome
    {
        int status = -1; ///< The exit status; negative: the signal that ended the process.
        juce::String out, err;
    };

    RenderTool() : folder (juce::File::createTempFile ("tarvik-render"))
    {
        const auto settings = folder.getChildFile ("config/Tarvik Plugins/Tarvik 41 Channel.settings");
        settings.create();
        settings.replaceWithText ("<PROPERTIES><VALUE name=\"Analog\" val=\"0\"/></PROPERTIES>");
        fileNamed ({}).createDirectory();
    }

    ~RenderTool() override { folder.deleteRecursively(); }

    juce::File fileNamed (const juce::String& name) const { return folder.getChildFile ("work").getChildFile (name); }

    /** Starts the tool in the folder of the test's files and returns its process. */
    pid_t start (const juce::StringArray& arguments) const
    {
        std::vector<std::string> words { TARVIK_RENDER_TOOL };
        std::vector<char*> pointers;

        for (const auto& argument : arguments)
            words.push_back (argument.toStdString());

        for (auto& word : words)
            pointers.push_back (word.data());

        pointers.push_back (nullptr);
        const auto path = folder.getFullPathName().toStdString();
        const auto process = fork();

        if (process == 0)
        {
            constexpr auto flags = O_WRONLY | O_CREAT | O_TRUNC;
            constexpr int cannotStart = 127;
            dup2 (::open ((path + "/stdout").c_str(), flags, 0644), STDOUT_FILENO);
            dup2 (::open ((path + "/stderr").c_str(), flags, 0644), STDERR_FILENO);
            setenv ("XDG_CONFIG_HOME", (path + "/config").c_str(), 1);

            if (chdir ((path + "/work").c_str()) == 0)
                execv (pointers[0], pointers.data());

            _exit (cannotStart);
        }

        return process;
    }

    Outcome finish (pid_t process) const
    {
        int status = 0;
        waitpid (process, &status, 0);
        return { WIFEXITED (status) ? WEXITSTATUS (status) : -WTERMSIG (status),
                 folder.getChildFile ("stdout").loadFileAsString(), folder.getChildFile ("stderr").loadFileAsString() };
    }

    Outcome run (const juce::StringArray& arguments) const { return finish (start (arguments)); }

    Outcome runWell (const juce::StringArray& arguments) const
    {
        const auto outcome = run (arguments);
        EXPECT_EQ (outcome.status, 0) << arguments.joinIntoString (" ") << "\n" << outcome.err;
        return outcome;
    }

    static juce::AudioBuffer<float> noise (int numChannels, int numSamples, int seed = 41)
    {
        juce::AudioBuffer<float> audio (numChannels, numSamples);
        juce::Random random (seed);

        for (int c = 0; c < numChannels; ++c)
            for (int i = 0; i < numSamples; ++i)
                audio.setSample (c, i, random.nextFloat() - 0.5f);

        return audio;
    }

    juce::MemoryBlock bytesOf (const juce::String& name) const
    {
        juce::MemoryBlock bytes;
        EXPECT_TRUE (fileNamed (name).loadFileAsData (bytes)) << name;
        return bytes;
    }

    /** The names in the folder of the test's files, or in one below, hidden ones first. */
    juce::String namesIn (const juce::String& below = {}) const
    {
        juce::StringArray names;

        for (const auto& entry : juce::RangedDirectoryIterator (fileNamed (below), false, "*", juce::File::findFiles))
            names.add (entry.getFile().getFileName());

        names.sort (false);
        return names.joinIntoString (" ");
    }

    /** The processes that write hidden files in a folder, once there are so many. */
    std::vector<int> writersIn (const juce::String& below, std::size_t numWanted) const
    {
        std::vector<int> writers;

        for (int poll = 0; poll < 5000; ++poll, std::this_thread::sleep_for (std::chrono::milliseconds (1)))
        {
            writers.clear();

            for (const auto& name : juce::StringArray::fromTokens (namesIn (below), " ", {}))
                if (name.startsWithChar ('.'))
                    writers.push_back (name.upToLastOccurrenceOf (".part", false, false)
                                           .fromLastOccurrenceOf (".", false, false)
                                           .getIntValue());

            if (writers.size() == numWanted)
                return writers;
        }

        ADD_FAILURE() << numWanted << " hidden files wanted";
        return {};
    }

    /** The file's kind goes by its name. bitDepth 32 is floating point. */
    void writeAudio (const juce::String& name, const juce::AudioBuffer<float>& audio, double rate = 44100.0,
                     int bitDepth = 24) const
    {
        fileNamed (name).getParentDirectory().createDirectory();
        juce::AudioFormatManager formats;
        formats.registerBasicFormats();
        auto* const format = formats.findFormatForFileExtension (fileNamed (name).getFileExtension());
        const std::unique_ptr<juce::AudioFormatWriter> writer (
            format->createWriterFor (fileNamed (name).createOutputStream().release(), rate,
                                     static_cast<unsigned int> (audio.getNumChannels()), bitDepth, {}, 0));
        ASSERT_NE (writer, nullptr) << name;
        ASSERT_TRUE (audio.getNumSamples() == 0
                     || writer->writeFromAudioSampleBuffer (audio, 0, audio.getNumSamples()));
    }

    std::unique_ptr<juce::AudioFormatReader> readerFor (const juce::String& name) const
    {
        juce::AudioFormatManager formats;
        formats.registerBasicFormats();
        return std::unique_ptr<juce::AudioFormatReader> (formats.createReaderFor (fileNamed (name)));
    }

    juce::AudioBuffer<float> readAudio (const juce::String& name) const
    {
        const auto reader = readerFor (name);
        juce::AudioBuffer<float> audio (static_cast<int> (reader->numChannels),
                                        static_cast<int> (reader->lengthInSamples));
        reader->read (audio.getArrayOfWritePointers(), audio.getNumChannels(), 0, audio.getNumSamples());
        return audio;
    }

private:
    const juce::File folder;
};

} // namespace tarvik
