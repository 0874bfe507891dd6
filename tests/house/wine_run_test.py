"""tools/wine-run with a Wine of our own making: what a program's end is reported as, and when it is started again."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "tools" / "wine-run"

# Ends with the next of the codes in a file; "s" before a code: the program signs its start first.
WINE = """#!/bin/sh
[ "$1" != wineboot ] || exit 0
read -r next <"$PLAN"
sed -i 1d "$PLAN"
echo "said $next"
case $next in s*) : >"$AV_STARTED_FILE" ;; esac
exit "${next#s}"
"""


class WineRun(unittest.TestCase):
    def run_script(self, *codes, starts="3"):
        """(exit code, standard output, error output, starts that were left over) of a run of `codes`."""
        with tempfile.TemporaryDirectory() as folder:
            home = pathlib.Path(folder)
            for name, text in {"wine": WINE, "wineserver": "#!/bin/sh\nexit 2\n"}.items():
                (home / name).write_text(text)
                (home / name).chmod(0o755)
            plan = home / "plan"
            plan.write_text("".join(f"{code}\n" for code in codes))
            environment = dict(os.environ, PATH=f"{folder}:{os.environ['PATH']}", PLAN=str(plan),
                               AV_WINEPREFIX=str(home / "prefix"))
            environment.pop("AV_WINE_STARTS", None)
            if starts:
                environment["AV_WINE_STARTS"] = starts
            run = subprocess.run([SCRIPT, "x64", "program.exe"], env=environment, capture_output=True, text=True,
                                 timeout=60)
            left = plan.read_text().split()
            self.assertEqual(list((home / "prefix").glob(".started*")), [], "a sign is left behind")
            return run.returncode, run.stdout, run.stderr, left

    def test_hands_on_what_a_program_says_and_how_it_ends(self):
        self.assertEqual(self.run_script("s0", "s1"), (0, "said s0\n", "", ["s1"]))

    def test_a_program_that_began_is_not_started_again(self):
        code, _, errors, left = self.run_script("s1", "s0")
        self.assertEqual((code, left), (1, ["s0"]))
        self.assertEqual(errors, "")

    def test_a_crash_is_named(self):
        code, _, errors, left = self.run_script("s5", "s0")
        self.assertEqual((code, left), (5, ["s0"]))
        self.assertIn("program.exe ended with code 5", errors)

    def test_a_program_that_never_began_is_started_again_and_that_is_said(self):
        code, output, errors, _ = self.run_script("53", "s0")
        self.assertEqual(code, 0)
        self.assertEqual(output, "said 53\nsaid s0\n")
        self.assertIn("ended with 53 before program.exe began", errors)

    def test_it_is_not_started_for_ever(self):
        code, _, _, left = self.run_script("53", "53", "53", "s0")
        self.assertEqual((code, left), (53, ["s0"]))

    def test_a_program_that_signs_nothing_is_started_once(self):
        code, _, _, left = self.run_script("53", "0", starts=None)
        self.assertEqual((code, left), (53, ["0"]))


if __name__ == "__main__":
    sys.exit(unittest.main())
