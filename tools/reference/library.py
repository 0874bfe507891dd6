"""What the compiled library says of itself: runs describe_controls under Wine."""

import json
import pathlib
import subprocess
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
SUCCESS = "0x00000000"
INVALID_ARGUMENT = "0x80070057"
MEMBER_NOT_FOUND = "0x80020003"


CONTROLS, COMPANION = "QELAudioVisualization4.tlb", "AudioBlocks.tlb"


def describe(folder, lines):
    """The type libraries in `folder`, and what fresh controls answer to the steps of each line."""
    with tempfile.TemporaryDirectory(dir=folder) as place:
        steps = pathlib.Path(place) / "steps.txt"
        steps.write_text("".join("\t".join(line) + "\n" for line in lines))
        libraries = ";".join(str(folder / name) for name in (CONTROLS, COMPANION))
        command = [ROOT / "tools/wine-run", "x64", folder / "describe_controls.exe", libraries, steps]
        run = subprocess.run([str(part) for part in command], capture_output=True, check=False)
    if run.returncode:
        raise SystemExit(f"describe_controls failed ({run.returncode}): {run.stderr.decode()}")
    return json.loads(run.stdout)


class Property:
    """A property of the type library with all its accessors."""

    def __init__(self, accessors):
        self.accessors = accessors  # by kind: get, put, putref
        getter = accessors["get"]
        self.name, self.id, self.help = getter["name"], getter["id"], getter["help"]
        self.slot = getter["slot"]
        value = getter["parameters"][-1]["type"].removesuffix("*")  # a get hands out through a pointer
        self.type = {"Font*": "IFontDisp*"}.get(value, value)  # the name that stdole2.tlb has for it
        self.indices = getter["parameters"][:-1]
        self.read_only = len(accessors) == 1


class Types:
    """The types of a description, by name."""

    def __init__(self, description):
        self.by_name = {entry["name"]: entry for library in description["libraries"] for entry in library}
        self.companion = description["libraries"][1]

    def classes_of_companion(self):
        return [entry["name"] for entry in self.companion if entry["kind"] == "class"]

    def interface_of(self, class_name, source=False):
        """The default interface of a class, or its event interface; None where it has none."""
        for part in self.by_name[class_name]["parts"]:
            if part["default"] and part["source"] == source:
                return self.by_name[part["name"]]
        return None

    def properties_of(self, class_name):
        """The properties of a class's own interface, in the order of its virtual table."""
        found = {}
        for member in self.interface_of(class_name)["members"]:
            found.setdefault(member["name"], {})[member["kind"]] = member
        return {name: Property(accessors) for name, accessors in found.items()}
