"""What the tests of installing share: entries of the registry by the programs that see them, and a Wine with a host."""

import shutil
import struct
import unittest

import traces
from made_package import Package, compile_against
from wine_prefix import WORK, WinePrefix, changes, windows_path

SOFTWARE = "HKEY_LOCAL_MACHINE\\Software\\Classes\\"
USER = "HKEY_CURRENT_USER\\Software\\Classes\\"
NODE = "Wow6432Node\\"
# A folder with what scripts stumble over: spaces, an ampersand, brackets, an apostrophe, a letter beyond ASCII.
PLACE = "Sound & Vision (it's here) é"
# Another program's keys. Every Windows in use has some in these places; installers remove a place with its last key.
STRANGER = "{5A1C0E0B-73F5-4C0B-9B3C-0F6E35D4D3A1}"
PLACES = ("AppID", "CLSID", "Interface", "TypeLib", NODE + "CLSID", NODE + "Interface")
LIBRARIES = ("QELAudioVisualization4", "AudioBlocks")
CONTROLS = ("view", "meter", "analyser")


def below(registry, root):
    """The entries below a key, with their places relative to it, whatever letter case the keys have."""
    return {(key[len(root):].lower(), name): data for (key, name), data in registry.items()
            if key.lower().startswith(root.lower())}


def placed(entries, *folders):
    """The entries with a mark for the folder that the libraries lie in."""
    for folder in folders:
        entries = {place: data.replace(folder, "<folder>") for place, data in entries.items()}
    return entries


def is_in(entries, *prefixes):
    return {place: data for place, data in entries.items() if place[0].startswith(tuple(p.lower() for p in prefixes))}


def without(entries, *prefixes):
    return {place: data for place, data in entries.items() if place not in is_in(entries, *prefixes)}


def for_64_bit(entries):
    """What 64-bit programs see, of a machine on which both kinds may be registered."""
    return {place: data for place, data in without(entries, NODE).items() if not place[0].endswith("\\0\\win32")}


def for_32_bit(entries):
    """What 32-bit programs see: some places of their own, the others shared."""
    own = {(key.removeprefix(NODE.lower()), name): data
           for (key, name), data in is_in(entries, NODE + "CLSID", NODE + "Interface").items()}
    shared = without(entries, NODE, "CLSID", "Interface")
    return {**{place: data for place, data in shared.items() if not place[0].endswith("\\0\\win64")}, **own}


def as_32_bit(entries):
    """Entries of the 64-bit library as the 32-bit one has them."""
    return {(key.replace("\\0\\win64", "\\0\\win32"), name): data for (key, name), data in entries.items()}


class Installed(unittest.TestCase):
    """A fresh Wine for each test, and a host program that is built from the package."""

    maxDiff = None
    arch = "x64"

    @classmethod
    def setUpClass(cls):
        cls.package = Package(f"install-{cls.arch}")
        cls.unpacked = cls.package.unpack(WORK / f"install-{cls.arch}-unpacked")
        cls.program = WORK / f"use_controls_{cls.arch}.exe"
        compile_against(cls.unpacked, cls.program, cls.arch)

    def setUp(self):
        self.wine = WinePrefix(f"install-{self.arch}", self.arch)
        self.addCleanup(self.wine.remove)
        self.wine.import_registry(f"[{root}{place}\\{STRANGER}]" for root in (SOFTWARE, USER) for place in PLACES)

    def unpack_in_wine(self):
        return self.package.unpack(self.wine.drive() / PLACE)

    def libraries_in_wine(self, arch=None):
        return f"C:\\{PLACE}\\{self.package.top}\\bin\\{arch or self.arch}"

    def registered_by_regsvr32(self, wine=None):
        """What regsvr32 of each library writes below HKEY_CLASSES_ROOT, with marks for the paths."""
        wine = wine or self.wine
        folder = windows_path(self.unpacked / "bin" / wine.arch)
        before = wine.registry()
        for library in LIBRARIES:
            wine.must("regsvr32", "/s", f"{folder}\\{library}.dll")
        new, gone = changes(before, wine.registry())
        for library in LIBRARIES:
            wine.must("regsvr32", "/s", "/u", f"{folder}\\{library}.dll")
        self.assertEqual(gone, {})
        return placed(below(new, SOFTWARE), folder)

    def assert_usable(self, folder):
        """A program of another folder creates the controls, which show a block; a script draws one into a file."""
        pictures = WORK / "pictures"
        shutil.rmtree(pictures, ignore_errors=True)
        pictures.mkdir()
        lines = self.wine.must(windows_path(self.program), windows_path(pictures)).splitlines()
        self.assertEqual([line.split(" ", 2)[0] for line in lines], list(CONTROLS))
        for line in lines:
            self.assertEqual(line.split(" ", 2)[2].lower(), f"{folder}\\QELAudioVisualization4.dll".lower())
        self.assertEqual(sorted(p.name for p in pictures.iterdir()), sorted(f"{c}.bmp" for c in CONTROLS))
        (pictures / "try.vbs").write_text(self.script_of_the_readme())
        self.assertEqual(self.wine.must("cscript", "//nologo", "try.vbs", cwd=pictures), "spectrum.png\n")
        picture = (pictures / "spectrum.png").read_bytes()
        self.assertEqual(picture[:8], b"\x89PNG\r\n\x1a\n")
        self.assertEqual(struct.unpack(">II", picture[16:24]), (640, 360))
        self.assertGreater(len(picture), 1500, "more than scales and grid")

    def script_of_the_readme(self):
        text = (self.unpacked / "README.md").read_text(encoding="utf-8")
        return "\n".join(line.strip() for line in text.split("```vbs")[1].split("```")[0].splitlines())

    def assert_not_usable(self):
        run = self.wine.run(windows_path(self.program), windows_path(WORK))
        self.assertEqual(run.code, 1)
        for control in CONTROLS:
            self.assertIn(f"{control} not created: 0x80040154", run.output)  # REGDB_E_CLASSNOTREG

    def assert_same_entries(self, found, expected):
        extra, missing = changes(expected, found)
        self.assertEqual((extra, missing), ({}, {}), "(written, but not expected; expected, but not written)")

    def assert_as_before(self, before):
        after = self.wine.state()
        self.assert_same_entries(after[0], before[0])
        self.assertEqual(changes(before[1], after[1]), ({}, {}), "(files that are new or other; files that are gone)")

    def assert_nothing_of_ours(self, *other_msis):
        """Nowhere in the prefix, not even where Wine writes by itself."""
        identifiers = traces.identifiers_of(self.package.msi, *other_msis)
        self.assertEqual(traces.found(identifiers, self.wine.whole_registry(), self.wine.stamped_files()), set())

    def run_script(self, folder, name):
        run = self.wine.run("cmd", "/c", f"{name}.cmd", cwd=folder)
        return run.code, run.output
