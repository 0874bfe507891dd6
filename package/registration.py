"""What registering one of the libraries writes below HKEY_CLASSES_ROOT, taken from the sources that the DLL is built
of: its registrar scripts, its object map and its type library's source. tests/package compares it with what regsvr32
writes.
"""

import pathlib
import re
from typing import NamedTuple

import rgs
from rgs import Entry

# Replaced by whoever writes the entries: the DLL's path, and the folder that it lies in.
MODULE = "<module>"
FOLDER = "<folder>"

# The system's marshallers for interfaces that a type library describes, see oleaut32.
PROXY_FOR_DUAL = "{00020424-0000-0000-C000-000000000046}"
PROXY_FOR_DISPATCH = "{00020420-0000-0000-C000-000000000046}"
# LIBFLAG_FHASDISKIMAGE: a type library that was loaded from a file.
LIBRARY_FLAGS = "8"


class Registration(NamedTuple):
    entries: list  # of rgs.Entry, in the order of writing; of two with one key and name the later one stays
    roots: list  # keys that are the library's own, to be removed with everything below them


class TypeLibrary(NamedTuple):
    name: str
    id: str
    version: str
    text: str
    interfaces: list  # of (name, identifier, marshaller)
    classes: dict  # name: identifier


_DECLARATION = re.compile(
    r'\[((?:[^\[\]"]|"(?:[^"\\]|\\.)*")*)\]\s*(library|interface|dispinterface|coclass)\s+(\w+)')


def _attribute(attributes, name):
    match = re.search(rf'\b{name}\(\s*"?([^")]*)"?\s*\)', attributes)
    if not match:
        raise ValueError(f"no {name} in [{attributes.strip()}]")
    return match[1].strip()


def read_type_library(path):
    """The identifiers in the source of a type library."""
    text = re.sub(r"//[^\n]*|/\*.*?\*/", "", pathlib.Path(path).read_text(encoding="utf-8"), flags=re.DOTALL)
    library, interfaces, classes = None, [], {}
    for attributes, kind, name in _DECLARATION.findall(text):
        if not re.search(r"\buuid\b", attributes):
            continue  # a class naming its interfaces
        identifier = "{" + _attribute(attributes, "uuid").upper() + "}"
        if kind == "library":
            library = (name, identifier, _attribute(attributes, "version"), _attribute(attributes, "helpstring"))
        elif library is None:
            continue  # before the library block: known to the compiler, not described by the library
        elif kind == "coclass":
            classes[name] = identifier
        elif kind == "dispinterface":
            interfaces.append((name, identifier, PROXY_FOR_DISPATCH))
        elif re.search(r"\b(dual|oleautomation)\b", attributes):
            interfaces.append((name, identifier, PROXY_FOR_DUAL))
    if library is None:
        raise ValueError(f"{path}: no library")
    return TypeLibrary(*library, interfaces, classes)


def read_object_map(path):
    """(name, friendly name, ProgID or nothing) of each class in module.cpp's table, in the order of registering."""
    text = pathlib.Path(path).read_text(encoding="utf-8")
    classes = re.findall(r'\{&CLSID_(\w+),\s*L"([^"]+)",[^{}]*\}(?:,\s*L"([^"]+)"\})?', text)
    if not classes:
        raise ValueError(f"{path}: no table of classes")
    return classes


def _type_library_entries(library, bits):
    def key(path, text=None):
        found = [Entry(path, None, None)]
        return found if text is None else [*found, Entry(path, "", text)]

    root = f"TypeLib\\{library.id}"
    version = f"{root}\\{library.version}"
    entries = [
        *key(root), *key(version, library.text), *key(f"{version}\\0"), *key(f"{version}\\0\\win{bits}", MODULE),
        *key(f"{version}\\FLAGS", LIBRARY_FLAGS), *key(f"{version}\\HELPDIR", FOLDER)]
    roots = [root]
    for name, identifier, marshaller in library.interfaces:
        path = f"Interface\\{identifier}"
        entries += [
            *key(path, name), *key(f"{path}\\ProxyStubClsid", marshaller),
            *key(f"{path}\\ProxyStubClsid32", marshaller), *key(f"{path}\\TypeLib", library.id),
            Entry(f"{path}\\TypeLib", "Version", library.version)]
        roots.append(path)
    return entries, roots


def registration(module_folder, idl, bits):
    """What DllRegisterServer of a library writes whose module lies in `module_folder`, for programs of `bits` bits."""
    module_folder = pathlib.Path(module_folder)
    library = read_type_library(idl)
    common = {"APPID": library.id, "LIBID": library.id, "MODULE": MODULE}
    scripts = [rgs.read(path.read_text(encoding="utf-8"), common) for path in module_folder.glob("application.rgs")]
    class_script = (module_folder / "class.rgs").read_text(encoding="utf-8")
    for name, friendly, prog_id in read_object_map(module_folder / "module.cpp"):
        own = {"CLSID": library.classes[name], "FRIENDLYNAME": friendly, "PROGID": prog_id}
        scripts.append(rgs.read(class_script, {**common, **own}))
    entries = [entry for script in scripts for entry in script.entries]
    roots = [root for script in scripts for root in script.roots]
    of_library, library_roots = _type_library_entries(library, bits)
    # A later entry of the same place wins, as it does in the registry.
    last = {(entry.key.lower(), entry.name): entry for entry in entries + of_library}
    return Registration(list(last.values()), list(dict.fromkeys(roots + library_roots)))


def is_redirected(key):
    """Whether 64-bit Windows keeps this key of HKEY_CLASSES_ROOT apart for 32-bit programs. Of the keys that the
    libraries write these are CLSID and Interface; ProgIDs, AppID and TypeLib are shared (Windows 7 and later)."""
    return key.split("\\")[0].lower() in ("clsid", "interface")
