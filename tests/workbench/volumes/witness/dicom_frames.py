"""Cases of DICOM files of several frames: enhanced images, dose grids, cine, run-length frames in pieces."""
import numpy
import pydicom
from pydicom.encaps import encapsulate, generate_pixel_data_frame
from pydicom.sequence import Sequence
from pydicom.tag import Tag
from pydicom.uid import ExplicitVRLittleEndian, RLELossless

from dicom_case import (amount_text, decimal, decimals, end_to_end, item_of, rotation, scale_error, scale_told, scaled,
                        scales, sequence_of, stack_corners, stack_told)

STACK_SENTENCES = {
    "tilted": "has a stack of frames tilted by %s degrees: every position is right, but the slices do not lie straight "
              "above one another",
    "missing": "has frames at uneven distances (frame %d): they are shown up to %s mm from where they lie",
    "curved": "has frames beside the line of the others (frame %d): they are shown up to %s mm from where they lie"}


def group(corner, turn, time=None, scale=None):
    """What one frame says of itself."""
    item = item_of(PlanePositionSequence=sequence_of(ImagePositionPatient=decimals(corner)))
    if turn is not None:
        item.PlaneOrientationSequence = sequence_of(ImageOrientationPatient=decimals(list(turn[0]) + list(turn[1])))
    if time is not None:
        item.FrameContentSequence = sequence_of(TemporalPositionIndex=time)
    if scale is not None:
        item.PixelValueTransformationSequence = sequence_of(
            RescaleSlope=decimal(scale[0]), RescaleIntercept=decimal(scale[1]), RescaleType="US")
    return item


def shared(case, thickness):
    return item_of(PixelMeasuresSequence=sequence_of(PixelSpacing=decimals([case.spacing[1], case.spacing[0]]),
                                                     SliceThickness=decimal(thickness)))


def frames_read(path, of_frames):
    stored = pydicom.dcmread(path).pixel_array
    return [scaled(values, scale) for values, scale in zip(stored.reshape(-1, *stored.shape[-2:]), of_frames)]


def stack(case, kind="plain"):
    rng = case.rng
    gap = round(rng.uniform(0.5, 6), 3)
    corners = stack_corners(case, kind, rng.randint(5, 8), gap)
    count = len(corners)
    times = rng.choice([1, 1, 2, 3]) if kind == "plain" else 1
    order = [(time, at) for time in range(times) for at in range(count)]
    how = rng.choice(["rising", "falling", "mixed"])
    if how == "falling":
        order.reverse()
    elif how == "mixed":
        rng.shuffle(order)
    by_place = scales(rng, count * times)
    of_frames = [by_place[time * count + at] for time, at in order]
    ds = case.data_set()
    bits = rng.choice([8, 16, 32])
    stored_bits = 12 if bits == 16 else (20 if bits == 32 else 8)
    stored = case.values(count * times, bits, stored_bits)
    case.pixels(ds, stored, bits, stored_bits)
    ds.SharedFunctionalGroupsSequence = Sequence([shared(case, gap)])
    has_turn = kind != "no direction"
    ds.PerFrameFunctionalGroupsSequence = Sequence(
        [group(corners[at], case.turn if has_turn else None, time + 1, scale)
         for (time, at), scale in zip(order, of_frames)])
    greys = dict(zip(order, frames_read(case.write(ds, "frames.dcm"), of_frames)))
    error = scale_error(list(zip(of_frames, stored)))
    for time in range(times):
        case.expect(numpy.stack([greys[time, at] for at in range(count)]),
                    case.affine(corners[0], end_to_end(corners)), error, known=has_turn)
    if kind in STACK_SENTENCES:
        worst, amount = stack_told(case, kind, corners)
        case.told("frames.dcm", STACK_SENTENCES[kind] % (amount if kind == "tilted" else
                                                         (order.index((0, worst)) + 1, amount)))
    if not has_turn:
        case.told("frames.dcm", "says where its frames lie, but not how they are turned: the sides of the patient are "
                  "not known")
    case.told("frames.dcm", scale_told("frames", [(scale or (1.0, 0.0))[0] for scale in of_frames], error))


