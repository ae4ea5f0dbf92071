"""Cases of DICOM series: one slice for each file."""
import shutil

import numpy
from pydicom.uid import ExplicitVRBigEndian, ExplicitVRLittleEndian, generate_uid

from dicom_case import decimal, end_to_end, rotation, scale_error, scale_told, scaled, scales, stack_corners, stack_told
from dicom_single import greys_read

STACK_SENTENCES = {
    "tilted": "begins a stack of slices tilted by %s degrees: every position is right, but the slices do not lie "
              "straight above one another",
    "missing": "lies at an uneven distance from its neighbours: slices are shown up to %s mm from where they lie",
    "curved": "lies beside the line of the other slices: slices are shown up to %s mm from where they lie"}


def numbers_of(rng, count):
    numbers = list(range(1, count + 1))
    order = rng.choice(["rising", "falling", "mixed"])
    if order == "falling":
        numbers.reverse()
    elif order == "mixed":
        rng.shuffle(numbers)
    return numbers


def stack(case, kind="plain"):
    rng = case.rng
    gap = round(rng.uniform(0.5, 6), 3)
    corners = stack_corners(case, kind, rng.randint(5, 8), gap)
    count = len(corners)
    numbers = numbers_of(rng, count)
    of_slices = scales(rng, count)
    slices, parts = [], []
    # Directions that differ in their last digits are one.
    jitter = rotation(rng, 1e-6) if rng.random() < 0.5 else numpy.eye(3)
    for at, corner in enumerate(corners):
        ds = case.data_set(numbers[at])
        case.place(ds, corner, case.turn @ jitter if at % 2 else case.turn)
        if kind == "no direction":
            del ds.ImageOrientationPatient
        if kind == "no series":
            del ds.SeriesInstanceUID
        if of_slices[at]:
            ds.RescaleSlope, ds.RescaleIntercept = decimal(of_slices[at][0]), decimal(of_slices[at][1])
        stored = case.values(1, 16, 12)
        case.pixels(ds, stored, 16, 12)
        slices.append(greys_read(case.write(ds, f"{numbers[at]:03}.dcm")))
        parts.append((of_slices[at], stored))
    case.expect(numpy.concatenate(slices), case.affine(corners[0], end_to_end(corners)), scale_error(parts),
                known=kind != "no direction")
    if kind in STACK_SENTENCES:
        worst, amount = stack_told(case, kind, corners)
        case.told(f"{numbers[worst]:03}.dcm", STACK_SENTENCES[kind] % amount)
    if kind == "no series":
        case.told("001.dcm", f"names no series: it was put together with {count - 1} of the same folder, study, series "
                  "number, description and size")
    if kind == "no direction":
        case.told("001.dcm", "belongs to a series that says where slices lie, but not how they are turned: they are in "
                  "order of position, and the sides of the patient are not known")


def tilted(case):
    stack(case, "tilted")


def missing(case):
    stack(case, "missing")


def curved(case):
    stack(case, "curved")


def no_series(case):
    stack(case, "no series")


def no_direction(case):
    axis = case.rng.randrange(3)
    rows = [[0, 1, 0], [1, 0, 0], [1, 0, 0]][axis]
    columns = [[0, 0, -1], [0, 0, -1], [0, 1, 0]][axis]
    case.turn = numpy.array([rows, columns, numpy.cross(rows, columns)], dtype=float)
    stack(case, "no direction")


def no_place(case):
    """Slices that lie nowhere are in order of number."""
    rng = case.rng
    count = rng.randint(2, 6)
    greys = {}
    for number in numbers_of(rng, count):
        ds = case.data_set(number)
        ds.PixelSpacing = [decimal(case.spacing[1]), decimal(case.spacing[0])]
        ds.SliceThickness = "2.5"
        case.pixels(ds, case.values(1))
        greys[number] = greys_read(case.write(ds, f"{number:03}"))
    case.expect(numpy.concatenate([greys[number] for number in sorted(greys)]), case.no_place(2.5), known=False)
    case.told("001", "belongs to a series that does not say where its slices lie: they are in order of number")


