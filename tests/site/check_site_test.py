#!/usr/bin/python3
# Debian's own interpreter, for which python3-selenium is installed.
"""The checker of the site has to catch every fault that is planted in a small one, and nothing else. Run by `make docs`."""

import importlib.machinery
import importlib.util
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
TOOL = pathlib.Path(__file__).resolve().parents[2] / "tools/check-site"
LOADER = importlib.machinery.SourceFileLoader("check_site", str(TOOL))
check_site = importlib.util.module_from_spec(importlib.util.spec_from_loader("check_site", LOADER))
LOADER.exec_module(check_site)

# One transparent pixel.
PICTURE = bytes.fromhex("89504e470d0a1a0a0000000d49484452000000010000000108060000001f15c4890000000d49444154789c63600000000200"
                        "01e221bc330000000049454e44ae426082")
GOOD = """<!doctype html><html lang="en"><head><title>Good</title><link rel="icon" href="data:,"></head><body>
<h2 id="here">Here</h2><a href="#here">down</a> <a href="second.html#there">over</a> <a href="folder/">in</a>
<a href="https://example.org/nowhere">out</a><img src="good.png" alt=""></body></html>"""
SECOND = '<!doctype html><title>Second</title><link rel="icon" href="data:,"><p id="there"><a href="index.html">back</a>'

FAULTS = {
    '<a href="lost.html">x</a>': "the link lost.html leads to no page",
    '<a href="second.html#nowhere">x</a>': "the link second.html#nowhere leads to no place in second.html",
    '<a href="#nowhere">x</a>': "the link #nowhere leads to no place in index.html",
    '<img src="lost.png" alt="">': "the picture lost.png does not load",
    '<img src="second.html" alt="">': "the picture second.html does not load",
    "<script>console.error('broken')</script>": "broken",
    "<script>nothing.at.all()</script>": "nothing is not defined",
    '<script src="lost.js"></script>': "lost.js",
    '<link rel="stylesheet" href="https://fonts.example.org/font.css">': "fetches https://fonts.example.org/font.css",
    '<div style="width: 420px">x</div>': "pixels too wide for a window of 400",
    '<div style="width: 1400px">x</div>': "pixels too wide for a window of 1280",
}


def problems_of(index):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "folder").mkdir()
        (folder / "index.html").write_text(index)
        (folder / "second.html").write_text(SECOND)
        (folder / "folder/index.html").write_text(SECOND.replace("index.html", "../index.html"))
        (folder / "good.png").write_bytes(PICTURE)
        return check_site.check(folder).problems


class CheckSite(unittest.TestCase):
    def test_finds_nothing_in_a_good_site(self):
        self.assertEqual(problems_of(GOOD), [])

    def test_finds_each_fault(self):
        found = problems_of(GOOD.replace("</body>", "\n".join(FAULTS) + "</body>"))
        for fault, text in FAULTS.items():
            with self.subTest(fault=fault):
                self.assertTrue(any(text in line for line in found), found)
        self.assertEqual({line.split(":")[0] for line in found}, {"index.html"})

    def test_finds_a_page_without_a_title(self):
        self.assertEqual(problems_of(GOOD.replace("<title>Good</title>", "")), ["index.html: has no title"])


if __name__ == "__main__":
    unittest.main()