def tilted(case):
    stack(case, "tilted")


def missing(case):
    stack(case, "missing")


def curved(case):
    stack(case, "curved")


def no_direction(case):
    axis = case.rng.randrange(3)
    rows = [[0, 1, 0], [1, 0, 0], [1, 0, 0]][axis]
    columns = [[0, 0, -1], [0, 0, -1], [0, 1, 0]][axis]
    case.turn = numpy.array([rows, columns, numpy.cross(rows, columns)], dtype=float)
    stack(case, "no direction")


def directions(case):
    """A localizer: several planes in one file."""
    rng = case.rng
    turns = [rotation(rng) for _ in range(3)]
    counts = [rng.randint(1, 3) for _ in turns]
    corners = [case.corner + numpy.array([rng.uniform(-50, 50) for _ in range(3)]) for _ in turns]
    order = [(plane, at) for plane in range(3) for at in range(counts[plane])]
    rng.shuffle(order)
    ds = case.data_set()
    case.pixels(ds, case.values(len(order)))
    ds.SharedFunctionalGroupsSequence = Sequence([shared(case, 4)])
    ds.PerFrameFunctionalGroupsSequence = Sequence(
        [group(corners[plane] + turns[plane][2] * 7 * at, turns[plane]) for plane, at in order])
    greys = dict(zip(order, frames_read(case.write(ds, "planes"), [None] * len(order))))
    for plane in dict.fromkeys(plane for plane, _ in order):
        step = turns[plane][2] * (7 if counts[plane] > 1 else 4)
        case.expect(numpy.stack([greys[plane, at] for at in range(counts[plane])]),
                    case.affine(corners[plane], step, turns[plane]))


def unequal(case):
    rng = case.rng
    count = rng.randint(4, 7)
    corners = stack_corners(case, "plain", count, 3)
    twice = rng.randrange(count)
    order = list(range(count))
    rng.shuffle(order)
    order.append(twice)
    ds = case.data_set()
    case.pixels(ds, case.values(count + 1))
    ds.SharedFunctionalGroupsSequence = Sequence([shared(case, 2)])
    ds.PerFrameFunctionalGroupsSequence = Sequence([group(corners[at], case.turn) for at in order])
    read = frames_read(case.write(ds, "twice"), [None] * len(order))
    case.expect(numpy.stack([read[order.index(at)] for at in range(count)]),
                case.affine(corners[0], case.turn[2] * 3))
    case.expect(read[-1][numpy.newaxis], case.affine(corners[twice], case.turn[2] * 2))
    case.told("twice", f"has frames whose places do not occur equally often (frame {count + 1}): they are shown as 2 "
              "volumes")


def one_place(case):
    """Moments: the volume's slices are the times."""
    rng = case.rng
    times = rng.randint(2, 6)
    order = list(range(times))
    rng.shuffle(order)
    ds = case.data_set()
    case.pixels(ds, case.values(times))
    ds.SharedFunctionalGroupsSequence = Sequence([shared(case, 2.5)])
    ds.PerFrameFunctionalGroupsSequence = Sequence([group(case.corner, case.turn, at + 1) for at in order])
    read = frames_read(case.write(ds, "moments"), [None] * times)
    case.expect(numpy.stack([read[order.index(at)] for at in range(times)]),
                case.affine(case.corner, case.turn[2] * 2.5))


