# SPDX-License-Identifier: GPL-3.0-or-later
"""qtractor with the plug-in: qtractor.py MODULE FORMAT RENDERER FOLDER

Debian 12 builds qtractor without VST3, so there is nothing to load the VST3 module with. What is checked is that this is
still so; docs/hosts.md says what is to be done for LV2."""
import shutil
import sys

from checks import check, finish

form = sys.argv[2]

with open(shutil.which("qtractor"), "rb") as file:
    without_vst3 = b"VST3 Plug-in support disabled." in file.read()

if form == "VST3":
    check(without_vst3, "this qtractor has no VST3, as docs/hosts.md says")
else:
    check(False, f"there is no check of {form} in qtractor yet")

finish()
