"""NIfTI and Analyze files: all types, byte orders, scales and ways to say where the image lies. Written and read by
nibabel; where a file is one that nibabel itself does not take, by a model."""
import os
import struct

import nibabel
import numpy

from witness import count_text, value_text

TYPES = ["u1", "i1", "i2", "u2", "i4", "u4", "i8", "u8", "f4", "f8"]
STEPS = 65535.0  # between the smallest and the largest of values that cannot keep theirs
WHOLE = 16777216.0
LEVELS = (-2.0**31, 2.0**31 - 3)


def affine_of(random, kind):
    """A matrix of the wanted kind."""
    spacing = random.uniform(0.3, 4.0, 3)
    matrix = numpy.eye(4)
    if kind == "plain":
        matrix[:3, :3] = numpy.diag(spacing * random.choice([-1, 1], 3))
    elif kind == "turned":
        matrix[:3, :3] = rotation_of(random) * spacing
        if random.random() < 0.5:
            matrix[:3, 2] *= -1
    else:  # sheared
        matrix[:3, :3] = rotation_of(random) * spacing + random.uniform(-0.1, 0.1, (3, 3))
    matrix[:3, 3] = random.uniform(-200, 200, 3)
    return matrix


def rotation_of(random):
    axes, _ = numpy.linalg.qr(random.normal(size=(3, 3)))
    if numpy.linalg.det(axes) < 0:
        axes[:, 0] *= -1
    return axes


def values_of(random, kind, shape, spread):
    """Stored values."""
    dtype = numpy.dtype(kind)
    if dtype.kind == "f":
        if spread == "whole":
            return random.integers(-3000, 30000, shape).astype(dtype)
        if spread == "few":
            return (random.integers(0, 256, shape) / 255.0).astype(dtype)
        return (random.normal(size=shape) * 10.0 ** random.integers(-6, 7)).astype(dtype)
    ends = numpy.iinfo(dtype)
    low, high = int(ends.min), int(ends.max)
    if spread == "few":
        low, high = max(low, -20), min(high, 100)
    return random.integers(low, high, shape, dtype=dtype, endpoint=True)


def error_of(stored, slope):
    """What the library may own up to: half a step where stored values are no levels."""
    finite = stored[numpy.isfinite(stored)].astype(float)
    if finite.size == 0:
        return 0.0
    low, high = finite.min(), finite.max()
    if stored.dtype.kind == "f":
        is_level = bool(numpy.all(finite == numpy.trunc(finite))) and max(abs(low), abs(high)) <= WHOLE
    else:
        is_level = low >= LEVELS[0] and high <= LEVELS[1]
    return 0.0 if is_level else (high - low) / STEPS / 2 * abs(slope) * (1 + 1e-9)


def note_times(witness, values, affine, source, error):
    """The volumes of an image: one for each time, or one of all times if it has a single slice."""
    values = values.reshape(values.shape[:3] + (-1,), order="F")
    if values.shape[2] == 1 and values.shape[3] > 1:
        witness.volume(values[:, :, 0, :], affine, source, error)
        return
    for time in range(values.shape[3]):
        witness.volume(values[..., time], affine, source, error)


def padded(values):
    """With three axes at least."""
    return values.reshape(values.shape + (1,) * (3 - values.ndim))


def patch(path, changes):
    """Overwrites bytes of a file: a list of positions with what is to stand there."""
    with open(path, "r+b") as file:
        for position, content in changes:
            file.seek(position)
            file.write(content)


def scale_fields(version, order, slope, intercept):
    return [(112, struct.pack(order + "2f", slope, intercept))] if version == 1 else [
        (176, struct.pack(order + "2d", slope, intercept))]


