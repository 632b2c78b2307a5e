# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks of the offline host: settings, lists, pictures, batches, and what is refused."""
import json
import math
import os
import pty
import re
import shlex
import shutil
import signal
import struct
import time
import unittest
from pathlib import Path

import numpy as np
from PIL import Image, ImageChops
from scratch import RATE, Scratch, noise

golden = Path(__file__).parents[1] / "golden/parameters.txt"


class Single(Scratch):
    TEXTS = {"gain=+6": "gain = 6.00 dB", "gain = -12.00 db": "gain = -12.00 dB", "compHPF=off": "compHPF = Off",
             "compHPF=90 Hz": "compHPF = 90.0 Hz", "compMix=47 %": "compMix = 47 %", "lowGain=3.34 dB": "lowGain = 3.34 dB",
             "midGain=15.42": "midGain = 15.42 dB", "lowFreq=-9 dB": "lowFreq = -9 dB", "pad=YES": "pad = On",
             "compRelease=auto": "compRelease = AUTO", "expRelease=1.6s": "expRelease = 1.600 s",
             "TolChannel=32": "TolChannel = 32", "equalizer=0": "equalizer = Off", "level@0": "level = -80.00 dB"}

    def test_texts_are_read_in_the_parameters_own_units(self):
        self.write("in.wav", noise(2, 100))
        words = [word for text in self.TEXTS for word in ("--set", text)]
        printed = self.run_tool("in.wav", "out.wav", *words)[0].splitlines()
        self.assertEqual([line[16:] for line in printed if line.startswith("set ")], list(self.TEXTS.values()))

    def test_the_report_has_the_largest_reduction_and_not_the_last(self):
        self.write("in.wav", np.hstack([noise(1, RATE), np.zeros((1, RATE))]))
        printed = self.run_tool("in.wav", "out.wav", "--set", "compThreshold=-20", "--set", "compRatio=20:1")[0]
        self.assertLess(float(re.search(r"gain reduction +(\S+) dB", printed)[1]), -3)

    def test_the_list_names_all_there_is(self):
        printed = self.run_tool("list")[0]
        self.assertEqual(self.run_tool("--list")[0], printed)
        parameters = printed[printed.index("ID "):printed.index("\nPrograms\n")].splitlines()[1:]
        ids = [line.split()[0] for line in parameters if line]
        self.assertEqual(ids, [line.split()[0] for line in golden.read_text().splitlines()])
        self.assertEqual(len(re.findall(r"^ +\d+  \S", printed, re.MULTILINE)), 26)  # programs
        for words in ("Latency: 52 samples", "Sidechain, stereo", "-12.00 to 48.00 dB"):
            self.assertIn(words, printed)

    def test_a_stopped_run_leaves_the_old_output_and_nothing_else(self):
        self.write("in.wav", np.zeros((1, 4000000)))  # many seconds of work in blocks of one sample
        (self.folder / "out.wav").write_text("old")
        for number in (signal.SIGINT, signal.SIGTERM):
            run = self.start("in.wav", "out.wav", "--block", "1", "--save-state", "s.vstpreset")
            while len(os.listdir(self.folder)) < 4:  # both hidden files
                time.sleep(0.001)
            run.send_signal(number)
            run.communicate()
            self.assertEqual(run.returncode, -number)
            self.assertEqual(sorted(os.listdir(self.folder)), ["in.wav", "out.wav"])
            self.assertEqual((self.folder / "out.wav").read_text(), "old")


