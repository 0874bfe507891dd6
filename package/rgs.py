"""Reads the registrar's scripts (module/*.rgs): what registering writes, and which keys it leaves alone.

The part of the grammar that the scripts use: keys with or without a text, values of their own (`val`), texts in
apostrophes (an apostrophe within is doubled), NoRemove and ForceRemove, and %NAMES% that the caller replaces.
"""

import re
from typing import NamedTuple, Optional


class Entry(NamedTuple):
    """A key below HKEY_CLASSES_ROOT (name None), its default value (name "") or a named value of it. All are texts."""

    key: str
    name: Optional[str]
    text: Optional[str]


class Script(NamedTuple):
    entries: list  # of Entry, keys before what is in them
    roots: list  # the uppermost keys that unregistering removes, with everything below them


_TOKEN = re.compile(r"'((?:[^']|'')*)'|([{}=])|([^\s'{}=]+)")


def _tokens(text):
    """(token, quoted) pairs; whatever is no token is an error."""
    end = 0
    for match in _TOKEN.finditer(text):
        if text[end : match.start()].strip():
            raise ValueError(f"unreadable: {text[end:match.start()].strip()!r}")
        end = match.end()
        if match[1] is not None:
            yield match[1].replace("''", "'"), True
        else:
            yield match[2] or match[3], False
    if text[end:].strip():
        raise ValueError(f"unreadable: {text[end:].strip()!r}")


class _Reader:
    def __init__(self, text, replacements):
        self.tokens = list(_tokens(text))
        self.replacements = replacements
        self.entries, self.roots = [], []

    def next_is(self, word):
        return bool(self.tokens) and self.tokens[0] == (word, False)

    def take(self, word=None):
        if not self.tokens:
            raise ValueError("the script ends early")
        token, quoted = self.tokens.pop(0)
        if word is not None and (token, quoted) != (word, False):
            raise ValueError(f"expected {word}, found {token}")
        return self.replace(token)

    def replace(self, text):
        def of(match):
            if match[1] not in self.replacements:
                raise ValueError(f"unknown %{match[1]}%")
            return self.replacements[match[1]]

        return re.sub("%([A-Z]+)%", of, text)

    def text_after_equals(self):
        self.take("=")
        self.take("s")
        return self.take()

    def items(self, parent, removed):
        self.take("{")
        while not self.next_is("}"):
            if self.next_is("val"):
                self.take()
                name = self.take()
                self.entries.append(Entry(parent, name, self.text_after_equals()))
            else:
                self.key(parent, removed)
        self.take("}")

    def key(self, parent, removed):
        stays = self.next_is("NoRemove")
        if stays or self.next_is("ForceRemove"):
            self.take()
        path = f"{parent}\\{self.take()}" if parent else self.take()
        if not stays:
            self.entries.append(Entry(path, None, None))
            if not removed:
                self.roots.append(path)
        if self.next_is("="):
            self.entries.append(Entry(path, "", self.text_after_equals()))
        if self.next_is("{"):
            self.items(path, removed or not stays)


def read(text, replacements):
    """The entries of a script whose only root is HKCR. Raises ValueError for anything that it does not know."""
    reader = _Reader(text, replacements)
    reader.take("HKCR")
    reader.items("", False)
    if reader.tokens:
        raise ValueError(f"more than one root: {reader.tokens[0][0]}")
    return Script(reader.entries, reader.roots)
