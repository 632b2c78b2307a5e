# SPDX-License-Identifier: GPL-3.0-or-later
"""Opens and closes the plug-in's window in Ardour itself, on a virtual screen, with Ardour's dummy audio back end."""
import os
import subprocess
import time

from checks import check

SCREEN = "1600x1000x24"
# Where things are on that screen, Ardour's windows being in its middle: there is no other handle to them.
BACK_END_LIST, START_BUTTON = (810, 379), (1022, 681)
DUMMY_IS_ENTRY = 2  # behind ALSA and JACK
MIXER_BUTTON = (1453, 224)
INSERTS = {"mono": (465, 366), "stereo": (685, 366)}
ROUNDS = 3
FEWEST_COLOURS = 50  # of a window in which something is drawn


class Screen:
    def __init__(self, environment):
        reading, writing = os.pipe()
        self.started = [subprocess.Popen(["Xvfb", "-displayfd", str(writing), "-screen", "0", SCREEN], pass_fds=[writing],
                                         stderr=subprocess.DEVNULL)]
        os.close(writing)
        with os.fdopen(reading) as number:
            self.environment = dict(environment, DISPLAY=":" + number.readline().strip())
        self.start(["openbox"])

    def start(self, command, log=subprocess.DEVNULL):
        self.started.append(subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=log,
                                             stderr=subprocess.STDOUT))
        time.sleep(1)
        return self.started[-1]

    def do(self, *arguments):
        return subprocess.run(["xdotool", *map(str, arguments)], env=self.environment, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True).stdout

    def click(self, place, times=1):
        self.do("mousemove", *place, "click", "--repeat", times, "--delay", 80, 1)

    def window(self, name, wanted=True, seconds=10):
        """The visible window of that name, waited for; or, if it isn't wanted, whether it is still there."""
        found = ""
        for _ in range(seconds * 4):
            found = self.do("search", "--onlyvisible", "--name", name).split()
            if bool(found) == wanted:
                break
            time.sleep(0.25)
        return found[0] if found else None

    def colours(self, window):
        picture = subprocess.run(["import", "-window", window, "-format", "%k", "info:"], env=self.environment,
                                 stdout=subprocess.PIPE, text=True).stdout
        return int(picture or 0)

    def close(self):
        for process in reversed(self.started):
            process.terminate()
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()


def check_editor(folder, session, environment):
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
            screen.do("windowactivate", "--sync", window, "key", "alt+F4")
            check(not screen.window(title, wanted=False), "and closes")

        check(ardour.poll() is None, "Ardour is still running")
    finally:
        screen.close()
        log.close()
