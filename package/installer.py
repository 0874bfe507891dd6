"""The MSI: wixl lays out files, features and sequences; the registry entries and file versions go in as tables.

wixl knows no keys without values and no file versions, so those tables are written with msibuild afterwards. Both tools
store the time and a random package code: they run under faketime, and the code is derived from what the package holds.
"""

import hashlib
import os
import pathlib
import subprocess
import time
import uuid
from xml.sax.saxutils import quoteattr

from contents import ARCHITECTURES, LIBRARIES
from registration import FOLDER, MODULE, registration
from tables import Table, name_in_short_too

# Never changes: by it Windows knows that one version replaces another. All other identifiers are derived from it.
UPGRADE_CODE = uuid.UUID("b72b496c-38ea-4ce2-9703-28b3f95322e5")
PRODUCT = "QELAudioVisualization4"
_DLL_FOLDERS = tuple(f"bin/{arch}/" for arch in ARCHITECTURES)
# Where each architecture's files go; the second name is a property that the user may set.
_ROOTS = {"x64": ("ProgramFiles64Folder", "INSTALLDIR"), "x86": ("ProgramFilesFolder", "INSTALLDIR32")}
_HKLM = 2
# What the Windows Installer runs because of the Registry table.
_REGISTRY_ACTIONS = {"RemoveRegistryValues": 2600, "WriteRegistryValues": 5000}


def _derived(name):
    return str(uuid.uuid5(UPGRADE_CODE, name)).upper()


def _id(prefix, name):
    """An identifier for the installer's tables: letters, digits and underscores, at most 72."""
    return prefix + hashlib.sha256(name.encode()).hexdigest()[:24]


def product_code(version):
    """One for each version, so that the versions replace each other."""
    return _derived(f"product {version}")


def package_code(folder, version):
    """One for each content: two packages of one code have to be alike."""
    checksums = (pathlib.Path(folder) / "SHA256SUMS").read_text(encoding="utf-8")
    return _derived(f"package {version} {checksums}")


def _belongs(name):
    """Whether a file of the package is installed. Scripts are for those who unpack the zip; here tables register."""
    return not name.endswith(".cmd") and not name.startswith("registry/") and name != "SHA256SUMS"


def _arch_of(name):
    """Programs of 32 bits have a program folder of their own; everything else lies in the 64-bit one."""
    return "x86" if name.startswith("bin/x86/") else "x64"


def _file_id(arch, name):
    return _id("f", f"{arch} {name}")


class _Tree:
    """Folders and files as nested elements."""

    def __init__(self, names, arch):
        self.arch = arch
        # The licence goes with the libraries wherever they lie. (And Wine removes the folder then: it looks only at
        # folders with files of their own.)
        self.names = sorted(n for n in names if _arch_of(n) == arch or n == "LICENSE")
        self.components = {}  # feature: component identifiers

    def xml(self, parent=""):
        here, below = [], {}
        for name in self.names:
            if not name.startswith(parent):
                continue
            first, _, rest = name[len(parent):].partition("/")
            if rest:
                below[first] = f"{parent}{first}/"
            else:
                here.append(name)
        parts = [self.component(name) for name in here]
        for name, path in below.items():
            identifier = _id("d", f"{self.arch} {path}")
            parts.append(f'<Directory Id="{identifier}" Name={quoteattr(name)}>{self.xml(path)}</Directory>')
        return "\n".join(parts)

    def component(self, name):
        identifier = _id("c", f"{self.arch} {name}")
        feature = "Libraries" if name.startswith(_DLL_FOLDERS) or "/" not in name else "Development"
        self.components.setdefault(feature, []).append(identifier)
        win64 = "no" if self.arch == "x86" else "yes"
        last = quoteattr(name.rpartition("/")[2])
        # wixl takes sources relative to where it runs.
        return (f'<Component Id="{identifier}" Guid="{_derived(f"component {self.arch} {name}")}" Win64="{win64}">'
                f'<File Id="{_file_id(self.arch, name)}" Name={last} Source={quoteattr(name)} KeyPath="yes"/>'
                f'</Component>')


def source(folder, version):
    """The installer's source for the staged package in `folder`."""
    names = [p.relative_to(folder).as_posix() for p in pathlib.Path(folder).rglob("*") if p.is_file()]
    names = sorted(n for n in names if _belongs(n))
    trees = [_Tree(names, arch) for arch in ARCHITECTURES]
    roots = "".join(
        f'<Directory Id="{root}"><Directory Id="{folder}" Name="{PRODUCT}">\n{tree.xml()}\n</Directory></Directory>'
        for (root, folder), tree in zip(_ROOTS.values(), trees))
    features = ""
    for name, title in ("Libraries", "The libraries, registered"), ("Development", "Headers, samples and documents"):
        components = [c for tree in trees for c in tree.components.get(name, [])]
        references = "".join(f'<ComponentRef Id="{c}"/>' for c in components)
        features += f'<Feature Id="{name}" Title="{title}" Level="1">{references}</Feature>\n'
    return f"""<?xml version="1.0" encoding="utf-8"?>
<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">
<Product Id="{product_code(version)}" Name="{PRODUCT}" Language="1033" Version="{version}"
         Manufacturer="{PRODUCT} authors" UpgradeCode="{str(UPGRADE_CODE).upper()}">
<Package InstallerVersion="200" Compressed="yes" InstallScope="perMachine" Description="{PRODUCT} {version}"/>
<Media Id="1" Cabinet="files.cab" EmbedCab="yes"/>
<MajorUpgrade DowngradeErrorMessage="A newer version of {PRODUCT} is installed."/>
<Property Id="ARPNOMODIFY" Value="1"/>
<Directory Id="TARGETDIR" Name="SourceDir">{roots}</Directory>
{features}</Product>
</Wix>
"""


