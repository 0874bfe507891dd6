#!/usr/bin/env python3
"""Makes the zip and the MSI of a tree whose libraries and documents are built:  make_package.py [--out FOLDER]

Equal files give equal bytes: all times are the one in the environment's SOURCE_DATE_EPOCH. See tools/package.
"""

import argparse
import os
import pathlib
import re
import shutil
import struct
import sys

import archive
import contents
import installer
import scripts

ROOT = pathlib.Path(__file__).resolve().parents[1]


def version_of(root):
    text = (root / "CMakeLists.txt").read_text(encoding="utf-8")
    return re.search(r"project\(\w+ VERSION (\d+\.\d+\.\d+)", text)[1]


def dll_version(path):
    """The version in a DLL's resources (the VS_FIXEDFILEINFO record)."""
    data = path.read_bytes()
    place = data.find(struct.pack("<II", 0xFEEF04BD, 0x00010000))
    if place < 0:
        raise SystemExit(f"package: {path} has no version")
    high, low = struct.unpack_from("<II", data, place + 8)
    return f"{high >> 16}.{high & 0xFFFF}.{low >> 16}"


def stage(root, folder, version, seconds):
    """Lays the package out in an empty folder."""
    shutil.rmtree(folder, ignore_errors=True)
    for place, source in contents.files(root).items():
        target = folder / place
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(source, target)
        if target.suffix == ".dll" and dll_version(target) != version:
            raise SystemExit(f"package: {place} says that it is version {dll_version(target)}, not {version}")
    readme = (root / "package/files/README.md.in").read_text(encoding="utf-8")
    (folder / "README.md").write_text(readme.replace("@VERSION@", version), encoding="utf-8")
    scripts.write(root, folder)
    (folder / "SHA256SUMS").write_text(archive.checksums(folder), encoding="utf-8")
    for path in folder.rglob("*"):
        path.chmod(0o755 if path.is_dir() else 0o644)
        os.utime(path, (seconds, seconds))  # the cabinet stores them


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--out", type=pathlib.Path, default=ROOT / "build/package")
    out = parser.parse_args().out.resolve()
    version, seconds = version_of(ROOT), int(os.environ["SOURCE_DATE_EPOCH"])
    name = f"{installer.PRODUCT}-{version}"
    work = out.parent / f"{out.name}-stage"
    stage(ROOT, work / name, version, seconds)
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir(parents=True)
    archive.write_zip(work / name, out / f"{name}.zip", seconds)
    installer.write(ROOT, work / name, work / "package.msi", version, seconds)
    shutil.move(work / "package.msi", out / f"{name}-x64.msi")
    for path in sorted(out.iterdir()):
        shown = path.relative_to(ROOT) if path.is_relative_to(ROOT) else path
        print(f"{shown}  {path.stat().st_size:,} bytes  sha256 {archive.digest(path)}")


if __name__ == "__main__":
    sys.exit(main())
