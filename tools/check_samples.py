#!/usr/bin/env python3
"""Checks of the samples that no compiler makes:  tools/check_samples.py [ROOT]

Identifiers in the samples and on the pages are identifiers of the library, and every hand-written IAudioFrameData has its
methods in the slots that the controls call. The Python sample is imported for that, with a stand-in for comtypes. Prints
what is wrong and exits with 1.
"""

import ctypes
import importlib.util
import pathlib
import re
import sys
import types

SLOTS = {"GetBuffer": 10, "GetBufferSize": 11, "GetDataSize": 12, "GetFormat": 33, "GetFormatSize": 34}
GUID = re.compile(r"[0-9A-Fa-f]{8}(?:-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}")

# Where the interface is declared, and how a method of it looks there; slots 0 to 2 are those of IUnknown.
DECLARATIONS = {
    "csharp/AudioVisualization.cs": (r"interface IAudioFrameData\n\{(.*?)\n\}", r"int (\w+)\("),
    "delphi/AudioVisualization.pas": (r"IAudioFrameData = interface\(IUnknown\)(.*?)\n  end;", r"function (\w+)"),
}


def wrong_slots(names):
    """What is wrong with an interface of these methods, in their order from slot 3."""
    found = {name: slot for slot, name in enumerate(names, 3)}
    wrong = [f"{name} is in slot {found.get(name)}, not {slot}" for name, slot in SLOTS.items() if found.get(name) != slot]
    return wrong + ([] if len(names) == 32 else [f"{len(names)} methods, not 32"])


def known_identifiers(root):
    sources = ["idl/QELAudioVisualization4.idl", "host/audio_buffers.h"]
    companion = root / "idl/AudioBlocks.idl"
    texts = [(root / source).read_text(encoding="utf-8") for source in sources]
    texts += [companion.read_text(encoding="utf-8")] if companion.exists() else []
    return {guid.upper() for text in texts for guid in GUID.findall(text)}


def check_identifiers(root):
    known = known_identifiers(root)
    for path in sorted([*(root / "samples").rglob("*"), *(root / "docs").rglob("*.md")]):
        if path.suffix not in (".cs", ".pas", ".dpr", ".py", ".ps1", ".frm", ".vbs", ".js", ".md"):
            continue
        for guid in GUID.findall(path.read_text(encoding="utf-8")):
            if guid.upper() not in known:
                yield f"{path.relative_to(root)}: {guid} is no identifier of the library"


def check_declarations(root):
    for name, (interface, method) in DECLARATIONS.items():
        text = (root / "samples" / name).read_text(encoding="utf-8")
        body = re.search(interface, text, re.DOTALL)
        problems = wrong_slots(re.findall(method, body[1])) if body else ["no IAudioFrameData"]
        yield from (f"samples/{name}: {problem}" for problem in problems)


def stand_in_for_comtypes():
    """As much of comtypes as the import of the sample needs; methods are recorded by their names."""

    class Interface:
        _methods_ = []

    comtypes = types.ModuleType("comtypes")
    comtypes.GUID = str
    comtypes.HRESULT = ctypes.c_long
    comtypes.IUnknown = Interface
    comtypes.COMObject = object
    comtypes.COMMETHOD = lambda flags, result, name, *arguments: name
    comtypes.STDMETHOD = lambda result, name, arguments=(): name
    automation = types.ModuleType("comtypes.automation")
    automation.IDispatch = Interface
    return {"comtypes": comtypes, "comtypes.automation": automation}


def check_python(root):
    path = root / "samples/python/meter.py"
    pointer = ctypes.POINTER
    # Stand-ins are no ctypes types.
    ctypes.POINTER = lambda kind: pointer(kind) if hasattr(kind, "from_param") else pointer(ctypes.c_void_p)
    sys.dont_write_bytecode = True
    sys.modules.update(stand_in_for_comtypes())
    try:
        spec = importlib.util.spec_from_file_location("sample", path)
        sample = importlib.util.module_from_spec(spec)
        spec.loader.exec_module(sample)
    finally:
        ctypes.POINTER = pointer
    problems = wrong_slots(sample.IAudioFrameData._methods_)
    if ctypes.sizeof(sample.WaveFormat) != 18:
        problems.append("the wave format header is not 18 bytes")
    if sample.IAudioVisualizationTemplate._methods_[:2] != ["_OnTimer", "SendAudioData"]:
        problems.append("SendAudioData is not slot 8")
    loudest = max(abs(value) for block in range(100) for value in sample.swell(block * sample.BLOCK_FRAMES))
    if not 30000 < loudest <= 32767:
        problems.append(f"the loudest sample is {loudest}")
    yield from (f"samples/python/meter.py: {problem}" for problem in problems)


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent).resolve()
    found = 0
    for check in (check_identifiers, check_declarations, check_python):
        for problem in check(root):
            print(problem, flush=True)
            found += 1
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
