"""Which file of the tree and of its builds lies where in the package."""

import pathlib
from typing import NamedTuple

ARCHITECTURES = {"x64": 64, "x86": 32}


class Library(NamedTuple):
    """One of the DLLs, with the folder of its module's sources and its type library's source."""

    name: str
    module: str
    idl: str


LIBRARIES = [
    Library("QELAudioVisualization4", "module", "idl/QELAudioVisualization4.idl"),
    Library("AudioBlocks", "companion", "idl/AudioBlocks.idl"),
]
# Manifests beside those that bear a library's name.
_OTHER_MANIFESTS = ["QELAudioVisualization4.ProgIds.manifest"]

# Documents, and what they show. Anything else that lies in these folders stays at home.
_DOCUMENTS = (".md", ".png", ".svg")
_SAMPLES_LEFT_OUT = ("CMakeLists.txt",)
# What only a web server has a use for.
_SITE_LEFT_OUT = ("404.html", "sitemap.xml", "sitemap.xml.gz")


def _tree(root, folder, keep):
    for path in sorted((root / folder).rglob("*")):
        if path.is_file() and keep(path):
            yield path.relative_to(root).as_posix(), path


def files(root):
    """{place in the package: file} of everything that is copied as it is. The DLLs and the site have to be built."""
    root = pathlib.Path(root)
    found = {name: root / name for name in ("LICENSE", "CHANGELOG.md")}
    for library in LIBRARIES:
        for arch in ARCHITECTURES:
            for extension in ("dll", "tlb", "manifest"):
                found[f"bin/{arch}/{library.name}.{extension}"] = root / f"build/{arch}/bin/{library.name}.{extension}"
        for name in (f"{library.name}.h", f"{library.name}_i.c"):
            found[f"include/{name}"] = root / "build/x64/idl/generated" / name
    for arch in ARCHITECTURES:
        found.update({f"bin/{arch}/{name}": root / f"build/{arch}/bin/{name}" for name in _OTHER_MANIFESTS})
    found["include/automation_types.h"] = root / "idl/automation_types.h"
    for path in sorted((root / "idl").glob("*.idl")):
        found[f"idl/{path.name}"] = path
    found.update(_tree(root, "host", lambda p: p.suffix == ".h"))
    found.update(_tree(root, "docs", lambda p: p.suffix in _DOCUMENTS))
    found.update(_tree(root, "samples", lambda p: p.name not in _SAMPLES_LEFT_OUT))
    site = root / "build/docs/site"
    pages = {path.relative_to(site).as_posix(): path for path in sorted(site.rglob("*")) if path.is_file()}
    found.update({f"docs/html/{name}": path for name, path in pages.items()
                  if name not in _SITE_LEFT_OUT and path.suffix != ".map"})
    return found
