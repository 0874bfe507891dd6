#!/usr/bin/env python3
"""The package's generated headers in the ways of Microsoft's compiler: with Clang in its place and, for the Windows
SDK, the stand-in in sdk/, which knows nothing of MinGW-w64's own. Both architectures; C++ of two standards, C.
"""

import re
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True

from made_package import Package  # noqa: E402
from wine_prefix import ROOT, WORK  # noqa: E402

NAMES = ("QELAudioVisualization4", "AudioBlocks")
INCLUDES = "".join(f"#include <{name}.h>\n" for name in NAMES)
CPP = INCLUDES + """
const GUID& view = __uuidof(IAudioVisualization4Type1);
const GUID& viewClass = __uuidof(CAudioVisualization4Type1);
const GUID& events = __uuidof(_IAudioVisualization4Type1Events);
const GUID& block = __uuidof(IAudioBlock);
const GUID* declared = &IID_IAudioVisualization4Type2;
HRESULT put(IAudioVisualization4Type3* analyser) { return analyser->put_FFTLength(512); }
HRESULT send(IAudioVisualizationTemplate* control, IUnknown* block) { return control->SendAudioData(block); }
"""
C = "#define CINTERFACE\n#define COBJMACROS\n" + INCLUDES + """
const GUID* declared = &IID_IAudioVisualization4Type2;
HRESULT put(IAudioVisualization4Type3* analyser) { return IAudioVisualization4Type3_put_FFTLength(analyser, 512); }
"""


class Headers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.include = Package("headers").unpack(WORK / "headers-unpacked") / "include"

    def compile(self, target, language, text):
        run = subprocess.run(
            ["clang-14", f"--target={target}-pc-windows-msvc", "-fms-compatibility-version=19.30", "-fsyntax-only",
             "-nostdinc", "-Wall", "-Wextra", "-Werror", "-x", *language, f"-I{ROOT}/tests/package/sdk",
             f"-I{self.include}", "-"], input=text, text=True, capture_output=True, check=False)
        self.assertEqual(run.returncode, 0, run.stderr)

    def test_compile_and_carry_their_identifiers(self):
        for target in "x86_64", "i686":
            for language, text in (("c++", "-std=c++14"), CPP), (("c++", "-std=c++20"), CPP), (("c", "-std=c11"), C):
                with self.subTest(target=target, language=language):
                    self.compile(target, language, text)

    def test_so_do_the_definitions_of_the_identifiers(self):
        for target in "x86_64", "i686":
            for name in NAMES:
                self.compile(target, ("c", "-std=c11"), (self.include / f"{name}_i.c").read_text())

    def test_each_header_compiles_alone(self):
        for name in NAMES:
            self.compile("x86_64", ("c++", "-std=c++14"), f"#include <{name}.h>\n#include <{name}.h>\n")

    def test_the_headers_for_hosts_need_nothing_but_the_package(self):
        package = self.include.parent
        headers = sorted(path.name for path in (package / "host").glob("*.h"))
        self.assertIn("container.h", headers)
        text = "".join(f'#include "host/{name}"\n' for name in headers)
        for compiler in "x86_64-w64-mingw32-g++-posix", "i686-w64-mingw32-g++-posix":
            # In the package, so that "host/..." is none of this tree's.
            run = subprocess.run(
                [compiler, "-std=c++20", "-Wall", "-Wextra", "-Werror", "-fsyntax-only", f"-I{package}",
                 f"-I{self.include}", "-x", "c++", "-"], cwd=package, input=text, text=True, capture_output=True,
                check=False)
            self.assertEqual(run.returncode, 0, run.stderr)

    def test_each_header_for_hosts_compiles_alone_as_the_standard_that_its_head_names(self):
        package = self.include.parent
        for header in sorted((package / "host").glob("*.h")):
            with self.subTest(header=header.name):
                standard = re.search(r"C\+\+(\d\d)", header.read_text(encoding="utf-8"))
                self.assertTrue(standard, "its head names no standard")
                run = subprocess.run(
                    ["x86_64-w64-mingw32-g++-posix", f"-std=c++{standard[1]}", "-Wall", "-Wextra", "-Werror",
                     "-fsyntax-only", f"-I{package}", f"-I{self.include}", "-x", "c++", "-"], cwd=package,
                    input=f'#include "host/{header.name}"\n', text=True, capture_output=True, check=False)
                self.assertEqual(run.returncode, 0, run.stderr)


if __name__ == "__main__":
    unittest.main()
