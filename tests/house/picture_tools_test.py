"""Squeezed pictures keep every pixel, the gallery hides nothing that went wrong, only drawn pictures are accepted, and no
picture of the pages is one that nobody can make again."""

import importlib.machinery
import importlib.util
import io
import contextlib
import json
import pathlib
import random
import re
import struct
import sys
import tempfile
import unittest
import zlib

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).resolve().parents[2]
TOOLS = ROOT / "tools"
sys.path.insert(0, str(TOOLS))
import squeeze_png  # noqa: E402


def load(name):
    loader = importlib.machinery.SourceFileLoader(name.replace("-", "_"), str(TOOLS / name))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(loader.name, loader))
    loader.exec_module(module)
    return module


def png(width, height, colour, rows, extra=b""):
    """A PNG file of 8-bit rows that already carry their filter bytes."""
    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
    return (squeeze_png.SIGNATURE + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, colour, 0, 0, 0)) + extra +
            chunk(b"IDAT", zlib.compress(b"".join(rows))) + chunk(b"IEND", b""))


def rgb_file(width, height, pixels):
    lines = [pixels[at:at + width] for at in range(0, width * height, width)]
    return png(width, height, 2, [b"\0" + bytes(v for pixel in line for v in pixel) for line in lines])


class Squeezing(unittest.TestCase):
    def test_keeps_every_pixel_whatever_the_number_of_colours(self):
        rng = random.Random(5)
        for colours in (1, 2, 3, 16, 17, 200, 256, 257, 2000):
            for width, height in ((1, 1), (7, 5), (33, 40), (80, 50)):
                palette = [tuple(rng.randrange(256) for _ in range(3)) for _ in range(colours)]
                pixels = [rng.choice(palette) for _ in range(width * height)]
                squeezed = squeeze_png.encode_smallest(width, height, pixels)
                self.assertEqual(squeeze_png.decode(squeezed), (width, height, pixels), (colours, width, height))

    def test_makes_a_drawing_smaller(self):
        pixels = [(255, 255, 0) if x == y else (0, 0, 0) for y in range(60) for x in range(60)]
        data = rgb_file(60, 60, pixels)
        squeezed = squeeze_png.squeeze(data)
        self.assertLess(len(squeezed), len(data))
        self.assertEqual(squeeze_png.squeeze(squeezed), squeezed)

    def test_reads_every_filter_of_other_encoders(self):
        rng = random.Random(9)
        width, height, step = 9, 30, 3
        plain = [bytes(rng.randrange(256) for _ in range(width * step)) for _ in range(height)]
        rows, above = [], bytes(width * step)
        for y, row in enumerate(plain):
            kind, out = y % 5, bytearray()
            for i, value in enumerate(row):
                a = row[i - step] if i >= step else 0
                b = above[i]
                c = above[i - step] if i >= step else 0
                p = a + b - c
                paeth = a if abs(p - a) <= abs(p - b) and abs(p - a) <= abs(p - c) else b if abs(p - b) <= abs(p - c) else c
                out.append((value - (0, a, b, (a + b) // 2, paeth)[kind]) & 255)
            rows.append(bytes([kind]) + bytes(out))
            above = row
        _, _, pixels = squeeze_png.decode(png(width, height, 2, rows))
        self.assertEqual(b"".join(bytes(pixel) for pixel in pixels), b"".join(plain))

    def test_reads_opaque_alpha_and_refuses_any_other(self):
        opaque = png(2, 1, 6, [b"\0\1\2\3\xff\4\5\6\xff"])
        self.assertEqual(squeeze_png.decode(opaque), (2, 1, [(1, 2, 3), (4, 5, 6)]))
        with self.assertRaises(squeeze_png.NotOpaque):
            squeeze_png.decode(png(2, 1, 6, [b"\0\1\2\3\xff\4\5\6\xfe"]))


class Folders(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.golden = pathlib.Path(temporary.name) / "golden"
        self.drawn = pathlib.Path(temporary.name) / "drawn"
        self.golden.mkdir()
        self.drawn.mkdir()

    def draw(self, name, **figures):
        pixels = [(0, 0, 9)] * 4
        (self.drawn / f"{name}-actual.png").write_bytes(rgb_file(2, 2, pixels))
        (self.drawn / f"{name}.json").write_text(json.dumps({
            "width": 2, "height": 2, "dpi": 96, "accepted": True, "sameSize": True, "pixels": 4, "equal": 4, "worst": 0,
            "passed": True} | figures))

    def accept(self, name):
        (self.golden / f"{name}.png").write_bytes(rgb_file(2, 2, [(0, 0, 9)] * 4))


class Gallery(Folders):
    def page(self):
        return load("gallery").page(self.golden, self.drawn, "now")

    def test_shows_three_pictures_and_figures_without_the_network(self):
        self.accept("a")
        self.draw("a")
        (self.drawn / "a-difference.png").write_bytes(rgb_file(2, 2, [(0, 0, 0)] * 4))
        text, count, failed = self.page()
        self.assertEqual((count, failed), (1, 0))
        self.assertEqual(text.count("data:image/png;base64,"), 3)
        self.assertIn("100 % equal", text)
        self.assertNotIn("http", text.replace("http-equiv", ""))

    def test_counts_what_differs_is_new_has_another_size_or_was_not_drawn(self):
        for name in ("fine", "off", "size", "lost"):
            self.accept(name)
        self.draw("fine")
        self.draw("off", equal=3, worst=200, passed=False)
        self.draw("size", sameSize=False, passed=False)
        self.draw("new", accepted=False, sameSize=False, passed=False)
        text, count, failed = self.page()
        self.assertEqual((count, failed), (5, 4))
        for words in ("1 pixels differ", "worst channel 200", "another size", "not accepted yet", "not drawn",
                      "4 of 5 not as accepted"):
            self.assertIn(words, text)
        self.assertLess(text.index('id="off"'), text.index('id="fine"'))

    def test_rounds_equality_down(self):
        self.accept("a")
        self.draw("a", pixels=10000000, equal=9999999, worst=1)
        self.assertIn("99.999 % equal", self.page()[0])


class Accepting(Folders):
    def test_copies_what_was_drawn_and_names_what_was_not(self):
        self.draw("a")
        with contextlib.redirect_stdout(io.StringIO()):
            missing = load("accept-pictures").accept(["a", "b"], self.golden, self.drawn)
        self.assertEqual(missing, ["b"])
        self.assertEqual(squeeze_png.decode((self.golden / "a.png").read_bytes()), (2, 2, [(0, 0, 9)] * 4))
        self.assertEqual([path.name for path in self.golden.iterdir()], ["a.png"])


class PicturesOfThePages(unittest.TestCase):
    """But for the reference's, which tools/make-reference --check looks after."""

    IMAGES = ROOT / "docs/images"
    SHOWN = re.compile(r"!\[[^\]]*\]\(([^)\s:]+)\)")

    def there(self):
        return {path.name for path in self.IMAGES.iterdir() if path.is_file()}

    def shown(self):
        """What pages show of the folder, and what they show that is nowhere."""
        found, lost = set(), set()
        for page in [*ROOT.glob("*.md"), *ROOT.glob("docs/**/*.md"), *ROOT.glob("samples/**/*.md")]:
            for picture in self.SHOWN.findall(page.read_text(encoding="utf-8")):
                path = (page.parent / picture).resolve()
                if not path.is_file():
                    lost.add(f"{page.name}: {picture}")
                elif path.parent == self.IMAGES:
                    found.add(path.name)
        return found, lost

    def test_are_all_made_by_a_command(self):
        bench = "growth.svg"
        self.assertIn(bench, (TOOLS / "bench").read_text(encoding="utf-8"))
        self.assertEqual(self.there(), load("refresh-images").images() | {bench})

    def test_are_there_and_shown(self):
        found, lost = self.shown()
        self.assertEqual(lost, set())
        self.assertEqual(found, self.there())


if __name__ == "__main__":
    unittest.main()