def write(witness, random, name, stored, version, order, place, scale=None, pair=False):
    """Writes an image with nibabel and notes what nibabel reads in it."""
    classes = {(1, False): nibabel.Nifti1Image, (1, True): nibabel.Nifti1Pair,
               (2, False): nibabel.Nifti2Image, (2, True): nibabel.Nifti2Pair}
    kind = classes[version, pair]
    header = kind.header_class(endianness=order)
    header.set_data_dtype(stored.dtype.newbyteorder(order))
    affine = affine_of(random, "turned" if place == "qform" else random.choice(["plain", "turned", "sheared"]))
    image = kind(stored, affine, header, dtype=stored.dtype.newbyteorder(order))
    image.header.set_zooms(tuple(numpy.linalg.norm(affine[:3, :3], axis=0))[:stored.ndim] + image.header.get_zooms()[3:])
    image.set_sform(affine if place in ("sform", "both") else None, code=2 if place in ("sform", "both") else 0)
    image.set_qform(affine if place in ("qform", "both") else None, code=1 if place in ("qform", "both") else 0)
    image.header.set_xyzt_units("mm", "sec")
    path = witness.path(name)
    header_path = path.replace(".img", ".hdr") if pair else path
    # Patched before it is compressed.
    is_packed = path.endswith(".gz")
    plain = path[:-3] if is_packed else path
    nibabel.save(image, plain)
    header_path = header_path[:-3] if is_packed else header_path
    patch(header_path, scale_fields(version, order, *(scale or (0.0, 0.0))))
    if is_packed:
        for one in {plain, header_path}:
            with open(one, "rb") as file, nibabel.openers.Opener(one + ".gz", "wb") as packed:
                packed.write(file.read())
            os.remove(one)
    seen = nibabel.load(path)
    values = padded(numpy.asarray(seen.dataobj, dtype=float))
    item = os.path.relpath(path, witness.folder).replace(".img", ".hdr") if pair else name
    witness.item(item, files=2 if pair else 1)
    slope = scale[0] if scale else 1.0
    if place == "none":
        # The voxel sizes of the file, those of axes that it does not use as well.
        sizes = [float(size) for size in seen.header["pixdim"][1:4]]
        note_times(witness, values, numpy.diag(sizes + [1.0]), "spacing", error_of(stored, slope))
    else:
        note_times(witness, values, seen.affine, "qform" if place == "qform" else "sform", error_of(stored, slope))
    bad = int(numpy.count_nonzero(~numpy.isfinite(stored))) if stored.dtype.kind == "f" else 0
    if bad:
        voxels = os.path.basename(name) if pair else os.path.basename(item)
        witness.told(f"{voxels} has 1 voxel that is no number; it is shown black and counts nowhere" if bad == 1 else
                     f"{voxels} has {count_text(bad)} voxels that are no number; they are shown black and count nowhere")


def shape_of(random, index):
    dimensions = [3, 4, 3, 2, 3, 5, 3, 7][index % 8]
    return tuple(int(side) for side in random.integers(2, 7, min(dimensions, 3))) + tuple(
        int(side) for side in random.integers(1, 3, max(dimensions - 3, 0)))


def plain_files(witness, random):
    index = 0
    for kind in TYPES:
        for version in (1, 2):
            for order in ("<", ">"):
                for pair in (False, True):
                    for spread in ("full", "few", "whole"):
                        if spread == "whole" and numpy.dtype(kind).kind != "f":
                            continue
                        index += 1
                        stored = values_of(random, kind, shape_of(random, index), spread)
                        if numpy.dtype(kind).kind == "f" and spread == "full" and index % 2:
                            stored.ravel()[:3] = [numpy.nan, numpy.inf, -numpy.inf]
                        scale = None if index % 3 else (float(random.choice([-1.0, 1.0]) * 2.0 ** random.integers(-8, 4)),
                                                        float(random.integers(-1000, 1000)))
                        place = ("sform", "qform", "both", "none")[index % 4 if stored.ndim >= 3 else 3]
                        name = "nifti/n%d_%s_%s_%04d.%s" % (version, kind, "le" if order == "<" else "be", index,
                                                            "img" if pair else "nii")
                        write(witness, random, name + (".gz" if index % 5 == 0 else ""), stored, version, order, place,
                              scale, pair)


def color_files(witness, random):
    for index in range(16):
        letters = "RGB" if index % 2 else "RGBA"
        shape = tuple(int(side) for side in random.integers(2, 7, 3))
        bytes_ = random.integers(0, 256, shape + (len(letters),), dtype="u1")
        stored = numpy.zeros(shape, dtype=[(letter, "u1") for letter in letters])
        for at, letter in enumerate(letters):
            stored[letter] = bytes_[..., at]
        affine = affine_of(random, "plain")
        kind = nibabel.Nifti1Image if index % 4 < 2 else nibabel.Nifti2Image
        image = kind(stored, affine)
        name = "colour/c%02d.nii%s" % (index, ".gz" if index % 3 == 0 else "")
        nibabel.save(image, witness.path(name))
        seen = numpy.asarray(nibabel.load(witness.path(name)).dataobj)
        packed = seen["R"].astype(int) | seen["G"].astype(int) << 8 | seen["B"].astype(int) << 16
        witness.item(name)
        witness.volume(packed, affine.astype("f4") if kind is nibabel.Nifti1Image else affine, "sform", color=0)


