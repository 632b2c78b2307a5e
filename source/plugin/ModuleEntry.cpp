// SPDX-License-Identifier: GPL-3.0-or-later

// The Windows pair of module entries, beside the ModuleEntry and ModuleExit that hosts on Linux call. The library
// starts with the first instance, so there is nothing to do here.

extern "C" __attribute__ ((visibility ("default"))) bool InitDll();
extern "C" __attribute__ ((visibility ("default"))) bool ExitDll();

bool InitDll() { return true; }

bool ExitDll() { return true; }
