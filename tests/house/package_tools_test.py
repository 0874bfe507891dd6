"""The package's tools: registrar scripts are read to the letter, archives depend on nothing but the files."""

import os
import pathlib
import sys
import tempfile
import unittest
import zipfile

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "package"))

import archive  # noqa: E402
import registration  # noqa: E402
import rgs  # noqa: E402
import tables  # noqa: E402


class RegistrarScripts(unittest.TestCase):
    def read(self, text, **replacements):
        return rgs.read(text, replacements)

    def test_a_key_comes_before_its_values_and_its_children(self):
        script = self.read("HKCR { 'A b' = s 'text' { val V = s 'x' C } }")
        self.assertEqual([tuple(e) for e in script.entries], [
            ("A b", None, None), ("A b", "", "text"), ("A b", "V", "x"), ("A b\\C", None, None)])
        self.assertEqual(script.roots, ["A b"])

    def test_keys_that_stay_are_neither_written_nor_removed(self):
        script = self.read("HKCR { NoRemove CLSID { ForceRemove K { S } } P }")
        self.assertEqual([e.key for e in script.entries], ["CLSID\\K", "CLSID\\K\\S", "P"])
        self.assertEqual(script.roots, ["CLSID\\K", "P"])

    def test_names_are_replaced_and_unknown_ones_refused(self):
        script = self.read("HKCR { '%ID%' = s '%ID%, 1' }", ID="{1}")
        self.assertEqual(script.entries[1], ("{1}", "", "{1}, 1"))
        with self.assertRaisesRegex(ValueError, "%NAME%"):
            self.read("HKCR { '%NAME%' }", ID="{1}")

    def test_doubled_apostrophes_are_one(self):
        self.assertEqual(self.read("HKCR { K = s 'it''s' }").entries[1].text, "it's")

    def test_what_is_no_script_is_refused(self):
        for text in "HKCR { K", "HKLM { K }", "HKCR { K = d '1' }", "HKCR { K } }", "HKCR { 'K }", "":
            with self.assertRaises(ValueError, msg=text):
                self.read(text)

    def test_classes_with_names_of_their_own_have_them(self):
        found = registration.registration(ROOT / "companion", ROOT / "idl/AudioBlocks.idl", 64)
        names = {e.key: e.text for e in found.entries if e.name == "" and "\\" not in e.key}
        self.assertEqual(sorted(names), [f"AudioBlocks.{name}{version}" for name in
                                         ("AudioBlock", "Controls", "Snapshot", "WaveFile") for version in ("", ".1")])
        self.assertEqual(names["AudioBlocks.WaveFile"], "WAV file")

    def test_the_libraries_scripts_know_every_class_and_interface(self):
        found = registration.registration(ROOT / "module", ROOT / "idl/QELAudioVisualization4.idl", 32)
        keys = {entry.key for entry in found.entries}
        self.assertEqual(sum(key.startswith("CLSID\\") and key.count("\\") == 1 for key in keys), 3)
        self.assertEqual(sum(key.startswith("Interface\\") and key.count("\\") == 1 for key in keys), 5)
        self.assertEqual(len(found.entries), len({(e.key.lower(), e.name) for e in found.entries}))
        # The class that is registered last owns the ProgIDs that they share.
        owner = [e.text for e in found.entries if e.key.endswith(".AudioVisualiza.1\\CLSID") and e.name == ""]
        self.assertEqual(owner, ["{2F06E1AA-C0F0-488C-A6DD-799053CA7140}"])


class Archives(unittest.TestCase):
    def pack(self, files, mode=0o644, seconds=1767225601):
        with tempfile.TemporaryDirectory() as folder:
            top = pathlib.Path(folder) / "top"
            for name, text in files:
                (top / name).parent.mkdir(parents=True, exist_ok=True)
                (top / name).write_text(text)
                (top / name).chmod(mode)
                os.utime(top / name, (seconds % 1000, seconds % 1000))
            archive.write_zip(top, pathlib.Path(folder) / "a.zip", seconds)
            with zipfile.ZipFile(pathlib.Path(folder) / "a.zip") as made:
                listed = [(entry.filename, entry.date_time) for entry in made.infolist()]
            return (pathlib.Path(folder) / "a.zip").read_bytes(), listed, archive.checksums(top)

    def test_depend_on_names_contents_and_the_given_time_only(self):
        files = [("b/2", "two"), ("a", "one"), ("b/1", "three")]
        first, second = self.pack(files), self.pack(files[::-1], mode=0o600)
        self.assertEqual(first, second)
        self.assertEqual([name for name, _ in first[1]], ["top/a", "top/b/1", "top/b/2"])
        self.assertEqual({time for _, time in first[1]}, {(2026, 1, 1, 0, 0, 0)})
        self.assertNotEqual(first[0], self.pack(files, seconds=1767312001)[0])
        self.assertNotEqual(first[0], self.pack([*files[:2], ("b/1", "four")])[0])

    def test_checksums_are_those_that_sha256sum_computes(self):
        # Of the empty text: FIPS 180-4's well-known value.
        self.assertEqual(self.pack([("a", "")])[2],
                         "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855  a\n")


class InstallerTables(unittest.TestCase):
    def test_names_get_short_forms_of_their_own_within_their_folder(self):
        names = ["CHANGELOG.md", "CHANGELOGS.md", "host", "decisions", "a.b.markdown", "README.md"]
        rows = [[name, "here"] for name in names] + [["CHANGELOG.md", "there"]]
        tables.name_in_short_too(rows, 0, lambda row: row[1])
        self.assertEqual([row[0] for row in rows], [
            "CHANGE~1.MD|CHANGELOG.md", "CHANGE~2.MD|CHANGELOGS.md", "host", "DECISI~1|decisions",
            "AB~1.MAR|a.b.markdown", "README.md", "CHANGE~1.MD|CHANGELOG.md"])

    def test_a_table_is_written_as_it_was_read(self):
        text = "A\tB\r\ns72\tL255\r\nT\tA\r\nx\t\r\ny\tz\r\n"
        self.assertEqual(tables.Table(text).text(), text)


if __name__ == "__main__":
    sys.exit(unittest.main())
