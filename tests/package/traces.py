"""What an installation must not leave behind: the names and identifiers of the libraries, the product and its parts."""

import re
import subprocess

from wine_prefix import ROOT

NAMES = ("QELAudioVisualization4", "AudioBlocks")
# Sources with identifiers of the libraries' own, and the one whose identifiers are the system's.
_SOURCES = ("idl/QELAudioVisualization4.idl", "idl/AudioBlocks.idl", "module/*.rgs", "companion/*.rgs")
_OF_THE_SYSTEM = "idl/automation_types.idl"
_GUID = re.compile(r"[0-9A-Fa-f]{8}-(?:[0-9A-Fa-f]{4}-){3}[0-9A-Fa-f]{12}")
_PACKED = re.compile(r"(?<![0-9A-F])[0-9A-F]{32}(?![0-9A-F])", re.IGNORECASE)
_NAME = re.compile("|".join(NAMES), re.IGNORECASE)


def _identifiers(*patterns):
    return {guid.upper() for pattern in patterns for path in ROOT.glob(pattern)
            for guid in _GUID.findall(path.read_text(encoding="utf-8"))}


def packed(guid):
    """The form in which the Windows Installer names its keys: the first three groups backwards, then pairs swapped."""
    first, second, third, *rest = guid.upper().split("-")
    pairs = "".join(rest)
    return first[::-1] + second[::-1] + third[::-1] + "".join(pairs[i + 1] + pairs[i] for i in range(0, len(pairs), 2))


def installer_codes(msi):
    """Of the product, its upgrades, its package and its components."""
    tables = [subprocess.run(command, check=True, capture_output=True, text=True).stdout for command in (
        ["msiinfo", "export", msi, "Component"], ["msiinfo", "export", msi, "Property"], ["msiinfo", "suminfo", msi])]
    return {guid.upper() for table in tables for guid in _GUID.findall(table)}


def identifiers_of(*msis):
    """Those of the libraries and the installers, plain and packed."""
    own = _identifiers(*_SOURCES) - _identifiers(_OF_THE_SYSTEM)
    plain = own.union(*map(installer_codes, msis))
    return plain | {packed(guid) for guid in plain}


def _texts_of(data):
    """What a value says: as it is written, and what its bytes spell."""
    yield data
    match = re.fullmatch(r"hex(?:\(\w+\))?:([0-9a-f,]*)", data)
    if match and match[1]:
        content = bytes(int(byte, 16) for byte in match[1].strip(",").split(","))
        yield content.decode("latin-1")
        yield content.decode("utf-16-le", "replace")


def found(identifiers, registry, files):
    """The places in a registry and the files that bear one of the names or identifiers, in a name or a value."""
    def bears(text):
        return _NAME.search(text) or any(match.upper() in identifiers
                                         for shape in (_GUID, _PACKED) for match in shape.findall(text))

    keys = {(key, name) for (key, name), data in registry.items()
            if bears(key) or bears(name or "") or any(map(bears, _texts_of(data)))}
    return keys | {file for file in files if bears(file)}
