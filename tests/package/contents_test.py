#!/usr/bin/env python3
"""What lies in the zip and in the installer: all of it, nothing else, and nothing of the machine that made it."""

import fnmatch
import re
import stat
import subprocess
import sys
import unittest
import zipfile

sys.dont_write_bytecode = True

from made_package import Package  # noqa: E402
from wine_prefix import ROOT, WORK  # noqa: E402

VERSION = re.search(r"project\(\w+ VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text())[1]
TOP = f"QELAudioVisualization4-{VERSION}"

# Folders that are copied hold what git has there; these few names are to stay at home.
COPIED = {"host": ["*.h"], "docs": ["*.md", "*.png", "*.svg"], "samples": ["*"], "idl": ["*.idl"]}
LEFT_OUT = ["*/CMakeLists.txt"]
LIBRARIES = ["QELAudioVisualization4", "AudioBlocks"]
FIXED = [
    "CHANGELOG.md", "LICENSE", "README.md", "SHA256SUMS",
    "register-machine.cmd", "register-user.cmd", "unregister-machine.cmd", "unregister-user.cmd",
    *(f"registry/{verb}-user-{kind}-bit.reg" for verb in ("register", "unregister") for kind in (32, 64)),
    "include/automation_types.h",
    *(f"bin/{arch}/{name}.{e}" for arch in ("x64", "x86") for name in LIBRARIES for e in ("dll", "manifest", "tlb")),
    *(f"bin/{arch}/QELAudioVisualization4.ProgIds.manifest" for arch in ("x64", "x86")),
    *(f"include/{name}{e}" for name in LIBRARIES for e in (".h", "_i.c")),
]


def expected_files():
    tracked = subprocess.run(["git", "-C", ROOT, "ls-files", "--cached", "--others", "--exclude-standard", *COPIED],
                             capture_output=True, text=True, check=True).stdout.split()
    copied = [name for name in tracked
              if any(fnmatch.fnmatch(name, f"{name.split('/')[0]}/{p}") for p in COPIED[name.split("/")[0]])
              and not any(fnmatch.fnmatch(name, p) for p in LEFT_OUT)]
    return sorted(FIXED + copied)


class Contents(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.package = Package("contents")
        cls.folder = cls.package.unpack(WORK / "contents-unpacked")

    def names(self):
        with zipfile.ZipFile(self.package.zip) as archive:
            return [n.removeprefix(f"{TOP}/") for n in archive.namelist()]

    def table(self, name):
        text = subprocess.run(["msiinfo", "export", self.package.msi, name], capture_output=True, text=True,
                              check=True).stdout
        lines = text.replace("\r", "").strip("\n").split("\n")
        return [dict(zip(lines[0].split("\t"), line.split("\t"))) for line in lines[3:]]

    def test_the_zip_holds_what_it_should_and_nothing_else(self):
        self.assertEqual(self.package.top, TOP)
        with zipfile.ZipFile(self.package.zip) as archive:
            names = archive.namelist()
            modes = {stat.S_IMODE(entry.external_attr >> 16) for entry in archive.infolist()}
            times = {entry.date_time for entry in archive.infolist()}
        self.assertEqual(names, sorted(names))
        self.assertEqual([n for n in self.names() if not n.startswith("docs/html/")], expected_files())
        self.assertEqual(modes, {0o644})
        self.assertEqual(len(times), 1)

    def test_the_site_holds_a_page_for_each_document_and_what_pages_show(self):
        site = [n.removeprefix("docs/html/") for n in self.names() if n.startswith("docs/html/")]
        for name in expected_files():
            if name.startswith("docs/"):
                path = name.removeprefix("docs/").replace("README.md", "index.md")
                self.assertIn(re.sub(r"\.md$", ".html", path), site)
        self.assertLessEqual({n.rpartition(".")[2] for n in site}, {"html", "css", "js", "json", "png", "svg"})
        index = (self.folder / "docs/html/index.html").read_text(encoding="utf-8")
        for link in re.findall(r'(?:href|src)="([^"#:]+)"', index):
            self.assertTrue((self.folder / "docs/html" / link).is_file(), link)

    def test_the_checksums_are_those_of_the_files(self):
        listed = (self.folder / "SHA256SUMS").read_text().splitlines()
        self.assertEqual([line.split("  ")[1] for line in listed], [n for n in self.names() if n != "SHA256SUMS"])
        subprocess.run(["sha256sum", "--check", "--strict", "--quiet", "SHA256SUMS"], cwd=self.folder, check=True)

    def test_no_file_names_a_place_of_the_machine_that_made_it(self):
        places = [f"{ROOT}/", f"{ROOT.parent}/", "/usr/lib/", "/usr/share/", "/tmp/", "/home/", "/root/", "/build/x"]
        for path in sorted(p for p in self.folder.rglob("*") if p.is_file()):
            data = path.read_bytes()
            # Pages and their index may speak of places that every system has.
            for place in places[:1] if path.suffix in (".md", ".html", ".json") else places:
                for encoding in "utf-8", "utf-16-le":
                    self.assertNotIn(place.encode(encoding), data, f"{path.relative_to(self.folder)}: {place}")

    def test_scripts_have_the_line_ends_of_their_interpreter_and_plain_letters(self):
        for script in [*self.folder.glob("*.cmd"), *self.folder.glob("registry/*")]:
            data = script.read_bytes()
            data.decode("ascii")
            self.assertEqual(data.count(b"\n"), data.count(b"\r\n"), script.name)
            self.assertFalse(re.search(rb"@[A-Z]", data), f"{script.name}: a mark is left")

    def test_the_readme_knows_its_version(self):
        text = (self.folder / "README.md").read_text(encoding="utf-8")
        self.assertIn(VERSION, text)
        self.assertNotIn("@", text)

    def test_the_links_of_its_pages_lead_to_files_that_it_holds(self):
        for page in self.folder.rglob("*.md"):
            text = page.read_text(encoding="utf-8")
            for link in re.findall(r"\]\(([^)#:\s]+)(?:#[^)]*)?\)", text):
                self.assertTrue((page.parent / link).exists(), f"{page.relative_to(self.folder)}: {link}")

    def test_the_lines_that_its_pages_give_for_building_samples_build_them(self):
        folder = self.package.unpack(WORK / "contents-compiled")
        built = []
        for page in folder / "README.md", *sorted(folder.glob("samples/cpp-*/README.md")):
            text = page.read_text(encoding="utf-8").replace("\\\n", " ")
            for line in re.findall(r"^x86_64-w64-mingw32-g\+\+.*$", text, re.MULTILINE):
                program = folder / re.search(r"-o (\S+)", line)[1]
                subprocess.run(line.split(), cwd=folder, check=True)
                self.assertTrue(program.exists(), line)
                program.unlink()
                built.append(program.name)
        self.assertEqual(built, ["sweep.exe", "sweep.exe", "swell.exe"])

    def test_the_installer_is_for_this_version_and_all_users(self):
        properties = {row["Property"]: row["Value"] for row in self.table("Property")}
        self.assertEqual(properties["ProductVersion"], VERSION)
        self.assertEqual(properties["ALLUSERS"], "1")
        # Fixed for ever: with another one, versions would no longer replace each other.
        self.assertEqual(properties["UpgradeCode"], "{B72B496C-38EA-4CE2-9703-28B3F95322E5}")
        summary = subprocess.run(["msiinfo", "suminfo", self.package.msi], capture_output=True, text=True,
                                 check=True).stdout
        self.assertIn("Template: x64;1033", summary)

    def test_the_installer_holds_the_files_of_the_zip(self):
        names = sorted(row["FileName"].rpartition("|")[2] for row in self.table("File"))
        # It registers by itself, and brings the licence to both program folders.
        wanted = [n.rpartition("/")[2] for n in self.names()
                  if not n.endswith(".cmd") and not n.startswith("registry/") and n != "SHA256SUMS"]
        self.assertEqual(names, sorted([*wanted, "LICENSE"]))

    def test_each_name_in_the_installer_has_a_short_form_of_its_own(self):
        folder_of = {row["Component"]: row["Directory_"] for row in self.table("Component")}
        seen = set()
        for row in self.table("File"):
            short = row["FileName"].split("|")[0]
            self.assertRegex(short, r"^[\w~-]{1,8}(\.[\w~-]{1,3})?$")
            self.assertNotIn((folder_of[row["Component_"]], short.upper()), seen)
            seen.add((folder_of[row["Component_"]], short.upper()))

    def test_32_bit_files_are_32_bit_components(self):
        attributes = {row["Component"]: (int(row["Attributes"]), row["Directory_"]) for row in self.table("Component")}
        parents = {row["Directory"]: row["Directory_Parent"] for row in self.table("Directory")}
        for bits, directory in attributes.values():
            while parents[directory] != "TARGETDIR":
                directory = parents[directory]
            self.assertEqual(bits, {"ProgramFiles64Folder": 256, "ProgramFilesFolder": 0}[directory])

    def test_the_installer_registers_by_rows_and_runs_nothing(self):
        tables = subprocess.run(["msiinfo", "tables", self.package.msi], capture_output=True, text=True,
                                check=True).stdout.split()
        for table in "SelfReg", "CustomAction", "TypeLib":
            self.assertFalse(table in tables and self.table(table), table)
        self.assertGreater(len(self.table("Registry")), 300)


if __name__ == "__main__":
    unittest.main()
