"""The checker of include arrows has to catch what it is there for: each planted violation, and nothing else."""

import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import check_includes  # noqa: E402

CLEAN = {
    "dsp/hartley.h": "#include <vector>\n",
    "dsp/hartley.cpp": '#include "dsp/hartley.h"\n#include <immintrin.h>\n',
    "gfx/argb.h": "",
    "gfx/win/painter.h": '#include <windows.h>\n#include "gfx/argb.h"\n',
    "common/audio_block.h": '#include "gfx/argb.h"\n',
    "common/win/timer.h": '#include <windows.h>\n#include <QELAudioVisualization4.h>\n#include "common/audio_block.h"\n',
    "type1/frame.h": '#include "dsp/hartley.h"\n#include "common/audio_block.h"\n',
    "type1/win/control.h": '#include "type1/frame.h"\n#include "ole/object.h"\n#include "gfx/win/painter.h"\n',
    "type2/frame.h": "",
    "ole/object.h": "#include <ole2.h>\n",
    "module/main.cpp": '#include "type1/win/control.h"\n',
    "host/create.h": '#include "QELAudioVisualization4.h"\n',
    "demo/main.cpp": '#include "host/create.h"\n',
    "tests/unit/smoke_test.cpp": '#include "type1/frame.h"\n#include "type2/frame.h"\n',
}

# Each is added to the clean tree on its own.
PLANTED = [
    ("dsp/bad.cpp", '#include "gfx/argb.h"\n', "dsp/ may not include gfx/"),
    ("dsp/bad.h", "#include <windows.h>\n", "<windows.h> is not part"),
    ("gfx/bad.h", '#include "common/audio_block.h"\n', "gfx/ may not include common/"),
    ("common/bad.h", '#include "dsp/hartley.h"\n', "common/ may not include dsp/"),
    ("common/bad.h", '#include "common/win/timer.h"\n', "common/ may not include common/win/"),
    ("common/bad.h", "  #  include <unknwn.h>\n", "<unknwn.h> is not part"),
    ("type1/bad.cpp", '#include "type2/frame.h"\n', "type1/ may not include type2/"),
    ("type1/bad.cpp", "#include <QELAudioVisualization4.h>\n", "does not know the type library"),
    ("type2/win/bad.cpp", '#include "type1/win/control.h"\n', "type2/win/ may not include type1/win/"),
    ("type2/win/bad.cpp", '#include "type1/frame.h"\n', "type2/win/ may not include type1/"),
    ("ole/bad.cpp", '#include "common/audio_block.h"\n', "ole/ may not include common/"),
    ("ole/bad.cpp", '#include "QELAudioVisualization4.h"\n', "does not know the type library"),
    ("host/bad.h", '#include "ole/object.h"\n', "host/ may not include ole/"),
    ("demo/bad.cpp", '#include "type1/frame.h"\n', "demo/ may not include type1/"),
    ("module/bad.cpp", '#include "demo/main.cpp"\n', "module/ may not include demo/"),
    ("type1/bad.cpp", '#include "frame.h"\n', "no such file"),
    ("type1/bad.cpp", '#include "tests/unit/smoke_test.cpp"\n', "may not include tests/"),
]


class CheckIncludes(unittest.TestCase):
    def found(self, extra=None):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name, text in {**CLEAN, **(extra or {})}.items():
                path = root / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(("#pragma once\n" if name.endswith(".h") else "") + text)
            return check_includes.check(root)

    def test_accepts_a_clean_tree(self):
        self.assertEqual(self.found(), [])

    def test_catches_each_planted_violation_and_only_that(self):
        for name, text, message in PLANTED:
            with self.subTest(name=name, text=text):
                found = self.found({name: text})
                self.assertEqual(len(found), 1, found)
                self.assertEqual(found[0][:2], (name, 2 if name.endswith(".h") else 1))
                self.assertIn(message, found[0][2])

    def test_catches_a_header_without_pragma_once(self):
        with tempfile.TemporaryDirectory() as folder:
            (pathlib.Path(folder) / "dsp").mkdir()
            (pathlib.Path(folder) / "dsp" / "bare.h").write_text("int x;\n")
            self.assertEqual([row[0] for row in check_includes.check(pathlib.Path(folder))], ["dsp/bare.h"])


if __name__ == "__main__":
    unittest.main()
