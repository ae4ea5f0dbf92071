"""One case of DICOM files: how they are written, and a model of what they hold. Greys come from pydicom where it reads
the files back, else from what was written; places, common scales and sentences come from a model of the format."""
import math
import os
import random
from fractions import Fraction

import numpy
from pydicom.dataset import Dataset, FileMetaDataset
from pydicom.sequence import Sequence
from pydicom.uid import (DeflatedExplicitVRLittleEndian, ExplicitVRBigEndian, ExplicitVRLittleEndian,
                         ImplicitVRLittleEndian, RLELossless, generate_uid)

IMAGE_KIND = "1.2.840.10008.5.1.4.1.1.7"
LEVEL_STEPS = 2**32 - 4  # a common scale has so many at most
SYNTAXES = [ImplicitVRLittleEndian, ExplicitVRLittleEndian, ExplicitVRBigEndian, DeflatedExplicitVRLittleEndian,
            RLELossless]


def rotation(rng, small=None):
    """Rows are the directions of x, y and the normal."""
    if small is None:
        quaternion = numpy.array([rng.gauss(0, 1) for _ in range(4)])
    else:
        quaternion = numpy.array([1.0] + [rng.uniform(-small, small) for _ in range(3)])
    w, x, y, z = quaternion / numpy.linalg.norm(quaternion)
    return numpy.array([[1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)],
                        [2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)],
                        [2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)]])


def decimal(number):
    """A decimal string of at most 16 letters."""
    for digits in range(15, 0, -1):
        text = f"{number:.{digits}g}"
        if len(text) <= 16:
            return text
    return "0"


def decimals(numbers):
    return [decimal(float(number)) for number in numbers]


def amount_text(amount):
    """A measured amount as the library writes it, below 1,000."""
    return f"{amount:.3g}"


def end_to_end(corners):
    return (corners[-1] - corners[0]) / (len(corners) - 1)


