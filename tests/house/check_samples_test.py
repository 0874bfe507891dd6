#!/usr/bin/env python3
"""tools/check_samples.py on copies of the samples with one fault each."""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


class CheckSamples(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = pathlib.Path(folder.name)
        for part in ("samples", "idl"):
            shutil.copytree(ROOT / part, self.tree / part)
        (self.tree / "host").mkdir()
        shutil.copy(ROOT / "host/audio_buffers.h", self.tree / "host")

    def plant(self, name, sound, fault):
        path = self.tree / "samples" / name
        text = path.read_text(encoding="utf-8")
        self.assertIn(sound, text)
        path.write_text(text.replace(sound, fault, 1), encoding="utf-8")

    def problems(self):
        run = subprocess.run([sys.executable, str(ROOT / "tools/check_samples.py"), str(self.tree)],
                             capture_output=True, text=True, check=False)
        self.assertEqual(bool(run.stdout), run.returncode == 1, run.stderr)
        return run.stdout

    def test_finds_nothing_in_the_samples_themselves(self):
        self.assertEqual("", self.problems())

    def test_finds_a_method_in_another_slot(self):
        self.plant("csharp/AudioVisualization.cs", "    [PreserveSig] int Slot9();\n", "")
        self.assertIn("csharp/AudioVisualization.cs: GetBuffer is in slot 9, not 10", self.problems())

    def test_finds_methods_that_changed_places(self):
        self.plant("delphi/AudioVisualization.pas", "function GetBufferSize", "function Swapped")
        self.plant("delphi/AudioVisualization.pas", "function GetDataSize", "function GetBufferSize")
        self.plant("delphi/AudioVisualization.pas", "function Swapped", "function GetDataSize")
        found = self.problems()
        self.assertIn("GetBufferSize is in slot 12, not 11", found)
        self.assertIn("GetDataSize is in slot 11, not 12", found)

    def test_finds_a_missing_row_of_slots_in_python(self):
        self.plant("python/meter.py", "range(13, 33)", "range(13, 32)")
        self.assertIn("python/meter.py: GetFormat is in slot 32, not 33", self.problems())

    def test_finds_a_header_of_another_size(self):
        self.plant("python/meter.py", "_pack_ = 1", "_pack_ = 4")
        self.assertIn("the wave format header is not 18 bytes", self.problems())

    def test_finds_an_identifier_that_is_none(self):
        self.plant("vb6/Player.frm", "A864F7F5", "A864F7F6")
        self.assertIn("vb6/Player.frm: A864F7F6-89DD-4A12-9E3F-61C30ECC8180 is no identifier", self.problems())


if __name__ == "__main__":
    unittest.main()
