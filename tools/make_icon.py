#!/usr/bin/env python3
"""Draws the player's icon, bars of a level meter on a dark ground:  tools/make_icon.py FILE.ico"""

import struct
import sys

SIZES = (16, 24, 32, 48, 64)
GROUND = (13, 17, 23)
# Heights of the bars in sixteenths, and the colours from the bottom up.
BARS = (5, 9, 12, 8, 4)
ZONES = ((56, 139, 253), (163, 113, 247), (247, 120, 186))
SAMPLES = 4  # a pixel is the mean of so many by so many points


def colour_at(x, y):
    """Red, green, blue, opacity at a point of the unit square, y downwards."""
    radius = 0.18
    dx, dy = max(radius - x, x - 1 + radius, 0), max(radius - y, y - 1 + radius, 0)
    if dx * dx + dy * dy > radius * radius:
        return (0, 0, 0, 0)
    column = (x - 0.14) / 0.72 * len(BARS)
    height = 0.86 - y  # above the bars' foot
    if 0 <= column < len(BARS) and column % 1 < 0.72 and 0 <= height < BARS[int(column)] / 16:
        return (*ZONES[min(int(height / 0.25), len(ZONES) - 1)], 255)
    return (*GROUND, 255)


def pixel(size, column, row):
    points = [colour_at((column + (i + 0.5) / SAMPLES) / size, (row + (j + 0.5) / SAMPLES) / size)
              for i in range(SAMPLES) for j in range(SAMPLES)]
    opacity = sum(point[3] for point in points)
    rgb = [round(sum(point[i] * point[3] for point in points) / opacity) if opacity else 0 for i in range(3)]
    return bytes((rgb[2], rgb[1], rgb[0], round(opacity / len(points))))


def image(size):
    """A bitmap as icons hold it: 32 bits a pixel, bottom row first, then a mask of a bit a pixel that nobody needs."""
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = b"".join(pixel(size, column, row) for row in reversed(range(size)) for column in range(size))
    return header + pixels + bytes((size + 31) // 32 * 4 * size)


def main(path):
    images = [image(size) for size in SIZES]
    offset = 6 + 16 * len(SIZES)
    entries = b""
    for size, data in zip(SIZES, images):
        entries += struct.pack("<BBBBHHII", size, size, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    with open(path, "wb") as file:
        file.write(struct.pack("<HHH", 0, 1, len(SIZES)) + entries + b"".join(images))


if __name__ == "__main__":
    main(sys.argv[1])