class Case:
    """A folder of files of one series."""

    def __init__(self, witness, name, number):
        self.rng = rng = random.Random(f"{name} {number}")
        self.witness = witness
        self.name = f"dicom/{name}_{number:02}"
        self.file_nb = 0
        self.expected = []  # what the manifest gets when the files are written
        self.sentences = []
        self.study = generate_uid(entropy_srcs=[self.name, "study"])
        self.series = generate_uid(entropy_srcs=[self.name, "series"])
        self.width, self.height = rng.randint(2, 7), rng.randint(2, 7)
        self.spacing = [round(rng.uniform(0.3, 3), 4) for _ in range(2)]  # of columns, of rows
        self.turn = rotation(rng)
        self.corner = numpy.array([rng.uniform(-200, 200) for _ in range(3)])
        self.syntax = SYNTAXES[(number + rng.randrange(2)) % len(SYNTAXES)]
        self.modality = "MR"
        self.title = "MR 3"

    def data_set(self, number=1):
        ds = Dataset()
        ds.file_meta = FileMetaDataset()
        ds.SOPClassUID = IMAGE_KIND
        ds.SOPInstanceUID = generate_uid(entropy_srcs=[self.name, str(number), str(self.rng.random())])
        ds.StudyInstanceUID, ds.SeriesInstanceUID = self.study, self.series
        ds.Modality, ds.SeriesNumber, ds.InstanceNumber = self.modality, 3, number
        return ds

    def place(self, ds, corner, turn=None):
        turn = self.turn if turn is None else turn
        ds.ImagePositionPatient = decimals(corner)
        ds.ImageOrientationPatient = decimals(list(turn[0]) + list(turn[1]))
        ds.PixelSpacing = decimals([self.spacing[1], self.spacing[0]])

    def pixels(self, ds, values, bits=16, stored=None, is_signed=False):
        """values: frames, rows, columns; or rows, columns, 3 of 8 bits."""
        stored = stored or bits
        kind = {8: "u1", 16: "u2", 32: "u4"}[bits]
        is_color = values.shape[-1] == 3 and values.ndim == 3 and values.dtype == numpy.uint8
        ds.Rows, ds.Columns = values.shape[:2] if is_color else values.shape[-2:]
        ds.SamplesPerPixel = 3 if is_color else 1
        if is_color:
            ds.PlanarConfiguration = 0
        if "PhotometricInterpretation" not in ds:
            ds.PhotometricInterpretation = "RGB" if is_color else "MONOCHROME2"
        if not is_color and values.shape[0] > 1:
            ds.NumberOfFrames = values.shape[0]
        ds.BitsAllocated, ds.BitsStored, ds.HighBit = bits, stored, stored - 1
        ds.PixelRepresentation = 1 if is_signed else 0
        # Signed numbers with their sign in all bits: pydicom does not look at how many are stored.
        words = (values.astype(numpy.int64) & (2**bits - 1)).astype("<" + kind)
        data = words.tobytes()
        ds.PixelData = data + b"\0" * (len(data) % 2)
        ds["PixelData"].VR = "OB" if bits == 8 else "OW"

    def values(self, frames, bits=16, stored=None, is_signed=False):
        """Random stored values."""
        stored = stored or bits
        low, high = (-2 ** (stored - 1), 2 ** (stored - 1)) if is_signed else (0, 2**stored)
        shape = frames, self.height, self.width
        drawn = [self.rng.randrange(low, high) for _ in range(int(numpy.prod(shape)))]
        return numpy.array(drawn, dtype=numpy.int64).reshape(shape)

    def path(self, name):
        self.file_nb += 1
        return self.witness.path(f"{self.name}/{name}")

    def write(self, ds, name):
        path = self.path(name)
        ds.file_meta.TransferSyntaxUID = self.syntax
        ds.file_meta.MediaStorageSOPClassUID = ds.SOPClassUID
        ds.file_meta.MediaStorageSOPInstanceUID = ds.SOPInstanceUID
        ds.is_little_endian = self.syntax != ExplicitVRBigEndian
        ds.is_implicit_VR = self.syntax == ImplicitVRLittleEndian
        if self.syntax == RLELossless:
            ds.file_meta.TransferSyntaxUID = ExplicitVRLittleEndian
            try:
                ds.compress(RLELossless, encoding_plugin="pydicom")
            except ValueError:
                pass  # bits that the encoder does not take: uncompressed
        if not ds.is_little_endian:
            size = ds.BitsAllocated // 8
            words = numpy.frombuffer(ds.PixelData, dtype="u1")
            if size > 1:
                words = words.reshape(-1, size)[:, ::-1]
            ds.PixelData = words.tobytes()
        ds.save_as(path, write_like_original=False)
        return path

    def affine(self, corner, step, turn=None):
        """Voxels to millimetres to the right, front and top."""
        turn = self.turn if turn is None else turn
        columns = numpy.column_stack([turn[0] * self.spacing[0], turn[1] * self.spacing[1], step, corner])
        return numpy.diag([-1, -1, 1]) @ columns

    def no_place(self, step):
        """The affine of slices that lie nowhere: the voxel sizes alone."""
        return numpy.diag([-1, -1, 1]) @ numpy.column_stack([numpy.diag([self.spacing[0], self.spacing[1], step]),
                                                             numpy.zeros(3)])

    def expect(self, greys, affine, error=0.0, known=True, color=None):
        """greys: slices, rows, columns; no number: outside. color: greys are packed colours, whose components may be off
        by so much."""
        values = numpy.transpose(numpy.asarray(greys), (2, 1, 0))
        self.expected.append((values, affine, "qform" if known else "spacing", error, color))

    def told(self, name, sentence):
        """sentence: None, if there is nothing to say."""
        if sentence is None:
            return
        self.sentences.append(f"{name} {sentence}")

    def finish(self):
        self.witness.item(self.name, dicom=True, files=self.file_nb)
        for one in self.expected:
            self.witness.volume(*one)
        for sentence in self.sentences:
            self.witness.told(sentence)


# Scales


