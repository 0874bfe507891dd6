#!/usr/bin/env python3
"""Moves a real pointer over the view and checks its events:  real_pointer_test.py EVENT_PRINTER

Starts an X server of its own, the program on it under Wine, and moves and clicks with xdotool. The values that the
events have to carry are computed here. Ends with 77, and says why, where Xvfb or xdotool is missing.
"""

import contextlib
import math
import os
import pathlib
import queue
import shutil
import subprocess
import sys
import threading
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
TOOLS = ROOT / "tools"
SKIPPED = 77
WAIT_S = 10  # for one event; a machine under load
QUIET_S = 0.5  # in which nothing may come

event_printer = None


@contextlib.contextmanager
def x_server():
    """The display name of an X server that nobody else uses; it chooses its number itself."""
    read_end, write_end = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(write_end), "-screen", "0", "1024x768x24", "-nolisten", "tcp"],
        pass_fds=[write_end], stderr=subprocess.DEVNULL)
    os.close(write_end)
    try:
        with os.fdopen(read_end) as numbers:
            number = numbers.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        yield ":" + number
    finally:
        server.terminate()
        server.wait()


class View:
    """The program, its view on the screen, and the pointer over it."""

    def __init__(self, display, visualization_type, axis):
        self.type, self.axis = visualization_type, axis
        self.environment = dict(os.environ, DISPLAY=display, AV_DISPLAY=display)
        self.xdotool("mousemove", 1023, 767)  # a window that opens under the pointer would hear of it
        self.program = subprocess.Popen(
            [TOOLS / "wine-run", "x64", event_printer, str(visualization_type), str(axis)],
            env=self.environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.lines = queue.Queue()
        self.reader = threading.Thread(target=self.read)
        self.reader.start()

    def read(self):
        for line in self.program.stdout:
            self.lines.put(line.split())

    def wait_for_window(self):
        # The first program in a fresh prefix waits for the prefix.
        word, *numbers = self.lines.get(timeout=120)
        assert word == "view", word
        self.x, self.y, self.width, self.height, y_scale_width, x_scale_height = map(int, numbers)
        self.plot_width = self.width - y_scale_width
        self.plot_height = self.height - x_scale_height

    def close(self):
        """The program's exit code."""
        self.program.stdin.close()
        code = self.program.wait(timeout=60)
        self.reader.join()
        self.program.stdout.close()
        return code

    def xdotool(self, *arguments):
        subprocess.run(["xdotool", *map(str, arguments)], env=self.environment, check=True)

    def move_to(self, x, y):
        self.xdotool("mousemove", "--sync", self.x + x, self.y + y)

    def events(self, count):
        """The next events, and that no more than these come."""
        heard = [self.lines.get(timeout=WAIT_S) for _ in range(count)]
        with contextlib.suppress(queue.Empty):
            heard.append(self.lines.get(timeout=QUIET_S))
        return [(name, *map(int, arguments)) for name, *arguments in heard]

    def value_at(self, x, y):
        """XValue and YValue of a view with the defaults."""
        level = 20 * math.log10(32767)
        if self.type == 1:
            return (math.trunc(1024 * x / self.plot_width + 0.5),
                    math.trunc(2 * level * abs(self.plot_height * 0.5 - y) / self.plot_height - level + 0.5))
        if self.axis == 1:
            frequency = 22050 * x / self.plot_width
        else:
            frequency = 22050 / 2 ** ((self.plot_width - x) * 10 / self.plot_width)
        return (math.trunc(frequency + 0.5),
                math.trunc(level * (self.plot_height - y) / self.plot_height - level + 0.5))


class RealPointer(unittest.TestCase):
    def check(self, view, name, x, y):
        return (name, x, y, *view.value_at(x, y))

    def walk_over(self, view):
        self.assertEqual((320, 240), (view.width, view.height))
        self.assertLess(view.plot_width, view.width)
        self.assertLess(view.plot_height, view.height)
        self.assertEqual([], view.events(0))

        x, y = 50, view.plot_height // 2
        view.move_to(x, y)
        self.assertEqual([self.check(view, "MouseMove", x, y)], view.events(1))
        view.xdotool("mousedown", 1)
        self.assertEqual([self.check(view, "MouseDown", x, y)], view.events(1))
        view.xdotool("mouseup", 1)
        self.assertEqual([self.check(view, "MouseUp", x, y), ("MouseClick", x, y)], view.events(2))

        x, y = 170, 30
        view.move_to(x, y)
        self.assertEqual([self.check(view, "MouseMove", x, y)], view.events(1))
        view.xdotool("click", "--repeat", 2, "--delay", 20, 1)
        up_and_click = [self.check(view, "MouseUp", x, y), ("MouseClick", x, y)]
        self.assertEqual([self.check(view, "MouseDown", x, y), *up_and_click, ("MouseDblClick",), *up_and_click],
                         view.events(6))

        # The last pixel of the plot, then the scales, where only buttons are heard.
        x, y = view.plot_width - 1, view.plot_height - 1
        view.move_to(x, y)
        self.assertEqual([self.check(view, "MouseMove", x, y)], view.events(1))
        for x, y in (view.plot_width, 40), (40, view.plot_height), (view.width - 1, view.height - 1):
            view.move_to(x, y)
            self.assertEqual([], view.events(0))
            view.xdotool("click", 1)
            self.assertEqual([self.check(view, "MouseDown", x, y), self.check(view, "MouseUp", x, y),
                              ("MouseClick", x, y)], view.events(3))

        # The other buttons, and a press that begins outside.
        view.move_to(60, 70)
        self.assertEqual([self.check(view, "MouseMove", 60, 70)], view.events(1))
        view.xdotool("click", 3)
        view.xdotool("click", 2)
        self.assertEqual([], view.events(0))
        view.move_to(60, -10)  # the window's title
        view.xdotool("mousemove", 900, 700, "mousedown", 1)
        self.assertEqual([], view.events(0))
        view.xdotool("mouseup", 1)
        self.assertEqual([], view.events(0))

    def test_the_view_reports_what_a_hand_does(self):
        with x_server() as display:
            try:
                for visualization_type, axis in (1, 1), (2, 1), (2, 2):
                    with self.subTest(type=visualization_type, axis=axis):
                        view = View(display, visualization_type, axis)
                        try:
                            view.wait_for_window()
                            self.walk_over(view)
                        finally:
                            code = view.close()
                        self.assertEqual(0, code)
            finally:
                # Its desktop goes with this X server.
                subprocess.run([TOOLS / "wine-stop"], check=True, env=dict(
                    os.environ, AV_WINEPREFIX=str(ROOT / "build" / "wine-x64-x11")))


if __name__ == "__main__":
    missing = [name for name in ("Xvfb", "xdotool") if not shutil.which(name)]
    if missing:
        print(f"real pointer test skipped: {' and '.join(missing)} missing; tools/bootstrap.sh test-full installs them")
        sys.exit(SKIPPED)
    event_printer = sys.argv.pop(1)
    unittest.main()
