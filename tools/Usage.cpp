// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Commands.h"

#include <iostream>

namespace tarvik
{

const char* usageText()
{
    return R"(Sends recordings through the built VST3 module, as a host would, and writes what comes back.

  tarvik41-render [render] [OPTIONS] INPUT OUTPUT
  tarvik41-render batch [OPTIONS] INPUT... FOLDER
  tarvik41-render list [--module FILE]
  tarvik41-render list layout|harmonics|network
  tarvik41-render pictures OUTPUT.png
  tarvik41-render controls [--beside FOLDER] OUTPUT.png
  tarvik41-render screenshot [OPTIONS] [INPUT] OUTPUT.png
  tarvik41-render window [--zoom PERCENT] FOLDER
  tarvik41-render stream [--module FILE] [--block N]
  tarvik41-render decode INPUT

INPUT is a WAV, FLAC or AIFF file, mono or stereo, of any rate and length. OUTPUT becomes a WAV file of the same length,
with the module's latency taken out. It appears when it is complete, in place of one that had its name, and not at all
after an error.

  --program NAME     start from a factory program, by its name or its number
  --set ID=TEXT      set a parameter in its own units, as often as needed: --set gain=6 --set "compMix=47 %";
                     or ID@PLACE, a place in its travel from 0 to 1: --set midGain@0.5
  --sidechain FILE   feed the side chain, from a file of the input's rate; silence follows its end
  --state FILE       start from a saved state: a .vstpreset, or the bare state of the component
  --save-state FILE  write the settings that were rendered with: as a .vstpreset if FILE's name ends so, else bare
  --block N          samples for each call of the module, 1 to 65536 (512)
  --bits 24|32       24-bit, or 32-bit floating point (32)
  --module FILE      the .vst3 bundle, instead of the one beside this program, of its build, or installed
  --list             the same as "list": the module's parameters, programs, buses and latency
  --version, --help

A batch renders many files with the same settings, several at a time, each as if it were rendered alone, into FOLDER,
which is made if it is missing. An INPUT can also be a folder: the audio files in it, by their names' endings, without
those of folders in it. Each output has its input's name with the ending .wav. Two that would have the same name, or one
that would be written over a file that is read, are refused before anything is rendered. A file that is in FOLDER
already is kept, so that a batch that was stopped can be taken up again. When a file fails, the others go on.

  --from FILE        a text file that names more inputs, one in each line
  --jobs N           files that are rendered at the same time, 1 to 256 (one for each core)
  --overwrite        render again what is in FOLDER already

"stream" is for programs that measure the module, such as "./run plot" (see "./run plot --help"; "./run compare" is there,
too). A run on its input is one line with the rate in Hz, the number of samples and settings as --set takes them,
with tabs in between, and then the samples of one channel; as many come out, with the latency taken out. Each run begins
with a reset strip, and with defaults for what its line does not set. "decode" writes a recording: a line with rate,
channels and length, with tabs in between, and then its samples, frame by frame. Samples are 32-bit floats, the lowest byte
first.

"list layout" prints, as JSON, where each control of the console panel is in the pixels of its picture, with the marks of
its scale; the picture is printed from it. "list harmonics" prints the console's table: the amplitude of a tone, and of its
second to seventh harmonic. "list network" reads lines of settings with tabs in between, and prints for each the transfer
function of the equaliser's circuit: the coefficients of s^5 to s^0, numerator first.

"pictures" shows all pictures of the window on one sheet, at their own size and at a third, as the window draws them at
100 %. "controls" shows every control in each of its states at 80, 100 and 150 % and on a screen of twice the density;
--beside names a folder with other pictures, such as an older resources/pictures, and what looks different with them is
shown below. "window" opens the window on the screen and draws what only shows there into FOLDER: the menus, the bubble
of a value, a tooltip, a value being typed, the outline of the focus, and About. "screenshot" draws the window itself,
with --state, --program and --set, at --zoom PERCENT (100), for a track called --name TEXT, with slot A or B chosen by
--slot (after --state, before the others), and with the meters as they stand when INPUT has gone through.

However they are ordered: the state is loaded first, then the program, then each --set from left to right. A file whose
name begins with a dash goes after "--". Exit status: 0, or 2 after an error, which is told in one line, in a batch in
one for each file.
)";
}

void printUsage (const CommandLine&) { std::cout << usageText(); }

void printVersion (const CommandLine&) { std::cout << "tarvik41-render " TARVIK_VERSION "\n"; }

} // namespace tarvik
