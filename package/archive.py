"""The zip archive and its checksums: the same bytes for the same files, whenever and wherever it is made."""

import hashlib
import pathlib
import time
import zipfile


def digest(path):
    """A file's SHA-256 sum in hexadecimal digits."""
    return hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()


def checksums(folder):
    """The text of SHA256SUMS for every file below `folder`, in the form that `sha256sum --check` reads."""
    folder = pathlib.Path(folder)
    lines = []
    for path in sorted(p for p in folder.rglob("*") if p.is_file()):
        lines.append(f"{digest(path)}  {path.relative_to(folder).as_posix()}\n")
    return "".join(lines)


def write_zip(folder, archive, seconds):
    """Packs every file below `folder`, under that folder's own name, sorted, all of one time and one mode.

    `seconds` is that time, since 1970, in UTC. Zip files know no zone and no odd seconds.
    """
    folder = pathlib.Path(folder)
    when = time.gmtime(max(seconds, 315532800))[:6]  # a zip's calendar begins in 1980
    names = sorted((folder.name / p.relative_to(folder)).as_posix() for p in folder.rglob("*") if p.is_file())
    with zipfile.ZipFile(archive, "w") as out:
        for name in names:
            entry = zipfile.ZipInfo(name, when)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 3  # Unix, so that the mode counts
            entry.external_attr = 0o100644 << 16
            out.writestr(entry, (folder.parent / name).read_bytes(), compresslevel=9)
