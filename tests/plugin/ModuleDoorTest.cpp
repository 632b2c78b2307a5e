// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/plugin/ModuleInstance.h"
#include "tests/support/StateTestTools.h"
#include "tests/support/StripTestTools.h"

#include <ctime>

namespace tarvik
{

using namespace test;

namespace
{
#ifdef __SANITIZE_ADDRESS__
constexpr auto longestLoad = CLOCKS_PER_SEC;
constexpr std::size_t stackBytes = 1 << 20; // its frames are larger
#else
constexpr auto longestLoad = CLOCKS_PER_SEC / 10;
constexpr std::size_t stackBytes = 1 << 18;
#endif

constexpr std::size_t header = 8, tail = 60, switchFromEnd = 25; ///< In bytes; what JUCE puts around our document.
constexpr char on = 2, off = 3;                                  ///< How it writes the bypass.

std::string repeated (const std::string& text, int times)
{
    return juce::String::repeatedString (juce::String (text), times).toStdString();
}

/** The built module in a host that plays and loads states. */
class ModuleDoor : public testing::Test
{
protected:
    ModuleDoor()
    {
        instance.startPlaying();

        // Two projects that differ wherever they can, the bypass too: the second one's is on.
        const auto fresh = instance.saved();

        for (const auto isSecond : { 0u, 1u })
        {
            const auto strip = makeNoiselessStrip (2, 1); // the factor that costs least
            strip->selectSlot (isSecond == 1 ? 0 : 1);
            strip->setCurrentProgram (isSecond == 1 ? 3 : 17);
            auto project = bytesOf (saved (*strip)) + fresh.substr (fresh.size() - tail);
            project[project.size() - switchFromEnd] = isSecond == 1 ? on : off;
            instance.load (project);
            projects[isSecond] = instance.saved();
        }
    }

    /** Load it, listen, and see what is left. */
    std::string keptAfter (const std::string& state)
    {
        auto shortest = std::numeric_limits<std::clock_t>::max();

        // Of the processor, whatever else the machine does; even so one may need a second and a third try.
        for (int attempt = 0; attempt < 3 && shortest > longestLoad; ++attempt)
        {
            const auto begin = std::clock();
            instance.load (state);
            shortest = std::min (shortest, std::clock() - begin);
        }

        EXPECT_LE (shortest, longestLoad);
        const auto heard = instance.play();
        EXPECT_TRUE (std::isfinite (heard));
        isHeard = isHeard || std::abs (heard) > 0.001f;
        EXPECT_TRUE (instance.allParametersAreInRange());
        return instance.saved();
    }

