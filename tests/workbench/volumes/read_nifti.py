#!/usr/bin/env python3
"""Says what a NIfTI-1 file holds, read by the simplest means, for comparison with the library: read_nifti.py FILE"""
import gzip
import math
import struct
import sys

FORMATS = {2: ("uint8", "B"), 4: ("int16", "h"), 8: ("int32", "i"), 256: ("int8", "b"), 512: ("uint16", "H")}


def main(name):
    with open(name, "rb") as file:
        content = file.read()
    if content[:2] == b"\x1f\x8b":
        content = gzip.decompress(content)
    order = "<" if struct.unpack_from("<i", content, 0)[0] == 348 else ">"

    def fields(what, at):
        return struct.unpack_from(order + what, content, at)

    assert fields("i", 0)[0] == 348 and content[344:348] == b"n+1\0"
    dim = fields("8h", 40)
    size = [dim[i] if i <= dim[0] else 1 for i in range(1, 5)]
    type_name, letter = FORMATS[fields("h", 70)[0]]
    pixdim = fields("8f", 76)
    offset = int(fields("f", 108)[0])
    slope, intercept = fields("2f", 112)
    count = size[0] * size[1] * size[2] * size[3]
    voxels = fields("%d%s" % (count, letter), offset)
    weighted = 0
    for position, value in enumerate(voxels):
        weighted += (position % 65521 + 1) * value
    total = sum(voxels)
    mean = total / count
    print("size", *size)
    print("type", type_name)
    print("spacing", *(repr(abs(value)) for value in pixdim[1:4]))
    print("sform_code", fields("h", 254)[0])
    print("srow", *(repr(value) for value in fields("12f", 280)))
    print("scale", repr(slope), repr(intercept))
    print("range", min(voxels), max(voxels))
    print("sum", total, weighted)
    print("sd", repr((math.fsum((value - mean) ** 2 for value in voxels) / count) ** 0.5))
    ordered = sorted(voxels)
    print("percentiles", ordered[-(-count // 100) - 1], ordered[-(-count * 99 // 100) - 1])


if __name__ == "__main__":
    main(sys.argv[1])