def cine(case):
    """A film: by its frame time, by the pointer to it, or by what takes films only."""
    rng = case.rng
    kind = rng.choice(["time", "pointer", "rate", "modality"])
    case.modality = rng.choice(["US", "XA", "RF"]) if kind == "modality" else "OT"
    times = rng.randint(2, 6)
    ds = case.data_set()
    case.pixels(ds, case.values(times, 8), 8)
    ds.PixelSpacing = decimals([case.spacing[1], case.spacing[0]])
    if kind in ("time", "pointer"):
        ds.FrameTime = "33.3"
    if kind == "pointer":
        ds.FrameIncrementPointer = Tag(0x0018, 0x1063)
        ds.SpacingBetweenSlices = "3"
    if kind == "rate":
        ds.CineRate = "25"
    has_place = rng.random() < 0.5
    if has_place:
        case.place(ds, case.corner)
    step = 3.0 if kind == "pointer" else 1.0
    read = numpy.stack(frames_read(case.write(ds, "film"), [None] * times))
    if has_place:
        case.expect(read, case.affine(case.corner, case.turn[2] * step))
    else:
        case.expect(read, case.no_place(step), known=False)


def no_distance(case):
    """Frames that lie nowhere, as far as the file says."""
    ds = case.data_set()
    count = case.rng.randint(2, 6)
    case.pixels(ds, case.values(count))
    ds.PixelSpacing = decimals([case.spacing[1], case.spacing[0]])
    thickness = 1.0
    if case.rng.random() < 0.5:
        thickness = 2.25
        ds.SliceThickness = "2.25"
    read = numpy.stack(frames_read(case.write(ds, "frames"), [None] * count))
    case.expect(read, case.no_place(thickness), known=False)
    case.told("frames", "does not say how far its frames lie apart: they are taken in the file's order, %s mm from one "
              "to the next" % amount_text(thickness))


def run_length_pieces(case):
    """Every frame in several fragments, with a table of where frames begin, or without."""
    rng = case.rng
    case.width, case.height = rng.randint(20, 40), rng.randint(10, 30)  # enough for several pieces
    count = rng.randint(1, 5)
    has_table = rng.random() < 0.5
    ds = case.data_set()
    bits = rng.choice([8, 16])
    stored = case.values(count, bits)
    case.pixels(ds, stored, bits)
    case.place(ds, case.corner)
    ds.SpacingBetweenSlices = "2"
    ds.file_meta.TransferSyntaxUID = ExplicitVRLittleEndian
    ds.is_little_endian, ds.is_implicit_VR = True, False
    ds.compress(RLELossless, encoding_plugin="pydicom")
    packed = list(generate_pixel_data_frame(ds.PixelData, count))
    pieces = rng.randint(2, 4)
    ds.PixelData = encapsulate(packed, fragments_per_frame=pieces, has_bot=has_table)
    ds["PixelData"].VR = "OB"
    ds["PixelData"].is_undefined_length = True
    ds.file_meta.MediaStorageSOPClassUID = ds.SOPClassUID
    ds.file_meta.MediaStorageSOPInstanceUID = ds.SOPInstanceUID
    ds.save_as(case.path("pieces"), write_like_original=False)
    case.expect(stored, case.affine(case.corner, case.turn[2] * 2))


def nuclear(case):
    """Frames that are numbered by slice, by slice and time, or by what is no slice."""
    rng = case.rng
    case.modality = "NM"
    kind = rng.choice(["slices", "times", "views"])
    count, times = rng.randint(2, 5), rng.randint(2, 3) if kind == "times" else 1
    order = [(time, at) for time in range(times) for at in range(count)]
    rng.shuffle(order)
    ds = case.data_set()
    detector = item_of(ImagePositionPatient=decimals(case.corner),
                       ImageOrientationPatient=decimals(list(case.turn[0]) + list(case.turn[1])))
    ds.DetectorInformationSequence = Sequence([detector])
    ds.PixelSpacing = decimals([case.spacing[1], case.spacing[0]])
    gap = 2.5
    ds.SliceThickness = "2.5"
    if rng.random() < 0.5:
        gap = 3.5
        ds.SpacingBetweenSlices = "3.5"
    stored = case.values(count * times)
    case.pixels(ds, stored)
    if kind == "views":
        ds.FrameIncrementPointer = Tag(0x0054, 0x0010)
        ds.EnergyWindowVector = [at + 1 for _, at in order]
        case.write(ds, "nm.dcm")
        case.expect(stored, case.no_place(gap), known=False)
        case.told("nm.dcm", "has frames of several energy windows, detectors or views: they are shown one after the "
                  "other in the file's order, without a place in the patient")
        return
    ds.FrameIncrementPointer = Tag(0x0054, 0x0080)
    ds.SliceVector = [at + 1 for _, at in order]
    if kind == "times":
        ds.TimeSlotVector = [time + 1 for time, _ in order]
    case.write(ds, "nm.dcm")
    for time in range(times):
        case.expect(stored[[order.index((time, at)) for at in range(count)]],
                    case.affine(case.corner, case.turn[2] * gap))


