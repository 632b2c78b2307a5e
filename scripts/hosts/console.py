# SPDX-License-Identifier: GPL-3.0-or-later
"""The plug-in's window on a virtual screen, worked with the mouse, and what must come of it."""
import json
import re
import subprocess
import time
import xml.etree.ElementTree as ElementTree

from checks import check

PICTURE = (2700, 2030)  # what the layout is measured in
SIZE = (900, 741)  # of the window at 100 %, which the settings of every check ask for
FRAME = 32  # above the console and below it
STRIP = {"slot A": (12, 12), "copy": (29, 12), "slot B": (46, 12)}
TICK = 0.3  # seconds in which the window has surely looked at its parameters
DRAG_PIXELS = 50
DRAG_TRAVEL = 250  # pixels for all of a knob's range
GAIN_RANGE = (-12.0, 48.0)
UNLIKE_PIXELS = 60  # two pictures of the same window: where the mouse was last, and how text is rounded


class Console:
    """`below`: how far above the lower edge of the host's window it ends; from left to right it is in the middle."""

    def __init__(self, screen, renderer, window, below=0):
        screen.do("windowmove", window, 20, 40)  # a host may remember a place at the edge of the screen
        time.sleep(TICK)
        width, height = screen.size(window)
        self.screen, self.renderer, self.window = screen, renderer, window
        self.left, self.top = (width - SIZE[0]) // 2, height - below - SIZE[1]
        layout = json.loads(subprocess.run([renderer, "list", "layout"], stdout=subprocess.PIPE, text=True).stdout)
        self.boxes = {control.get("parameter", control.get("name")): control for control in reversed(layout["controls"])
                      if control["kind"] != "lamp"}

    def place(self, control, height=0.5):
        """In the host's window, at a share of the control's height."""
        if control in STRIP:
            x, y = STRIP[control]
        else:
            box = self.boxes[control]
            x = (box["x"] + box["w"] / 2) * SIZE[0] / PICTURE[0]
            y = FRAME + (box["y"] + box["h"] * height) * (SIZE[1] - 2 * FRAME) / PICTURE[1]
        return round(self.left + x), round(self.top + y)

    def click(self, control, height=0.5, times=1, button=1):
        self.screen.click(self.place(control, height), times, button, self.window)
        time.sleep(TICK)

    def drag(self, control, down):
        self.screen.drag(self.place(control), down, self.window)
        time.sleep(TICK)

    def work(self):
        """Turns and presses things; `check_state` knows what they must have done to a strip at its defaults."""
        self.drag("gain", -DRAG_PIXELS)
        self.drag("compMix", DRAG_PIXELS)
        self.click("compMix", times=2)  # back to where it was
        self.click("pad")
        self.click("highPass", height=0.1)
        self.click("compRatio", times=2, button=4)  # two notches of the wheel
        self.click("next channel", times=2)
        self.click("copy")
        self.click("slot B")
        self.click("mute")
        self.screen.move((self.left + SIZE[0] // 2, self.top + SIZE[1] - 4), self.window)

    def picture(self, file):
        """Of the console alone: the bar below tells of its own progress."""
        time.sleep(TICK)
        self.screen.picture(self.window, self.left, self.top, SIZE[0], SIZE[1] - FRAME, file)

    def unlike(self, file, state, track, folder):
        """Pixels in which a picture differs from the window that our own tool draws for a saved state."""
        state_file, drawn = folder + "/window.state", folder + "/window.png"
        with open(state_file, "wb") as target:
            target.write(state)
        subprocess.run([self.renderer, "screenshot", "--state", state_file,
                       *track, drawn], stdout=subprocess.DEVNULL, check=True)
        subprocess.run(["mogrify", "-crop", f"{SIZE[0]}x{SIZE[1] - FRAME}+0+0", "+repage", drawn], check=True)
        compared = subprocess.run(["compare", "-metric", "AE", "-fuzz", "4%", file,
                                  drawn, "null:"], stderr=subprocess.PIPE, text=True)
        return float(compared.stderr.split()[0])


def slots_of(state):
    """Both slots' values by the parameters' IDs, and the number of the current slot."""
    root = ElementTree.fromstring(re.search(rb"<Tarvik41Channel.*</Tarvik41Channel>", state, re.DOTALL).group())
    return [{key: float(value) for key, value in slot.attrib.items()} for slot in root[:2]], int(root.get("currentData"))


def check_state(slots, in_force, before):
    """`slots`: both slots' values by the parameters' IDs, `before` those of a slot before anybody touched it."""
    travel = GAIN_RANGE[1] - GAIN_RANGE[0]
    wanted = dict(before, gain=before["gain"] + travel * DRAG_PIXELS / DRAG_TRAVEL, pad=1.0, highPass=2.0,
                  compRatio=before["compRatio"] + 2, TolChannel=before["TolChannel"] + 2)
    for name, slot, expected in (("A", slots[0], wanted), ("B", slots[1], dict(wanted, mute=1.0))):
        wrong = {key: (slot[key], value) for key, value in expected.items() if abs(slot[key] - value) > 0.02}
        check(
            not wrong, f"slot {name} has what the mouse did, and nothing else: {wrong or 'all ' + str(len(slot)) + ' values'}")
    check(in_force == 1, "and slot B is current")