def place_twice(case):
    """One place twice, numbered from either end."""
    rng = case.rng
    count, gap = rng.randint(4, 7), round(rng.uniform(1, 5), 2)
    corners = stack_corners(case, "plain", count, gap)
    twice = rng.randrange(count)
    places = list(range(count)) + [twice]
    places.sort(reverse=rng.random() < 0.5)
    # Slices may share their instance's identifier: they are no copies while their places differ.
    shared = generate_uid(entropy_srcs=[case.name]) if rng.random() < 0.5 else None
    greys, second = {}, None
    for number, at in enumerate(places, 1):
        ds = case.data_set(number)
        ds.SOPInstanceUID = shared or ds.SOPInstanceUID
        case.place(ds, corners[at])
        ds.SliceThickness = decimal(gap)
        case.pixels(ds, case.values(1))
        read = greys_read(case.write(ds, f"{number:03}"))
        if at in greys:
            second = read, f"{number:03}"
        else:
            greys[at] = read
    case.expect(numpy.concatenate([greys[at] for at in range(count)]), case.affine(corners[0], end_to_end(corners)))
    case.expect(second[0], case.affine(corners[twice], case.turn[2] * gap))
    case.told(second[1], "belongs to a series whose positions do not occur equally often: it is shown as 2 volumes")


def copies(case):
    """The same file twice is one slice."""
    rng = case.rng
    count, gap = rng.randint(2, 5), round(rng.uniform(1, 5), 2)
    corners = stack_corners(case, "plain", count, gap)
    greys = []
    for at, corner in enumerate(corners):
        ds = case.data_set(at + 1)
        case.place(ds, corner)
        case.pixels(ds, case.values(1))
        path = case.write(ds, f"{at + 1:03}.dcm")
        greys.append(greys_read(path))
    name = f"{rng.randint(1, count):03}.dcm"
    shutil.copy(case.witness.path(f"{case.name}/{name}"), case.path("copy of " + name))
    case.expect(numpy.concatenate(greys), case.affine(corners[0], end_to_end(corners)))
    case.told("copy of " + name, f"holds the same image as {name}")


def times(case):
    """Acquisitions with trigger times, or positions in time, or nothing that tells them."""
    rng = case.rng
    count, gap = rng.randint(2, 5), round(rng.uniform(1, 5), 2)
    corners = stack_corners(case, "plain", count, gap)
    kind = rng.choice(["acquisition", "trigger", "both", "position", "nothing"])
    moments = {"acquisition": [(1, None, None), (2, None, None)], "trigger": [(None, 0, None), (None, 33.5, None)],
               "both": [(1, 0, None), (1, 700, None), (2, 10, None)], "position": [(None, None, 1), (None, None, 2)],
               "nothing": [(None, None, None)] * 2}[kind]
    files = [(time, at) for time in range(len(moments)) for at in range(count)]
    if kind != "nothing":
        rng.shuffle(files)
    greys = {}
    for number, (time, at) in enumerate(files, 1):
        ds = case.data_set(number)
        case.place(ds, corners[at])
        acquisition, trigger, position = moments[time]
        if acquisition is not None:
            ds.AcquisitionNumber = acquisition
        if trigger is not None:
            ds.TriggerTime = decimal(trigger)
        if position is not None:
            ds.TemporalPositionIdentifier = position
        case.pixels(ds, case.values(1))
        greys[time, at] = greys_read(case.write(ds, f"{number:03}"))
    for time in range(len(moments)):
        case.expect(numpy.concatenate([greys[time, at] for at in range(count)]),
                    case.affine(corners[0], end_to_end(corners)))
    if kind == "nothing":
        case.told("001", "lies where other slices of its series lie, and does not say which is earlier: they are taken "
                  "in order of number")


def sweep(case):
    """More directions than there can be stacks: the slices one after the other, nowhere."""
    rng = case.rng
    case.syntax = ExplicitVRLittleEndian
    count = rng.randint(33, 36)
    greys = []
    for at in range(count):
        ds = case.data_set(at + 1)
        case.place(ds, case.corner, rotation(rng))
        ds.SliceThickness = "2"
        case.pixels(ds, case.values(1, 8), 8)
        greys.append(greys_read(case.write(ds, f"{at + 1:03}")))
    case.expect(numpy.concatenate(greys), case.no_place(2.0), known=False)
    case.told("001", f"belongs to a series with slices in {count} directions or places beside one another: they are "
              "shown one after the other, without a place in the patient")


