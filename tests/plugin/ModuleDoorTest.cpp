// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/plugin/ModuleInstance.h"
#include "tests/support/StateTestTools.h"
#include "tests/support/StripTestTools.h"

#include <atomic>
#include <iostream>
#include <thread>

namespace tarvik
{

using namespace test;

namespace
{
#ifdef __SANITIZE_ADDRESS__
constexpr double mostMs = 1000.0;
#else
constexpr double mostMs = 100.0;
#endif

constexpr std::size_t header = 8, tail = 60, switchFromEnd = 25; ///< In bytes; what JUCE puts around our document.
constexpr char on = 2, off = 3;                                  ///< How it writes the bypass.

/** The built module in a host that plays on one thread and loads states on another. */
class ModuleDoor : public testing::Test
{
protected:
    ModuleDoor()
    {
        instance.startPlaying();
        audio = std::thread (
            [this]
            {
                for (; isPlaying; ++blocks)
                {
                    const auto heard = instance.play();
                    isFinite = isFinite && std::isfinite (heard);
                    isHeard = isHeard || std::abs (heard) > 0.001f;
                }
            });

        // Two projects that differ wherever they can, the bypass too: the second one's is on.
        const auto fresh = instance.saved();

        for (const auto isSecond : { 0u, 1u })
        {
            const auto strip = makeNoiselessStrip (2, 1); // the factor that costs least
            strip->selectSlot (isSecond == 1 ? 0 : 1);
            strip->setCurrentProgram (isSecond == 1 ? 3 : 17);
            const auto block = saved (*strip);
            std::string project (static_cast<const char*> (block.getData()), block.getSize());
            project += fresh.substr (fresh.size() - tail);
            project[project.size() - switchFromEnd] = isSecond == 1 ? on : off;
            instance.load (project);
            projects[isSecond] = instance.saved();
        }
    }

    ~ModuleDoor() override
    {
        isPlaying = false;
        audio.join();
    }

    /** Load it, listen, and see what is left. */
    std::string keptAfter (const std::string& state)
    {
        auto best = std::numeric_limits<double>::max();

        // A machine that is busy with other things may need a second and a third try.
        for (int attempt = 0; attempt < 3 && best > mostMs; ++attempt)
        {
            const auto begin = juce::Time::getMillisecondCounterHiRes();
            instance.load (state);
            best = std::min (best, juce::Time::getMillisecondCounterHiRes() - begin);
        }

        slowestMs = std::max (slowestMs, best);
        EXPECT_LE (best, mostMs);

        for (const auto heard = blocks.load(); blocks < heard + 2;)
            std::this_thread::yield();

        EXPECT_TRUE (isFinite);
        EXPECT_TRUE (instance.allParametersAreInRange());
        return instance.saved();
    }

    const Module module;
    const Held<IPluginFactory> factory { module.getFactory() };
    ModuleInstance instance { *factory };
    std::atomic<bool> isPlaying { true }, isFinite { true }, isHeard { false };
    std::atomic<int> blocks { 0 };
    std::thread audio;
    std::string projects[2];
    double slowestMs = 0.0;
};

constexpr std::size_t numRandomDamages = 500;

std::size_t numDamages (const std::string& good) { return good.size() * 9 + numRandomDamages; }

/** First each bit flipped, then cut to each length, then at random. */
std::string damaged (std::string state, std::size_t number)
{
    if (number < state.size() * 8)
    {
        state[number / 8] = static_cast<char> (state[number / 8] ^ (1 << number % 8));
        return state;
    }

    number -= state.size() * 8;

    if (number < state.size())
        return state.substr (0, number);

    std::mt19937 random (static_cast<unsigned> (number - state.size()));
    const auto place = random() % state.size(), length = random() % 100;
    const auto kind = random() % 4;

    if (kind == 0)
        return state.erase (place, length);

    if (kind == 1)
        return state.insert (random() % state.size(), state.substr (place, length));

    // Something else in front of the private part's mark, from anywhere or from within that part.
    state.resize (kind == 2 ? place : state.size() - tail / 2);

    for (auto i = random() % 40; i > 0; --i)
        state += static_cast<char> (random() % 4 == 0 ? random() : random() % 4);

    const auto anyNumber = static_cast<int64> (random());
    const auto size = anyNumber % 2 == 0 ? anyNumber % 64 : -anyNumber;
    return state + std::string (reinterpret_cast<const char*> (&size), sizeof (size)) + "JUCEPrivateData";
}

/** The damages to try: all around the document, one bit of each byte within it, all others; every one with TARVIK_DAMAGE=all
    in the environment, or the one of that number.
*/
std::vector<std::size_t> damagesToTry (const std::string& good)
{
    const auto* const wish = std::getenv ("TARVIK_DAMAGE");
    const auto isAll = wish != nullptr && wish == std::string_view ("all");

    if (wish != nullptr && ! isAll)
        return { std::stoul (wish) };

    std::vector<std::size_t> numbers;

    for (std::size_t n = 0; n < numDamages (good); ++n)
    {
        const auto byte = n / 8;

        if (isAll || byte < header || byte >= good.size() - tail - 1 || n % 8 == byte % 8)
            numbers.push_back (n);
    }

    return numbers;
}
} // namespace

TEST_F (ModuleDoor, DamagedStatesWhileItPlays)
{
    const auto& [good, next] = projects;
    ASSERT_EQ (good[good.size() - switchFromEnd], off);
    ASSERT_EQ (next[next.size() - switchFromEnd], on);
    const auto document = good.substr (0, good.size() - tail);
    const auto bypass = [] (const std::string& state) { return state[state.size() - switchFromEnd]; };
    const auto numbers = damagesToTry (good);

    for (const auto number : numbers)
    {
        SCOPED_TRACE (number);
        const auto bad = damaged (good, number);
        const auto left = keptAfter (bad);
        const auto isTailWhole =
            bad.size() >= tail && bad.substr (bad.size() - tail) == good.substr (good.size() - tail);
        ASSERT_EQ (bypass (left), isTailWhole ? off : on);

        if (bad.substr (0, document.size() - 1) == document.substr (0, document.size() - 1)) // but for its zero byte
        {
            ASSERT_EQ (left.substr (0, left.size() - tail), document);
        }
        else if (bad == good.substr (0, bad.size()))
        {
            ASSERT_EQ (left, next) << "cut short, it is none";
        }

        ASSERT_EQ (keptAfter (next), next);
    }

    EXPECT_TRUE (isHeard);

    if (numbers.size() == numDamages (good))
        std::cout << numbers.size() << " damages to " << good.size() << " bytes, " << blocks
                  << " blocks played, at most " << slowestMs << " ms to load\n";
}

TEST_F (ModuleDoor, LengthsThatLieAndStatesInPieces)
{
    // The lengths that a signed or an unsigned sum takes beyond either end, and trees that nest without end.
    for (const int64 length : { int64 (-100000000), int64 (-1), std::numeric_limits<int64>::min(),
                                std::numeric_limits<int64>::max(), int64 (1) << 31, int64 (1) })
        for (const auto* const content : { "", "x\0\0\1\1" })
        {
            std::string state;

            for (int i = 0; i < 200000 && *content != '\0'; ++i)
                state.append (content, 5); // a name, a property count of zero, a branch count of one

            state.append (reinterpret_cast<const char*> (&length), sizeof (length)); // little-endian, like the format
            EXPECT_EQ (keptAfter (state + "JUCEPrivateData"), projects[1]) << length;
        }

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
