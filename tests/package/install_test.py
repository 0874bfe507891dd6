#!/usr/bin/env python3
"""Installs, uses and removes the package under Wine, each way, and compares registry and files before and after."""

import sys
import unittest

sys.dont_write_bytecode = True

from installed import (  # noqa: E402
    LIBRARIES, SOFTWARE, USER, Installed, as_32_bit, below, for_32_bit, for_64_bit, placed, without)
import traces  # noqa: E402
from wine_prefix import ROOT, WORK, changes, windows_path  # noqa: E402

sys.path.insert(0, str(ROOT / "package"))
import installer  # noqa: E402

CONTROL_VIEW = "62D89C1C-1C5B-467C-944F-F822CB0D6278"
UNINSTALL = "HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\"


class Installer(Installed):
    PROGRAM_FILES = {"x64": "Program Files", "x86": "Program Files (x86)"}

    def install(self):
        self.wine.must("msiexec", "/i", windows_path(self.package.msi), "/qn")

    def remove(self, msi=None, *properties):
        self.wine.must("msiexec", "/x", windows_path(msi or self.package.msi), "/qn", *properties)
        self.wine.remove_what_wines_installer_leaves()

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
        self.assert_nothing_of_ours()

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
        self.assert_nothing_of_ours()

    def products(self):
        """The products that the system's installer knows."""
        return {name: data for (key, name), data in self.wine.registry().items()
                if name == "DisplayVersion" and key.lower().startswith(UNINSTALL.lower())}

    def of_another_version(self, version):
        """An installer of the same files that says it is that version."""
        msi = WORK / "other-version" / "other.msi"
        msi.parent.mkdir(parents=True, exist_ok=True)
        folder = self.package.out.parent / f"{self.package.out.name}-stage" / self.package.top
        installer.write(ROOT, folder, msi, version, 1767225600)
        return msi

    def test_a_newer_version_replaces_this_one_and_this_one_refuses_to_replace_it(self):
        newer = self.of_another_version("9.0.0")
        self.install()
        self.assertEqual(list(self.products().values()), [self.package.version])
        self.wine.must("msiexec", "/i", windows_path(newer), "/qn")
        self.assertEqual(list(self.products().values()), ["9.0.0"])
        self.assertNotEqual(self.wine.run("msiexec", "/i", windows_path(self.package.msi), "/qn").code, 0)
        self.assertEqual(list(self.products().values()), ["9.0.0"])
        self.assert_usable(self.libraries("x64"))
        self.remove(newer)
        self.assertEqual(self.products(), {})
        self.assert_not_usable()
        self.assert_nothing_of_ours(newer)

    def test_the_libraries_alone_can_be_installed_elsewhere(self):
        before = self.wine.files()
        folders = ("INSTALLDIR=C:\\Sound", "INSTALLDIR32=C:\\Sound32")
        self.wine.must("msiexec", "/i", windows_path(self.package.msi), "/qn", "ADDLOCAL=Libraries", *folders)
        found = {f for f in self.wine.files() - before if f.startswith("Sound") and "." in f.rpartition("/")[2]}
        names = [f"{library}.{e}" for library in LIBRARIES for e in ("dll", "manifest", "tlb")]
        names.append("QELAudioVisualization4.ProgIds.manifest")
        wanted = {f"{folder}/bin/{arch}/{name}"
                  for folder, arch in (("Sound", "x64"), ("Sound32", "x86")) for name in names}
        self.assertEqual(found, wanted | {"Sound/README.md", "Sound/CHANGELOG.md"})
        self.assert_usable("C:\\Sound\\bin\\x64")
        # Windows knows where it has put components; Wine's installer has to be told once more.
        self.remove(self.package.msi, *folders)
        self.assertEqual({f for f in self.wine.files() if f.startswith("Sound")}, set())
        self.assert_not_usable()
        self.assert_nothing_of_ours()


class Leftovers(Installed):
    """What the tests above take for a clean end is none with any of these."""

    def plant(self, *lines):
        self.wine.import_registry(lines)

    def test_of_the_registry_are_seen_where_they_are_compared(self):
        places = ("HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData\\S-1-5-18",
                  "HKEY_LOCAL_MACHINE\\Software\\Classes\\Installer\\Products\\Empty",
                  "HKEY_LOCAL_MACHINE\\Software\\Wow6432Node\\Somewhere", "HKEY_USERS\\.Default\\Software\\Somewhere")
        before = self.wine.state()
        for lines in [[f"[{places[0]}]", '"Value"="1"'], *([f"[{place}]"] for place in places[1:])]:
            self.plant(*lines)
            self.wine.remove_what_wines_installer_leaves()
            with self.assertRaises(AssertionError, msg=lines[0]):
                self.assert_as_before(before)
            self.plant("[-" + lines[0][1:])
            self.wine.remove_what_wines_installer_leaves()
        self.assert_as_before(before)

    def test_of_files_are_seen(self):
        before = self.wine.state()
        for name in "windows/Installer/left.msi", "users/Public/Temp/left.tmp", "ProgramData/left/left.txt":
            file = self.wine.drive() / name
            made = [folder for folder in file.parents if not folder.exists()]
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text("left")
            self.wine.remove_what_wines_installer_leaves()
            with self.assertRaises(AssertionError, msg=name):
                self.assert_as_before(before)
            file.unlink()
            for folder in made:
                folder.rmdir()
        self.assert_as_before(before)
        with (self.wine.drive() / "windows/win.ini").open("a", encoding="ascii") as other:
            other.write(" ")
        with self.assertRaises(AssertionError):
            self.assert_as_before(before)

    def test_of_ours_are_seen_even_where_wine_writes(self):
        self.assert_nothing_of_ours()
        key = "HKEY_CURRENT_USER\\Software\\Wine\\Left"
        spelled = ",".join(f"{byte:02x}" for byte in "a\\audioblocks.dll".encode("utf-16-le"))
        product = installer.product_code(self.package.version)
        for line in ("[{key}\\{view}]", '[{key}]\n"{packed}"=""', '[{key}]\n"Path"="C:\\\\QELAUDIOVISUALIZATION4.tlb"',
                     '[{key}]\n"Bytes"=hex:{spelled}', '[{key}]\n@="{{{product}}}"'):
            self.plant(*line.format(key=key, view=CONTROL_VIEW, packed=traces.packed(product), spelled=spelled,
                                    product=product.lower()).split("\n"))
            with self.assertRaises(AssertionError, msg=line):
                self.assert_nothing_of_ours()
            self.plant(f"[-{key}]")
        self.assert_nothing_of_ours()
        (self.wine.drive() / "windows/temp").mkdir(exist_ok=True)
        (self.wine.drive() / "windows/temp/AudioBlocks.log").write_text("")
        with self.assertRaises(AssertionError):
            self.assert_nothing_of_ours()


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

    def test_take_back_a_registration_from_where_the_folder_was_moved_to(self):
        folder = self.unpack_in_wine()
        before = self.wine.registry()
        self.assertEqual(self.run_script(folder, "register-machine")[0], 0)
        moved = folder.rename(folder.with_name("moved"))
        code, output = self.run_script(moved, "unregister-machine")
        self.assertEqual(code, 0, output)
        self.assertEqual(changes(before, self.wine.registry()), ({}, {}))

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
