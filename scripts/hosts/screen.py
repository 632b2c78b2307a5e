# SPDX-License-Identifier: GPL-3.0-or-later
"""A virtual screen with a window manager, and hands and eyes on it."""
import os
import subprocess
import time

SIZE = "1600x1000x24"


class Screen:
    def __init__(self, environment):
        reading, writing = os.pipe()
        self.started = [subprocess.Popen(["Xvfb", "-displayfd", str(writing), "-screen", "0", SIZE], pass_fds=[writing],
                                         stderr=subprocess.DEVNULL)]
        os.close(writing)
        with os.fdopen(reading) as number:
            self.environment = dict(environment, DISPLAY=":" + number.readline().strip())
        self.start(["openbox"])
        self.wait_for_manager()

    def wait_for_manager(self):
        """Without it JUCE's windows can die of BadAtom: the atoms that they ask for are the manager's."""
        for _ in range(200):
            answer = subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], env=self.environment,
                                    stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout
            if "window id" in answer:
                return
            time.sleep(0.1)
        raise RuntimeError("there is no window manager")

    def start(self, command, log=subprocess.DEVNULL):
        self.started.append(subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=log,
                                             stderr=subprocess.STDOUT))
        time.sleep(1)
        return self.started[-1]

    def do(self, *arguments):
        return subprocess.run(["xdotool", *map(str, arguments)], env=self.environment, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True).stdout

    def move(self, place, window=None):
        """On the screen or in a window."""
        self.do("mousemove", *(["--window", window] if window else []), *place)

    def click(self, place, times=1, button=1, window=None):
        self.move(place, window)
        self.do("click", "--repeat", times, "--delay", 40, button)

    def drag(self, place, down, window=None):
        """From a place so many pixels downwards, in small steps as a hand would."""
        self.move(place, window)
        self.do("mousedown", 1)
        for step in range(1, 11):
            self.move((place[0], place[1] + down * step // 10), window)
        self.do("mouseup", 1)

    def window(self, name, wanted=True, seconds=10):
        """The visible window of that name, waited for; or, if it isn't wanted, whether it is still there."""
        found = ""
        for _ in range(seconds * 4):
            found = self.do("search", "--onlyvisible", "--name", name).split()
            if bool(found) == wanted:
                break
            time.sleep(0.25)
        return found[0] if found else None

    def size(self, window):
        words = dict(line.split("=") for line in self.do("getwindowgeometry", "--shell", window).split() if "=" in line)
        return int(words["WIDTH"]), int(words["HEIGHT"])

    def close_window(self, window):
        self.do("windowactivate", "--sync", window, "key", "alt+F4")

    def colours(self, window):
        picture = subprocess.run(["import", "-window", window, "-format", "%k", "info:"], env=self.environment,
                                 stdout=subprocess.PIPE, text=True).stdout
        return int(picture or 0)

    def picture(self, window, left, top, width, height, file):
        subprocess.run(["import", "-window", window, "-crop", f"{width}x{height}+{left}+{top}", "+repage", file],
                       env=self.environment)

    def close(self):
        for process in reversed(self.started):
            process.terminate()
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
