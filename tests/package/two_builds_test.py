#!/usr/bin/env python3
"""Builds and packs a copy of this tree elsewhere, with nothing taken from a cache: the packages have the same bytes."""

import os
import pathlib
import shutil
import subprocess
import sys
import unittest
import zipfile

sys.dont_write_bytecode = True

from wine_prefix import ROOT, WORK  # noqa: E402


def copy_of_tree(folder):
    """The tree's own files, without what was built; another path, and another length of it."""
    shutil.rmtree(folder, ignore_errors=True)
    names = subprocess.run(["git", "-C", ROOT, "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                           capture_output=True, text=True, check=True).stdout.split("\0")
    for name in filter(None, names):
        target = folder / name
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(ROOT / name, target)


def packages_of(tree, out, environment):
    subprocess.run([tree / "tools/package", "--out", out], env=dict(os.environ, **environment), check=True,
                   stdout=subprocess.DEVNULL)
    return {path.name: path.read_bytes() for path in sorted(pathlib.Path(out).iterdir())}


class TwoBuilds(unittest.TestCase):
    def test_give_the_same_packages(self):
        seconds = {"SOURCE_DATE_EPOCH": "1767225600"}
        here = packages_of(ROOT, WORK / "first", seconds)
        self.assertEqual(len(here), 2)
        tree = WORK / "somewhere else entirely" / "tree"
        copy_of_tree(tree)
        # Another time, zone and language, and no compiler's cache.
        there = packages_of(tree, WORK / "second", {
            **seconds, "CCACHE_DISABLE": "1", "TZ": "Asia/Tokyo", "LC_ALL": "C"})
        self.assertEqual(list(here), list(there))
        for name in here:
            if name.endswith(".zip"):
                self.assertEqual(self.different_files(name), [])
            self.assertTrue(here[name] == there[name], f"{name} differs")
        shutil.rmtree(tree.parent)

    @staticmethod
    def different_files(name):
        with zipfile.ZipFile(WORK / "first" / name) as first, zipfile.ZipFile(WORK / "second" / name) as second:
            return [n for n in sorted({*first.namelist(), *second.namelist()})
                    if n not in first.namelist() or n not in second.namelist() or first.read(n) != second.read(n)]


if __name__ == "__main__":
    unittest.main()
