#!/usr/bin/env python3
"""Draws workbench.ico: a head in section with two TAGs, in four sizes. Usage: draw_icon.py OUT.ico"""
import struct
import sys

SIZES = (16, 32, 48, 64)
SAMPLES = 4  # per pixel and direction, for smooth edges

# Ellipses (centre x, y, radii) in a unit square, painted one over the other, with their colours.
SHAPES = (
    (0.50, 0.50, 0.47, 0.49, (38, 40, 46)),
    (0.50, 0.50, 0.40, 0.44, (214, 206, 190)),
    (0.50, 0.50, 0.35, 0.39, (96, 100, 110)),
    (0.36, 0.46, 0.14, 0.26, (224, 86, 86)),
    (0.64, 0.46, 0.14, 0.26, (72, 150, 236)),
    (0.50, 0.76, 0.16, 0.09, (70, 190, 130)),
)


def sample(x, y):
    found = None
    for cx, cy, rx, ry, color in SHAPES:
        if ((x - cx) / rx) ** 2 + ((y - cy) / ry) ** 2 <= 1.0:
            found = color
    return found


def pixel(size, column, row):
    hits = [sample((column + (i + 0.5) / SAMPLES) / size, (row + (j + 0.5) / SAMPLES) / size)
            for i in range(SAMPLES) for j in range(SAMPLES)]
    seen = [hit for hit in hits if hit]
    if not seen:
        return b"\0\0\0\0"
    red, green, blue = (sum(hit[k] for hit in seen) // len(seen) for k in range(3))
    return bytes((blue, green, red, 255 * len(seen) // len(hits)))


def bitmap(size):
    rows = b"".join(pixel(size, column, row) for row in reversed(range(size)) for column in range(size))
    mask = b"\0" * (((size + 31) // 32 * 4) * size)
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, len(rows) + len(mask), 0, 0, 0, 0)
    return header + rows + mask


def main():
    images = [bitmap(size) for size in SIZES]
    offset = 6 + 16 * len(SIZES)
    entries = b""
    for size, image in zip(SIZES, images):
        entries += struct.pack("<BBBBHHII", size, size, 0, 0, 1, 32, len(image), offset)
        offset += len(image)
    with open(sys.argv[1], "wb") as out:
        out.write(struct.pack("<HHH", 0, 1, len(SIZES)) + entries + b"".join(images))


main()
