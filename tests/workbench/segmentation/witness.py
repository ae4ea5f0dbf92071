#!/usr/bin/env python3
"""Volumes, and what SciPy and NumPy find in them: witness.py FOLDER [BRAIN.nii.gz]

FOLDER/manifest.txt has one line per answer: case, operation, its number, file of the answer. Every case has the files
CASE.tags (bytes), CASE.levels (int32) and a line "grid" with extents and voxel sizes. TAG 1 is looked at.
"""
import os
import sys

import numpy
from scipy import ndimage


def ball(radius, spacing):
    """Voxels within a radius; as axes of the arrays: slices, y, x."""
    reach = [int(radius / step) + 1 for step in spacing]
    z, y, x = numpy.ogrid[tuple(slice(-n, n + 1) for n in reach)]
    squared = (z * spacing[0]) ** 2 + (y * spacing[1]) ** 2 + (x * spacing[2]) ** 2
    return squared <= radius * radius * (1 + 1e-6)


def within(mask, radius, spacing):
    if not mask.any():
        return numpy.zeros_like(mask)
    return ndimage.distance_transform_edt(~mask, sampling=spacing) ** 2 <= radius * radius * (1 + 1e-6)


def between(mask, spacing):
    result = mask.copy()
    keys = [z for z in range(mask.shape[0]) if mask[z].any()]

    def signed(plane):
        padded = numpy.pad(plane, 1)  # the volumes keep a voxel of room around TAG 1
        outside = ndimage.distance_transform_edt(~padded, sampling=spacing[1:])
        inside = ndimage.distance_transform_edt(padded, sampling=spacing[1:])
        return numpy.where(padded, -inside, outside)[1:-1, 1:-1]

    for first, last in zip(keys, keys[1:]):
        for z in range(first + 1, last):
            share = (z - first) / (last - first)
            before, after = signed(mask[first]), signed(mask[last])
            result[z] = (1 - share) * before + share * after <= 1e-6 * (abs(before) + abs(after))
    return result


def surface(mask):
    return mask & ~ndimage.binary_erosion(mask)


def agreement(one, other, spacing):
    ways = []
    for a, b in ((one, other), (other, one)):
        distances = ndimage.distance_transform_edt(~surface(b), sampling=spacing)
        ways.append(distances[surface(a)])
    both = numpy.concatenate(ways)
    common = (one & other).sum()
    return [one.sum(), other.sum(), common, 2 * common / (one.sum() + other.sum()), common / (one | other).sum(),
            max(way.max() for way in ways), max(numpy.percentile(way, 95) for way in ways), both.mean()]


def measures(mask, levels, spacing):
    values = levels[mask].astype(numpy.float64)
    slices = numpy.nonzero(mask.any(axis=(1, 2)))[0]
    regions = ndimage.label(mask, numpy.ones((3, 3, 3)))[1]
    return [mask.sum(), mask.sum() * numpy.prod(spacing) / 1000, values.mean(), values.std(), values.min(),
            values.max(), numpy.median(values), numpy.percentile(values, 5), numpy.percentile(values, 95), regions,
            slices[0], slices[-1]]


def write_case(folder, lines, name, mask, levels, spacing, radii):
    def put(operation, number, array):
        file = "%s.%s.%s" % (name, operation, number)
        array.tofile(os.path.join(folder, file))
        lines.append("%s %s %r %s" % (name, operation, number, file))

    mask.astype(numpy.uint8).tofile(os.path.join(folder, name + ".tags"))
    levels.astype(numpy.int32).tofile(os.path.join(folder, name + ".levels"))
    shape = mask.shape
    lines.append("%s grid %d %d %d %r %r %r" % (name, shape[2], shape[1], shape[0], spacing[2], spacing[1], spacing[0]))
    put("regions", 6, ndimage.label(mask)[0].astype(numpy.int32))
    put("regions", 26, ndimage.label(mask, numpy.ones((3, 3, 3)))[0].astype(numpy.int32))
    put("holes", 3, ndimage.binary_fill_holes(mask).astype(numpy.uint8))
    put("holes", 2, numpy.stack([ndimage.binary_fill_holes(plane) for plane in mask]).astype(numpy.uint8))
    put("between", 0, between(mask, spacing).astype(numpy.uint8))
    for radius in radii:
        put("grow", radius, within(mask, radius, spacing).astype(numpy.uint8))
        put("shrink", radius, (mask & ~within(~mask, radius, spacing)).astype(numpy.uint8))
    footprint = ball(radii[0], spacing).astype(numpy.int32)
    votes = ndimage.convolve(numpy.where(mask, 1, -1), footprint, mode="constant")
    put("smooth", radii[0], ((votes > 0) | ((votes == 0) & mask)).astype(numpy.uint8))
    put("numbers", 0, numpy.array(measures(mask, levels, spacing), dtype=numpy.float64))
    moved = numpy.roll(ndimage.binary_dilation(mask), 2, axis=2)
    put("other", 0, moved.astype(numpy.uint8))
    put("agreement", 0, numpy.array(agreement(mask, moved, spacing), dtype=numpy.float64))


def random_case(seed):
    random = numpy.random.RandomState(seed)
    shape = (9 + seed % 5, 24, 31)
    spacing = [(1.0, 1.0, 1.0), (3.0, 0.9375, 0.9375), (0.3, 0.1, 0.1), (1.3, 0.7, 2.0)][seed % 4]
    smooth = ndimage.gaussian_filter(random.standard_normal(shape), 0.6 + 0.4 * (seed % 3))
    mask = smooth > numpy.quantile(smooth, 0.5 + 0.1 * (seed % 4))
    mask[:, 0, :] = mask[:, -1, :] = False
    mask[:, :, 0] = mask[:, :, -1] = False
    mask[3:6] &= seed % 2 == 0  # slices to be filled
    levels = random.randint(-1000, 3000, shape) * (1 if seed % 3 else 300)
    return mask, levels, spacing, [2.0 * min(spacing), 5.0 * min(spacing)]


def brain_case(file):
    import nibabel

    levels = numpy.asarray(nibabel.load(file).dataobj).T[50:110, 60:160, 40:140].astype(numpy.int32)
    mask = levels > int(numpy.quantile(levels, 0.6))
    mask[:, 0, :] = mask[:, -1, :] = False
    mask[:, :, 0] = mask[:, :, -1] = False
    return mask, levels, (1.0, 1.0, 1.0), [1.0, 6.0]


def main(folder, brain=None):
    os.makedirs(folder, exist_ok=True)
    lines = []
    for seed in range(8):
        write_case(folder, lines, "random%d" % seed, *random_case(seed))
    if brain:
        write_case(folder, lines, "brain", *brain_case(brain))
    with open(os.path.join(folder, "manifest.txt"), "w", encoding="ascii") as stream:
        stream.write("".join(line + "\n" for line in lines))


if __name__ == "__main__":
    main(*sys.argv[1:])
