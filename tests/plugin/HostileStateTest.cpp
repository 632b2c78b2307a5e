// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/StateTestTools.h"
#include "tests/support/StripTestTools.h"

#include <ctime>
#include <limits>

namespace tarvik
{

using namespace test;

namespace
{
std::string repeated (const std::string& text, int times)
{
    return juce::String::repeatedString (juce::String (text), times).toStdString();
}

#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t stackBytes = 1 << 20;  // its frames are larger
constexpr auto longestLoad = CLOCKS_PER_SEC; // ten times as slow
#else
constexpr std::size_t stackBytes = 1 << 18;
constexpr auto longestLoad = CLOCKS_PER_SEC / 10;
#endif

/** A host's thread that has little stack. */
struct SmallThread final : juce::Thread
{
    SmallThread() : Thread ("state", stackBytes) {}

    void run() override { work(); }

    std::function<void()> work;
};
} // namespace

TEST (HostileState, DeepLongAndSelfExpandingDocumentsTakeNoTime)
{
    const auto strip = makeNoiselessStrip (2, 1); // the factor that costs least
    strip->selectSlot (1);
    strip->setCurrentProgram (17);
    strip->prepareToPlay (48000.0, 64);
    const auto good = saved (*strip);
    constexpr int quarter = 250000;
    const std::string open = "<Tarvik41Channel", close = "</Tarvik41Channel>";
    std::string attributes, declared, names, laughs = "<!DOCTYPE Tarvik41Channel [<!ENTITY a \"haha\">";

    for (int i = 0; i < 20000; ++i)
    {
        attributes += " x" + std::to_string (i) + "=\"\"";
        names += "<x" + std::to_string (i) + "/>";
        declared += i < 6000 ? " x" + std::to_string (i) + " CDATA \"\"" : "";
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
        blockOfText (open + " gain=\"" + std::string (50000000, '9') + "\"/>"),
        blockOfText (laughs + open + " Calibration=\"&y;\"/>"),
        blockOfText ("<!DOCTYPE a [<!ATTLIST a" + declared + ">]>" + open + ">" + repeated ("<a/>", quarter / 8)
                     + close),
        blockOfText ("<!DOCTYPE Tarvik41Channel SYSTEM \"/dev/zero\">" + open + ">&y;"),
        blockOfText (open + ">" + std::string (quarter, '&') + close),
    };

    SmallThread thread;
    thread.work = [&]
    {
        for (std::size_t i = 0; i < std::size (blocks); ++i)
        {
            auto shortest = std::numeric_limits<std::clock_t>::max();

            for (int attempt = 0; attempt < 3; ++attempt)
            {
                const auto before = std::clock(); // of the processor, whatever else the machine does
                load (*strip, blocks[i]);
                shortest = std::min (shortest, std::clock() - before);
            }

            EXPECT_LT (shortest, longestLoad) << i;
            EXPECT_EQ (firstFieldOutOfRange (*strip), "") << i;
        }
    };
    thread.startThread();
    ASSERT_TRUE (thread.waitForThreadToExit (60000)) << "hangs";
    EXPECT_EQ (saved (*strip), good);
}

} // namespace tarvik
