"""Renders the reference pages as Markdown."""

from . import control_data, library

GENERATED = "<!-- Made by tools/make-reference of the type library and of docs/reference/*.toml; do not edit. -->\n"
PER_ROW = {"216x140": 3, "320x160": 2}
IMAGES = "../images/reference"


def anchor(name):
    return f"#{name.lower()}"


def table(rows):
    """A Markdown table; the first row is the header."""
    lines = ["| " + " | ".join(row) + " |" for row in rows]
    lines.insert(1, "|" + "---|" * len(rows[0]))
    return "\n".join(lines) + "\n"


def shown(value):
    """A value as readers write it."""
    if isinstance(value, bool):
        return "True (−1)" if value else "False (0)"
    if value == "button face":
        return "the system's button face"
    text = str(value)
    if text.startswith("#"):
        return f"`{control_data.as_read(value, {})}`"
    if text.count(",") == 2:
        face, size, _ = text.split(",")
        return f"{face}, {size} points"
    return f"`{text}`".replace("-", "−")


def shown_turns(entry):
    """What puts of other values read as."""
    parts = []
    for put, back in entry.get("turns", []):
        number = int(put)
        written = f"`0x{number:08X}`" if number > 0x7FFFFFFF else shown(put)
        parts.append(f"{written} as {shown(back)}")
    return ", ".join(parts)


def picture_files(data, name):
    count = len(data["properties"][name].get("pictures", []))
    return [f"{data['page']}-{name.lower()}-{i + 1}.png" for i in range(count)]


def picture_table(data, name):
    pictures = data["properties"][name].get("pictures", [])
    if not pictures:
        return ""
    cells = [f"![{name}: {picture[0].replace('`', '')}]({IMAGES}/{file})<br>{picture[0]}"
             for picture, file in zip(pictures, picture_files(data, name))]
    width = min(PER_ROW[data["size"]], len(cells))
    rows = [cells[at:at + width] for at in range(0, len(cells), width)]
    rows[-1] += [""] * (width - len(rows[-1]))
    return table(rows) + "\n"


def identifiers(entry):
    slots = ", ".join(f"{kind} in slot {member['slot']}" for kind, member in entry.accessors.items())
    return f"DISPID {entry.id}; {slots}"


def refusal_texts(name, entry, refusals):
    texts = sorted({refusals[step] for step in entry.get("refuses", [])})
    if not texts:
        return entry["otherwise"]
    return f"{entry['otherwise']}: `E_INVALIDARG`, “{'”, “'.join(texts)}”"


def default_of(entry):
    if isinstance(entry["default"], list):
        return "see below"
    text = shown(entry["default"])
    if "given_default" in entry:
        text += f"; {shown(entry['given_default'])} after " + ", ".join(f"`{put}`" for put in entry["given"])
    return text


def property_section(data, entry, member, refusals):
    name = member.name
    text = f"### {name}\n\n*{member.help}*\n\n"
    if "effect" in entry:
        text += entry["effect"].strip() + "\n\n"
    index = "".join(f"({part['name']})" for part in member.indices)
    rows = [["Type", f"`{member.type}`" + (f", indexed: `{name}{index}`" if index else "")],
            ["Default" if not member.read_only else "Fresh control", default_of(entry)]]
    if member.read_only:
        rows.append(["Put", "none: it can only be read"])
    else:
        rows += [["Takes", entry["accepts"]], ["Anything else", refusal_texts(name, entry, refusals)]]
        if entry.get("turns"):
            rows.append(["Reads back", shown_turns(entry)])
        rows.append(["Seen", entry["seen"]])
    rows.append(["Identifiers", identifiers(member)])
    text += table(rows) + "\n"
    if entry.get("values"):
        text += table([["Value", "Meaning"]] + [[shown(value), meaning] for value, meaning in entry["values"]]) + "\n"
    if isinstance(entry["default"], list):
        text += table([["Index", "Default"]] + default_rows(entry["default"])) + "\n"
    return text + picture_table(data, name)


def default_rows(defaults):
    """Neighbours of the same colour up to the last index share a row."""
    rows = [[str(index), shown(value)] for index, value in defaults]
    if len(defaults) > 1 and defaults[-1][1] == defaults[-2][1]:
        rows[-2:] = [[f"{defaults[-2][0]} to {defaults[-1][0]}", shown(defaults[-1][1])]]
    return rows


def overview(properties, data):
    rows = [["Property", "Type", "Default", "DISPID", "Slots"]]
    for member in properties.values():
        slots = sorted(accessor["slot"] for accessor in member.accessors.values())
        rows.append([f"[`{member.name}`]({anchor(member.name)})", f"`{member.type}`",
                     default_of(data["properties"][member.name]), str(member.id), ", ".join(map(str, slots))])
    return table(rows)


