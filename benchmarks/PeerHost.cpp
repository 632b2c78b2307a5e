// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <lilv/lilv.h>
#include <lv2/atom/forge.h>
#include <lv2/atom/util.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/options/options.h>
#include <lv2/patch/patch.h>
#include <lv2/urid/urid.h>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

// What LV2 plug-ins cost beside each other: the least that a host does for them, and a clock. benchmarks/peers builds and calls
// it, with 16-bit stereo samples at standard input and the plug-in's own bundle as the argument.
namespace
{
constexpr double rateHz = 48000.0;
constexpr std::array<int, 2> blockLengths { 64, 256 };
constexpr int longestBlock = 256, rounds = 15;
constexpr std::size_t numChannels = 2;
constexpr const char* ownUri = "urn:nomvale:tarvik41channel";

struct Candidate
{
    std::string maker, role, uri;
    std::string controls; ///< by the port's symbol, or the ID of our parameters, in the units of the description
    int factor = 1;       ///< ours only
};

/** Each set so that the loop makes it work: six bands, or as many as there are, away from 0 dB; thresholds where the loop is,
    which has most of its stretches of 10 ms between -13 and -8 dBFS. What is not named stays at its default. */
std::vector<Candidate> candidates()
{
    std::vector<Candidate> all {
        { "LSP", "equaliser", "http://lsp-plug.in/plugins/lv2/para_equalizer_x16_stereo",
          "ft_0=2 f_0=80 ft_1=1 f_1=200 g_1=2 ft_2=1 f_2=500 g_2=0.5 ft_3=1 f_3=1250 g_3=2 ft_4=1 f_4=3000 g_4=0.5 "
          "ft_5=1 f_5=8000 g_5=2" },
        { "LSP", "compressor", "http://lsp-plug.in/plugins/lv2/compressor_stereo", "al=0.1 cr=4" },
        { "LSP", "gate", "http://lsp-plug.in/plugins/lv2/gate_stereo", "gt=0.35 gz=0.95 at=1 rt=20 gr=0.06" },
        { "Calf", "equaliser", "http://calf.sourceforge.net/plugins/Equalizer5Band",
          "ls_active=1 ls_level=2 hs_active=1 hs_level=2 p1_active=1 p1_level=0.5 p2_active=1 p2_level=2 p3_active=1 "
          "p3_level=0.5" },
        { "Calf", "compressor", "http://calf.sourceforge.net/plugins/Compressor", "threshold=0.1 ratio=4" },
        { "Calf", "gate", "http://calf.sourceforge.net/plugins/Gate", "threshold=0.35 ratio=4 attack=1 release=20" },
        { "EQ10Q", "equaliser", "http://eq10q.sourceforge.net/eq/eq6qs",
          "filter1_enable=1 filter1_type=6 filter2_enable=1 filter2_type=11 filter2_gain=6 filter3_enable=1 "
          "filter3_type=11 filter3_gain=-6 filter4_enable=1 filter4_type=11 filter4_gain=6 filter5_enable=1 "
          "filter5_type=11 filter5_gain=-6 filter6_enable=1 filter6_type=11 filter6_gain=6" },
        { "EQ10Q", "compressor", "http://eq10q.sourceforge.net/compressor_stereo", "threshold=-20" },
        { "EQ10Q", "gate", "http://eq10q.sourceforge.net/gate_stereo",
          "threshold=-7 gaterange=-24 attack=1 hold=1 decay=20" },
        { "x42", "equaliser", "http://gareus.org/oss/lv2/fil4#stereo",
          "HighPass=1 HPfreq=80 LSgain=6 gain1=-6 gain2=6 gain3=-6 gain4=6 HSgain=6" },
        { "x42", "compressor", "http://gareus.org/oss/lv2/darc#stereo", "threshold=-30 Ratio=0.6" },
        { "Zam", "equaliser", "urn:zamaudio:ZamEQ2", "boost1=6 boost2=-6 boostl=6 boosth=6" },
        { "Zam", "compressor", "urn:zamaudio:ZamCompX2", "thr=-20" },
        { "Zam", "gate", "urn:zamaudio:ZamGateX2", "thr=-9 att=1 rel=20" },
    };

    for (const auto factor : { 1, 2, 4 })
        all.push_back (
            { "ours", "factor " + std::to_string (factor), ownUri,
              "highGain=8 midGain=0.6 lowFreq=1 lowGain=0.6 highPass=1 compThreshold=-12 compRatio=3 compHPF=120 "
              "compLimit=1 compNiveau=1 expMode=2 expThreshold=8 expRelease=0.1",
              factor });

    return all;
}

using Controls = std::vector<std::pair<std::string, float>>;

Controls parse (const std::string& text)
{
    Controls controls;
    std::istringstream words (text);

    for (std::string word; words >> word;)
    {
        const auto equals = word.find ('=');
        controls.emplace_back (word.substr (0, equals), std::stof (word.substr (equals + 1)));
    }

    return controls;
}

//==============================================================================
LV2_URID mapUri (LV2_URID_Map_Handle, const char* uri)
{
    static std::map<std::string, LV2_URID> numbers;
    return numbers.try_emplace (uri, static_cast<LV2_URID> (numbers.size() + 1)).first->second;
}

LV2_URID number (const char* uri) { return mapUri (nullptr, uri); }

double threadSeconds()
{
    std::timespec time {};
    clock_gettime (CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double> (time.tv_sec) + 1e-9 * static_cast<double> (time.tv_nsec);
}

/** New instances of our plug-in take their factor from the user's settings. */
void writeOwnSettings (int factor)
{
    const auto folder = std::string (std::getenv ("XDG_CONFIG_HOME")) + "/Tarvik Plugins";
    std::ofstream file (folder + "/Tarvik 41 Channel.settings");
    file << "<PROPERTIES><VALUE name=\"Oversampling\" val=\"" << factor << "\"/></PROPERTIES>\n";

    if (! file.flush())
        throw std::runtime_error ("cannot write into " + folder);
}

using Signal = std::array<std::vector<float>, numChannels>;

//==============================================================================
/** One instance with everything connected. What has more audio inputs than outputs has silence on the last of them. */
class Instance
{
public:
    Instance (LilvWorld* world, const LilvPlugin* plugin, const Controls& controls)
        : handle (lilv_plugin_instantiate (plugin, rateHz, features.data()), lilv_instance_free)
    {
        if (handle == nullptr)
            throw std::runtime_error ("it cannot be made");

        const auto numPorts = lilv_plugin_get_num_ports (plugin);
        const auto is = [&, world] (const LilvPort* port, const char* type)
        {
            auto* const node = lilv_new_uri (world, type);
            const auto answer = lilv_port_is_a (plugin, port, node);
            lilv_node_free (node);
            return answer;
        };
        values.resize (numPorts);
        lilv_plugin_get_port_ranges_float (plugin, nullptr, nullptr, values.data());
        Controls parameters = controls;

        for (std::uint32_t i = 0; i < numPorts; ++i)
        {
            const auto* const port = lilv_plugin_get_port_by_index (plugin, i);
            const auto isInput = is (port, LILV_URI_INPUT_PORT);

            if (is (port, LILV_URI_AUDIO_PORT))
            {
                auto& rows = isInput ? inputs : outputs;
                rows.push_back (std::make_unique<std::array<float, longestBlock>>());
                rows.back()->fill (0.0f);
                lilv_instance_connect_port (handle.get(), i, rows.back()->data());
            }
            else if (is (port, LILV_URI_ATOM_PORT))
            {
                auto& buffers = isInput ? events : notices;
                buffers.push_back (std::make_unique<AtomBuffer>());
                lilv_instance_connect_port (handle.get(), i, buffers.back()->data());
            }
            else
            {
                const std::string symbol = lilv_node_as_string (lilv_port_get_symbol (plugin, port));
                const auto named = std::find_if (parameters.begin(), parameters.end(),
                                                 [&] (auto& control) { return control.first == symbol; });

                if (! std::isfinite (values[i]))
                    values[i] = 0.0f;

                if (named != parameters.end())
                {
                    values[i] = named->second;
                    parameters.erase (named);
                }

                lilv_instance_connect_port (handle.get(), i, &values[i]);
            }
        }

        if (! parameters.empty())
            sendParameters (lilv_node_as_uri (lilv_plugin_get_uri (plugin)), parameters);

        lilv_instance_activate (handle.get());
    }

    std::size_t getNumChannels() const { return outputs.size(); }

    float* input (std::size_t c) { return inputs[c]->data(); }

    const float* output (std::size_t c) const { return outputs[c]->data(); }

    void run (int n)
    {
        for (auto& buffer : notices)
        {
            auto* const sequence = reinterpret_cast<LV2_Atom_Sequence*> (buffer->data());
            sequence->atom = { sizeof (AtomBuffer) - sizeof (LV2_Atom), number (LV2_ATOM__Chunk) };
        }

        lilv_instance_run (handle.get(), static_cast<std::uint32_t> (n));

        // What was sent is heard once.
        for (auto& buffer : events)
            clear (*buffer);
    }

private:
    using AtomBuffer = std::array<std::uint64_t, 4096>;

    static void clear (AtomBuffer& buffer)
    {
        auto* const sequence = reinterpret_cast<LV2_Atom_Sequence*> (buffer.data());
        sequence->atom = { sizeof (LV2_Atom_Sequence_Body), number (LV2_ATOM__Sequence) };
        sequence->body = {};
    }

    void sendParameters (const std::string& uri, const Controls& parameters)
    {
        if (events.empty())
            throw std::runtime_error ("it has no control " + parameters.front().first);

        LV2_Atom_Forge forge;
        lv2_atom_forge_init (&forge, &map);
        auto* const bytes = reinterpret_cast<std::uint8_t*> (events.front()->data());
        lv2_atom_forge_set_buffer (&forge, bytes, sizeof (AtomBuffer));
        LV2_Atom_Forge_Frame sequence, object;
        lv2_atom_forge_sequence_head (&forge, &sequence, 0);

        for (const auto& [id, value] : parameters)
        {
            lv2_atom_forge_frame_time (&forge, 0);
            lv2_atom_forge_object (&forge, &object, 0, number (LV2_PATCH__Set));
            lv2_atom_forge_key (&forge, number (LV2_PATCH__property));
            lv2_atom_forge_urid (&forge, number ((uri + ":" + id).c_str()));
            lv2_atom_forge_key (&forge, number (LV2_PATCH__value));
            lv2_atom_forge_float (&forge, value);
            lv2_atom_forge_pop (&forge, &object);
        }

        lv2_atom_forge_pop (&forge, &sequence);
    }

    inline static LV2_URID_Map map { nullptr, mapUri };
    inline static const std::int32_t shortest = 1, longest = longestBlock, eventBytes = sizeof (AtomBuffer);
    inline static const std::array<LV2_Options_Option, 5> options { {
        { LV2_OPTIONS_INSTANCE, 0, number (LV2_BUF_SIZE__minBlockLength), 4, number (LV2_ATOM__Int), &shortest },
        { LV2_OPTIONS_INSTANCE, 0, number (LV2_BUF_SIZE__maxBlockLength), 4, number (LV2_ATOM__Int), &longest },
        { LV2_OPTIONS_INSTANCE, 0, number (LV2_BUF_SIZE__nominalBlockLength), 4, number (LV2_ATOM__Int), &longest },
        { LV2_OPTIONS_INSTANCE, 0, number (LV2_BUF_SIZE__sequenceSize), 4, number (LV2_ATOM__Int), &eventBytes },
        {},
    } };
    inline static const LV2_Feature mapFeature { LV2_URID__map, &map },
        optionsFeature { LV2_OPTIONS__options, const_cast<LV2_Options_Option*> (options.data()) },
        boundedFeature { LV2_BUF_SIZE__boundedBlockLength, nullptr };
    inline static const std::array<const LV2_Feature*, 4> features { &mapFeature, &optionsFeature, &boundedFeature,
                                                                     nullptr };

    std::unique_ptr<LilvInstance, decltype (&lilv_instance_free)> handle;
    std::vector<float> values;
    std::vector<std::unique_ptr<std::array<float, longestBlock>>> inputs, outputs;
    std::vector<std::unique_ptr<AtomBuffer>> events, notices;
};

//==============================================================================
/** A plug-in on a stereo track: one instance, or one for each side if it is mono. */
class Track
{
public:
    Track (LilvWorld* world, const Candidate& candidate)
    {
        auto* const uri = lilv_new_uri (world, candidate.uri.c_str());
        const auto* const plugin = lilv_plugins_get_by_uri (lilv_world_get_all_plugins (world), uri);
        lilv_node_free (uri);

        if (plugin == nullptr)
            throw std::runtime_error ("it is not installed");

        while (instances.size() * (instances.empty() ? 1 : instances.front()->getNumChannels()) < numChannels)
            instances.push_back (std::make_unique<Instance> (world, plugin, parse (candidate.controls)));
    }

    /** Plays all of the signal and tells the seconds that it took for each sample and channel. */
    double play (const Signal& signal, int blockLength, Signal* heard = nullptr)
    {
        const auto n = static_cast<std::size_t> (blockLength);
        const auto start = threadSeconds();
        std::size_t position = 0;

        for (; position + n <= signal[0].size(); position += n)
            for (std::size_t i = 0, first = 0; i < instances.size(); first += instances[i++]->getNumChannels())
            {
                const auto own = std::min (instances[i]->getNumChannels(), numChannels);

                for (std::size_t c = 0; c < own; ++c)
                    std::copy_n (signal[first + c].data() + position, n, instances[i]->input (c));

                instances[i]->run (blockLength);

                if (heard != nullptr)
                    for (std::size_t c = 0; c < own; ++c)
                        std::copy_n (instances[i]->output (c), n, (*heard)[first + c].data() + position);
            }

        return (threadSeconds() - start) / static_cast<double> (numChannels * position);
    }

private:
    std::vector<std::unique_ptr<Instance>> instances;
};

/** By how many dB the plug-in moves the level of the loudest and of the quietest tenth of a loop, of stretches of 10 ms. Without
    work on the signal both are 0, whatever its latency. */
std::array<double, 2> levelChangesDb (const Signal& played, const Signal& heard)
{
    constexpr std::size_t stretch = 480;
    const auto levels = [] (const std::vector<float>& row)
    {
        std::vector<double> found;

        for (std::size_t i = 0; i + stretch <= row.size(); i += stretch)
        {
            double sum = 1e-12;
            std::for_each_n (row.begin() + static_cast<std::ptrdiff_t> (i), stretch,
                             [&] (float sample)
                             { sum += static_cast<double> (sample) * static_cast<double> (sample); });
            found.push_back (10.0 * std::log10 (sum));
        }

        std::sort (found.begin(), found.end());
        return std::array { found[found.size() * 9 / 10], found[found.size() / 10] };
    };
    const auto before = levels (played[0]), after = levels (heard[0]);
    return { after[0] - before[0], after[1] - before[1] };
}

struct Result
{
    Candidate candidate;
    std::unique_ptr<Track> track;
    std::array<double, 2> changesDb {};
    std::array<std::vector<double>, blockLengths.size()> seconds {};
    std::array<double, blockLengths.size()> ns {};
};

void printTable (std::FILE* out, const std::vector<Result>& results)
{
    std::map<std::string, std::array<double, blockLengths.size()>> sums;
    std::vector<std::string> makers;

    for (const auto& result : results)
        if (result.candidate.uri != ownUri)
        {
            if (sums.find (result.candidate.maker) == sums.end())
                makers.push_back (result.candidate.maker);

            for (std::size_t b = 0; b < blockLengths.size(); ++b)
                sums[result.candidate.maker][b] += result.ns[b];
        }

    std::fputs ("ns per sample and channel, blocks of 64 and 256; loudest and quietest tenth, dB\n", out);

    for (const auto& result : results)
        std::fprintf (out, "%-8s%-12s%8.1f%8.1f%10.1f%7.1f\n", result.candidate.maker.c_str(),
                      result.candidate.role.c_str(), result.ns[0], result.ns[1], result.changesDb[0],
                      result.changesDb[1]);

    std::fputs ("\nThe plug-ins of a maker together, and ours at factors 1, 2 and 4 as multiples of them\n", out);

    for (const auto& maker : makers)
        for (std::size_t b = 0; b < blockLengths.size(); ++b)
        {
            std::fprintf (out, "%-8sblocks of %3d%8.1f", maker.c_str(), blockLengths[b], sums[maker][b]);

            for (const auto& result : results)
                if (result.candidate.uri == ownUri)
                    std::fprintf (out, "%8.2f", result.ns[b] / sums[maker][b]);

            std::fputc ('\n', out);
        }
}

Signal readSamples()
{
    const std::vector<char> bytes { std::istreambuf_iterator<char> (std::ifstream ("/dev/stdin").rdbuf()), {} };
    Signal signal;

    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
    {
        constexpr float fullScale = 32768.0f;
        const auto low = static_cast<unsigned char> (bytes[i]), high = static_cast<unsigned char> (bytes[i + 1]);
        const auto sample = static_cast<std::int16_t> (static_cast<std::uint16_t> (low | high << 8));
        signal[i / 2 % numChannels].push_back (static_cast<float> (sample) / fullScale);
    }

    if (signal[1].size() < static_cast<std::size_t> (rateHz / 10.0))
        throw std::runtime_error ("no recording at standard input");

    return signal;
}

void compare (const char* ownBundle, std::FILE* out)
{
    const auto signal = readSamples();
    auto* const world = lilv_world_new();
    lilv_world_load_all (world);
    auto* const bundle = lilv_new_file_uri (world, nullptr, ownBundle);
    lilv_world_load_bundle (world, bundle);
    lilv_node_free (bundle);
    std::vector<Result> results;

    for (const auto& candidate : candidates())
    {
        const auto name = candidate.maker + ", " + candidate.role;

        try
        {
            writeOwnSettings (candidate.factor);
            results.push_back ({ candidate, std::make_unique<Track> (world, candidate) });
        }
        catch (const std::exception& error)
        {
            throw std::runtime_error (name + ": " + error.what());
        }

        // Twice, so that all fades are over.
        auto heard = signal;
        auto& result = results.back();
        result.track->play (signal, longestBlock);
        result.track->play (signal, longestBlock, &heard);
        result.changesDb = levelChangesDb (signal, heard);
        constexpr double leastWorkDb = 0.5;

        if (std::abs (result.changesDb[0]) < leastWorkDb && std::abs (result.changesDb[1]) < leastWorkDb)
            throw std::runtime_error (name + ": it leaves the signal as it is");
    }

    for (int round = 0; round < rounds; ++round)
        for (auto& result : results)
            for (std::size_t b = 0; b < blockLengths.size(); ++b)
                result.seconds[b].push_back (result.track->play (signal, blockLengths[b]));

    for (auto& result : results)
        for (std::size_t b = 0; b < blockLengths.size(); ++b)
        {
            std::nth_element (result.seconds[b].begin(), result.seconds[b].begin() + rounds / 2,
                              result.seconds[b].end());
            result.ns[b] = 1e9 * result.seconds[b][rounds / 2];
        }

    printTable (out, results);
    results.clear();
    lilv_world_free (world);
}
} // namespace

int main (int argc, char** argv)
{
    // Plug-ins write to standard output; the table gets a way of its own.
    auto* const out = fdopen (dup (STDOUT_FILENO), "w");

    if (argc != 2 || out == nullptr || std::freopen ("/dev/null", "w", stdout) == nullptr)
        return 2;

    try
    {
        compare (argv[1], out);
    }
    catch (const std::exception& error)
    {
        std::fprintf (stderr, "peers: %s\n", error.what());
        return 1;
    }

    return std::fclose (out) == 0 ? 0 : 1;
}
