"""Makes the package for a test, in a folder of the test's own, and unpacks it."""

import pathlib
import shutil
import subprocess
import zipfile

from wine_prefix import ROOT, TOOLS, WORK


class Package:
    def __init__(self, name):
        self.out = WORK / name
        run = subprocess.run([TOOLS / "package", "--out", self.out], capture_output=True, text=True, check=False)
        if run.returncode != 0:
            raise RuntimeError(f"tools/package failed: {run.stdout}{run.stderr}")
        self.zip = self._only("*.zip")
        self.msi = self._only("*.msi")
        # The top folder bears the version.
        self.top = self.zip.stem
        self.version = self.top.rpartition("-")[2]

    def _only(self, pattern):
        found = list(self.out.glob(pattern))
        if len(found) != 1:
            raise AssertionError(f"{pattern}: {found}")
        return found[0]

    def unpack(self, folder):
        """The unpacked package's folder below `folder`, which is made anew."""
        shutil.rmtree(folder, ignore_errors=True)
        with zipfile.ZipFile(self.zip) as archive:
            archive.extractall(folder)
        return pathlib.Path(folder) / self.top


def compile_against(package_folder, program, arch="x64"):
    """Builds use_controls.cpp with nothing but the package and the platform's libraries."""
    triplet = {"x64": "x86_64-w64-mingw32", "x86": "i686-w64-mingw32"}[arch]
    subprocess.run(
        [f"{triplet}-g++-posix", "-std=c++20", "-Wall", "-Wextra", "-O1", "-municode", "-static", "-s",
         f"-I{package_folder}/include", f"-I{package_folder}", "-o", program, ROOT / "tests/package/use_controls.cpp",
         f"{package_folder}/include/QELAudioVisualization4_i.c",
         "-lole32", "-loleaut32", "-luuid", "-lgdi32", "-luser32"],
        check=True)
