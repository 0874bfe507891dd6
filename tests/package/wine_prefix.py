"""A Wine of one test's own: runs programs in it, reads its registry and lists its files; gone at the end."""

import codecs
import os
import pathlib
import re
import shutil
import stat
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]
TOOLS = ROOT / "tools"
WORK = ROOT / "build" / "package-test"

# What Wine itself writes anew whenever programs run: devices, services, and settings of the session.
_OF_WINE = re.compile(
    r"(HKEY_LOCAL_MACHINE\\(Hardware|System|Software\\Wine"
    r"|Software\\(Wow6432Node\\)?Microsoft\\Windows NT\\CurrentVersion\\NetworkCards)"
    r"|HKEY_CURRENT_USER\\(Software\\Wine|Volatile Environment))(\\|$)",
    re.IGNORECASE)
# Files at the top of the prefix: locks of tools/wine-run, and the registry as the server keeps it, which is read from
# the server.
_FILES_OF_THE_RUN = re.compile(r"\.lock|\.started\..*|(system|user|userdef)\.reg")

# Wine's own installer makes these for its first product and leaves them, empty, when the last one has gone. They belong
# to no product: what belongs to one lies below them. Innermost first.
_MACHINE = "HKEY_LOCAL_MACHINE\\Software\\"
_INSTALLER = _MACHINE + "Microsoft\\Windows\\CurrentVersion\\Installer\\"
_INSTALLER_KEYS = [
    *(f"{_MACHINE}Classes\\Installer{key}" for key in ("\\Features", "\\Products", "\\UpgradeCodes", "")),
    *(_INSTALLER + key for key in ("UserData\\S-1-5-18\\Components", "UserData\\S-1-5-18\\Products",
                                   "UserData\\S-1-5-18", "UserData", "UpgradeCodes"))]
_INSTALLER_FOLDER = "windows/Installer"

# As whom Wine runs everything.
_THE_USER = re.compile(r"HKEY_USERS\\S-1-5-21-[\d-]+(?=\\|$)")


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
        # The server lives through the whole test: a new one writes settings of a new session.
        self.environment = dict(os.environ, AV_WINEPREFIX=str(self.folder), AV_WINE_TIMEOUT="120", AV_WINE_KEEP_S="900")
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

    def whole_registry(self):
        """The machine's entries and those of all users."""
        entries = {}
        for root in "HKEY_LOCAL_MACHINE", "HKEY_USERS":
            file = WORK / f"{self.folder.name}.dump.reg"
            self.must("regedit", "/E", windows_path(file), root)
            text = file.read_bytes().removeprefix(codecs.BOM_UTF16_LE).decode("utf-16-le")
            file.unlink()
            entries.update(parse_registry(text))
        return {(_THE_USER.sub("HKEY_CURRENT_USER", key), name): data for (key, name), data in entries.items()}

    def registry(self):
        """The same without what Wine writes anew by itself."""
        return {place: data for place, data in self.whole_registry().items() if not _OF_WINE.match(place[0])}

    def remove_what_wines_installer_leaves(self):
        """Its empty keys and its empty folder. What is not empty stays, to be seen."""
        registry, empty = self.registry(), []
        for key in _INSTALLER_KEYS:
            at_or_below = [place for place in registry if f"{place[0]}\\".lower().startswith(f"{key}\\".lower())]
            if at_or_below == [(key, None)]:
                empty.append(key)
                del registry[key, None]
        if empty:
            self.import_registry(f"[-{key}]" for key in empty)
        folder = self.drive() / _INSTALLER_FOLDER
        if folder.is_dir() and not any(folder.iterdir()):
            folder.rmdir()

    def import_registry(self, lines):
        file = WORK / f"{self.folder.name}.import.reg"
        text = "Windows Registry Editor Version 5.00\r\n\r\n" + "\r\n".join(lines) + "\r\n"
        file.write_bytes(codecs.BOM_UTF16_LE + text.encode("utf-16-le"))
        self.must("regedit", "/S", windows_path(file))
        file.unlink()

    def files(self):
        return {p.relative_to(self.drive()).as_posix() for p in self.drive().rglob("*")}

    def stamped_files(self):
        """All files and folders of the prefix; files with their size and the time of their last change."""
        stamps = {}
        for path in self.folder.rglob("*"):
            name = path.relative_to(self.folder).as_posix()
            if not _FILES_OF_THE_RUN.fullmatch(name):
                status = path.lstat()
                stamps[name] = None if stat.S_ISDIR(status.st_mode) else (status.st_size, status.st_mtime_ns)
        return stamps

    def state(self):
        """Registry and files, for comparing."""
        return self.registry(), self.stamped_files()


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def changes(before, after):
    """(what is new or other, what is gone) between two registries, or between two sets of stamped files."""
    new = {place: data for place, data in after.items() if place not in before or before[place] != data}
    return new, {place: data for place, data in before.items() if place not in after}
