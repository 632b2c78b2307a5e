# SPDX-License-Identifier: GPL-3.0-or-later
"""Opens, works and closes the plug-in's window in Ardour itself, on a virtual screen, with Ardour's dummy audio back end."""
import base64
import os
import time
import xml.etree.ElementTree as ElementTree

from checks import check
from console import UNLIKE_PIXELS, Console, check_state, slots_of
from screen import Screen

# Where things are on that screen, Ardour's windows being in its middle: there is no other handle to them.
BACK_END_LIST, START_BUTTON = (810, 379), (1022, 681)
DUMMY_IS_ENTRY = 2  # after ALSA and JACK
MIXER_BUTTON = (1453, 224)
INSERTS = {"mono": (465, 366), "stereo": (685, 366)}
ROUNDS = 3
FEWEST_COLOURS = 50  # of a window in which something is drawn


def saved(folder, session, track):
    """The state of a track's instance in the session as Ardour has saved it: a .vstpreset."""
    for route in ElementTree.parse(os.path.join(folder, session, session + ".ardour")).iter("Route"):
        if route.get("name") == track:
            return base64.b64decode(route.find("Processor/vst3/chunk").text)


def open_window(screen, track):
    screen.click(INSERTS[track], 2)
    window = screen.window(f"^{track}: Tarvik 41 Channel")
    time.sleep(2)
    return window


def check_work(screen, renderer, folder, session, track):
    """What the mouse does in the window is what the session holds when it is saved, and what the window shows again."""
    untouched, _ = slots_of(saved(folder, session, track))
    window = open_window(screen, track)
    console = Console(screen, renderer, window)
    console.work()
    screen.close_window(window)
    time.sleep(1)
    screen.do("windowactivate", "--sync", screen.window(f"{session} - Ardour"), "key", "ctrl+s")
    time.sleep(3)
    state = saved(folder, session, track)
    check_state(*slots_of(state), untouched[0])

    window = open_window(screen, track)
    console = Console(screen, renderer, window)
    seen = os.path.join(folder, "seen.png")
    console.picture(seen)
    pixels = console.unlike(seen, state, ["--name", track], folder)
    check(pixels < UNLIKE_PIXELS,
          f"the window opened again shows what was saved: {pixels:.0f} pixels unlike our own picture")
    screen.close_window(window)


def check_editor(folder, session, environment, form, renderer):
    configuration = os.path.join(environment["XDG_CONFIG_HOME"], "ardour7")
    os.makedirs(configuration, exist_ok=True)
    open(os.path.join(configuration, ".a7"), "w").close()  # no welcome for the first start
    with open(os.path.join(configuration, "config"), "w") as file:
        file.write('<?xml version="1.0"?><Ardour><Config><Option name="hide-dummy-backend" value="0"/></Config></Ardour>\n')

    log = open(os.path.join(folder, "ardour.log"), "w")
    screen = Screen(environment)
    try:
        ardour = screen.start(["ardour", "--no-splash", os.path.join(folder, session, session + ".ardour")], log)
        if not check(screen.window("Audio/MIDI Setup", seconds=60), "Ardour asks for an audio device"):
            return
        time.sleep(2)
        screen.click(BACK_END_LIST)
        time.sleep(1)
        for _ in range(DUMMY_IS_ENTRY):
            screen.do("key", "Down")
        screen.do("key", "Return")
        time.sleep(1)
        screen.click(START_BUTTON)
        if not check(screen.window(f"{session} - Ardour", seconds=60), "and opens the session"):
            return
        time.sleep(4)
        screen.click(MIXER_BUTTON)
        time.sleep(3)

        for track in list(INSERTS) * ROUNDS:
            title = f"^{track}: Tarvik 41 Channel"
            screen.click(INSERTS[track], 2)
            window = screen.window(title)
            if not check(window, f"the window of '{track}' opens"):
                break
            time.sleep(2)
            colours = screen.colours(window)
            check(colours > FEWEST_COLOURS, f"with something in it: {colours} colours")
            screen.close_window(window)
            check(not screen.window(title, wanted=False), "and closes")

        if form == "VST3":
            check_work(screen, renderer, folder, session, "mono")

        check(ardour.poll() is None, "Ardour is still running")
    finally:
        screen.close()
        log.close()
