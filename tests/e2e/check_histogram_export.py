#!/usr/bin/env python3
"""Confirms every line of an exported histogram against the volume, read here independently of the application.

usage: check_histogram_export.py VOLUME.nii[.gz] EXPORT.csv FIRST LAST [TAG=NAME:MIN:MAX ...]

FIRST and LAST are the selected slices, counted from 0; the histogram must be that of exactly these slices on a grid of one bin
per stored level. A TAG argument gives the column number of a TAG (from 1), its name ("" when it has none) and its thresholds
("-" for unset). Integer volumes without scaling only. Prints one line and ends with 0 when everything agrees.
"""
import gzip
import struct
import sys

TYPES = {2: "B", 4: "h", 8: "i", 256: "b", 512: "H", 768: "I"}


def fail(text):
    print(f"FAIL: {text}")
    sys.exit(1)


def read_levels(path, first, last):
    """Stored levels of the slices first..last, and the lowest and highest level of the whole volume."""
    raw = open(path, "rb").read()
    if raw[:2] == b"\x1f\x8b":
        raw = gzip.decompress(raw)
    order = "<" if struct.unpack_from("<i", raw, 0)[0] == 348 else ">"
    dims = struct.unpack_from(order + "8h", raw, 40)
    code = struct.unpack_from(order + "h", raw, 70)[0]
    offset = int(struct.unpack_from(order + "f", raw, 108)[0])
    slope, inter = struct.unpack_from(order + "2f", raw, 112)
    if code not in TYPES or slope not in (0.0, 1.0) or inter != 0.0:
        fail("this check reads unscaled integer volumes only")
    count = dims[1] * dims[2] * dims[3]
    kind = TYPES[code]
    levels = struct.unpack_from(f"{order}{count}{kind}", raw, offset)
    plane = dims[1] * dims[2]
    return levels[first * plane:(last + 1) * plane], min(levels), max(levels), dims[3]


def main():
    if len(sys.argv) < 5:
        print(__doc__)
        sys.exit(2)
    volume, export, first, last = sys.argv[1], sys.argv[2], int(sys.argv[3]), int(sys.argv[4])
    levels, lowest, highest, slices = read_levels(volume, first, last)
    counts = {}
    for level in levels:
        counts[level] = counts.get(level, 0) + 1

    lines = open(export, encoding="utf-8", newline="").read().replace("\r\n", "\n").split("\n")
    if not lines[0].startswith("sep=") or len(lines[0]) != 5:
        fail(f"line 1 names no separator: {lines[0]!r}")
    separator = lines[0][4]
    selected = last - first + 1
    frames = f"({selected} frames)" if selected == slices else f"({selected} frames out of {slices})"
    expected = f"=========== Histogram information {frames} ========="
    if lines[1] != expected:
        fail(f"line 2 is {lines[1]!r}, not {expected!r}")
    if lines[2] != "":
        fail("line 3 is not empty")
    header = lines[3].split(separator)
    if header[:2] != ["GLI Value", "Nb of pixels"]:
        fail(f"the header begins {header[:2]}")
    filtered = len(header) > 2 and header[2] == "Filtered"
    first_tag = 3 if filtered else 2

    tags = {}
    for argument in sys.argv[5:]:
        number, rest = argument.split("=", 1)
        name, low, high = rest.rsplit(":", 2)
        tags[int(number)] = (name, None if low == "-" else float(low), None if high == "-" else float(high))
    for number, (name, _, _) in tags.items():
        column = header[first_tag + number - 1]
        if column != (name if name else f"TAG {number:3d}"):
            fail(f"the column of TAG {number} is {column!r}")

    total = 0
    row = 4
    while lines[row] != "":
        fields = lines[row].split(separator)
        level = lowest + row - 4
        centre = level + 0.5
        if int(fields[0]) != int(centre):
            fail(f"line {row + 1}: grey level {fields[0]}, not {int(centre)}")
        if int(fields[1]) != counts.get(level, 0):
            fail(f"line {row + 1}: {fields[1]} pixels of level {level}, not {counts.get(level, 0)}")
        total += int(fields[1])
        for number, (_, low, high) in tags.items():
            claims = (low is not None or high is not None) and (low is None or low <= centre) and (high is None or centre <= high)
            if (fields[first_tag + number - 1] == "1") != claims:
                fail(f"line {row + 1}: TAG {number} is {fields[first_tag + number - 1]!r}")
        row += 1
    if row - 4 < highest - lowest + 1:
        fail(f"{row - 4} bins for {highest - lowest + 1} levels")
    if total != len(levels):
        fail(f"{total} pixels in the file, {len(levels)} in the slices")
    peaks = 0
    if len(lines) > row + 3 and lines[row + 3].startswith("We found "):
        peaks = int(lines[row + 3].split()[2])
        for k in range(peaks):
            if lines[row + 5 + k].split(separator)[0] != str(k + 1):
                fail(f"line {row + 6 + k} is not peak {k + 1}")
    print(f"OK: {row - 4} bins, {total} pixels, {len(tags)} TAG columns, {peaks} peaks")


if __name__ == "__main__":
    main()