class Window(Scratch):
    def test_the_layout_has_every_scale_where_the_knob_will_point(self):
        controls = json.loads(self.run_tool("list", "layout")[0])["controls"]
        scales = {control["parameter"]: {mark["text"]: mark for mark in control["scale"]}
                  for control in controls if "parameter" in control and "scale" in control}
        for parameter, text, place, expected in (
                ("gain", "0", "degrees", 270), ("compHPF", "100", "degrees", 210 + 300 * 0.5 **
                                                (math.log(38 / 8) / math.log(38 / 7))), ("lowFreq", "-15 dB", "degrees", 523),
                ("level", "-10", "y", 1168), ("level", "10", "y", 573)):
            self.assertAlmostEqual(scales[parameter][text][place], expected, 4, parameter)

    def draw(self, *words: str) -> Image.Image:
        self.run_tool(*words, "x.png")
        return Image.open(self.folder / "x.png").convert("RGB")

    def test_pictures_show_zoom_settings_state_slot_and_meters(self):
        self.write("in.wav", noise(2, 30000))
        self.run_tool("in.wav", "x.wav", "--set", "gain=48", "--save-state", "a.state")
        plain = self.draw("screenshot")
        self.assertEqual(plain.size, (900, 741))
        self.assertEqual(self.draw("screenshot", "--zoom", "80").size, (720, 605))
        self.assertGreater(self.draw("pictures").size, (2700, 2030))
        pictures = Path(__file__).parents[2] / "resources/pictures"
        shutil.copytree(pictures, self.folder / "before")
        Image.new("RGBA", (110, 110), "magenta").save(self.folder / "before/mute-on.png")
        sheet = np.asarray(self.draw("controls", "--beside", "before"))
        for colour in ((255, 0, 255), Image.open(pictures / "mute-on.png").getpixel((20, 90))[:3]):
            self.assertTrue((sheet == colour).all(axis=-1).any(), "before or now is missing")

        def changed(a: Image.Image, b: Image.Image, box=None):
            return ImageChops.difference(a.crop(box), b.crop(box)).getbbox()

        saved, knob = self.draw("screenshot", "--state", "a.state"), (40, 485, 140, 585)
        self.assertIsNone(changed(saved, self.draw("screenshot", "--set", "gain=48")))
        left, top, right, bottom = changed(saved, plain)  # the gain knob, and nothing else
        self.assertTrue(left >= knob[0] and top >= knob[1] and right <= knob[2] and bottom <= knob[3])
        other_slot = self.draw("screenshot", "--state", "a.state", "--slot", "B")
        self.assertTrue(changed(saved, other_slot, knob) and changed(saved, other_slot, (0, 0, 58, 24)))
        self.assertTrue(changed(saved, self.draw("screenshot", "--state", "a.state", "--program", "Drum Buss 1")))
        self.assertTrue(changed(plain, self.draw("screenshot", "in.wav"), (28, 90, 155, 160)))  # the needle


class Batch(Scratch):
    def names(self) -> list[str]:
        return sorted(os.listdir(self.folder / "out"))

    def write_long_and_short_files(self):
        """Two that take many seconds in blocks of one sample, and three that do not."""
        for number in (1, 2, 3):
            self.write(f"in/short{number}.wav", noise(1, 50))
        for number in (1, 2):
            self.write(f"in/long{number}.wav", np.zeros((1, 4000000)))
        (self.folder / "out").mkdir()

    def writers(self, count: int) -> list[int]:
        """The processes that write hidden files, once there are so many."""
        for _ in range(5000):
            hidden = [name for name in self.names() if name.startswith(".")]
            if len(hidden) == count:
                return [int(name.split(".")[-2]) for name in hidden]
            time.sleep(0.001)
        self.fail(f"{count} hidden files expected, not {hidden}")

    def test_every_file_is_as_if_rendered_alone_whatever_the_jobs(self):
        files = {"a.wav": "a", "in/b.wav": "b", "in/d.WAV": "d", "e.wav": "e"}
        for number, name in enumerate(files):
            self.write(name, noise(1 + number % 2, 20000 + 7001 * number))
        self.write("side.wav", noise(1, 30000))
        (self.folder / "in/notes.txt").write_text("no sound, and not tried")
        (self.folder / "list.txt").write_text("\n./e.wav\r\n")
        self.run_tool("a.wav", "x.wav", "--set", "outLevel=3", "--save-state", "first.state")
        out = self.folder / "out"

        for jobs, settings in (("1", ["--program", "808 3 Dist", "--set", "thd=6 dB", "--bits", "24"]),
                               ("3", ["--state", "first.state", "--set", "compExtSideChain=on", "--sidechain",
                                      "side.wav", "--block", "300"])):
            for name, stem in files.items():
                self.run_tool(name, f"{stem}.alone", "--save-state", "alone.vstpreset", *settings)
            words = ["batch", "--jobs", jobs, "--save-state", "out/s.vstpreset", "--from", "list.txt", *settings, "a.wav",
                     "in", "out"]
            for more, told, is_made in (([], "4 rendered, 0 kept", True), ([], "0 rendered, 4 kept", False),
                                        (["--overwrite"], "4 rendered, 0 kept", True)):
                printed, errors = self.run_tool(*words, *more)
                self.assertEqual(errors, "")  # no bar where there is no terminal
                self.assertIn(told, printed)
                for stem in files.values():
                    alone = (self.folder / f"{stem}.alone").read_bytes()
                    self.assertEqual((out / f"{stem}.wav").read_bytes() == alone, is_made, stem)
                    (out / f"{stem}.wav").write_text("old")
            self.assertEqual((out / "s.vstpreset").read_bytes(), (self.folder / "alone.vstpreset").read_bytes())
            self.assertEqual(self.names(), ["a.wav", "b.wav", "d.wav", "e.wav", "s.vstpreset"])
            for file in out.iterdir():
                file.unlink()

    def test_a_terminal_shows_a_bar_and_is_clean_after_it(self):
        for name in ("in/one.wav", "in/two.wav"):
            self.write(name, noise(1, 1000))
        ours, its = pty.openpty()
        batch = self.start("batch", "--jobs", "1", "in", "out", stderr=its)
        os.close(its)
        seen = ""
        try:
            while True:
                seen += os.read(ours, 4096).decode()
        except OSError:  # the end of a terminal
            batch.communicate()
        self.assertEqual(batch.returncode, 0)
        self.assertIn(f"\r[{25 * '#'}{25 * '.'}]  50 %  1 of 2 files", seen)
        self.assertTrue(seen.endswith("\r\x1b[K"), repr(seen))

    def test_failures_are_told_by_name_and_leave_the_others_alone(self):
        self.write_long_and_short_files()
        (self.folder / "in/text.wav").write_text("This is not sound.")
        batch = self.start("batch", "in", "none.wav", "out", "--block", "1", "--jobs", "2")
        for writer in self.writers(2):  # the long ones come to a sudden end, as in a crash, while the others wait
            os.kill(writer, signal.SIGKILL)
        errors = batch.communicate()[1]
        self.assertEqual(batch.returncode, 2)
        self.assertEqual(self.names(), ["short1.wav", "short2.wav", "short3.wav"])
        self.assertEqual(len(errors.splitlines()), 5, errors)
        for words in ("long1.wav: its process was ended by signal 9", "long2.wav: its process",
                      "text.wav: cannot read", "none.wav: cannot read", "4 of 7 files failed\n"):
            self.assertIn(words, errors)

    def test_a_batch_that_stops_or_dies_leaves_only_whole_files(self):
        self.write_long_and_short_files()
        self.write("early.wav", noise(2, 100))
        self.run_tool("batch", "early.wav", "out")
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGKILL):
            batch = self.start("batch", "in", "out", "--block", "1", "--jobs", "2")
            writers = self.writers(2)
            batch.send_signal(number)  # only the parent, as from a script: a terminal tells its children too
            batch.communicate()
            self.assertEqual(batch.returncode, -number)
            self.writers(0)  # when the parent was killed, the children end by themselves, and soon
            self.assertEqual(self.names(), ["early.wav"])
            if number != signal.SIGKILL:
                self.assertFalse([writer for writer in writers if Path(f"/proc/{writer}").exists()])


