#!/usr/bin/env python3
"""The package on a 32-bit Windows: the scripts register the 32-bit libraries, and only those, and the controls work.

Runs in a 32-bit Wine (tools/with-i386). Ends with 77, and says why, where there can be none.
"""

import os
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True

from installed import SOFTWARE, USER, Installed, as_32_bit, below, for_64_bit, is_in, placed  # noqa: E402
from wine_prefix import TOOLS, WinePrefix, changes  # noqa: E402

SKIPPED = 77


class ThirtyTwoBitSystem(Installed):
    arch = "x86"

    def check_written(self, new, root, expected):
        written = below(new, root)
        self.assert_same_entries(placed(written, self.libraries_in_wine()), expected)
        self.assertEqual(is_in(written, "Wow6432Node"), {})

    def test_the_machine_scripts_register_what_regsvr32_registers_and_take_it_back(self):
        expected = self.registered_by_regsvr32()
        folder = self.unpack_in_wine()
        before = self.wine.state()
        code, output = self.run_script(folder, "register-machine")
        self.assertEqual(code, 0, output)
        self.assertNotIn("64-bit", output)
        self.check_written(changes(before[0], self.wine.state()[0])[0], SOFTWARE, expected)
        self.assert_usable(self.libraries_in_wine())
        code, output = self.run_script(folder, "unregister-machine")
        self.assertEqual(code, 0, output)
        self.assert_not_usable()

    def test_the_users_scripts_do_so_too(self):
        expected = self.registered_by_regsvr32()
        folder = self.unpack_in_wine()
        before = self.wine.state()
        code, output = self.run_script(folder, "register-user")
        self.assertEqual(code, 0, output)
        new = changes(before[0], self.wine.state()[0])[0]
        self.assertEqual(below(new, SOFTWARE), {})
        self.check_written(new, USER, expected)
        code, output = self.run_script(folder, "unregister-user")
        self.assertEqual(code, 0, output)
        self.assert_as_before(before)

    def test_regsvr32_writes_what_the_64_bit_one_writes(self):
        # So that comparing the installer's entries for 32-bit programs with those of the 64-bit libraries is enough.
        other = WinePrefix("install-64-beside-32", "x64")
        self.addCleanup(other.remove)
        expected = as_32_bit(for_64_bit(self.registered_by_regsvr32(other)))
        self.assertGreater(len(expected), 200)
        self.assert_same_entries(self.registered_by_regsvr32(), expected)


if __name__ == "__main__":
    if "AV_I386_ACTIVE" not in os.environ and not os.path.exists("/usr/lib/wine/wine"):
        check = subprocess.run([TOOLS / "with-i386", "--check"], capture_output=True, text=True, check=False)
        if check.returncode != 0:
            print(f"32-bit package test skipped: {check.stdout.strip()}")
            sys.exit(SKIPPED)
        os.execv(TOOLS / "with-i386", [str(TOOLS / "with-i386"), sys.executable, *sys.argv])
    unittest.main()
