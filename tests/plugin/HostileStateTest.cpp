// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/StateTestTools.h"
#include "tests/support/StripTestTools.h"

#include <ctime>
#include <fstream>
#include <limits>

namespace tarvik
{

using namespace test;

namespace
{
/** A playing strip that is given whatever a host may hand over, and looked at behind each load. */
class HostileState : public testing::Test
{
protected:
    HostileState()
    {
        strip->selectSlot (1);
        strip->setCurrentProgram (17);
        strip->prepareToPlay (48000.0, blockLength);
        good = saved (*strip);
    }

    void expectSurvival (const juce::MemoryBlock& block, const std::string& what, std::size_t which = 0)
    {
        load (*strip, block);
        ASSERT_EQ (firstFieldOutOfRange (*strip), "") << what << ", " << which;

        for (const auto sample :
             firstOf (process (*strip, { Signal (blockLength, 0.1f), Signal (blockLength, 0.1f) }, blockLength)))
            ASSERT_TRUE (std::isfinite (sample)) << what << ", " << which;
    }

    static constexpr int blockLength = 64;
    std::unique_ptr<Tarvik41Processor> strip = makeNoiselessStrip (2, 1); // the factor that costs least
    juce::MemoryBlock good;
};

std::string repeated (const std::string& text, int times)
{
    return juce::String::repeatedString (juce::String (text), times).toStdString();
}

#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t stackBytes = 1 << 20; // its frames are larger
#else
constexpr std::size_t stackBytes = 1 << 18;
#endif

/** A host's thread that has little stack. */
struct SmallThread final : juce::Thread
{
    explicit SmallThread (std::function<void()> workToDo) : Thread ("state", stackBytes), work (std::move (workToDo))
    {
        startThread();
    }

    void run() override { work(); }

