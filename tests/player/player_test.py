#!/usr/bin/env python3
"""Uses the player as a person would:  player_test.py AVPLAYER

Starts an X server of its own and the player on it under Wine, types and clicks with xdotool and looks at the screen.
The player's trace says what has been understood; what it shows is judged by pixels alone. Ends with 77, and says why,
where Xvfb or xdotool is missing.
"""

import math
import os
import pathlib
import queue
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
TOOLS = ROOT / "tools"
sys.dont_write_bytecode = True
sys.path.insert(0, str(TOOLS))
import squeeze_png  # noqa: E402

SKIPPED = 77
WAIT_S = 20  # for one answer; a machine under load
CONTROLS = ("view", "meter", "analyser")

player_program = None


class Screen:
    """An X server of its own, and the pixels of its screen, which it keeps in a file (X window dump format)."""

    def __init__(self, folder):
        self.file = pathlib.Path(folder) / "Xvfb_screen0"
        read_end, write_end = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", "1400x1000x24", "-nolisten", "tcp", "-noreset",
             "-fbdir", folder],
            pass_fds=[write_end], stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as numbers:
            self.display = ":" + numbers.readline().strip()

    def close(self):
        self.server.terminate()
        self.server.wait()

    def rows(self, box):
        """The pixels within a box (x, y, width, height): a tuple of bytes a row, four a pixel."""
        dump = self.file.read_bytes()
        header = struct.unpack(">25I", dump[:100])
        header_size, row_bytes, colours = header[0], header[12], header[19]
        x, y, width, height = box
        first = header_size + colours * 12
        return tuple(dump[first + row_bytes * row + 4 * x:first + row_bytes * row + 4 * (x + width)]
                     for row in range(y, y + height))

    def rgb(self, box):
        """The same, three bytes a pixel: red, green, blue."""
        return [b"".join(bytes((row[i + 2], row[i + 1], row[i])) for i in range(0, len(row), 4)) for row in self.rows(box)]


class Player:
    def __init__(self, screen, folder, *options):
        self.screen, self.boxes = screen, {}
        self.environment = dict(os.environ, DISPLAY=screen.display, AV_DISPLAY=screen.display)
        self.presets, self.snapshots = folder / "presets.txt", folder / "snapshots"
        self.snapshots.mkdir(exist_ok=True)
        self.xdotool("mousemove", 1399, 999)
        self.program = subprocess.Popen(
            [TOOLS / "wine-run", "x64", player_program, "--trace", "--size", "1000x640",
             "--presets", f"Z:{self.presets}", "--snapshots", f"Z:{self.snapshots}", *options],
            env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        self.lines = queue.Queue()
        self.reader = threading.Thread(target=self.read)
        self.reader.start()

    def read(self):
        for line in self.program.stdout:
            words = line.split()
            if words and words[0] == "box":
                self.boxes[words[1]] = tuple(map(int, words[2:]))
            self.lines.put(line.strip())

    def xdotool(self, *arguments):
        subprocess.run(["xdotool", *map(str, arguments)], env=self.environment, check=True)

    def hear(self, start, timeout=WAIT_S):
        """The next line that begins so; others are skipped."""
        end = time.monotonic() + timeout
        skipped = []
        while True:
            try:
                line = self.lines.get(timeout=max(0.01, end - time.monotonic()))
            except queue.Empty:
                raise AssertionError(f'no line begins with "{start}"; there came {skipped}') from None
            if line.startswith(start):
                return line
            skipped.append(line)

    def take_keyboard(self):
        """What a window manager would do: there is none here."""
        found = subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", "QELAudioVisualization4 Player"],
                               check=True, env=self.environment, capture_output=True, text=True, timeout=WAIT_S)
        self.window = found.stdout.split()[0]
        self.xdotool("windowfocus", "--sync", self.window)

    def keys(self, *names):
        self.xdotool("key", "--delay", "30", *names)

    def type(self, text):
        self.xdotool("type", "--delay", "30", text)

    def click(self, x, y):
        self.xdotool("mousemove", "--sync", x, y, "click", 1)

    def edit(self, name):
        """Gives the keyboard to the field of a property."""
        self.keys("ctrl+f")
        self.type(name)
        self.keys("Return")
        self.hear(f"row {name}")

    def put(self, name, value):
        """Types a value into the field of a property."""
        self.edit(name)
        self.type(value)
        self.keys("Return")
        self.hear(f"put {name} {value} 0x00000000")

    def press(self, keys, answer):
        """Presses keys one after the other and waits for what the player says of the last one."""
        self.keys(*keys.split())
        return self.hear(answer)

    def name_preset(self, name, key, answer):
        """Types a name into the list of presets and ends with a key: Enter chooses it, ctrl+s saves under it."""
        self.keys("F3")
        self.type(name)
        return self.press(key, answer)

    def picture(self, name):
        return self.screen.rows(self.boxes[name])

    def still(self, name):
        """The picture of a part once it has come to rest."""
        end = time.monotonic() + WAIT_S
        before = self.picture(name)
        since = time.monotonic()
        while time.monotonic() < end:
            time.sleep(0.2)
            now = self.picture(name)
            if now != before:
                before, since = now, time.monotonic()
            elif time.monotonic() - since > 1.9:  # a still sound is shown for 1.5 s after each change
                return now
        raise AssertionError(f"the {name} does not come to rest")

    def close(self):
        """Its exit code."""
        code = self.program.wait(timeout=60)
        self.reader.join()
        self.program.stdout.close()
        return code


