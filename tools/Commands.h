// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/CommandLine.h"

namespace tarvik
{

// What the program can do. Each throws `ToolError`; all but the batch are on JUCE's message thread.

/** Sends the input file through the module into the output file, with the report on the output and a bar on a
    terminal. Throws `Interrupted` too; then there is no output file.
*/
void renderOneFile (const CommandLine& line);

/** Renders many files with the same settings, each in a process of its own, some at the same time, and prints a line
    for each. JUCE's messages must not have been started. Throws `ToolError` if the settings or the names of the files
    are wrong, before anything is rendered; else when all is done, if a file has failed. Throws `Interrupted` when the
    processes have cleaned up: what was complete by then stays.
*/
void renderBatch (const CommandLine& line);

/** Prints the module's parameters, programs, buses and latency, or one of the lists that need no module. */
void listModule (const CommandLine& line);

/** The module as a filter for other programs: runs of mono audio, each with settings of its own, from the input to the
    output, as `--help` describes.
*/
void streamRuns (const CommandLine& line);

/** A recording as bare samples on the output. */
void decodeRecording (const CommandLine& line);

/** Draws all pictures of the window on one sheet, at their own size and at a third, as a PNG file. */
void writeContactSheet (const CommandLine& line);

/** Draws every control in each of its states on one sheet, as the window shows them at four sizes, beside what other pictures
    would make of them.
*/
void writeControlSheet (const CommandLine& line);

/** Draws the plug-in's window, which needs no screen, as a PNG file: at a zoom, with a program and parameters, and with
    the meters as they stand when a recording has gone through.
*/
void writeScreenshot (const CommandLine& line);

/** Opens the window on the screen and draws, into a folder, what only shows there: menus, bubbles, fields, focus, About. */
void writeWindowPictures (const CommandLine& line);

/** The explanation for `--help`, several lines. */
const char* usageText();

void printUsage (const CommandLine& line);
void printVersion (const CommandLine& line);

} // namespace tarvik