    std::function<void()> work;
};

/** Lets the peak begin anew with what the process has now; false where the system has no such thing. */
bool resetPeakMemory()
{
    std::ofstream resetter ("/proc/self/clear_refs");
    resetter << "5" << std::flush;
    return resetter.good();
}

/** The most memory that this process has had since then, in bytes. */
std::size_t peakMemory()
{
    std::ifstream status ("/proc/self/status");

    for (std::string line; std::getline (status, line);)
        if (line.rfind ("VmHWM:", 0) == 0)
            return std::stoul (line.substr (6)) * 1024;

    return 0;
}
} // namespace

TEST_F (HostileState, DamagedAndForeignBlocksChangeNothing)
{
    const std::string text (textOf (good));
    auto wrongMark = good, negativeLength = good;
    wrongMark[0] = 'x';
    negativeLength[7] = static_cast<char> (0xff);

    for (const auto& block : { juce::MemoryBlock(), juce::MemoryBlock (good.getData(), 8), wrongMark, negativeLength,
                               blockOfText (text.substr (0, text.size() / 2)),
                               blockOfText ("<Other>" + text + "</Other>"), blockOfText ("") })
    {
        load (*strip, block);
        EXPECT_EQ (saved (*strip), good);
    }

    strip->setStateInformation (nullptr, 0);
    strip->setCurrentProgram (3);
    EXPECT_EQ (saved (*strip), good) << "a program right behind a refused block is held back as well";
}

TEST_F (HostileState, SenselessTextInEveryAttribute)
{
    const std::string text (textOf (good));
    const std::string values[] = { "nan", "-inf", "1e9",    "-1",   "",         "1e999999",          "-1e-999999",
                                   "&#x", "&#0;", "&none;", "true", "\xc3\x28", repeated ("9", 4000) };

    for (auto open = text.find ("=\""); open != std::string::npos; open = text.find ("=\"", open + 1))
    {
        const auto start = open + 2, end = text.find ('"', start);

        for (const auto& value : values)
        {
            ASSERT_NO_FATAL_FAILURE (expectSurvival (blockOfText (text.substr (0, start) + value + text.substr (end)),
                                                     text.substr (0, start) + value));

            if (strip->oversamplingSetting().getValue() != 1) // 16-fold, every load would take a hundred times as long
                load (*strip, good);
        }
    }
}

TEST_F (HostileState, RandomBytesAndRandomPieces)
{
    constexpr unsigned seed = 5;
    std::mt19937 random (seed);
    const std::string_view text = textOf (good);

    for (std::size_t run = 0; run < 2000; ++run)
    {
        std::string bytes (random() % 200, '\0');

        for (auto& byte : bytes)
            byte = static_cast<char> (random());

        expectSurvival ({ bytes.data(), bytes.size() }, "random bytes", run);
        expectSurvival (blockOfText (bytes), "random text", run);

        std::string pieces;

        while (pieces.size() < text.size())
            pieces += text.substr (random() % text.size(), random() % 300);

        expectSurvival (blockOfText (pieces), "random pieces", run);
    }
}

TEST_F (HostileState, DeepHugeAndSelfExpandingDocuments)
{
    constexpr int quarter = 250000, million = 1000000;
#ifdef __SANITIZE_ADDRESS__
    constexpr auto longestLoad = CLOCKS_PER_SEC; // ten times as slow
    constexpr std::size_t mostMemory = 1 << 30;  // and keeps what was freed
#else
    constexpr auto longestLoad = CLOCKS_PER_SEC / 10;
    constexpr std::size_t mostMemory = 64 << 20;
#endif
    const std::string open = "<Tarvik41Channel", close = "</Tarvik41Channel>";
    std::string attributes, declared, names, laughs = "<!DOCTYPE Tarvik41Channel [<!ENTITY a \"haha\">";

    for (int i = 0; i < 20000; ++i)
    {
        attributes += " x" + std::to_string (i) + "=\"\"";
        names += "<x" + std::to_string (i) + "/>";

        if (i < 6000)
            declared += " x" + std::to_string (i) + " CDATA \"\"";
    }

    for (char c = 'b'; c < 'z'; ++c)
        laughs += std::string ("<!ENTITY ") + c + " \""
                  + repeated (std::string ("&") + static_cast<char> (c - 1) + ";", 10) + "\">";

    laughs += "]>";

    // Most stay just below the largest text that is read at all.
    const juce::MemoryBlock blocks[] = {
        blockOfText (repeated (open + ">", quarter / 20)),
        blockOfText (open + ">" + repeated ("<a>", quarter / 3)),
        blockOfText (open + ">" + repeated ("<data0 gain=\"9\"/>", quarter / 20) + "</Other>"),
        blockOfText (open + ">" + names + "</Other>"),
        blockOfText (open + attributes + ">"),
        blockOfText (open + " a=\"" + repeated ("&amp;", quarter / 6) + "\">"),
        blockOfText (open + " gain=\"" + std::string (50 * million, '9') + "\"/>"),
        blockOfText (laughs + open + " Calibration=\"&y;\"/>"),
        blockOfText ("<!DOCTYPE a [<!ATTLIST a" + declared + ">]>" + open + ">" + repeated ("<a/>", quarter / 8)
                     + close),
        blockOfText ("<!DOCTYPE Tarvik41Channel SYSTEM \"/dev/zero\">" + open + ">&y;"),
        blockOfText (open + ">" + std::string (quarter, '&') + close),
    };
    const auto canMeasureMemory = resetPeakMemory(); // the blocks themselves have taken more than their loading may
    const auto memoryBefore = peakMemory();

    SmallThread thread (
        [&]
        {
            for (std::size_t i = 0; i < std::size (blocks); ++i)
            {
                auto shortest = std::numeric_limits<std::clock_t>::max();

                for (int attempt = 0; attempt < 3; ++attempt)
                {
                    const auto before = std::clock(); // the processor's time, whatever else the machine does
                    load (*strip, blocks[i]);
                    shortest = std::min (shortest, std::clock() - before);
                }

                EXPECT_LT (shortest, longestLoad) << i;
                expectSurvival (blocks[i], "document", i);
            }
        });
    ASSERT_TRUE (thread.waitForThreadToExit (60000)) << "hangs";
    EXPECT_EQ (saved (*strip), good);

    if (! canMeasureMemory)
        GTEST_SKIP() << "the system cannot reset the peak of memory";

    EXPECT_LT (peakMemory() - memoryBefore, mostMemory);
}

} // namespace tarvik
