"""The scripts of the package that register the libraries and unregister them, for cmd.exe.

For all users they call regsvr32. For one user they write what regsvr32 would, into the user's own part of the registry:
what does not depend on the package's place comes from registry files (a call of reg.exe for each entry takes long).
"""

import pathlib

from contents import ARCHITECTURES, LIBRARIES
from registration import FOLDER, MODULE, is_redirected, registration

_TEMPLATES = pathlib.Path(__file__).parent / "files"
_USER = "Software\\Classes"
# Registry files by the kind of Windows, and the libraries that it can run.
_KINDS = {"64-bit": ("x86", "x64"), "32-bit": ("x86",)}


def _quoted(text):
    if any(c in text for c in '"%\r\n'):
        raise ValueError(f"cannot stand in a script: {text!r}")
    return f'"{text}"'


def _escaped(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def _registrations(root, arch):
    for library in LIBRARIES:
        yield library, registration(root / library.module, root / library.idl, ARCHITECTURES[arch])


def _depends_on_place(entry):
    return entry.text is not None and (MODULE in entry.text or FOLDER in entry.text)


def _add_lines(root, arch):
    """A call of reg.exe for each entry that names the package's place. %NODE% is "Wow6432Node\\" on 64-bit Windows."""
    for library, what in _registrations(root, arch):
        for entry in filter(_depends_on_place, what.entries):
            node = "%NODE%" if arch == "x86" and is_redirected(entry.key) else ""
            text = entry.text.replace(MODULE, f"\0bin\\{arch}\\{library.name}.dll").replace(FOLDER, f"\0bin\\{arch}")
            name = f"/v {_quoted(entry.name)}" if entry.name else "/ve"
            data = _quoted(text).replace("\0", "%HERE%")
            yield f'"%REG%" add "HKCU\\{_USER}\\{node}{_quoted(entry.key)[1:]} {name} /d {data} /f >nul'
            yield "if errorlevel 1 goto failed"


def _user_keys(keys, kind, arch):
    for key in keys:
        node = "Wow6432Node\\" if kind == "64-bit" and arch == "x86" and is_redirected(key) else ""
        yield key, f"HKEY_CURRENT_USER\\{_USER}\\{node}{key}"


def _registry_file(root, kind):
    """The entries that are the same wherever the package lies, as a registry file for that kind of Windows."""
    lines = ["REGEDIT4", "", "; A part of register-user.cmd, which adds where the libraries lie."]
    for arch in _KINDS[kind]:
        for _, what in _registrations(root, arch):
            for key, path in _user_keys(dict.fromkeys(entry.key for entry in what.entries), kind, arch):
                lines += ["", f"[{path}]"]
                for entry in what.entries:
                    if entry.key == key and entry.name is not None and not _depends_on_place(entry):
                        lines.append(f"{_escaped(entry.name) if entry.name else '@'}={_escaped(entry.text)}")
    return lines


def _removal_file(root, kind):
    paths = [path for arch in _KINDS[kind] for _, what in _registrations(root, arch)
             for _, path in _user_keys(what.roots, kind, arch)]
    # The architectures share some of them.
    removals = [f"[-{path}]" for path in dict.fromkeys(paths)]
    return ["REGEDIT4", "", "; A part of unregister-user.cmd: removes what register-user.cmd wrote.", "", *removals]


def _server_line(arch, library, option=""):
    return f'"%REGSVR{ARCHITECTURES[arch]}%" /s {option}"%HERE%bin\\{arch}\\{library.name}.dll"'


def _register_lines(arch):
    for library in LIBRARIES:
        yield from (_server_line(arch, library), "if errorlevel 1 goto failed")


def _unregister_lines(arch):
    """Where the folder was moved, the system does not find the registered type library, which it has to read in order to
    remove it: then the library is registered where it lies now, first."""
    for library in LIBRARIES:
        label = f"removed_{arch}_{library.name}"
        yield from (_server_line(arch, library, "/u "), f"if not errorlevel 1 goto {label}")
        yield from (_server_line(arch, library), "if errorlevel 1 goto failed")
        yield from (_server_line(arch, library, "/u "), "if errorlevel 1 goto failed", f":{label}")


def _check_lines(arch):
    for library in LIBRARIES:
        yield f'if not exist "%HERE%bin\\{arch}\\{library.name}.dll" goto missing'


def _write(path, lines):
    """With the line ends that Windows' tools expect."""
    path.parent.mkdir(exist_ok=True)
    path.write_text("".join(f"{line}\n" for line in lines), encoding="ascii", newline="\r\n")


def write(root, folder):
    """Writes the scripts for the sources in `root` into `folder`."""
    folder, blocks = pathlib.Path(folder), {}
    for arch in ARCHITECTURES:
        blocks[f"CHECK_{arch}"] = _check_lines(arch)
        blocks[f"ADD_{arch}"] = _add_lines(root, arch)
        blocks[f"REGISTER_{arch}"] = _register_lines(arch)
        blocks[f"UNREGISTER_{arch}"] = _unregister_lines(arch)
    blocks = {f"@{name}@": list(lines) for name, lines in blocks.items()}
    for template in sorted(_TEMPLATES.glob("*.cmd.in")):
        lines = []
        for line in template.read_text(encoding="ascii").splitlines():
            lines += blocks.get(line, [line])
        _write(folder / template.name.removesuffix(".in"), lines)
    for kind in _KINDS:
        _write(folder / f"registry/register-user-{kind}.reg", _registry_file(root, kind))
        _write(folder / f"registry/unregister-user-{kind}.reg", _removal_file(root, kind))
