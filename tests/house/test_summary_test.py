"""The total of a test run: every test counts once, and nothing that went wrong may vanish from it."""

import contextlib
import importlib.machinery
import importlib.util
import io
import os
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
SCRIPT = str(pathlib.Path(__file__).resolve().parents[2] / "tools" / "test-summary")
LOADER = importlib.machinery.SourceFileLoader("test_summary", SCRIPT)
test_summary = importlib.util.module_from_spec(importlib.util.spec_from_loader("test_summary", LOADER))
LOADER.exec_module(test_summary)

SHARE = """<testsuites><testsuite>
<testcase classname="A" name="One" status="run" result="completed"/>
<testcase classname="A" name="Two" status="run" result="completed">{two}</testcase>
<testcase classname="A" name="OfAnotherShare" status="notrun" result="suppressed"/>
</testsuite></testsuites>"""


class Summary(unittest.TestCase):
    def run_summary(self, entries, shares):
        """(exit code, output) for ctest entries {name: status} and share results {name: xml text}."""
        with tempfile.TemporaryDirectory() as folder, contextlib.redirect_stdout(io.StringIO()) as output:
            preset = pathlib.Path(folder) / "build" / "native"
            (preset / "results").mkdir(parents=True)
            cases = "".join(f'<testcase name="{n}" time="1" status="{s}"/>' for n, s in entries.items())
            (preset / "ctest.xml").write_text(f"<testsuite>{cases}</testsuite>")
            for name, text in shares.items():
                file = preset / "results" / (name + ".xml")
                file.parent.mkdir(exist_ok=True)
                file.write_text(text)
            before = os.getcwd()
            os.chdir(folder)
            try:
                code = test_summary.main(["native"])
            finally:
                os.chdir(before)
        return code, output.getvalue()

    def test_counts_each_test_of_a_share_and_each_other_entry_once(self):
        code, output = self.run_summary({"unit.shard0": "run", "com.Hosting.Shows": "run"},
                                        {"unit.shard0": SHARE.format(two="")})
        self.assertEqual(code, 0)
        self.assertIn("100% tests passed, 0 tests failed out of 3\n", output)

    def test_a_suite_that_ended_well_without_results_is_a_failure(self):
        code, output = self.run_summary({"com/A": "run"}, {})
        self.assertEqual(code, 1)
        self.assertIn("native: com/A (did not finish)", output)

    def test_counts_the_tests_of_a_suite(self):
        code, output = self.run_summary({"A": "run", "com/A": "run"}, {"com/A": SHARE.format(two="")})
        self.assertEqual(code, 0)
        self.assertIn("0 tests failed out of 3\n", output)

    def test_counts_the_tests_of_another_display(self):
        code, output = self.run_summary({"picture.dpi192": "run"}, {"picture.dpi192": SHARE.format(two="")})
        self.assertEqual(code, 0)
        self.assertIn("0 tests failed out of 2\n", output)

    def test_names_a_failed_test_of_a_share(self):
        code, output = self.run_summary({"unit.shard0": "fail"},
                                        {"unit.shard0": SHARE.format(two="<failure/>")})
        self.assertEqual(code, 1)
        self.assertIn("50% tests passed, 1 tests failed out of 2\n", output)
        self.assertIn("native: A.Two", output)

    def test_a_share_without_results_is_a_failure(self):
        code, output = self.run_summary({"unit.shard0": "fail"}, {})
        self.assertEqual(code, 1)
        self.assertIn("0% tests passed, 1 tests failed out of 1\n", output)

    def test_a_share_that_ends_badly_after_its_last_test_is_a_failure(self):
        code, output = self.run_summary({"unit.shard0": "fail"}, {"unit.shard0": SHARE.format(two="")})
        self.assertEqual(code, 1)
        self.assertIn("1 tests failed out of 3\n", output)

    def test_a_failed_entry_is_a_failure(self):
        code, output = self.run_summary({"com.Hosting.Shows": "fail", "com.Hosting.Hides": "run"}, {})
        self.assertEqual(code, 1)
        self.assertIn("native: com.Hosting.Shows", output)

    def test_no_tests_at_all_is_a_failure(self):
        self.assertEqual(self.run_summary({}, {})[0], 1)

    def test_a_preset_without_results_is_a_failure(self):
        with contextlib.redirect_stdout(io.StringIO()):
            self.assertEqual(test_summary.main(["no-such-preset"]), 1)


if __name__ == "__main__":
    unittest.main()
