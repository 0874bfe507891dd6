#!/usr/bin/env python3
"""Checks that each row of docs/behaviour.md names a test that exists:  tools/check_behaviour.py [ROOT]

The last column of every table is "Test" and holds the names of tests in backticks, as `Suite.Name`. The tests that
docs/reliability.md names anywhere have to exist too, or begin like `Suite.Name...`. Prints FILE:LINE: MESSAGE rows and
exits with 1 if a row names none, or one that is not in the sources.
"""

import pathlib
import re
import sys

DOCUMENT = "docs/behaviour.md"
OTHER_DOCUMENT = "docs/reliability.md"
TEST = re.compile(r"^\s*TEST(?:_F|_P)?\(\s*(\w+)\s*,\s*(\w+)\s*\)", re.MULTILINE)
NAME = re.compile(r"`(\w+)\.(\w+)`")
NAME_IN_TEXT = re.compile(r"`([A-Z]\w+)\.([A-Z]\w+)(\.\.\.)?`")


def tests_in(root):
    """All tests of the sources that are run, as (suite, name)."""
    found = set()
    for path in (root / "tests").rglob("*.cpp"):
        for suite, name in TEST.findall(path.read_text(encoding="utf-8")):
            if not suite.startswith("DISABLED_") and not name.startswith("DISABLED_"):
                found.add((suite, name))
    return found


def cells_of(line):
    return [cell.strip() for cell in line.strip().strip("|").split("|")]


def check(root):
    """All complaints about the document, as (path, line, message)."""
    path = root / DOCUMENT
    if not path.is_file():
        return [(DOCUMENT, 1, "there is no such document")]
    existing = tests_in(root)
    found = []
    header = None  # of the table that the lines belong to
    rows = 0
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if not line.startswith("|"):
            header = None
            continue
        cells = cells_of(line)
        if header is None:
            header = cells
            if cells[-1] != "Test":
                found.append((DOCUMENT, number, 'the last column of a table is "Test"'))
            continue
        if set("".join(cells)) <= set("-:"):
            continue
        rows += 1
        if len(cells) != len(header):
            found.append((DOCUMENT, number, f"{len(cells)} cells under {len(header)} headings"))
            continue
        names = NAME.findall(cells[-1])
        if not names:
            found.append((DOCUMENT, number, "the row names no test"))
        for suite, name in names:
            if (suite, name) not in existing:
                found.append((DOCUMENT, number, f"there is no test {suite}.{name}"))
    if rows == 0:
        found.append((DOCUMENT, 1, "no rows found"))
    return found


def check_text(root):
    """Complaints about the tests that the other document names, wherever it does."""
    path = root / OTHER_DOCUMENT
    existing = tests_in(root)
    found = []
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        for suite, name, more in NAME_IN_TEXT.findall(line):
            if not any(suite == other and (name == test or more and test.startswith(name)) for other, test in existing):
                found.append((OTHER_DOCUMENT, number, f"there is no test {suite}.{name}{more}"))
    return found


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent).resolve()
    found = check(root) + check_text(root)
    for name, number, message in found:
        print(f"{name}:{number}: {message}")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
