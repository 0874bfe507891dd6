"""The reference as it would be made now, and what speaks against it."""

import pathlib
import re
import tomllib

from . import control_data, library, pages

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
REFERENCE = ROOT / "docs/reference"
IMAGES = ROOT / "docs/images/reference"


class Reference:
    """The data files, tried on the library in `folder`."""

    def __init__(self, folder, data_folder=REFERENCE, describe=library.describe):
        self.controls = [control_data.read(data_folder, page) for page in control_data.PAGES]
        self.prose = tomllib.loads((data_folder / "pages.toml").read_text())
        self.trials = [trial for data in self.controls for name, entry in data["properties"].items()
                       for trial in control_data.trials_of(data["class"], name, entry)]
        description = describe(folder, [trial.line for trial in self.trials])
        self.types = library.Types(description)
        self.answers = description["answers"]
        self.problems = list(self._problems(description))

    def _problems(self, description):
        for data in self.controls:
            yield from control_data.structure_problems(data, self.types.properties_of(data["class"]))
        if len(self.answers) != len(self.trials):
            yield f"{len(self.trials)} claims, {len(self.answers)} answers"
        yield from untold(self.types, (ROOT / "docs/companion.md").read_text())
        for trial, answers in zip(self.trials, self.answers):
            complaint = trial.expect(answers, description) if answers else f"{trial.line}: no control"
            if complaint:
                yield complaint

    def pages(self):
        """The text of every page, by file name."""
        refusals = pages.refusals_of(self.trials, self.answers)
        made = {f"{data['page']}.md": pages.control_page(data, self.types, refusals) for data in self.controls}
        made["common.md"] = pages.methods_page(self.types.by_name["IAudioVisualizationTemplate"], self.prose["common"])
        events = self.types.interface_of(self.controls[0]["class"], source=True)
        made["companion.md"] = pages.companion_page(self.types, self.prose["companion"])
        made["events.md"] = pages.events_page(events, self.prose["events"])
        return made

    def picture_groups(self):
        """The names of the pictures, a list for each property."""
        return [pages.picture_files(data, name) for data in self.controls for name in data["properties"]]

    def pictures(self):
        """The pictures that the pages show: file name and the line of the demo's list that draws it."""
        drawn = {}
        for data in self.controls:
            for name, entry in data["properties"].items():
                for file, (_, *puts) in zip(pages.picture_files(data, name), entry.get("pictures", [])):
                    steps = [*data.get("base", []), *entry.get("base", []), *puts, *data.get("after", [])]
                    drawn[file] = "\t".join([file[:-4], data["page"], data["size"], *steps])
        return drawn


def untold(types, text):
    """Members of the companion that its page, written by hand, says nothing of."""
    for name in types.classes_of_companion():
        for member in types.interface_of(name)["members"]:
            if not re.search(rf"`{member['name']}\b", text):
                yield f"docs/companion.md says nothing of {name}.{member['name']}"


def stale(made, pictures, reference=REFERENCE, images=IMAGES):
    """Complaints about committed pages and pictures that are not those that would be made."""
    for name, text in made.items():
        path = reference / name
        if not path.is_file() or path.read_text() != text:
            yield f"docs/reference/{name} is stale: run tools/make-reference"
    there = {path.name for path in images.glob("*")}
    for name in sorted(there ^ set(pictures)):
        yield f"docs/images/reference/{name} is {'shown nowhere' if name in there else 'missing'}: " \
              "run tools/make-reference --pictures"


def alike(pictures, images=IMAGES):
    """Complaints about pictures of a property that show the same: then it changes nothing that can be seen."""
    for files in pictures:
        contents = [(images / name).read_bytes() for name in files if (images / name).is_file()]
        if len(set(contents)) < len(contents):
            yield f"docs/images/reference: of {', '.join(files)} some are the same"