def analyze_files(witness, random):
    for index in range(60):
        order = "<>"[index % 2]
        kind = ["u1", "i2", "i4", "f4", "f8"][index % 5]
        family = [nibabel.AnalyzeImage, nibabel.Spm99AnalyzeImage, nibabel.Spm2AnalyzeImage][index % 3]
        stored = values_of(random, kind, tuple(int(side) for side in random.integers(2, 7, 3)), "few")
        header = family.header_class(endianness=order)
        header.set_data_dtype(stored.dtype.newbyteorder(order))
        header.set_data_shape(stored.shape)
        sizes = random.uniform(0.5, 3.0, 3).astype("f4")
        header.set_zooms(tuple(sizes))
        name = "analyze/a%02d_%s.img" % (index, kind)
        image = family(stored.astype(stored.dtype.newbyteorder(order)), None, header)
        nibabel.save(image, witness.path(name))
        scale = 1.0
        header_path = witness.path(name.replace(".img", ".hdr"))
        if family is not nibabel.AnalyzeImage and index % 4:
            scale = float(numpy.float32(random.choice([0.5, 0.037, 12.5, 1e-4])))
            patch(header_path, [(112, struct.pack(order + "f", scale))])
        else:
            patch(header_path, [(112, struct.pack(order + "f", [0.0, 1.0, numpy.nan, 1e30][index % 4]
                                                  if family is nibabel.AnalyzeImage else 1.0))])
        with open(witness.path(name), "rb") as file:
            raw = numpy.frombuffer(file.read(), stored.dtype.newbyteorder(order)).reshape(stored.shape, order="F")
        values = raw.astype(float) * scale
        if family is not nibabel.AnalyzeImage:
            numpy.testing.assert_allclose(values, nibabel.load(witness.path(name)).get_fdata(), rtol=1e-6)
        witness.item(name.replace(".img", ".hdr"), files=2)
        witness.volume(values, numpy.diag([float(size) for size in sizes] + [1.0]), "spacing",
                       error_of(raw.astype(raw.dtype.newbyteorder("=")), scale))
        if scale != 1.0:
            witness.told("%s has the scale factor %s that some programs add to Analyze files; its values are "
                         "multiplied by it" % (os.path.basename(name).replace(".img", ".hdr"), value_text(scale)))


def sizes_told(name, sizes, affine):
    """What has to be said where the voxel sizes are not those of the matrix."""
    steps = numpy.linalg.norm(affine[:3, :3], axis=0)
    return "%s says that voxels are %s mm large, and its sform that they are %s mm: places follow the sform, the " \
           "picture's proportions the voxel sizes" % (name, " x ".join(value_text(float(size)) for size in sizes),
                                                      " x ".join(value_text(float(step)) for step in steps))