def scale_error(parts):
    """What one scale for several parts may be off. parts: slope and intercept (None: 1 and 0) with the stored values. A
    common grid of all values is exact where levels suffice for it."""
    points, steps, finest = [], [], []
    for scale, stored in parts:
        slope, intercept = (Fraction(decimal(number)) for number in scale or (1.0, 0.0))
        low, high = int(stored.min()), int(stored.max())
        points += [intercept + slope * low, intercept + slope * high]
        steps += [abs(slope)] if low < high else []
    finest = min(steps, default=Fraction(0))
    whole = max(points) - min(points)
    grid = Fraction(0)
    for step in steps + [point - points[0] for point in points]:
        while step:
            grid, step = step, grid % step
        grid = abs(grid)
    if grid == 0 or whole / grid <= LEVEL_STEPS:
        return 0.0
    return float(max(finest, whole / (LEVEL_STEPS - 1)) / 2)


def scale_told(what, slopes, error):
    """What has to be said of a scale: nothing where no part loses more than half of its own step."""
    finest, coarsest = min(slopes), max(slopes)
    if not error * 2 > finest * (1 + 1e-11):
        return None
    reason = "more values than levels can be" if finest == coarsest else (
        f"very different scales (slopes {finest:.6g} to {coarsest:.6g})")
    return f"has {what} of {reason}: greys are rounded to steps of {error * 2:.6g} and are at most {error:.6g} off"


def scaled(stored, scale):
    """Greys of stored values."""
    slope, intercept = scale or (1.0, 0.0)
    return stored.astype(numpy.float64) * float(decimal(slope)) + float(decimal(intercept))


def scales(rng, count):
    """Slope and intercept of every slice; None: not said."""
    kind = rng.choice(["none", "one", "several", "several", "wide"])
    if kind == "none":
        return [None] * count
    if kind == "one":
        return [(round(rng.uniform(0.1, 3), 3), round(rng.uniform(-1000, 100), 1))] * count
    if kind == "several":
        return [(round(rng.uniform(0.1, 3), 3), round(rng.uniform(-10, 10), 1)) for _ in range(count)]
    return [(float(decimal(10 ** rng.uniform(-4, 1))), 0.0) for _ in range(count)]


# Stacks: where slices lie, and what has to be said of it


def stack_corners(case, kind, count, gap):
    """Corners from the lowest along the normal to the highest. count is 5 or more; one slice fewer where one is
    missing."""
    rng = case.rng
    along = [numpy.array(case.turn[2]) * gap * at for at in range(count)]
    if kind == "tilted":
        # So that the last slice lies a pixel off at least.
        sideways = case.turn[1] * rng.choice([-1, 1]) * rng.uniform(0.3, 0.8) * max(gap, max(case.spacing))
        along = [offset + sideways * at for at, offset in enumerate(along)]
    elif kind == "missing":
        # Not the one in the middle: which of its neighbours lies off most would be a matter of rounding.
        gone = rng.choice([at for at in range(1, count - 1) if 2 * at != count - 1])
        along = along[:gone] + along[gone + 1:]
    elif kind == "curved":
        middle = count // 2
        along[middle] = along[middle] + case.turn[0] * min(case.spacing) * rng.uniform(0.2, 0.4)
    return [case.corner + offset for offset in along]


def stack_told(case, kind, corners):
    """What has to be said of a stack: the slice that is named, and the amount; nothing of a regular one."""
    step, normal = end_to_end(corners), case.turn[2]
    offs = [corner - corners[0] - step * at for at, corner in enumerate(corners)]
    if kind == "tilted":
        across = step - normal * (step @ normal)
        return 0, amount_text(math.degrees(math.atan2(numpy.linalg.norm(across), step @ normal)))
    if kind == "missing":
        lengths = [abs(off @ normal) for off in offs]
    elif kind == "curved":
        lengths = [numpy.linalg.norm(off - normal * (off @ normal)) for off in offs]
    else:
        return None
    worst = int(numpy.argmax(lengths))
    return worst, amount_text(lengths[worst])


def item_of(**values):
    """An item of a sequence."""
    item = Dataset()
    for name, value in values.items():
        setattr(item, name, value)
    return item


def sequence_of(**values):
    return Sequence([item_of(**values)])
