#!/usr/bin/env python3
"""What a block runs through calls no function of the maths library:  block_path_test.py OBJECT_FOLDER [NM]

Some platforms take a hundred times as long for a cosine or a logarithm as for an addition. Such functions belong into the
files that make tables when a setting, a format or a length changes. (A square root is an instruction everywhere; its
function is called for negative numbers only.)
"""

import pathlib
import re
import subprocess
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
OBJECTS = pathlib.Path(sys.argv[1])
NM = sys.argv[2] if len(sys.argv) > 2 else "nm"

BLOCK_PATH = """
    common/line_list common/mono_mix common/pcm_decode common/sample_kernel common/samples_avx2 common/samples_sse2
    dsp/fft_avx2 dsp/fft_avx512 dsp/fft_kernel dsp/fft_sse2 dsp/hartley_avx2 dsp/hartley_avx512 dsp/hartley_kernel
    dsp/hartley_plan dsp/hartley_sse2 dsp/level_kernel dsp/levels dsp/levels_avx2 dsp/levels_avx512 dsp/levels_sse2
    dsp/radix4_steps dsp/spectrum_analyzer dsp/spectrum_plan
    simd/decibels simd/usable
    type1/analysis type1/channel_slots type1/smoothing
    type2/analysis type2/band_fold
    type3/analysis type3/bands type3/column_heights type3/column_kernel type3/columns_avx2 type3/columns_avx512
    type3/columns_sse2 type3/fall_off type3/mixdown
""".split()

# Windows, factors, lengths and scales; the correlation of the X-Y views belongs to their pictures.
ON_CHANGES = """
    common/sample_scale
    dsp/analysis_windows dsp/bessel_i0 dsp/bit_reversal dsp/centred_windows dsp/correlation dsp/end_process dsp/fft_plan
    dsp/hartley dsp/radix4_hartley
    type2/analysis_length type2/band_ratio
    type3/band_plan
""".split()

# Transforms of fewer than 128 points, which no kernel takes: four sines a stage.
SHORT_LENGTHS = "dsp/fft dsp/fft_stage dsp/real_spectrum".split()

MATHS = re.compile(
    r"_*(?:sincos|a?(?:sin|cos|tan)h?|atan2|log(?:10|2|1p|b)?|exp(?:2|m1|10)?|pow|powi|cbrt|hypot|fmod|remainder|ldexp|"
    r"frexp|scalbl?n|[lt]gamma|erfc?|nearbyint|rint|l?lrint|l?lround|round|floor|ceil|trunc)[fl]?$")


def undefined(source):
    listing = subprocess.run([NM, "-u", *OBJECTS.glob(f"{source}.cpp.o*")], capture_output=True, text=True, check=True)
    return [line.split()[-1] for line in listing.stdout.splitlines() if line.strip()]


class BlockPath(unittest.TestCase):
    def test_calls_no_maths(self):
        for source in BLOCK_PATH:
            with self.subTest(source):
                self.assertEqual([name for name in undefined(source) if MATHS.match(name)], [])

    def test_functions_are_recognised_where_they_are(self):
        self.assertIn("cos", " ".join(name for name in undefined("dsp/centred_windows") if MATHS.match(name)))

    def test_every_file_of_the_transforms_is_known(self):
        known = set(BLOCK_PATH + ON_CHANGES + SHORT_LENGTHS)
        found = {f"{folder}/{path.stem}" for folder in ("dsp", "simd") for path in (ROOT / folder).glob("*.cpp")}
        self.assertEqual(found - known, set(), "say whether blocks run through it")
        self.assertEqual({name for name in known if not (ROOT / f"{name}.cpp").is_file()}, set())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
