#!/usr/bin/env python3
"""Writes PNG files again, as small as they get without losing a pixel:  tools/squeeze_png.py FILE ...

For the pictures in this repository: opaque, few colours, sharp edges. Alpha is dropped; files that have any say so and
stay as they are. A file that would not get smaller stays too.
"""

import struct
import sys
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"
CHANNELS = {0: 1, 2: 3, 3: 1, 6: 4}  # of the colour types that are read: grey, RGB, palette, RGBA


class NotOpaque(ValueError):
    pass


def chunks(data):
    if data[:8] != SIGNATURE:
        raise ValueError("not a PNG file")
    at = 8
    while at < len(data):
        (length,) = struct.unpack(">I", data[at:at + 4])
        yield data[at + 4:at + 8], data[at + 8:at + 8 + length]
        at += 12 + length


def unfilter(raw, row_bytes, step):
    """Rows of samples, each preceded by its filter, as plain rows."""
    rows, above = [], bytes(row_bytes)
    for at in range(0, len(raw), row_bytes + 1):
        kind, row = raw[at], bytearray(raw[at + 1:at + 1 + row_bytes])
        for i in range(row_bytes) if kind else ():
            left = row[i - step] if i >= step else 0
            up = above[i]
            if kind == 1:
                guess = left
            elif kind == 2:
                guess = up
            elif kind == 3:
                guess = (left + up) // 2
            else:
                corner = above[i - step] if i >= step else 0
                guess = min((abs(up - corner), 0, left), (abs(left - corner), 1, up),
                            (abs(left + up - 2 * corner), 2, corner))[2]
            row[i] = (row[i] + guess) & 255
        rows.append(bytes(row))
        above = row
    return rows


def decode(data):
    """(width, height, list of (red, green, blue), row by row)."""
    palette, packed, header = [], b"", None
    for kind, body in chunks(data):
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"PLTE":
            palette = [tuple(body[i:i + 3]) for i in range(0, len(body), 3)]
        elif kind == b"tRNS":
            raise NotOpaque("has transparent colours")
        elif kind == b"IDAT":
            packed += body
    width, height, depth, colour, _, _, interlaced = header
    if colour not in CHANNELS or interlaced or (depth != 8 and colour != 3):
        raise ValueError(f"unusual: colour type {colour}, {depth} bits, interlaced {interlaced}")
    step = CHANNELS[colour]
    rows = unfilter(zlib.decompress(packed), (width * step * depth + 7) // 8, step)
    pixels = []
    for row in rows:
        if colour == 2:
            pixels += zip(row[0::3], row[1::3], row[2::3])
        elif colour == 6:
            if any(alpha != 255 for alpha in row[3::4]):
                raise NotOpaque("has transparent pixels")
            pixels += zip(row[0::4], row[1::4], row[2::4])
        elif colour == 0:
            pixels += zip(row, row, row)
        else:
            mask = (1 << depth) - 1
            pixels += [palette[row[x * depth // 8] >> (8 - depth - x * depth % 8) & mask] for x in range(width)]
    return width, height, pixels


def encode(width, height, depth, colour, palette, rows):
    body = b"".join(rows)
    tries = []
    for strategy in (zlib.Z_DEFAULT_STRATEGY, zlib.Z_FILTERED, zlib.Z_RLE):
        for memory in (8, 9):
            packer = zlib.compressobj(9, zlib.DEFLATED, 15, memory, strategy)
            tries.append(packer.compress(body) + packer.flush())
    parts = [(b"IHDR", struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, 0))]
    if palette:
        parts.append((b"PLTE", b"".join(bytes(entry) for entry in palette)))
    parts += [(b"IDAT", min(tries, key=len)), (b"IEND", b"")]
    return SIGNATURE + b"".join(struct.pack(">I", len(body)) + kind + body +
                                struct.pack(">I", zlib.crc32(kind + body)) for kind, body in parts)


def filtered(rows, step, kind):
    """The same rows behind one filter: 0 as they are, 1 less the sample to the left, 2 less the one above."""
    above = bytes(len(rows[0]))
    for row in rows:
        if kind == 0:
            yield b"\0" + row
        elif kind == 1:
            yield b"\1" + row[:step] + bytes((a - b) & 255 for a, b in zip(row[step:], row))
        else:
            yield b"\2" + bytes((a - b) & 255 for a, b in zip(row, above))
        above = row


def pack(values, depth):
    """Palette indices of one row in whole bytes."""
    if depth == 8:
        return bytes(values)
    each = 8 // depth
    values = values + [0] * (-len(values) % each)
    packed = bytearray()
    for at in range(0, len(values), each):
        byte = 0
        for value in values[at:at + each]:
            byte = byte << depth | value
        packed.append(byte)
    return bytes(packed)


def encode_smallest(width, height, pixels):
    """The smallest of the ways to write these pixels."""
    counts = {}
    for pixel in pixels:
        counts[pixel] = counts.get(pixel, 0) + 1
    lines = [pixels[at:at + width] for at in range(0, width * height, width)]
    candidates = []
    if len(counts) <= 256:
        palette = sorted(counts, key=lambda entry: (-counts[entry], entry))
        index = {entry: i for i, entry in enumerate(palette)}
        depth = next(bits for bits in (1, 2, 4, 8) if len(palette) <= 1 << bits)
        for bits in {depth, 8}:
            rows = [pack([index[pixel] for pixel in line], bits) for line in lines]
            candidates += [encode(width, height, bits, 3, palette, filtered(rows, 1, kind)) for kind in (0, 2)]
    else:
        rows = [bytes(value for pixel in line for value in pixel) for line in lines]
        candidates += [encode(width, height, 8, 2, None, filtered(rows, 3, kind)) for kind in (0, 1, 2)]
    return min(candidates, key=len)


def squeeze(data):
    """`data`, a PNG file's content, or a shorter one of the same pixels."""
    smaller = encode_smallest(*decode(data))
    return smaller if len(smaller) < len(data) else data


def main(paths):
    failed = 0
    for path in paths:
        try:
            with open(path, "rb") as file:
                before = file.read()
            after = squeeze(before)
        except (OSError, ValueError, zlib.error, struct.error) as problem:
            print(f"{path}: {problem}", file=sys.stderr)
            failed = 1
            continue
        if after != before:
            with open(path, "wb") as file:
                file.write(after)
        print(f"{path}: {len(before)} -> {len(after)} bytes")
    return failed


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1:]))
