# SPDX-License-Identifier: GPL-3.0-or-later
"""qtractor on a JACK server without a sound card and on a virtual screen: started, used by its keys and menus, and ended."""
import glob
import os
import subprocess
import time

from checks import check, finish, run

SETTINGS = r"""[AutoSave]
Enabled=false

[Default]
PluginSearch=Tarvik
PluginType=0

[Options]
Audio\CaptureExt=wav
Audio\CaptureFormat=3
Audio\MasterAutoConnect=false
"""  # 3: exports are 32-bit floating point
BLOCK = 1024
# In the export window: the first of the outputs, and from one to the next.
FIRST_OUTPUT, OUTPUT_HEIGHT = (265, 147), 18


def sequencer(folder, environment):
    """The environment in which qtractor finds a sequencer, which it will not start without."""
    if os.path.exists("/dev/snd/seq"):
        print("  the kernel's own ALSA sequencer")
        return environment

    source = os.path.join(os.path.dirname(os.path.abspath(__file__)), "sequencer_stand_in.c")
    library = os.path.join(folder, "sequencer.so")
    run(["gcc", "-std=gnu11", "-Wall", "-Wextra", "-Werror", "-shared", "-fPIC", "-o", library, source], environment)
    print("  no ALSA sequencer in this kernel: our stand-in takes its place in qtractor")
    return dict(environment, LD_PRELOAD=library)


class Qtractor:
    def __init__(self, folder, screen):
        self.folder, self.screen, self.process = folder, screen, None
        server = dict(JACK_DEFAULT_SERVER=f"tarvik{os.getpid()}",
                      JACK_NO_START_SERVER="1", JACK_NO_AUDIO_RESERVATION="1")
        screen.environment.update(server)
        self.environment = sequencer(folder, screen.environment)

        place = os.path.join(screen.environment["XDG_CONFIG_HOME"], "rncbc.org")
        os.makedirs(place, exist_ok=True)
        with open(os.path.join(place, "Qtractor.conf"), "w") as file:
            file.write(SETTINGS)

        # Synchronous: the server waits for its clients, so that a busy machine loses nothing.
        self.log = open(os.path.join(folder, "jackd.log"), "w")
        self.server = subprocess.Popen(["jackd", "--no-realtime", "--sync", "--name", server["JACK_DEFAULT_SERVER"], "-d", "dummy",
                                        "-r", "48000", "-p", str(BLOCK)],
                                       env=screen.environment, stdin=subprocess.DEVNULL, stdout=self.log, stderr=subprocess.STDOUT)
        started = subprocess.run(["jack_wait", "--wait", "--timeout", "10"], env=screen.environment, stdout=subprocess.DEVNULL,
                                 stderr=subprocess.DEVNULL)
        if not check(started.returncode == 0, "a JACK server without a sound card runs"):
            finish()

    def open(self, session):
        self.session = session
        with open(os.path.join(self.folder, "qtractor.log"), "a") as log:
            self.process = subprocess.Popen(["qtractor", session], env=self.environment, stdin=subprocess.DEVNULL, stdout=log,
                                            stderr=subprocess.STDOUT)
        self.window = self.screen.window(os.path.basename(session), seconds=60)
        if not check(self.window and self.process.poll() is None, f"qtractor opens {os.path.basename(session)}"):
            self.close()
            finish()
        time.sleep(3)

    def keys(self, *keys):
        self.screen.do("windowactivate", "--sync", self.window)
        for key in keys:
            self.screen.do("key", "--clearmodifiers", key)
            time.sleep(0.5)

    def title(self):
        return self.screen.do("getwindowname", self.window)

    def export(self, output, seconds=60):
        """The file that the menu Track, Export Tracks, Audio makes of the output of that number."""
        before = set(os.listdir(os.path.dirname(self.session)))
        self.keys("alt+t", "Up", "Right", "Return")
        dialog = self.screen.window("Export Audio Tracks")
        if not check(dialog, "the menu opens the export window"):
            return None
        time.sleep(1)
        self.screen.click((FIRST_OUTPUT[0], FIRST_OUTPUT[1] + output * OUTPUT_HEIGHT), window=dialog)
        time.sleep(0.5)
        self.screen.do("key", "Return")
        self.screen.window("Export Audio Tracks", wanted=False, seconds=seconds)

        # There is no window that would tell the end of it: the file has stopped growing by then.
        size = -1
        for _ in range(seconds):
            time.sleep(1)
            new = [os.path.join(os.path.dirname(self.session), name)
                   for name in set(os.listdir(os.path.dirname(self.session))) - before if name.endswith(".wav")]
            if new and size == os.path.getsize(new[0]):
                return new[0]
            size = os.path.getsize(new[0]) if new else -1
        check(False, f"qtractor exports output {output}")
        return None

    def record(self, ports, seconds, target):
        """Plays from the beginning, by the space bar, and records the ports."""
        recorder = subprocess.Popen(["jack_rec", "-f", target, "-d", str(seconds), "-b", "32", *("Qtractor:" + p for p in ports)],
                                    env=self.screen.environment, stdin=subprocess.DEVNULL, stdout=self.log, stderr=subprocess.STDOUT)
        time.sleep(1)
        self.keys("space")
        try:
            recorder.wait(seconds + 30)
        except subprocess.TimeoutExpired:
            recorder.kill()
            recorder.wait()
            check(False, "jack_rec comes to its end")
        self.keys("space", "BackSpace")

    def save(self):
        """With Ctrl+S, which has an effect once there is something to save."""
        for _ in range(20):
            if "modified" in self.title():
                break
            time.sleep(0.25)
        else:
            return check(False, "qtractor sees something to save")
        before = os.stat(self.session).st_mtime_ns
        self.keys("ctrl+s")
        for _ in range(40):
            time.sleep(0.25)
            if os.stat(self.session).st_mtime_ns != before and "modified" not in self.title():
                return check(True, "qtractor saves")
        return check(False, "qtractor saves")

    def quit(self):
        """By the last entry of the first menu."""
        self.keys("alt+f", "Up", "Return")
        return check(self._ended(20) == 0, "qtractor ends by itself, with status 0")

    @staticmethod
    def wait(seconds):
        time.sleep(seconds)

    def _ended(self, seconds):
        try:
            return self.process.wait(seconds)
        except subprocess.TimeoutExpired:
            return None

    def close(self):
        for process in (self.process, self.server):
            if process and process.poll() is None:
                process.terminate()
                try:
                    process.wait(5)
                except subprocess.TimeoutExpired:
                    process.kill()
                    process.wait()
        self.log.close()
        # of clients that JACK lost
        for leftover in glob.glob(f"/dev/shm/*{self.environment['JACK_DEFAULT_SERVER']}_*"):
            os.remove(leftover)