def odd_headers(witness, random):
    """Files that contradict the letter of the format, but leave no doubt."""
    ways = ["bitpix", "pixdim", "flat", "disguise", "offset", "capitals", "unusable", "sizes"]
    for index in range(10 * len(ways)):
        way = ways[index % len(ways)]
        version = 1 + index // len(ways) % 2
        flat = way == "flat"
        stored = values_of(random, "i2", (5, 4, 1 if flat else 3), "few")
        affine = affine_of(random, "turned").astype("f4").astype(float)
        kind = {1: nibabel.Nifti1Image, 2: nibabel.Nifti2Image}[version]
        pair = way in ("disguise", "capitals")
        if pair:
            kind = {1: nibabel.Nifti1Pair, 2: nibabel.Nifti2Pair}[version]
        image = kind(stored, affine)
        image.set_sform(affine, 1)
        image.set_qform(None, 0)
        name = "odd/o%02d_%s.%s" % (index, way, "img" if pair else "nii")
        nibabel.save(image, witness.path(name))
        header_path = witness.path(name.replace(".img", ".hdr"))
        number, size, bits, pixdim, srow = ("f", 4, 72, 76, 280) if version == 1 else ("d", 8, 14, 104, 400)
        told, source, zooms = None, "sform", image.header.get_zooms()
        if way == "bitpix":
            patch(header_path, [(bits, b"\0\0")])
        elif way == "pixdim":
            bad = [numpy.nan, numpy.inf, 0.0, -100.0][index // len(ways) % 4]
            patch(header_path, [(pixdim + 2 * size, struct.pack("<" + number, bad))])
            if bad == -100.0:
                told = sizes_told(os.path.basename(name), [zooms[0], 100.0, zooms[2]], affine)
        elif way == "unusable":
            # A flat matrix, or one of no numbers, and a rotation beside it, or not.
            bad, has_qform = [0.0, numpy.nan][index // len(ways) // 2 % 2], index // len(ways) % 3 == 0
            if has_qform:
                image.set_qform(affine, 1)
                image.set_sform(affine, 1)
                nibabel.save(image, witness.path(name))
                source, affine = "qform", image.get_qform()
            else:
                source, affine = "spacing", numpy.diag(list(image.header.get_zooms()) + [1.0]).astype(float)
            patch(header_path, [(srow + 4 * row * size, struct.pack("<" + number, bad)) for row in range(3)])
            told = "%s has an sform that cannot be used (it is flat, or has elements that are no number): %s" % (
                os.path.basename(name), "its qform says where it lies" if has_qform else
                "which side of the patient is which is not known")
        elif way == "sizes":
            patch(header_path, [(pixdim + 2 * size, struct.pack("<" + number, 64.0))])
            told = sizes_told(os.path.basename(name), [zooms[0], 64.0, zooms[2]], affine)
        elif flat:
            for row in range(3):
                patch(header_path, [(srow + (4 * row + 2) * size, struct.pack("<" + number, 0.0))])
            normal = numpy.cross(affine[:3, 0], affine[:3, 1])
            length = numpy.float32(image.header.get_zooms()[2]) if version == 1 else image.header.get_zooms()[2]
            affine[:3, 2] = normal / numpy.linalg.norm(normal) * float(length)
        elif way == "disguise":
            patch(header_path, [(344, b"n+1\0")] if version == 1 else [(4, b"n+2\0")])
            told = "%s says that it holds its voxels itself; they are read from %s" % (
                os.path.basename(header_path), os.path.basename(name))
        elif way == "capitals":
            os.rename(witness.path(name), witness.path(name.replace(".img", [".IMG", ".Img", ".iMG"][index % 3])))
        item = name.replace(".img", ".hdr")
        witness.item(item, files=2 if pair else 1)
        witness.volume(stored, affine, source)
        if told:
            witness.told(told)


def marks(witness, random):
    """Marks for "no value" and broken voxels: the others must stay as true as without them."""
    for index in range(40):
        kind, mark = [("i4", 2**31 - 1), ("u4", 2**32 - 1), ("f4", 1e30), ("f8", 1e300), ("f4", -3.4e38),
                      ("i8", -2**63), ("u8", 2**64 - 1), ("f8", -1e20)][index % 8]
        stored = values_of(random, kind, (6, 5, 4), "few" if numpy.dtype(kind).kind != "f" else
                           ["whole", "few", "full"][index % 3])
        count = int(random.integers(1, 60))
        clean = stored.copy()
        places = random.choice(stored.size, count, replace=False)
        stored.ravel()[places] = mark
        left = numpy.delete(clean.ravel(), places)
        affine = affine_of(random, "plain").astype("f4").astype(float)
        image = nibabel.Nifti1Image(stored, affine, dtype=stored.dtype)
        name = "marks/m%02d_%s.nii" % (index, kind)
        nibabel.save(image, witness.path(name))
        values = stored.astype(float)
        values.ravel()[places] = numpy.nan
        witness.item(name)
        witness.volume(values, affine, "sform", error_of(left, 1.0))
        witness.told("%s has %s voxels of %s, far from all others (%s to %s); they are left outside the scale, are shown "
                     "black and count nowhere" % (os.path.basename(name), count_text(count),
                                                  value_text(float(stored.ravel()[places[0]])),
                                                  value_text(float(left.min())), value_text(float(left.max()))))


def refusals(witness, random):
    """Files that must be refused, each with its reason."""
    stored = values_of(random, "i2", (4, 4, 4), "few")
    cases = [("datatype", [(70, b"\x20\0")], "holds complex voxels, which cannot be shown"),
             ("bits", [(72, b"\x08\0")], "contradicts itself: voxels of type int16 take 16 bits, not 8"),
             ("rank", [(40, b"\x09\0")], "has 9 dimensions, and 1 to 7 are possible"),
             ("side", [(42, b"\0\0")], "has the size 0 in dimension 1"),
             ("short", [(46, b"\x05\0")], "is truncated: 64 of 80 voxels present"),
             ("sizes", [(80, struct.pack("<f", numpy.nan)), (252, b"\0\0\0\0")],
              "has a voxel size that is no number in dimension 1")]
    for name, changes, reason in cases:
        path = "refused/%s.nii" % name
        nibabel.save(nibabel.Nifti1Image(stored, numpy.eye(4)), witness.path(path))
        patch(witness.path(path), changes)
        witness.item(path)
        witness.told("%s.nii %s" % (name, reason))


def make(witness):
    random = numpy.random.default_rng(20)
    plain_files(witness, random)
    color_files(witness, random)
    analyze_files(witness, random)
    odd_headers(witness, random)
    marks(witness, random)
    refusals(witness, random)
