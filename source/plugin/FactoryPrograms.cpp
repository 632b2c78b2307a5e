// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/FactoryPrograms.h"

#include "plugin/ParameterTable.h"

#include <algorithm>
#include <string_view>

namespace tarvik
{

namespace
{
/** A value as a user would read it off the panel: a number, a switch, or the words of a choice. */
struct Value
{
    constexpr Value (float number) : plain (number) {} // implicit, as are the next two

    constexpr Value (bool isOn) : plain (isOn ? 1.0f : 0.0f) {}

    constexpr Value (const char* words) : plain (-1), choice (words) {}

    /** A parameter's plain value; -1 for words that none of its choices has. */
    constexpr float of (const ParameterRow& row) const
    {
        for (std::size_t i = 0; i < row.choices.size(); ++i)
            if (row.choices[i] == choice)
                return static_cast<float> (i);

        return plain;
    }

    float plain;
    std::string_view choice {};
};

// clang-format off
/** What a program sets. Everything else has its default. */
constexpr auto columns = std::to_array<int> ({
    parameterNamed ("thd"), parameterNamed ("gain"), parameterNamed ("unity"), parameterNamed ("highFreq"),
    parameterNamed ("highGain"), parameterNamed ("midFreq"), parameterNamed ("midGain"), parameterNamed ("midMode"),
    parameterNamed ("lowFreq"), parameterNamed ("lowGain"), parameterNamed ("highPass"), parameterNamed ("eqPost"),

    parameterNamed ("compMix"), parameterNamed ("compHPF"), parameterNamed ("compThreshold"),
    parameterNamed ("compRatio"), parameterNamed ("compAttack"), parameterNamed ("compRelease"),
    parameterNamed ("compInput"), parameterNamed ("compOutput"), parameterNamed ("compLimit"),
    parameterNamed ("compNiveau"), parameterNamed ("compNuke"), parameterNamed ("level"),

    parameterNamed ("expThreshold"), parameterNamed ("expRange"), parameterNamed ("expAttack"),
    parameterNamed ("expRelease") });

struct ProgramRow
{
    const char* name;
    std::array<Value, columns.size()> values;
};

constexpr ProgramRow programRows[] =
{
    { "Default"             ,   0.0f,   0.0f, false, "10 kHz", "0 dB"  , "2800 Hz",  0.0f, "Boost", "0 dB"  ,  0.0f, "OFF"  , false,
         1.0f,   20.0f,    0.0f, "2:1", "Slow"  , "50 ms" ,  2.5f,  2.5f, false, false, false,   0.0f,
       -30.0f,  -20.0f, "Medium",   0.3f },
    { "808 1"               ,   0.0f,  4.77f, true , "10 kHz", "0 dB"  , "1000 Hz", 0.64f, "Boost", "60 Hz" , 0.83f, "OFF"  , false,
         1.0f,  26.17f,  -12.5f, "2:1", "Slow"  , "AUTO"  ,  2.5f,  2.5f, false, true , false, -2.27f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "808 2"               ,   0.0f,  9.87f, true , "10 kHz", "0 dB"  , "700 Hz" , 0.34f, "Boost", "100 Hz", 0.25f, "OFF"  , false,
         1.0f,   20.0f, -11.32f, "2:1", "Slow"  , "AUTO"  ,  2.5f,  2.5f, false, false, false, -0.76f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "808 3 Dist"          ,   0.0f, 14.43f, true , "10 kHz", "0 dB"  , "700 Hz" , 0.34f, "Boost", "60 Hz" , 0.76f, "OFF"  , false,
         1.0f,   20.0f, -12.31f, "2:1", "Slow"  , "50 ms" ,  2.5f,  2.5f, false, false, false, -0.76f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Bass 1"              ,   0.0f,  3.49f, true , "10 kHz", "0 dB"  , "1000 Hz", 0.64f, "Boost", "100 Hz", 0.39f, "OFF"  , false,
         1.0f,   20.0f, -12.41f, "2:1", "Slow"  , "100 ms",  2.5f,  2.5f, false, true , false, -1.85f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Bass 2 Overdrive"    , -1.58f, 10.58f, true , "6 kHz" , "-8 dB" , "1400 Hz", 0.64f, "Boost", "100 Hz", 0.39f, "OFF"  , false,
         1.0f,   20.0f, -18.21f, "2:1", "Slow"  , "100 ms",  2.5f, 2.88f, false, true , false, -1.85f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Bass 3"              ,   0.0f,  2.88f, true , "10 kHz", "0 dB"  , "2000 Hz",  0.4f, "Boost", "60 Hz" , 0.26f, "OFF"  , false,
         1.0f,   20.0f, -12.78f, "2:1", "Slow"  , "100 ms",  2.5f,  2.5f, false, true , false, -1.43f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Drum Buss 1"         ,   0.0f,  4.89f, true , "10 kHz", "2 dB"  , "2800 Hz", 0.21f, "Boost", "60 Hz" , 0.14f, "OFF"  , false,
      0.8675f,   20.0f,  -6.89f, "2:1", "Fast"  , "50 ms" ,  2.5f, 2.42f, false, false, false,   0.0f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Drum Buss 2"         ,   0.0f,   0.0f, true , "14 kHz", "2 dB"  , "3500 Hz", 0.37f, "Boost", "60 Hz" , 0.14f, "OFF"  , false,
      0.8675f,  92.38f,  -7.59f, "2:1", "Fast"  , "AUTO"  ,  2.5f, 2.42f, false, false, false,   0.0f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Drum Buss 3"         ,   0.0f,  4.88f, true , "10 kHz", "0 dB"  , "2800 Hz",  0.4f, "Boost", "60 Hz" , 0.51f, "40 Hz", false,
         1.0f,   20.0f, -14.51f, "2:1", "Slow"  , "25 ms" ,  2.5f, 2.18f, false, true , false,   0.0f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Drum Buss 4"         ,   0.0f,  4.88f, true , "10 kHz", "0 dB"  , "2800 Hz",  0.4f, "Boost", "60 Hz" , 0.46f, "40 Hz", false,
      0.4931f,   58.2f, -14.51f, "2:1", "Slow"  , "25 ms" , 3.75f, 1.59f, false, true , true , -4.29f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Kick 1"              ,   0.0f,   0.0f, false, "6 kHz" , "4 dB"  , "2800 Hz", 0.42f, "Boost", "60 Hz" , 0.68f, "OFF"  , false,
         1.0f,   20.0f, -17.15f, "3:1", "Slow"  , "25 ms" ,  2.5f, 2.41f, false, true , false,   0.0f,
       -40.0f,  -2.06f, "Medium", 0.292f },
    { "Kick 2"              ,   0.0f,   0.0f, false, "6 kHz" , "4 dB"  , "4500 Hz", 0.57f, "Boost", "60 Hz" , 0.78f, "OFF"  , false,
      0.8877f,  49.66f, -16.21f, "2:1", "Slow"  , "50 ms" , 4.44f, 1.17f, false, true , false, -1.85f,
       -40.0f,  -2.06f, "Medium", 0.292f },
    { "Kick 3"              ,   0.0f, -0.25f, true , "10 kHz", "-8 dB" , "6000 Hz", 0.86f, "Boost", "60 Hz" , 0.77f, "40 Hz", false,
         1.0f,   20.0f, -10.93f, "2:1", "Slow"  , "25 ms" ,  2.5f, 2.37f, false, false, false,   0.0f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Mix Buss 1"          , -14.9f,  2.38f, true , "14 kHz", "0 dB"  , "6000 Hz", 0.18f, "Boost", "60 Hz" , 0.09f, "OFF"  , false,
         1.0f,  92.45f,  -4.07f, "2:1", "Slow"  , "100 ms",  2.5f,  2.5f, false, false, false, -0.34f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Mix Buss 2"          ,   0.0f,  0.81f, true , "14 kHz", "4 dB"  , "2800 Hz", 0.23f, "Boost", "60 Hz" , 0.06f, "OFF"  , false,
         1.0f,  94.92f,  -9.18f, "2:1", "Slow"  , "AUTO"  ,  2.5f,  2.5f, false, false, false,   0.0f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Mix Buss 3"          ,   0.0f,  1.63f, true , "14 kHz", "2 dB"  , "2800 Hz", 0.19f, "Boost", "60 Hz" ,  0.2f, "OFF"  , true,
      0.8432f, 107.79f,  -6.97f, "2:1", "Slow"  , "AUTO"  ,  2.5f, 2.56f, false, true , false,   0.0f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Snare 1"             ,   0.0f,  6.01f, true , "6 kHz" , "4 dB"  , "700 Hz" , 0.68f, "Cut"  , "200 Hz", 0.61f, "80 Hz", false,
         1.0f,   20.0f, -15.58f, "2:1", "Medium", "100 ms",  2.5f,  2.5f, false, false, false,   0.0f,
      -37.68f,  -7.58f, "Fast"  ,   0.2f },
    { "Snare 2"             ,   0.0f,  6.01f, true , "6 kHz" , "4 dB"  , "700 Hz" , 0.68f, "Cut"  , "200 Hz", 0.61f, "80 Hz", false,
      0.6208f,   20.0f, -15.58f, "2:1", "Medium", "100 ms",  2.5f,  2.5f, false, false, true ,  -2.1f,
      -37.68f,  -7.58f, "Fast"  ,   0.2f },
    { "Snare 3"             ,   0.0f,  6.01f, true , "10 kHz", "6 dB"  , "2800 Hz", 0.62f, "Boost", "100 Hz", 0.48f, "80 Hz", false,
         1.0f,   20.0f, -14.07f, "2:1", "Slow"  , "200 ms", 2.87f, 1.94f, false, false, false,   0.0f,
       -40.0f, -11.25f, "Fast"  , 0.255f },
    { "Vox Female 1"        ,   0.0f,   0.0f, false, "14 kHz", "2 dB"  , "2800 Hz", 0.37f, "Boost", "-6 dB" ,  0.0f, "80 Hz", false,
         1.0f,   20.0f, -15.81f, "2:1", "Slow"  , "100 ms",  2.5f, 2.93f, false, true , false,   0.0f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Vox Female 2"        ,   0.0f, 10.04f, true , "10 kHz", "4 dB"  , "3500 Hz", 0.29f, "Boost", "-12 dB",  0.0f, "80 Hz", false,
         1.0f,   20.0f, -15.81f, "2:1", "Slow"  , "25 ms" ,  2.5f, 1.97f, false, true , true ,   0.0f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Vox Female 3 Vintage", 17.66f, 13.03f, true , "10 kHz", "-10 dB", "2000 Hz", 0.54f, "Boost", "-15 dB",  0.0f, "80 Hz", false,
      0.6432f,   20.0f, -13.06f, "2:1", "Medium", "100 ms", 2.37f, 2.03f, false, true , true ,   0.0f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Vox Rap 1"           ,   0.0f,  5.61f, true , "10 kHz", "2 dB"  , "3500 Hz", 0.64f, "Boost", "-6 dB" ,  0.0f, "80 Hz", false,
         1.0f,   20.0f, -14.49f, "3:1", "Slow"  , "100 ms",  2.5f,  2.7f, true , true , false,   0.0f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Vox Rap 2"           ,   0.0f,  8.34f, true , "10 kHz", "4 dB"  , "3500 Hz", 0.64f, "Boost", "-9 dB" ,  0.0f, "80 Hz", false,
      0.9517f,  46.77f, -14.49f, "3:1", "Slow"  , "25 ms" ,  2.5f, 2.41f, true , false, true ,   0.0f,
       -30.0f,    0.0f, "Medium",   0.2f },
    { "Vox Rap 3 Aggressive",   0.0f, 20.84f, true , "10 kHz", "-10 dB", "4500 Hz", 0.88f, "Boost", "-12 dB",  0.0f, "80 Hz", false,
      0.8678f,  46.77f, -13.89f, "3:1", "Slow"  , "25 ms" ,  2.5f, 2.47f, true , true , true ,   0.0f,
       -30.0f,    0.0f, "Medium",   0.2f },
};
// clang-format on

static_assert (std::size (programRows) == numFactoryPrograms);
static_assert (std::ranges::all_of (programRows,
                                    [] (const auto& program)
                                    {
                                        for (std::size_t i = 0; i < columns.size(); ++i)
                                        {
                                            const auto& [row, value] =
                                                std::pair (parameterRow (columns[i]), program.values[i]);

                                            if (value.choice.empty() != row.choices.empty()
                                                || (! row.choices.empty() && value.of (row) < 0.0f))
                                                return false;
                                        }

                                        return true;
                                    }),
               "a program names a choice that its parameter does not have");
} // namespace

const std::array<FactoryProgram, numFactoryPrograms>& factoryPrograms()
{
    static const auto programs = []
    {
        std::array<FactoryProgram, numFactoryPrograms> made;

        for (std::size_t p = 0; p < made.size(); ++p)
        {
            made[p].name = programRows[p].name;

            for (std::size_t i = 0; i < columns.size(); ++i)
                fieldForParameter (made[p].snapshot, columns[i])
                    .set (programRows[p].values[i].of (parameterRow (columns[i])));
        }

        return made;
    }();

    return programs;
}

} // namespace tarvik