def shares_colour(rows, wanted, least):
    """Whether at least so many pixels have that colour (red, green, blue)."""
    pixel = bytes((wanted[2], wanted[1], wanted[0]))
    return sum(row[i:i + 3] == pixel for row in rows for i in range(0, len(row), 4)) >= least


def colours_in(rows):
    return len({row[i:i + 4] for row in rows for i in range(0, len(row), 4)})


def apart(a, b):
    return a[0] + a[2] <= b[0] or b[0] + b[2] <= a[0] or a[1] + a[3] <= b[1] or b[1] + b[3] <= a[1]


class PlayerByHand(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.screen = Screen(cls.folder.name)

    @classmethod
    def tearDownClass(cls):
        # Its desktop goes with this X server.
        subprocess.run([TOOLS / "wine-stop"], check=True,
                       env=dict(os.environ, AV_WINEPREFIX=str(ROOT / "build" / "wine-x64-x11")))
        cls.screen.close()
        cls.folder.cleanup()

    def start(self, *options, silent=True):
        self.player = Player(self.screen, pathlib.Path(self.folder.name), *(["--silent"] if silent else []), *options)
        self.addCleanup(self.end)
        self.player.hear("ready", 120)  # the first program in a fresh prefix waits for the prefix
        self.player.take_keyboard()
        return self.player

    def end(self):
        if self.player.program.poll() is None:
            self.player.program.terminate()
            self.player.close()

    def quit(self, player):
        player.keys("ctrl+q")
        self.assertEqual(0, player.close())
        left = [path for path in pathlib.Path("/proc").glob("[0-9]*/cmdline")
                if b"avplayer.exe" in self.read_or_nothing(path) and self.is_ours(path)]
        self.assertEqual([], left)

    @staticmethod
    def read_or_nothing(path):
        try:
            return path.read_bytes()
        except OSError:
            return b""

    def is_ours(self, path):
        return f"DISPLAY={self.screen.display}".encode() in self.read_or_nothing(path.with_name("environ")).split(b"\0")

    def same(self, a, b, what="the pictures differ"):
        self.assertTrue(a == b, what)  # assertEqual would list megabytes

    def differ(self, a, b, what="the pictures are the same"):
        self.assertFalse(a == b, what)

    def comes_back(self, before, box):
        """The old value shows in a field again."""
        end = time.monotonic() + WAIT_S
        while self.screen.rows(box) != before:
            self.assertLess(time.monotonic(), end, "the old value is not back")
            time.sleep(0.1)

    def check_layout(self, player, shown):
        client = player.boxes["client"]
        for i, name in enumerate(shown):
            box = player.boxes[name]
            self.assertGreaterEqual(box[0], client[0], name)
            self.assertGreaterEqual(box[1], client[1], name)
            self.assertLessEqual(box[0] + box[2], client[0] + client[2], name)
            self.assertLessEqual(box[1] + box[3], client[1] + client[3], name)
            for other in shown[:i]:
                self.assertTrue(apart(box, player.boxes[other]), f"{name} lies over {other}")
            self.assertGreater(colours_in(player.picture(name)), 3, f"nothing is drawn in {name}")

    def test_plays_and_pauses(self):
        player = self.start()
        time.sleep(1)
        self.check_layout(player, [*CONTROLS, "panel", "transport"])
        for name in CONTROLS:
            first = player.picture(name)
            time.sleep(0.7)
            self.differ(first, player.picture(name), f"the {name} stands still")
        player.press("space", "paused")
        stills = {name: player.still(name) for name in (*CONTROLS, "transport")}
        time.sleep(0.5)
        for name, still in stills.items():
            self.same(still, player.picture(name), name)
        # The seek bar by mouse and keyboard: another moment, another picture.
        bar = player.boxes["transport"]
        player.click(bar[0] + bar[2] // 2, bar[1] + bar[3] // 2)
        self.differ(stills["transport"], player.still("transport"))
        middle = player.still("analyser")
        self.differ(stills["analyser"], middle)
        player.keys("ctrl+Home")
        self.differ(middle, player.still("analyser"))
        player.press("ctrl+p", "playing")
        self.quit(player)

    def test_edits_properties_and_keeps_them_as_a_preset(self):
        player = self.start("--paused", "--at", "1.9")
        view, analyser = player.still("view"), player.still("analyser")
        meter = player.still("meter")

        player.press("ctrl+2", "selected meter")
        player.edit("LineType")
        player.press("Down", "put LineType 2 0x00000000")
        dots = player.still("meter")
        self.differ(meter, dots)

        player.put("SpotHeight", "9")
        high = player.still("meter")
        self.differ(dots, high)
        player.press("Down", "put SpotHeight 8 0x00000000")
        player.press("Up", "put SpotHeight 9 0x00000000")
        self.same(high, player.still("meter"))
        self.same(view, player.picture("view"))
        self.same(analyser, player.picture("analyser"))

        # A colour by its text, and a check box.
        player.press("ctrl+1", "selected view")
        player.put("BackColor", "#401020")
        red = player.still("view")
        self.assertTrue(shares_colour(red, (0x40, 0x10, 0x20), 10000))
        player.edit("GridVisible")
        player.press("space", "put GridVisible false 0x00000000")
        plain = player.still("view")
        self.differ(red, plain)

        # Saved, changed, and back again.
        player.name_preset("Mine", "ctrl+s", "saved Mine")
        text = player.presets.read_text(encoding="utf-8")
        self.assertIn("[Mine]", text)
        self.assertRegex(text, r"(?m)^Meter\.SpotHeight = 9$")
        self.assertRegex(text, r"(?m)^View\.BackColor = #401020$")
        player.name_preset("Paper", "Return", "preset Paper")
        self.assertTrue(shares_colour(player.still("view"), (255, 255, 255), 10000))
        player.name_preset("Mine", "Return", "preset Mine")
        self.same(plain, player.still("view"))
        self.same(high, player.still("meter"))
        player.press("ctrl+Prior", "preset As it comes")
        player.press("ctrl+Next", "preset Mine")
        player.press("ctrl+shift+d", "deleted Mine")
        self.assertNotIn("[Mine]", player.presets.read_text(encoding="utf-8"))
        # A built-in one stays.
        self.assertIn("built in", player.name_preset("Paper", "ctrl+s", "saved Paper"))
        self.quit(player)

    def test_shows_why_a_value_is_refused(self):
        player = self.start("--paused", "--at", "1.9", "--select", "analyser")
        analyser = player.still("analyser")
        x, y, width, height = player.boxes["panel"]
        help_box = (x, y + height - 70, width, 66)
        field = (x, y + 160, width, 40)  # the row below its heading
        red = (190, 24, 38)
        player.edit("LineCount")
        player.keys("ctrl+a")
        time.sleep(0.5)
        before = self.screen.rows(field)
        self.assertFalse(shares_colour(self.screen.rows(help_box), red, 1))
        player.type("500")
        time.sleep(0.3)
        self.differ(before, self.screen.rows(field), "typing is seen")
        player.keys("Return")
        player.hear("put LineCount 500 0x80070057")
        self.assertRegex(player.hear("refused LineCount"), r"500: 0x80070057 \| .*4 to 200")
        self.comes_back(before, field)
        self.assertTrue(shares_colour(self.screen.rows(help_box), red, 40))
        self.same(analyser, player.still("analyser"))
        # No number at all; then Escape takes back what was typed, and a second one leaves the panel.
        player.type("many")
        player.keys("Return")
        self.assertIn("no whole number", player.hear("refused LineCount"))
        player.type("7")
        player.keys("Escape")
        self.comes_back(before, field)
        player.press("Escape space", "playing")
        self.quit(player)

    def test_saves_what_the_screen_shows(self):
        player = self.start("--paused", "--at", "1.9", "--preset", "Mirror")
        for name in CONTROLS:
            player.still(name)
        for key, name in ("ctrl+1", "view"), ("ctrl+2", "meter"), ("ctrl+3", "analyser"):
            player.keys(key, "F12")
            file = self.snapshot_file(player)
            width, height, rows = decode(file)
            self.assertEqual(player.boxes[name][2:], (width, height))
            self.same(self.screen.rgb(player.boxes[name]), rows, name)
        player.keys("shift+F12")
        width, height, rows = decode(self.snapshot_file(player))
        client, panel, transport = (player.boxes[name] for name in ("client", "panel", "transport"))
        self.assertEqual((panel[0] - client[0], transport[1] - client[1]), (width, height))
        x, y, *_ = player.boxes["meter"]
        row = y - client[1] + 20
        begin = 3 * (x - client[0])
        expected = self.screen.rgb((x, y + 20, player.boxes["meter"][2], 1))[0]
        self.same(expected, rows[row][begin:begin + len(expected)])
        self.quit(player)

    def snapshot_file(self, player):
        line = player.hear("snapshot ")
        return player.snapshots / re.split(r"[\\/]", line)[-1]

    def test_plays_files_and_says_what_is_wrong_with_others(self):
        folder = pathlib.Path(self.folder.name)
        bad, good = folder / "bad.wav", folder / "good.wav"
        bad.write_bytes(b"RIFF\x04\0\0\0WAVE")
        tone = b"".join(struct.pack("<f", 0.5 * math.sin(i * 0.1)) for i in range(3 * 22050))
        good.write_bytes(b"RIFF" + struct.pack("<I", 36 + len(tone)) + b"WAVEfmt " +
                         struct.pack("<IHHIIHH", 16, 3, 1, 22050, 4 * 22050, 4, 32) + b"data" +
                         struct.pack("<I", len(tone)) + tone)
        player = self.start("--once", f"Z:{bad}")
        x, y, width, height = player.boxes["client"]
        status = (x, y + height - 26, width // 2, 26)
        self.assertTrue(shares_colour(self.screen.rows(status), (190, 24, 38), 20), "the status line says why, in red")
        self.quit(player)
        # To its end, into the sound device where there is one. Then bars and columns have fallen.
        player = self.start("--once", f"Z:{good}", silent=False)
        print("player test:", player.hear("output "), file=sys.stderr)
        self.assertFalse(shares_colour(self.screen.rows(status), (190, 24, 38), 1))
        lit = (0x38, 0x8B, 0xFD)
        time.sleep(1)
        self.assertTrue(shares_colour(player.picture("analyser"), lit, 100))
        self.assertFalse(shares_colour(player.still("analyser"), lit, 100))
        self.quit(player)

    def test_chooses_a_colour_from_the_systems_dialog(self):
        player = self.start("--paused", "--at", "1.9")
        before = player.still("view")
        player.edit("BackColor")
        player.keys("Tab", "space")
        dialog = subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", "^Color$"], check=True,
                                env=player.environment, capture_output=True, text=True, timeout=WAIT_S).stdout.split()[0]
        player.xdotool("windowfocus", "--sync", dialog)
        time.sleep(1)
        player.keys("Return")  # the colour that it came with
        player.hear("put BackColor #0D1117 0x00000000")
        player.take_keyboard()
        self.same(before, player.still("view"))
        self.quit(player)

    def test_keeps_its_parts_in_every_size(self):
        player = self.start("--paused", "--at", "1.9")
        player.xdotool("windowmove", player.window, 0, 0)
        for width, height in (1300, 900), (800, 520), (640, 480):
            player.xdotool("windowsize", player.window, width, height)
            player.hear("box client")
            time.sleep(1.5)
            self.check_layout(player, [*CONTROLS, "panel", "transport"])
        player.press("ctrl+b", "box client")
        time.sleep(1)
        wide = player.boxes["view"]
        self.check_layout(player, [*CONTROLS, "transport"])
        player.press("F11", "box client")
        time.sleep(1.5)
        self.assertEqual((0, 0, 1400, 1000), player.boxes["client"])
        self.check_layout(player, CONTROLS)
        player.press("Escape", "box client")
        time.sleep(1)
        self.assertEqual(wide[2:], player.boxes["view"][2:])
        self.quit(player)

    def test_can_be_used_with_the_mouse(self):
        player = self.start("--paused", "--at", "1.9")
        for name in ("meter", "analyser", "view"):
            x, y, width, height = player.boxes[name]
            player.click(x + width // 2, y + height // 2)
            player.hear(f"selected {name}")
        x, y, width, _ = player.boxes["panel"]
        player.click(x + width // 2, y + 26)
        player.hear("selected meter")
        player.keys("ctrl+f")
        player.type("SpotInterval")
        time.sleep(0.5)
        player.click(x + width - 22, y + 159)  # the upper arrow beside the number
        player.hear("put SpotInterval 3 0x00000000")
        self.quit(player)


def decode(path):
    """Width, height and rows of red, green, blue bytes of a PNG file."""
    width, height, pixels = squeeze_png.decode(path.read_bytes())
    samples = b"".join(map(bytes, pixels))
    return width, height, [samples[at:at + 3 * width] for at in range(0, len(samples), 3 * width)]


if __name__ == "__main__":
    missing = [name for name in ("Xvfb", "xdotool") if not shutil.which(name)]
    if missing:
        print(f"player test skipped: {' and '.join(missing)} missing; tools/bootstrap.sh test-full installs them")
        sys.exit(SKIPPED)
    player_program = sys.argv.pop(1)
    unittest.main()