class Mistakes(Scratch):
    def block(self, text: bytes) -> bytes:
        """As JUCE keeps a component's state."""
        return struct.pack("<2I", 0x21324356, len(text)) + text + b"\0"

    def test_each_is_one_line_status_two_and_no_file(self):
        for name, channels, length, rate in (
                ("in.wav", 2, 5000, 44100), ("folder/two.wav", 2, 5000, 44100), ("other/two.wav", 2, 5000, 44100),
                ("slow.wav", 2, 5000, 22050), ("three.wav", 3, 5000, 44100)):
            self.write(name, noise(channels, length), rate)
        for name in ("empty", "links", "states"):
            (self.folder / name).mkdir()
        (self.folder / "links/in.wav").symlink_to("../folder/two.wav")
        os.mkfifo(self.folder / "pipe")
        self.run_tool("in.wav", "first.wav", "--save-state", "good.vstpreset")
        good, wav = ((self.folder / name).read_bytes() for name in ("good.vstpreset", "in.wav"))
        half = len(good) // 2
        tag = b"<Tarvik41Channel>"
        for name, content in (
                ("text.wav", b"This is not sound."), ("cut.wav", wav[:len(wav) // 2]), ("states/in.wav", good),
                ("foreign.vstpreset", good[:12] + b"#" + good[13:]), ("short.vstpreset", good[:half]),
                ("broken.vstpreset", good[:half] + bytes(16) + good[half + 16:]),
                ("deep.state", self.block(400000 * tag)),  # never ends its elements
                ("long.state", self.block(tag + (1 << 20) * b" " + b"</" + tag[1:]))):
            (self.folder / name).write_bytes(content)

        def contents():
            return {path: path.lstat().st_mtime_ns for path in self.folder.rglob("*")}

        before = contents()
        lines = Path(__file__).with_name("mistakes.txt").read_text().splitlines()
        cases = [line.split("=> ") for line in lines if "=> " in line]
        self.assertGreater(len(cases), 55)
        for words, said in cases:
            with self.subTest(words):
                errors = self.run_tool(*shlex.split(words), status=2)[1]
                self.assertRegex(errors, r"^tarvik41-render: .*\n$")
                self.assertIn(said, errors)
                self.assertEqual(contents(), before)
        self.assertIn("INPUT OUTPUT", self.run_tool(status=2)[1])


unittest.main(verbosity=2)