def blank_slice(case):
    """Activity with a slice of nearly nothing, whose slope is millions of times finer."""
    rng = case.rng
    count, gap = rng.randint(3, 6), 3.0
    corners = stack_corners(case, "plain", count, gap)
    blank = rng.randrange(count)
    is_wide = rng.random() < 0.5  # with values of its own, so that not even all levels suffice
    slices, parts = [], []
    for at, corner in enumerate(corners):
        ds = case.data_set(at + 1)
        case.place(ds, corner)
        scale = (1.2e-7, 0.0) if at == blank else (0.6 + 0.001 * at, 0.0)
        stored = case.values(1, 16)
        if at != blank:
            stored[0, 0, :2] = 0, 65535
        elif not is_wide:
            stored[:] = 0
        else:
            stored[0, 0, :2] = 0, 32767
        ds.RescaleSlope, ds.RescaleIntercept = decimal(scale[0]), "0"
        case.pixels(ds, stored)
        slices.append(greys_read(case.write(ds, f"{at + 1:03}.dcm")))
        parts.append((scale, stored))
    error = scale_error(parts)
    case.expect(numpy.concatenate(slices), case.affine(corners[0], end_to_end(corners)), error)
    if is_wide:
        case.told("001.dcm", scale_told("slices", [scale[0] for scale, _ in parts], error) + " (MR 3)")


def far_slice(case):
    """A slice of one value so far away that nothing would be left of the others."""
    rng = case.rng
    count = rng.randint(3, 6)
    corners = stack_corners(case, "plain", count, 3.0)
    far = rng.randrange(count)
    greys, parts = [], []
    for at, corner in enumerate(corners):
        ds = case.data_set(at + 1)
        case.place(ds, corner)
        scale = (1.0, 1e12) if at == far else (round(rng.uniform(0.1, 3), 3), 0.0)
        stored = numpy.zeros((1, case.height, case.width), int) if at == far else case.values(1, 16, 12)
        ds.RescaleSlope, ds.RescaleIntercept = decimal(scale[0]), decimal(scale[1])
        case.pixels(ds, stored, 16, 12)
        case.write(ds, f"{at + 1:03}.dcm")
        if at == far:
            greys.append(numpy.full(stored.shape, numpy.nan))
        else:
            greys.append(scaled(stored, scale))
            parts.append((scale, stored))
    case.expect(numpy.concatenate(greys), case.affine(corners[0], end_to_end(corners)), scale_error(parts))
    case.told("001.dcm", "has slices whose scale is far from all others: %d of their values (1e+12) are left outside "
              "the scale, are shown black and count nowhere (MR 3)" % (case.width * case.height))


def wide_32_bits(case):
    """Values of 32 bits under scales of their own, all exact."""
    rng = case.rng
    count = rng.randint(2, 5)
    corners = stack_corners(case, "plain", count, 2.0)
    case.syntax = rng.choice([ExplicitVRLittleEndian, ExplicitVRBigEndian])
    slices, parts = [], []
    for at, corner in enumerate(corners):
        ds = case.data_set(at + 1)
        case.place(ds, corner)
        scale = (0.5 * rng.randint(1, 6), float(rng.randint(-100, 100)))
        stored = case.values(1, 32, 29) + 2**31
        ds.RescaleSlope, ds.RescaleIntercept = decimal(scale[0]), decimal(scale[1])
        case.pixels(ds, stored, 32)
        case.write(ds, f"{at + 1:03}.dcm")
        slices.append(scaled(stored, scale))
        parts.append((scale, stored))
    error = scale_error(parts)
    case.expect(numpy.concatenate(slices), case.affine(corners[0], end_to_end(corners)), error)
    sentence = scale_told("slices", [scale[0] for scale, _ in parts], error)
    case.told("001.dcm", sentence and sentence + " (MR 3)")


KINDS = [stack, tilted, missing, curved, no_series, no_direction, no_place, place_twice, copies, times, sweep,
         blank_slice, far_slice, wide_32_bits]
