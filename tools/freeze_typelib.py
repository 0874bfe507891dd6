#!/usr/bin/env python3
"""Takes the time of building out of a type library that widl made, so that equal sources give equal bytes.

widl stores it twice: in the text "Created by WIDL version 7.0 at <date>" and, right behind that text, as a 32-bit count
of seconds since 1970 (a VT_UI4 record). Both get one fixed time, of the same length.

usage: freeze_typelib.py FILE
"""
import re
import struct
import sys

FIXED_TEXT = b"Sat Jan  1 00:00:00 2000"
FIXED_SECONDS = 946684800


def freeze(data: bytes) -> bytes:
    stamp = re.compile(
        rb"(Created by WIDL version [0-9.]+ at )(.{24})(\nW*)(\x13\x00)(.{4})(WW)", re.DOTALL)
    frozen, count = stamp.subn(
        lambda m: m[1] + FIXED_TEXT + m[3] + m[4] + struct.pack("<I", FIXED_SECONDS) + m[6], data)
    if count != 1:
        raise SystemExit(f"expected one time stamp, found {count}")
    return frozen


def main() -> None:
    path = sys.argv[1]
    with open(path, "rb") as file:
        data = file.read()
    with open(path, "wb") as file:
        file.write(freeze(data))


if __name__ == "__main__":
    main()
