"""The checker of docs/behaviour.md has to catch rows without a test and tests that do not exist, there and in
docs/reliability.md, and nothing else."""

import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import check_behaviour  # noqa: E402

HEAD = "| Call | Test |\n|---|---|\n"
SOURCE = "TEST(Plain, IsKept) {}\nTEST_F(Fixed, IsKept) {}\nTEST_P(Many, IsKept) {}\nTEST(Plain, DISABLED_Later) {}\n"


class CheckBehaviour(unittest.TestCase):
    def messages(self, document, checker=check_behaviour.check):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            (root / "docs").mkdir()
            (root / "docs" / "behaviour.md").write_text(document)
            (root / "tests" / "com").mkdir(parents=True)
            (root / "tests" / "com" / "some_test.cpp").write_text(SOURCE)
            (root / "docs" / "reliability.md").write_text(document)
            return [(line, message) for _, line, message in checker(root)]

    def test_accepts_rows_that_name_tests_of_every_kind(self):
        rows = "| put | `Plain.IsKept` |\n| get | `Fixed.IsKept`, `Many.IsKept` |\n"
        self.assertEqual(self.messages("Text with `Code.Like` this.\n\n" + HEAD + rows), [])

    def test_catches_each_bad_row_and_only_that(self):
        for row, message in [
            ("| put | |", "the row names no test"),
            ("| put | Plain.IsKept |", "the row names no test"),
            ("| `Plain.IsKept` | soon |", "the row names no test"),
            ("| put | `Plain.IsLost` |", "there is no test Plain.IsLost"),
            ("| put | `Many.IsKept`, `Plain.DISABLED_Later` |", "there is no test Plain.DISABLED_Later"),
            ("| put | `a | b` | `Plain.IsKept` |", "4 cells under 2 headings"),
        ]:
            with self.subTest(row=row):
                self.assertEqual(self.messages(HEAD + "| get | `Plain.IsKept` |\n" + row + "\n"), [(4, message)])

    def test_catches_a_table_without_the_column(self):
        found = self.messages("| Call | Answer |\n|---|---|\n| put | `Plain.IsKept` |\n")
        self.assertEqual(found, [(1, 'the last column of a table is "Test"')])

    def test_catches_an_empty_document(self):
        self.assertEqual(self.messages("Nothing.\n"), [(1, "no rows found")])

    def test_catches_names_in_a_text_that_are_no_tests(self):
        for text, messages in [
            ("As `Plain.IsKept` and `Many.Is...` show, `config.cmake` and `std::vector` apart.", []),
            ("As `Plain.IsLost` shows.", [(1, "there is no test Plain.IsLost")]),
            ("As `Plain.Is` shows.", [(1, "there is no test Plain.Is")]),
            ("As `Fixed.Was...` shows.", [(1, "there is no test Fixed.Was...")]),
        ]:
            with self.subTest(text=text):
                self.assertEqual(self.messages(text + "\n", check_behaviour.check_text), messages)


if __name__ == "__main__":
    unittest.main()
