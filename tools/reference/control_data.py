"""What docs/reference/*.toml says of a control's properties, and the steps that try it on a running control."""

import tomllib

from . import library

PAGES = ("view", "meter", "analyser")
KEYS_OF_PAGE = {"class", "title", "see", "intro", "warning", "picture", "picture_text", "size", "base", "after", "group"}
KEYS_OF_PROPERTY = {"default", "accepts", "otherwise", "seen", "effect", "values", "keeps", "keeps_bool", "turns", "refuses",
                    "refuses_as_system", "given", "given_default", "base", "pictures"}


def read(folder, page):
    data = tomllib.loads((folder / f"{page}.toml").read_text())
    data["page"] = page
    data["properties"] = {name: entry for name, entry in data.items()
                          if isinstance(entry, dict) and name not in KEYS_OF_PAGE}
    return data


def as_read(value, system):
    """A value of the data file as describe_controls writes it."""
    if value == "button face":
        return system["buttonFace"]
    if isinstance(value, bool):
        return "-1" if value else "0"
    if isinstance(value, float):
        return f"{value:g}"
    text = str(value)
    if text.startswith("#"):
        return f"0x00{text[5:7]}{text[3:5]}{text[1:3]}".upper().replace("X", "x")
    return text


def same(read_text, expected):
    """Fonts are made of whole pixels, so that their size may come back up to a point larger or smaller."""
    if expected.count(",") == 2 and read_text.count(",") == 2:
        (face, size, weight), (other_face, other_size, other_weight) = read_text.split(","), expected.split(",")
        return (face, weight) == (other_face, other_weight) and abs(float(size) - float(other_size)) < 1
    return read_text == expected


class Trial:
    """Steps on a fresh control, and what the last ones have to answer."""

    def __init__(self, control, steps, expect):
        self.line = [control, *steps]
        self.expect = expect  # (answers, system) -> a complaint, or nothing


def problem(step, answer, wanted):
    return f"{step}: {wanted} is documented, the control answers {answer['result']} {answer['text']!r}"


def reads(step, value):
    def expect(answers, system):
        wanted = as_read(value, system)
        good = answers[-1]["result"] == library.SUCCESS and same(answers[-1]["text"], wanted)
        return None if good else problem(step, answers[-1], wanted)
    return expect


def puts_and_reads(step, value):
    def expect(answers, system):
        if answers[-2]["result"] != library.SUCCESS:
            return problem(step, answers[-2], "a put that succeeds")
        return reads(step, value)(answers, system)
    return expect


def refused(step, code):
    """The last three answers are those of a get, of the refused put and of the same get."""
    def expect(answers, _):
        before, answer, after = answers[-3:]
        good = answer["result"] == code if code else answer["result"].startswith("0x8")
        if not good:
            return problem(step, answer, "a refusal")
        if code == library.INVALID_ARGUMENT and not answer["text"]:
            return f"{step}: the refusal has no text"
        return None if before == after else f"{step}: is refused but changes {before['text']} to {after['text']}"
    return expect


def is_read_only(entry):
    """The data file shows it by saying nothing of puts."""
    return "accepts" not in entry


def trials_of(control, name, entry):
    """Everything that the data file claims of a property, each on a control of its own."""
    given = entry.get("given", [])
    defaults = entry["default"] if isinstance(entry["default"], list) else [[None, entry["default"]]]
    for index, value in defaults:
        step = name if index is None else f"{name}({index})"
        yield Trial(control, [step], reads(f"default of {step}", value))
    if "given_default" in entry:
        yield Trial(control, [*given, name], reads(f"{name} after {given}", entry["given_default"]))
    kept = [value for value, _ in entry.get("values", [])] + entry.get("keeps", [])
    # Texts become −1 or 0 on their way into a boolean; these are put as the numbers that they are.
    raw = [(f"bool {value}", value) for value in entry.get("keeps_bool", [])]
    for value, back in [(value, value) for value in kept] + raw + entry.get("turns", []):
        step = f"{name}={value}"
        target = f"{name}(1)" if len(defaults) > 1 else name
        yield Trial(control, [*given, step.replace(name, target, 1), target], puts_and_reads(step, back))
    for key, code in (("refuses", library.INVALID_ARGUMENT), ("refuses_as_system", None)):
        for step in entry.get(key, []):
            target = f"{name}(1)" if "(" in step else name
            yield Trial(control, [*given, target, step, target], refused(step, code))
    if is_read_only(entry):
        yield Trial(control, [name, f"{name}=1", name], refused(f"put of {name}", library.MEMBER_NOT_FOUND))


def structure_problems(data, properties):
    """Where names, groups and keys of the data file do not fit the type library."""
    documented = set(data["properties"])
    for name in sorted(documented ^ set(properties)):
        yield f"{data['page']}: {name} is in " + ("the data file only" if name in documented else "the type library only")
    grouped = [name for group in data["group"] for name in group["names"]]
    for name in sorted(documented ^ set(grouped)) + sorted({name for name in grouped if grouped.count(name) > 1}):
        yield f"{data['page']}: {name} has to be in one group"
    for name in sorted(documented & set(properties)):
        if properties[name].read_only != is_read_only(data["properties"][name]):
            yield f"{data['page']}: {name}: puts are documented where there are none, or the reverse"
    for name, entry in data["properties"].items():
        for key in sorted(set(entry) - KEYS_OF_PROPERTY):
            yield f"{data['page']}: {name} has the unknown key {key}"
