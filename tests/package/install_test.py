#!/usr/bin/env python3
"""Installs, uses and removes the package under Wine, each way, and compares registry and files before and after."""

import shutil
import struct
import sys
import unittest

sys.dont_write_bytecode = True

from made_package import Package, compile_against  # noqa: E402
from wine_prefix import WORK, WinePrefix, changes, windows_path  # noqa: E402

SOFTWARE = "HKEY_LOCAL_MACHINE\\Software\\Classes\\"
USER = "HKEY_CURRENT_USER\\Software\\Classes\\"
NODE = "Wow6432Node\\"
# A folder with what scripts stumble over: spaces, an ampersand, brackets, an apostrophe.
PLACE = "Sound & Vision (it's here)"
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
    """One Wine for each test, with the package's program in it."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.package = Package("install")
        cls.unpacked = cls.package.unpack(WORK / "install-unpacked")
        cls.program = WORK / "use_controls.exe"
        compile_against(cls.unpacked, cls.program)

    def setUp(self):
        self.wine = WinePrefix("install")
        self.addCleanup(self.wine.remove)
        self.wine.import_registry(f"[{root}{place}\\{STRANGER}]" for root in (SOFTWARE, USER) for place in PLACES)

    def unpack_in_wine(self):
        return self.package.unpack(self.wine.drive() / PLACE)

    def libraries_in_wine(self, arch="x64"):
        return f"C:\\{PLACE}\\{self.package.top}\\bin\\{arch}"

    def registered_by_regsvr32(self):
        """What regsvr32 of each library writes below HKEY_CLASSES_ROOT, with marks for the paths."""
        folder = windows_path(self.unpacked / "bin/x64")
        before = self.wine.registry()
        for library in LIBRARIES:
            self.wine.must("regsvr32", "/s", f"{folder}\\{library}.dll")
        new, gone = changes(before, self.wine.registry())
        for library in LIBRARIES:
            self.wine.must("regsvr32", "/s", "/u", f"{folder}\\{library}.dll")
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
        self.assertEqual(after[1] - before[1], set())
        self.assertEqual(before[1] - after[1], set())

    def run_script(self, folder, name):
        run = self.wine.run("cmd", "/c", f"{name}.cmd", cwd=folder)
        return run.code, run.output


class Installer(Installed):
    PROGRAM_FILES = {"x64": "Program Files", "x86": "Program Files (x86)"}

    def install(self):
        self.wine.must("msiexec", "/i", windows_path(self.package.msi), "/qn")

    def remove(self):
        self.wine.must("msiexec", "/x", windows_path(self.package.msi), "/qn")

    def program_folder(self, arch):
        return self.wine.drive() / self.PROGRAM_FILES[arch] / "QELAudioVisualization4"

    def libraries(self, arch):
        return f"C:\\{self.PROGRAM_FILES[arch]}\\QELAudioVisualization4\\bin\\{arch}"

    def test_brings_all_files_and_takes_them_away_with_its_entries(self):
        before = self.wine.state()
        self.install()
        for file in sorted(p for p in self.unpacked.rglob("*") if p.is_file()):
            name = file.relative_to(self.unpacked).as_posix()
            if name.endswith(".cmd") or name.startswith("registry/") or name == "SHA256SUMS":
                continue
            target = self.program_folder("x86" if name.startswith("bin/x86/") else "x64") / name
            self.assertEqual(target.read_bytes(), file.read_bytes(), name)
        self.remove()
        self.assert_as_before(before)

    def test_writes_the_entries_that_regsvr32_writes(self):
        expected = for_64_bit(self.registered_by_regsvr32())
        self.assertGreater(len(expected), 200)
        before = self.wine.registry()
        self.install()
        new, gone = changes(before, self.wine.registry())
        self.assertEqual(gone, {})
        written = without(below(new, SOFTWARE), "Installer")
        of_64_bit = placed(for_64_bit(written), self.libraries("x64"))
        self.assert_same_entries(of_64_bit, expected)
        # The 32-bit libraries are built of the same sources. What a 32-bit regsvr32 writes, OnA32BitSystem sees.
        of_32_bit = placed(for_32_bit(written), self.libraries("x86"), self.libraries("x64"))
        self.assert_same_entries(of_32_bit, as_32_bit(expected))

    def test_installed_controls_show_a_block_until_they_are_removed(self):
        self.assert_not_usable()
        self.install()
        self.assert_usable(self.libraries("x64"))
        self.remove()
        self.assert_not_usable()


class MachineScripts(Installed):
    def test_register_what_regsvr32_registers_and_take_it_back(self):
        expected = self.registered_by_regsvr32()
        folder = self.unpack_in_wine()
        before = self.wine.state()
        code, output = self.run_script(folder, "register-machine")
        self.assertEqual(code, 0, output)
        self.assertIn("Registered.", output)
        # A Wine of 64 bits only.
        self.assertIn("32-bit libraries are left out", output)
        new, gone = changes(before[0], self.wine.state()[0])
        self.assertEqual(gone, {})
        self.assert_same_entries(placed(below(new, SOFTWARE), self.libraries_in_wine()), expected)
        code, output = self.run_script(folder, "unregister-machine")
        self.assertEqual(code, 0, output)
        self.assert_as_before(before)

    def test_registered_controls_show_a_block(self):
        folder = self.unpack_in_wine()
        self.assertEqual(self.run_script(folder, "register-machine")[0], 0)
        self.assert_usable(self.libraries_in_wine())
        self.assertEqual(self.run_script(folder, "unregister-machine")[0], 0)
        self.assert_not_usable()

    def test_say_what_is_missing(self):
        folder = self.unpack_in_wine()
        for file in "x86/AudioBlocks.dll", "x64/QELAudioVisualization4.dll":
            (folder / "bin" / file).unlink()
            for name in "register-machine", "unregister-machine":
                code, output = self.run_script(folder, name)
                self.assertEqual(code, 2)
                self.assertIn("FAILED: the folder bin", output)

    def test_say_that_a_library_could_not_be_registered(self):
        folder = self.unpack_in_wine()
        (folder / "bin/x64/QELAudioVisualization4.dll").write_bytes(b"no library")
        for name in "register-machine", "unregister-machine":
            code, output = self.run_script(folder, name)
            self.assertEqual(code, 1)
            self.assertIn("FAILED: a library could not be", output)


class UserScripts(Installed):
    def test_register_for_the_user_what_regsvr32_registers_and_take_it_back(self):
        expected = for_64_bit(self.registered_by_regsvr32())
        folder = self.unpack_in_wine()
        before = self.wine.state()
        code, output = self.run_script(folder, "register-user")
        self.assertEqual(code, 0, output)
        self.assertIn("Registered.", output)
        new, gone = changes(before[0], self.wine.state()[0])
        self.assertEqual(gone, {})
        self.assertEqual(below(new, SOFTWARE), {}, "nothing is written for other users")
        written = below(new, USER)
        self.assert_same_entries(placed(for_64_bit(written), self.libraries_in_wine()), expected)
        of_32_bit = placed(for_32_bit(written), self.libraries_in_wine("x86"), self.libraries_in_wine())
        self.assert_same_entries(of_32_bit, as_32_bit(expected))
        code, output = self.run_script(folder, "unregister-user")
        self.assertEqual(code, 0, output)
        self.assert_as_before(before)

    def test_registering_and_unregistering_twice_is_well(self):
        folder = self.unpack_in_wine()
        before = self.wine.state()
        for name in "unregister-user", "register-user", "register-user", "unregister-user", "unregister-user":
            self.assertEqual(self.run_script(folder, name)[0], 0, name)
        self.assert_as_before(before)

    def test_controls_show_a_block_with_these_entries(self):
        folder = self.unpack_in_wine()
        self.assertEqual(self.run_script(folder, "register-user")[0], 0)
        # Windows lays a user's classes over the machine's; Wine 8 looks at the machine's only. So the entries are shown
        # to it there: they are all that the controls need.
        self.assert_not_usable()
        lines = []
        for (key, name), data in self.wine.registry().items():
            if key.lower().startswith(USER.lower()):
                if name is None:
                    lines.append(f"[{SOFTWARE}{key[len(USER):]}]")
                else:
                    escaped = [text.replace("\\", "\\\\").replace('"', '\\"') for text in (name, data)]
                    lines.append(f'"{escaped[0]}"="{escaped[1]}"' if name else f'@="{escaped[1]}"')
        self.wine.import_registry(lines)
        self.assert_usable(self.libraries_in_wine())

    def test_say_what_is_missing(self):
        folder = self.unpack_in_wine()
        before = self.wine.state()
        (folder / "bin/x86/QELAudioVisualization4.dll").unlink()
        code, output = self.run_script(folder, "register-user")
        self.assertEqual(code, 2)
        self.assertIn("FAILED: the folders bin and registry", output)
        self.assertEqual(changes(before[0], self.wine.state()[0]), ({}, {}))


if __name__ == "__main__":
    unittest.main()
