#!/usr/bin/env python3
"""Draws the three gradient images of the bar spectra: one pixel wide, 24 bits a pixel, from named colour stops.

The colours between two stops are mixed in Oklab (Björn Ottosson, https://bottosson.github.io/posts/oklab/), where equal
steps look equal: mixed as plain RGB values, the way from yellow to red turns muddy and the one from white to blue grey.

usage: make_gradients.py FOLDER        writes bars_type3.bmp, bars_type4.bmp, bars_type5.bmp
"""
import os
import struct
import sys

COLOURS = {
    "near white": (255, 252, 242),
    "white": (255, 255, 255),
    "straw": (255, 241, 158),
    "yellow": (255, 222, 40),
    "orange": (255, 143, 14),
    "red": (226, 24, 20),
    "ice": (214, 240, 255),
    "light blue": (120, 205, 255),
    "blue": (38, 104, 236),
    "greyish violet": (112, 100, 150),
    "lemon": (250, 238, 64),
    "lime": (158, 214, 42),
    "green": (8, 146, 54),
}

# (file name, rows, stops as (place from 0 = bottom to 1 = top, colour))
IMAGES = [
    ("bars_type3.bmp", 185,
     [(0, "near white"), (0.18, "straw"), (0.42, "yellow"), (0.72, "orange"), (1, "red")]),
    ("bars_type4.bmp", 185,
     [(0, "white"), (0.18, "ice"), (0.42, "light blue"), (0.74, "blue"), (1, "greyish violet")]),
    ("bars_type5.bmp", 186,
     [(0, "white"), (0.40, "lemon"), (0.66, "lime"), (1, "green")]),
]

TO_LMS = ((0.4122214708, 0.5363325363, 0.0514459929),
          (0.2119034982, 0.6806995451, 0.1073969566),
          (0.0883024619, 0.2817188376, 0.6299787005))
TO_LAB = ((0.2104542553, 0.7936177850, -0.0040720468),
          (1.9779984951, -2.4285922050, 0.4505937099),
          (0.0259040371, 0.7827717662, -0.8086757660))
FROM_LAB = ((1, 0.3963377774, 0.2158037573),
            (1, -0.1055613458, -0.0638541728),
            (1, -0.0894841775, -1.2914855480))
FROM_LMS = ((4.0767416621, -3.3077115913, 0.2309699292),
            (-1.2684380046, 2.6097574011, -0.3413193965),
            (-0.0041960863, -0.7034186147, 1.7076147010))


def times(matrix, vector):
    return [sum(m * v for m, v in zip(row, vector)) for row in matrix]


def to_oklab(rgb):
    linear = [v / 12.92 if v <= 0.04045 else ((v + 0.055) / 1.055) ** 2.4 for v in (c / 255 for c in rgb)]
    return times(TO_LAB, [v ** (1 / 3) for v in times(TO_LMS, linear)])


def from_oklab(lab):
    linear = times(FROM_LMS, [v ** 3 for v in times(FROM_LAB, lab)])
    encoded = [12.92 * v if v <= 0.0031308 else 1.055 * v ** (1 / 2.4) - 0.055 for v in linear]
    return tuple(min(255, max(0, round(255 * v))) for v in encoded)


def colour_at(place, stops):
    for (low, low_name), (high, high_name) in zip(stops, stops[1:]):
        if place <= high:
            part = (place - low) / (high - low)
            pair = zip(to_oklab(COLOURS[low_name]), to_oklab(COLOURS[high_name]))
            return from_oklab([a + (b - a) * part for a, b in pair])
    return COLOURS[stops[-1][1]]


def bitmap(rows, stops):
    """A bottom-up BMP file; each row is padded to four bytes."""
    pixels = b""
    for row in range(rows):
        red, green, blue = colour_at(row / (rows - 1), stops)
        pixels += bytes((blue, green, red, 0))
    info = struct.pack("<IiiHHIIiiII", 40, 1, rows, 1, 24, 0, len(pixels), 2835, 2835, 0, 0)
    return struct.pack("<2sIHHI", b"BM", 14 + len(info) + len(pixels), 0, 0, 14 + len(info)) + info + pixels


def main():
    for name, rows, stops in IMAGES:
        with open(os.path.join(sys.argv[1], name), "wb") as file:
            file.write(bitmap(rows, stops))


if __name__ == "__main__":
    main()