def _registry_rows(root):
    """Rows of the Registry table: identifier, root, key, name, value, component."""
    for library in LIBRARIES:
        for arch, bits in ARCHITECTURES.items():
            name = f"bin/{arch}/{library.name}.dll"
            component = _id("c", f"{arch} {name}")
            what = registration(root / library.module, root / library.idl, bits)
            places = [(key, "*", "") for key in what.roots]  # installed and removed as a whole
            filled = {entry.key.lower() for entry in what.entries if entry.name is not None}
            for entry in what.entries:
                if entry.name is None:
                    if entry.key.lower() not in filled and entry.key not in what.roots:
                        places.append((entry.key, "+", ""))
                    continue
                text = entry.text.replace(MODULE, f"[#{_file_id(arch, name)}]")
                # One entry for both architectures: as after register-machine.cmd it names the 64-bit folder.
                text = text.replace(FOLDER, "[INSTALLDIR]bin\\x64")
                places.append((entry.key, entry.name, text))
            for key, value_name, text in places:
                identifier = _id("r", f"{arch} {key} {value_name}")
                yield identifier, _HKLM, f"Software\\Classes\\{key}", value_name, text, component


def _registry_table(root):
    table = Table("Registry\tRoot\tKey\tName\tValue\tComponent_\ns72\ti2\tl255\tL255\tL0\ts72\nRegistry\tRegistry")
    table.rows = [list(map(str, row)) for row in _registry_rows(root)]
    return table


def _complete(tables, version):
    """Puts in what wixl leaves out."""
    files, directories, components = tables["File"], tables["Directory"], tables["Component"]
    folder_of = {row[0]: row[components.column("Directory_")] for row in components.rows}
    component = files.column("Component_")
    name_in_short_too(files.rows, files.column("FileName"), lambda row: folder_of[row[component]])
    parent, name = directories.column("Directory_Parent"), directories.column("DefaultDir")
    own = [row for row in directories.rows if row[name] not in (".", "SourceDir")]
    name_in_short_too(own, name, lambda row: row[parent])
    # A library's version is in its resources, and decides at an update; other files are known by their hash.
    libraries = [_file_id(arch, f"bin/{arch}/{each.name}.dll") for each in LIBRARIES for arch in ARCHITECTURES]
    for row in files.rows:
        if row[0] in libraries:
            row[files.column("Version")], row[files.column("Language")] = f"{version}.0", "1033"
    tables["MsiFileHash"].rows = [row for row in tables["MsiFileHash"].rows if row[0] not in libraries]
    for action, sequence in _REGISTRY_ACTIONS.items():
        tables["InstallExecuteSequence"].rows.append([action, "", str(sequence)])


def write(root, folder, msi, version, seconds):
    """Makes the installer of the staged package in `folder` with the registry entries of the sources in `root`.

    `seconds` since 1970 is the time that it says it was made at.
    """
    work = pathlib.Path(msi).parent
    wxs = work / "package.wxs"
    wxs.write_text(source(folder, version), encoding="utf-8")
    when = time.strftime("%Y-%m-%d %H:%M:%S", time.gmtime(seconds))
    environment = dict(os.environ, TZ="UTC", LC_ALL="C.UTF-8")

    def run(*command):
        # Without an @ before the time the clock stands still.
        return subprocess.run(["faketime", "-f", when, *map(str, command)], cwd=folder, env=environment, check=True,
                              capture_output=True, text=True).stdout

    run("wixl", "--arch", "x64", "-o", msi, wxs)
    tables = {name: Table(run("msiinfo", "export", msi, name))
              for name in ("File", "Directory", "Component", "MsiFileHash", "InstallExecuteSequence")}
    _complete(tables, version)
    tables["Registry"] = _registry_table(root)
    for name, table in tables.items():
        idt = work / f"{name}.idt"
        idt.write_text(table.text(), encoding="utf-8", newline="")
        run("msibuild", msi, "-i", idt)
    code = "{" + package_code(folder, version) + "}"
    run("msibuild", msi, "-s", f"{PRODUCT} {version}", f"{PRODUCT} authors", "x64;1033", code)
