"""Tables of a Windows Installer database in their text form, as msiinfo exports and msibuild imports them."""

import re


def _short_names(names):
    """{name: name of at most 8.3 characters}, each of them another one, for the names within one folder."""
    short = {}
    for name in sorted(names):
        stem, dot, extension = name.upper().rpartition(".") if "." in name else (name.upper(), "", "")
        stem, extension = (re.sub("[^A-Z0-9_-]", "", part) for part in (stem, extension))
        if name.upper() == f"{stem}{dot}{extension}" and len(stem) <= 8 and len(extension) <= 3:
            short[name] = name  # as it is
            continue
        for number in range(1, 10000):
            tail = f"~{number}"
            candidate = f"{stem[:8 - len(tail)]}{tail}{dot}{extension[:3]}"
            if candidate not in (other.upper() for other in short.values()):
                short[name] = candidate
                break
    return short


class Table:
    """A table of the installer as text: three lines of head, then a row a line."""

    def __init__(self, text):
        lines = text.replace("\r", "").strip("\n").split("\n")
        self.head, self.rows = lines[:3], [line.split("\t") for line in lines[3:]]
        self.columns = self.head[0].split("\t")

    def text(self):
        return "".join(line + "\r\n" for line in self.head + ["\t".join(row) for row in self.rows])

    def column(self, name):
        return self.columns.index(name)


def name_in_short_too(rows, column, group_of):
    """Windows Installer wants "short|long" for names that are no short names; wixl writes the long ones only.
    `group_of` a row is the folder that its name lies in."""
    folders = {}
    for row in rows:
        folders.setdefault(group_of(row), []).append(row)
    for group in folders.values():
        short = _short_names(row[column] for row in group)
        for row in group:
            if short[row[column]] != row[column]:
                row[column] = f"{short[row[column]]}|{row[column]}"