    const Module module;
    const IPtr<IPluginFactory> factory { module.getFactory() };
    ModuleInstance instance { *factory };
    std::string projects[2];
    bool isHeard = false;
};

/** Each bit flipped, each length cut to, then some damage at random: all around the document everything, within it one bit
    of each byte, or with TARVIK_DAMAGE=all in the environment every one.
*/
std::vector<std::string> damagesTo (const std::string& good)
{
    constexpr int numRandomDamages = 500;
    const auto* const wish = std::getenv ("TARVIK_DAMAGE");
    const auto isAll = wish != nullptr && wish == std::string_view ("all");
    std::vector<std::string> all;

    for (std::size_t bit = 0; bit < good.size() * 8; ++bit)
        if (const auto byte = bit / 8; isAll || byte < header || byte >= good.size() - tail - 1 || bit % 8 == byte % 8)
            (all.emplace_back (good))[byte] ^= static_cast<char> (1 << bit % 8);

    for (std::size_t length = 0; length < good.size(); ++length)
        all.push_back (good.substr (0, length));

    std::mt19937 random (1);

    for (int i = 0; i < numRandomDamages; ++i)
    {
        auto& state = all.emplace_back (good);
        const std::size_t place = random() % good.size(), length = random() % 100;

        if (i % 4 == 0)
            state.erase (place, length);
        else if (i % 4 == 1)
            state.insert (random() % good.size(), good.substr (place, length));
        else // something else in front of the private part's mark, from anywhere or from within that part
        {
            state.resize (i % 4 == 2 ? place : good.size() - tail / 2);

            for (auto rest = random() % 40; rest > 0; --rest)
                state += static_cast<char> (random() % 4 == 0 ? random() : random() % 4);

            const auto size = i % 8 < 4 ? static_cast<int64> (random() % 64) : -static_cast<int64> (random());
            state += std::string (reinterpret_cast<const char*> (&size), sizeof (size)) + "JUCEPrivateData";
        }
    }

    return all;
}
} // namespace

TEST_F (ModuleDoor, DamagedStates)
{
    const auto& [good, next] = projects;
    const auto documentOf = [] (const std::string& state) { return state.substr (0, state.size() - tail); };
    const auto document = documentOf (good);
    const auto bypass = [] (const std::string& state) { return state[state.size() - switchFromEnd]; };

    for (const auto& bad : damagesTo (good))
    {
        SCOPED_TRACE (testing::PrintToString (bad));
        const auto left = keptAfter (bad);
        ASSERT_EQ (bypass (left), bad.ends_with (good.substr (document.size())) ? off : on);

        // Whole but for its zero byte; cut short, and none; or something else, which may leave what it likes.
        const auto isWhole = bad.starts_with (document.substr (0, document.size() - 1));
        const auto expected = isWhole ? document : good.starts_with (bad) ? documentOf (next) : documentOf (left);
        ASSERT_EQ (documentOf (left), expected);
        ASSERT_EQ (keptAfter (next), next);
    }

    EXPECT_TRUE (isHeard);
}

/** On a host's thread that has little stack. */
TEST_F (ModuleDoor, StatesThatLieOrWouldTakeLong)
{
    struct SmallThread final : juce::Thread
    {
        SmallThread() : Thread ("state", stackBytes) {}

        void run() override { work(); }

        std::function<void()> work;
    };

    // Documents of which most stay just below the largest text that is read at all.
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
        laughs +=
            std::string ("<!ENTITY ") + c + " \"" + repeated ({ '&', static_cast<char> (c - 1), ';' }, 10) + "\">";

    std::vector<std::string> states {
        repeated (open + ">", quarter / 20),
        open + ">" + repeated ("<a>", quarter / 3),
        open + ">" + repeated ("<data0 gain=\"9\"/>", quarter / 20) + "</Other>",
        open + ">" + names + "</Other>",
        open + attributes + ">",
        open + " a=\"" + repeated ("&amp;", quarter / 6) + "\">",
        open + " gain=\"" + std::string (5000000, '9') + "\"/>",
        laughs + "]>" + open + " Calibration=\"&y;\"/>",
        "<!DOCTYPE a [<!ATTLIST a" + declared + ">]>" + open + ">" + repeated ("<a/>", quarter / 8) + close,
        "<!DOCTYPE Tarvik41Channel SYSTEM \"/dev/zero\">" + open + ">&y;",
        open + ">" + std::string (quarter, '&') + close,
    };

    for (auto& state : states)
        state = bytesOf (blockOfText (state));

    // Private parts: trees that nest without end, and lengths that a signed or an unsigned sum takes beyond either end.
    std::string tree;

    for (int i = 0; i < 200000; ++i)
        tree.append ("x\0\0\1\1", 5); // a name, a property count of zero, a branch count of one

    for (const int64 length : { int64 (-100000000), int64 (-1), std::numeric_limits<int64>::min(),
                                std::numeric_limits<int64>::max(), int64 (1) << 31, int64 (1) })
        for (auto state : { std::string(), tree })
        {
            state.append (reinterpret_cast<const char*> (&length), sizeof (length)); // little-endian, like the format
            states.push_back (state + "JUCEPrivateData");
        }

    SmallThread thread;
    thread.work = [&]
    {
        for (std::size_t i = 0; i < states.size(); ++i)
            EXPECT_EQ (keptAfter (states[i]), projects[1]) << i;
    };
    thread.startThread();
    ASSERT_TRUE (thread.waitForThreadToExit (60000)) << "hangs";

    instance.load (projects[0], 100);
    EXPECT_EQ (instance.saved(), projects[0]) << "in pieces";
}

/** A host may set anything between two steps, and shows what it reads back, at once and in the project opened again. */
TEST_F (ModuleDoor, WhatAHostReadsIsWhatTheStripHolds)
{
    std::mt19937 random (7);
    auto& controller = *instance.controller;
    const auto count = controller.getParameterCount() - 1; // the last one, "Program", is not in the state
    const auto valueOf = [&] (int32 index) { return controller.getParamNormalized (instance.infoOf (index).id); };
    const auto setAll = [&]
    {
        for (int32 i = 0; i < count; ++i)
            controller.setParamNormalized (instance.infoOf (i).id, static_cast<double> (random() % 1001) / 1000.0);
    };

    for (int round = 0; round < 10; ++round)
    {
        setAll();
        std::vector<double> read;

        for (int32 i = 0; i < count; ++i)
        {
            read.push_back (valueOf (i));
            const auto inSteps = read.back() * instance.infoOf (i).stepCount; // 0 without steps
            EXPECT_NEAR (inSteps, std::round (inSteps), 1e-6) << i;
        }

        const auto project = instance.saved();
        setAll();
        instance.load (project);

        // The channel number shows no steps, so the host keeps what it sent: half of a 31st away at most. The others
        // move on grids of a hundredth and finer.
        for (int32 i = 0; i < count; ++i)
            EXPECT_NEAR (valueOf (i), read[static_cast<std::size_t> (i)],
                         i == parameterIndex::tolChannel ? 0.0162 : 0.0051)
                << i;
    }

    // What is not a number changes nothing.
    const auto before = valueOf (2);
    controller.setParamNormalized (instance.infoOf (2).id, std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ (valueOf (2), before);
}

} // namespace tarvik