def dose(case):
    rng = case.rng
    kind = rng.choice(["rising", "falling", "height", "uneven"])
    count, gap = rng.randint(4, 8), round(rng.uniform(1, 5), 2)
    offsets = [gap * at for at in range(count)]
    if kind == "height":
        case.turn = numpy.array([[1.0, 0, 0], [0, rng.choice([1, -1]), 0], [0, 0, 0]])
        case.turn[2] = numpy.cross(case.turn[0], case.turn[1])
        case.corner = numpy.array([float(decimal(number)) for number in case.corner])
    if kind == "uneven":
        offsets[-1] += gap * 2
        if rng.random() < 0.5:
            offsets = [-offset for offset in offsets]
    if kind == "falling":
        offsets = [-offset for offset in offsets]
    case.modality = "RTDOSE"
    ds = case.data_set()
    case.place(ds, case.corner)
    scaling = float(decimal(10 ** rng.uniform(-7, -2)))
    ds.DoseGridScaling = decimal(scaling)
    case.pixels(ds, case.values(count, 32, 28), 32, 28)
    heights = [case.corner[2] + offset for offset in offsets]
    ds.GridFrameOffsetVector = decimals(heights if kind == "height" else offsets)
    sign = case.turn[2][2] if kind == "height" else 1.0
    read = frames_read(case.write(ds, "dose.dcm"), [(scaling, 0.0)] * count)
    placed = sorted(((sign * offset, at) for at, offset in enumerate(offsets)), key=lambda one: one[0])
    corners = [case.corner + case.turn[2] * offset for offset, _ in placed]
    case.expect(numpy.stack([read[at] for _, at in placed]), case.affine(corners[0], end_to_end(corners)))
    if kind == "uneven":
        worst, amount = stack_told(case, "missing", corners)
        case.told("dose.dcm", STACK_SENTENCES["missing"] % (placed[worst][1] + 1, amount))


def dose_offsets_short(case):
    """A list of offsets that does not fit the frames says nothing."""
    count = case.rng.randint(3, 5)
    case.modality = "RTDOSE"
    ds = case.data_set()
    case.place(ds, case.corner)
    ds.DoseGridScaling = "0.001"
    ds.SliceThickness = "2"
    case.pixels(ds, case.values(count, 32, 28), 32, 28)
    ds.GridFrameOffsetVector = decimals(range(count - 1))
    read = frames_read(case.write(ds, "dose.dcm"), [(0.001, 0.0)] * count)
    case.expect(numpy.stack(read), case.affine(case.corner, case.turn[2] * 2))
    case.told("dose.dcm", "has a list of frame offsets that does not fit its frames: where they lie is not known")
    case.told("dose.dcm", "does not say how far its frames lie apart: they are taken in the file's order, 2 mm from one "
              "to the next")


KINDS = [stack, tilted, missing, curved, no_direction, directions, unequal, one_place, cine, no_distance,
         run_length_pieces, nuclear, dose, dose_offsets_short]