def control_page(data, types, refusals):
    """The page of a control; `refusals` has the text of every refused step."""
    interface = types.interface_of(data["class"])
    events = types.interface_of(data["class"], source=True)
    properties = types.properties_of(data["class"])
    text = f"{GENERATED}\n# {data['title']}\n\n"
    if "warning" in data:
        text += "\n".join(f"> {line}" for line in data["warning"].strip().splitlines()) + "\n\n"
    text += data["intro"].strip() + "\n\n"
    text += f"![{data['picture_text']}](../images/{data['picture']})\n\n"
    rows = [["Class", f"`{data['class']}`"], ["Class identifier", f"`{types.by_name[data['class']]['guid']}`"],
            ["Interface", f"`{interface['name']}`, derived from [`{interface['base']}`](common.md)"],
            ["Interface identifier", f"`{interface['guid']}`"]]
    if events:
        rows.append(["Events", f"[`{events['name']}`](events.md)"])
    text += table(rows) + f"\nMore: {data['see']}, [behaviour.md](../behaviour.md) (every bad input), " \
                          "[common.md](common.md) (methods).\n\n"
    text += "## All properties\n\nIn the order of the interface. The first slot is the get's, the second one the put's.\n\n"
    text += overview(properties, data) + "\n"
    for group in data["group"]:
        text += f"## {group['title']}\n\n"
        if "text" in group:
            text += group["text"].strip() + "\n\n"
        for name in group["names"]:
            text += property_section(data, data["properties"][name], properties[name], refusals)
    return text.rstrip() + "\n"


def signature(member):
    return ", ".join(f"{part['type']} {part['name']}" for part in member["parameters"])


def methods_page(interface, prose):
    rows = [["Method", "DISPID", "Slot", "What it does"]]
    for member in interface["members"]:
        rows.append([f"`{member['name']}({signature(member)})`", f"`0x{member['id']:X}`", str(member["slot"]),
                     member["help"]])
    return f"{GENERATED}\n# {prose['title']}\n\n{prose['intro'].strip()}\n\n" \
           f"`{interface['name']}`, `{interface['guid']}`, derived from `{interface['base']}`. {interface['help']}\n\n" \
           f"{table(rows)}\n{prose['text'].strip()}\n"


def members_table(members):
    """A row for each name; get and put share theirs."""
    rows = {}
    for member in members:
        rows.setdefault(member["name"], []).append(member)
    table_rows = [["Member", "Kind", "DISPID", "Slots", "What it does"]]
    for name, forms in rows.items():
        first = forms[0]
        result = next((part["type"].removesuffix("*") for part in first["parameters"] if part["way"] == "result"), "")
        inputs = ", ".join(f"{part['type']} {part['name']}" for part in first["parameters"] if part["way"] == "in")
        shown_name = name + (f"({inputs})" if inputs or first["kind"] == "method" else "")
        kinds = "/".join(form["kind"] for form in forms)
        table_rows.append([f"`{shown_name}`" + (f" → `{result}`" if result else ""), kinds, str(first["id"]),
                           ", ".join(str(form["slot"]) for form in forms), first["help"]])
    return table(table_rows)


def companion_page(types, prose):
    """The classes of the companion library with their interfaces."""
    text = f"{GENERATED}\n# {prose['title']}\n\n{prose['intro'].strip()}\n\n"
    for name in types.classes_of_companion():
        interface = types.interface_of(name)
        text += f"## {name}\n\n*{types.by_name[name]['help']}*\n\n"
        text += table([["Class identifier", f"`{types.by_name[name]['guid']}`"],
                       ["Interface", f"`{interface['name']}`, derived from `{interface['base']}`"],
                       ["Interface identifier", f"`{interface['guid']}`"]])
        text += f"\n{interface['help']}\n\n{members_table(interface['members'])}\n"
    return text.rstrip() + "\n"


def events_page(interface, prose):
    rows = [["Event", "DISPID", "When"]]
    for member in interface["members"]:
        rows.append([f"`{member['name']}({signature(member)})`", str(member["id"]), member["help"]])
    return f"{GENERATED}\n# {prose['title']}\n\n{prose['intro'].strip()}\n\n" \
           f"`{interface['name']}`, `{interface['guid']}`, a dispatch interface. {interface['help']}\n\n" \
           f"{table(rows)}\n{prose['text'].strip()}\n"


def refusals_of(trials, answers):
    """The text of each refused step."""
    texts = {}
    for trial, answer in zip(trials, answers):
        for step, one in zip(trial.line[1:], answer or []):
            if one["result"] == library.INVALID_ARGUMENT:
                texts[step] = one["text"]
    return texts
