"""A Wine of one test's own: runs programs in it, reads its registry and lists its files; gone at the end."""

import codecs
import os
import pathlib
import re
import shutil
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]
TOOLS = ROOT / "tools"
WORK = ROOT / "build" / "package-test"

# What Wine itself writes while programs run: devices, volatile settings, and the keys in which its installer service
# keeps products, which stay when the last product has gone.
_OF_WINE = re.compile(
    r"(HKEY_LOCAL_MACHINE\\(Hardware|System|Software\\Wine"
    r"|Software\\(Wow6432Node\\)?Microsoft\\Windows NT\\CurrentVersion\\NetworkCards)"
    r"|HKEY_CURRENT_USER\\(Software\\Wine|Volatile Environment))(\\|$)",
    re.IGNORECASE)
_INSTALLER_KEYS = re.compile(
    r"HKEY_LOCAL_MACHINE\\Software\\(Classes\\Installer(\\(Features|Products|UpgradeCodes))?"
    r"|Microsoft\\Windows\\CurrentVersion\\Installer\\(UpgradeCodes|UserData(\\S-1-5-18(\\(Components|Products))?)?))",
    re.IGNORECASE)


class Run:
    def __init__(self, code, output):
        self.code, self.output = code, output


def parse_registry(text):
    """{(key, value name or None for the key itself): data as it is written there} of a registry file's text."""
    entries, key = {}, None
    text = re.sub(r"\\\n +", "", text.replace("\r", ""))
    for line in text.split("\n"):
        if line.startswith("["):
            key = line[1:-1]
            entries[key, None] = ""
        elif line.startswith("@="):
            entries[key, ""] = line[2:]
        elif line.startswith('"'):
            match = re.fullmatch(r'"((?:[^"\\]|\\.)*)"=(.*)', line, re.DOTALL)
            entries[key, _unescaped(match[1])] = match[2]
    return {(k, n): _unescaped(d[1:-1]) if d.startswith('"') else d for (k, n), d in entries.items()}


def _unescaped(text):
    return re.sub(r"\\(.)", r"\1", text)


class WinePrefix:
    def __init__(self, name, arch="x64"):
        self.arch = arch
        self.folder = WORK / f"wine-{name}"
        self.environment = dict(os.environ, AV_WINEPREFIX=str(self.folder), AV_WINE_TIMEOUT="120")
        self.remove()
        self.folder.parent.mkdir(parents=True, exist_ok=True)

    def remove(self):
        if self.folder.exists():
            subprocess.run([TOOLS / "wine-stop", self.arch], env=self.environment, check=True)
            shutil.rmtree(self.folder)

    def run(self, *command, cwd=None):
        """A program's exit code and what it said, with plain line ends."""
        run = subprocess.run([TOOLS / "wine-run", self.arch, *map(str, command)], env=self.environment, cwd=cwd or WORK,
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        return Run(run.returncode, run.stdout.decode("utf-8", "replace").replace("\r", ""))

    def must(self, *command, cwd=None):
        run = self.run(*command, cwd=cwd)
        if run.code != 0:
            raise AssertionError(f"{command} ended with {run.code}: {run.output}")
        return run.output

    def drive(self):
        return self.folder / "drive_c"

    def registry(self):
        """The machine's and the user's entries, without what is Wine's own."""
        entries = {}
        for root in "HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER":
            file = WORK / f"{self.folder.name}.dump.reg"
            self.must("regedit", "/E", windows_path(file), root)
            text = file.read_bytes().removeprefix(codecs.BOM_UTF16_LE).decode("utf-16-le")
            file.unlink()
            entries.update(parse_registry(text))
        return {place: data for place, data in entries.items()
                if not _OF_WINE.match(place[0]) and not _INSTALLER_KEYS.fullmatch(place[0])}

    def import_registry(self, lines):
        file = WORK / f"{self.folder.name}.import.reg"
        text = "Windows Registry Editor Version 5.00\r\n\r\n" + "\r\n".join(lines) + "\r\n"
        file.write_bytes(codecs.BOM_UTF16_LE + text.encode("utf-16-le"))
        self.must("regedit", "/S", windows_path(file))
        file.unlink()

    def files(self):
        return {p.relative_to(self.drive()).as_posix() for p in self.drive().rglob("*")}

    def state(self):
        """Registry and files, for comparing."""
        of_wine = re.compile(r"users/.*/temp/|windows/(temp|installer$)", re.IGNORECASE)
        return self.registry(), {file for file in self.files() if not of_wine.match(file)}


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def changes(before, after):
    """(what is new or other, what is gone) between two registries."""
    new = {place: data for place, data in after.items() if before.get(place, None) != data}
    return new, {place: data for place, data in before.items() if place not in after}
