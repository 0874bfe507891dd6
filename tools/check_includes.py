#!/usr/bin/env python3
"""Checks who includes whom:  tools/check_includes.py [ROOT]

The portable core must build without Windows, the folders must stay in their order, and nobody may reach into another
control. Prints FILE:LINE: MESSAGE rows and exits with 1 if an include breaks a rule.
"""

import pathlib
import re
import sys

# Which folders of the project each folder may include. A folder may always include itself.
ARROWS = {
    "simd": [],
    "dsp": ["simd"],
    "gfx": [],
    "gfx/win": ["gfx"],
    "common": ["gfx", "simd"],
    "common/win": ["common", "gfx", "ole", "generated"],
    "wave": [],
    "ole": [],
    "runtime": [],
    "module": ["common", "common/win", "gfx/win", "ole", "runtime", "type1/win", "type2/win", "type3/win", "generated"],
    # For hosts: no source of a control.
    "host": ["generated"],
    "demo": ["host", "wave", "generated"],
    "samples": ["host", "generated"],
    "player": [],
    "player/win": ["player", "wave", "host", "generated"],
    "companion": ["host", "ole", "runtime", "wave", "generated"],
}
for control in ("type1", "type2", "type3"):
    ARROWS[control] = ["simd", "dsp", "gfx", "common"]
    ARROWS[control + "/win"] = [control, "common", "common/win", "gfx", "gfx/win", "ole", "generated"]

PORTABLE = {"simd", "dsp", "gfx", "common", "wave", "type1", "type2", "type3", "player"}

# What the portable core may include in angle brackets: the C++20 library, and the compiler's intrinsics for kernels
# that are chosen at run time. In particular no <windows.h>.
STANDARD = set(
    """algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes
    climits clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef
    cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem format forward_list
    fstream functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale
    map memory memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex
    scoped_allocator semaphore set shared_mutex source_location span sstream stack stdexcept stop_token streambuf
    string string_view strstream syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map
    unordered_set utility valarray variant vector version immintrin.h""".split()
)

GENERATED = {"QELAudioVisualization4.h", "AudioBlocks.h", "automation_types.h", "tutorial_listing.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def folder_of(path):
    """The key of ARROWS that a path from the root belongs to, or None (tests, benchmarks: free to include all)."""
    parts = pathlib.PurePosixPath(path).parts
    if len(parts) > 2 and parts[1] == "win" and "/".join(parts[:2]) in ARROWS:
        return "/".join(parts[:2])
    return parts[0] if len(parts) > 1 and parts[0] in ARROWS else None


def complaint(root, folder, bracket, target):
    """What is wrong with one include of a file in that folder, or None."""
    if target in GENERATED:
        return None if "generated" in ARROWS[folder] else f"{folder}/ does not know the type library's header"
    if bracket == "<":
        if folder in PORTABLE and target not in STANDARD:
            return f"<{target}> is not part of the C++ library, and {folder}/ is portable"
        return None
    if not (root / target).is_file():
        return f'"{target}": no such file; includes are written from the root of the tree'
    other = folder_of(target)
    if other is None:
        return f"{folder}/ may not include {target}"
    if other != folder and other not in ARROWS[folder]:
        return f"{folder}/ may not include {other}/ ({target})"
    return None


def check(root):
    """All violations under root, as (path, line, message)."""
    found = []
    tops = sorted({folder.split("/")[0] for folder in ARROWS})
    for top in tops:
        for path in sorted((root / top).rglob("*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            name = path.relative_to(root).as_posix()
            folder = folder_of(name)
            lines = path.read_text(encoding="utf-8").splitlines()
            for number, line in enumerate(lines, 1):
                match = INCLUDE.match(line)
                message = match and complaint(root, folder, match[1], match[2])
                if message:
                    found.append((name, number, message))
            if path.suffix == ".h" and "#pragma once" not in lines:
                found.append((name, 1, "a header without #pragma once"))
    return found


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent).resolve()
    found = check(root)
    for name, number, message in found:
        print(f"{name}:{number}: {message}")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
