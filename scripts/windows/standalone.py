# SPDX-License-Identifier: GPL-3.0-or-later
"""The stand-alone program for Windows in Wine, on a virtual screen: standalone.py PROGRAM RENDERER FOLDER

PROGRAM and WINEPREFIX are Windows', RENDERER is this machine's. The window is opened, worked with the mouse, closed and opened
again. What it saves at its end must be what the mouse did, and must be seen again."""
import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "hosts"))
from checks import check, finish, home  # noqa: E402
from console import Console, check_state, slots_of  # noqa: E402
from juce_text import saved_state  # noqa: E402
from screen import Screen  # noqa: E402

program, renderer, folder = sys.argv[1:]
TITLE = "^Tarvik 41 Channel$"
BORDER = 1  # around the window's contents; above them is a title
UNLIKE_PIXELS = 2500  # of 638,000: Windows draws live text by its own means

environment = home(os.path.join(folder, "home"), {"Analog": "0", "UIZoom": "1"})
environment["XDG_CONFIG_HOME"] = "Z:" + environment["XDG_CONFIG_HOME"].replace("/", "\\")
user = os.path.join(environment["WINEPREFIX"], "drive_c/users", os.environ["USER"], "AppData/Roaming/Tarvik 41 Channel")
settings = os.path.join(user, "Tarvik 41 Channel.settings")
os.makedirs(user, exist_ok=True)
with open(settings, "w") as file:
    file.write('<PROPERTIES><VALUE name="shouldMuteInput" val="0"/></PROPERTIES>\n')

log = open(os.path.join(folder, "standalone.log"), "w")
screen = Screen(environment)


def opened():
    process = screen.start(["wine", program], log)
    window = screen.window(TITLE, seconds=30)
    if not check(window, "the window opens"):
        finish()
    time.sleep(3)
    return process, window, Console(screen, renderer, window, BORDER)


def closed(process, window):
    screen.close_window(window)
    try:
        check(process.wait(20) == 0, "and closes, and the program ends in order")
    except subprocess.TimeoutExpired:
        check(False, "the program ends")


try:
    closed(*opened()[:2])
    untouched, _ = slots_of(saved_state(settings))

    process, window, console = opened()
    console.work()
    time.sleep(3)  # Wine paints late
    before = os.path.join(folder, "before.png")
    console.picture(before)
    closed(process, window)

    state = saved_state(settings)
    check_state(*slots_of(state), untouched[0])
    pixels = console.unlike(before, state, [], folder)
    check(pixels < UNLIKE_PIXELS,
          f"what was seen is what was saved: {pixels:.0f} pixels unlike Linux's picture of the state")

    process, window, console = opened()
    after = os.path.join(folder, "after.png")
    console.picture(after)
    pixels = console.unlike(after, state, [], folder)
    check(pixels < UNLIKE_PIXELS, f"and is seen again: {pixels:.0f} pixels")
    closed(process, window)
finally:
    screen.close()
    log.close()

finish()
