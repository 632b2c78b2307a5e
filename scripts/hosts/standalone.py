# SPDX-License-Identifier: GPL-3.0-or-later
"""The stand-alone program on a virtual screen and JACK's dummy sound card: standalone.py MODULE FORMAT RENDERER FOLDER

Its window is opened, worked with the mouse, closed and opened again, while it plays. What it saves at its end, as a host
saves a project, must be what the mouse did."""
import os
import subprocess
import sys
import time

from checks import check, finish, home
from console import UNLIKE_PIXELS, Console, check_state, slots_of
from juce_text import saved_state
from screen import Screen

module, _, renderer, folder = sys.argv[1:]
program = os.path.join(module.split("/VST3/")[0], "Standalone", "tarvik41-channel")
TITLE = "^Tarvik 41 Channel$"
BORDER = 1  # around the window's contents; above them is a title
JACK = '<DEVICESETUP deviceType="JACK" audioOutputDeviceName="Auto-connect ON" audioInputDeviceName="Auto-connect ON"/>'

environment = home(os.path.join(folder, "home"), {"Analog": "0", "UIZoom": "1"})
environment["JACK_DEFAULT_SERVER"] = "tarvik-window"  # beside whatever sound server there is
settings = os.path.join(environment["XDG_CONFIG_HOME"], "Tarvik 41 Channel.settings")
with open(settings, "w") as file:
    file.write(
        f'<PROPERTIES><VALUE name="audioSetup">{JACK}</VALUE><VALUE name="shouldMuteInput" val="0"/></PROPERTIES>\n')

log = open(os.path.join(folder, "standalone.log"), "w")
screen = Screen(environment)


def opened():
    process = screen.start([program], log)
    window = screen.window(TITLE)
    if not check(window, "the window opens"):
        finish()
    time.sleep(1)
    return process, window, Console(screen, renderer, window, BORDER)


def closed(process, window):
    screen.close_window(window)
    try:
        check(process.wait(10) == 0, "and closes, and the program ends in order")
    except subprocess.TimeoutExpired:
        check(False, "the program ends")


try:
    screen.start(["jackd", "-r", "-d", "dummy", "-r", "48000", "-p", "512"], log)
    closed(*opened()[:2])
    untouched, _ = slots_of(saved_state(settings))

    process, window, console = opened()
    ports = subprocess.run(["jack_lsp", "-c"], env=screen.environment, stdout=subprocess.PIPE, text=True).stdout
    check("Tarvik 41 Channel:out_1\n   system:playback_1" in ports, "with its sound on the card")
    console.work()
    before = os.path.join(folder, "before.png")
    console.picture(before)
    closed(process, window)

    state = saved_state(settings)
    check_state(*slots_of(state), untouched[0])
    pixels = console.unlike(before, state, [], folder)
    check(pixels < UNLIKE_PIXELS,
          f"what was seen is what was saved: {pixels:.0f} pixels unlike our own picture of the state")

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
