#!/usr/bin/env python3
"""make_dicom_cases.py FOLDER COUNT SEED: writes COUNT random DICOM cases with what must be read in them.

Every case is a folder of files, and beside it a text of the volumes that they hold and the words of every problem:
    volume NX NY NZ KNOWN COLOR ERROR FILE A00 .. A23    KNOWN: 1 when the sides of the patient are known; ERROR: what
                                                         greys may be off; FILE: float64 greys (colours: packed), x first
    problem NAME WORDS                                   NAME: the file told of, or "*"
Greys come from pydicom, which reads the files back; affines from a model of the positions that were written.
"""
import os
import random
import sys

import numpy as np
import pydicom
from pydicom.dataset import Dataset, FileMetaDataset
from pydicom.pixel_data_handlers.util import apply_color_lut, apply_modality_lut, convert_color_space
from pydicom.sequence import Sequence
from pydicom.uid import (DeflatedExplicitVRLittleEndian, ExplicitVRBigEndian, ExplicitVRLittleEndian,
                         ImplicitVRLittleEndian, RLELossless, generate_uid)

IMAGE_KIND = '1.2.840.10008.5.1.4.1.1.7'
LEVEL_STEPS = 2.0 ** 30  # a common scale has at least so many


def rotation(rng, small=None):
    """Rows are the directions of x, y and the normal."""
    if small is None:
        quaternion = np.array([rng.gauss(0, 1) for _ in range(4)])
    else:
        quaternion = np.array([1.0] + [rng.uniform(-small, small) for _ in range(3)])
    w, x, y, z = quaternion / np.linalg.norm(quaternion)
    return np.array([[1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)],
                     [2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)],
                     [2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)]])


def decimal(number):
    """A decimal string of at most 16 letters."""
    for digits in range(15, 0, -1):
        text = f'{number:.{digits}g}'
        if len(text) <= 16:
            return text
    return '0'


def decimals(numbers):
    return [decimal(float(number)) for number in numbers]


class Case:
    def __init__(self, folder, name, rng):
        self.rng = rng
        self.name = name
        self.root = folder
        self.folder = os.path.join(folder, name)
        os.makedirs(self.folder)
        self.lines = []
        self.volume_nb = 0
        self.study = generate_uid(entropy_srcs=[name, 'study'])
        self.series = generate_uid(entropy_srcs=[name, 'series'])
        self.width, self.height = rng.randint(2, 7), rng.randint(2, 7)
        self.spacing = [round(rng.uniform(0.3, 3), 4) for _ in range(2)]  # of columns, of rows
        self.turn = rotation(rng)
        self.corner = np.array([rng.uniform(-200, 200) for _ in range(3)])
        self.syntax = rng.choice([ImplicitVRLittleEndian, ExplicitVRLittleEndian, ExplicitVRBigEndian,
                                  DeflatedExplicitVRLittleEndian, RLELossless])

    def data_set(self, number=1):
        ds = Dataset()
        ds.file_meta = FileMetaDataset()
        ds.SOPClassUID = IMAGE_KIND
        ds.SOPInstanceUID = generate_uid(entropy_srcs=[self.name, str(number), str(self.rng.random())])
        ds.StudyInstanceUID, ds.SeriesInstanceUID = self.study, self.series
        ds.Modality, ds.SeriesNumber, ds.InstanceNumber = 'MR', 3, number
        return ds

    def place(self, ds, corner, turn=None):
        turn = self.turn if turn is None else turn
        ds.ImagePositionPatient = decimals(corner)
        ds.ImageOrientationPatient = decimals(list(turn[0]) + list(turn[1]))
        ds.PixelSpacing = decimals([self.spacing[1], self.spacing[0]])

    def pixels(self, ds, values, bits=16, stored=None, is_signed=False):
        """values: frames, rows, columns; or rows, columns, 3 of 8 bits."""
        stored = stored or bits
        kind = {8: 'u1', 16: 'u2', 32: 'u4'}[bits]
        ds.Rows, ds.Columns = self.height, self.width
        is_color = values.shape[-1] == 3 and values.ndim == 3 and values.dtype == np.uint8
        ds.SamplesPerPixel = 3 if is_color else 1
        if is_color:
            ds.PlanarConfiguration = 0
        if 'PhotometricInterpretation' not in ds:
            ds.PhotometricInterpretation = 'RGB' if is_color else 'MONOCHROME2'
        if not is_color and values.shape[0] > 1:
            ds.NumberOfFrames = values.shape[0]
        ds.BitsAllocated, ds.BitsStored, ds.HighBit = bits, stored, stored - 1
        ds.PixelRepresentation = 1 if is_signed else 0
        # Signed numbers with their sign in all bits: pydicom does not look at how many are stored.
        words = (values.astype(np.int64) & (2 ** bits - 1)).astype('<' + kind)
        data = words.tobytes()
        ds.PixelData = data + b'\0' * (len(data) % 2)
        ds['PixelData'].VR = 'OB' if bits == 8 else 'OW'

    def write(self, ds, name):
        path = os.path.join(self.folder, name)
        ds.file_meta.TransferSyntaxUID = self.syntax
        ds.file_meta.MediaStorageSOPClassUID = ds.SOPClassUID
        ds.file_meta.MediaStorageSOPInstanceUID = ds.SOPInstanceUID
        ds.is_little_endian = self.syntax != ExplicitVRBigEndian
        ds.is_implicit_VR = self.syntax == ImplicitVRLittleEndian
        if self.syntax == RLELossless:
            ds.file_meta.TransferSyntaxUID = ExplicitVRLittleEndian
            try:
                ds.compress(RLELossless, encoding_plugin='pydicom')
            except ValueError:
                pass  # bits that the encoder does not take: uncompressed
        if not ds.is_little_endian:
            size = ds.BitsAllocated // 8
            words = np.frombuffer(ds.PixelData, dtype='u1')
            if size > 1:
                words = words.reshape(-1, size)[:, ::-1]
            ds.PixelData = words.tobytes()
        ds.save_as(path, write_like_original=False)
        return path

    def affine(self, corner, step, turn=None):
        """Voxels to millimetres to the right, front and top."""
        turn = self.turn if turn is None else turn
        columns = np.column_stack([turn[0] * self.spacing[0], turn[1] * self.spacing[1], step, corner])
        return np.diag([-1, -1, 1]) @ columns

    def expect(self, greys, affine, error=0.0, known=True, color=False):
        """greys: slices, rows, columns."""
        name = f'{self.name}.{self.volume_nb}.f64'
        self.volume_nb += 1
        np.asarray(greys, dtype='<f8').tofile(os.path.join(self.root, name))
        nz, ny, nx = np.asarray(greys).shape
        numbers = ' '.join(repr(float(number)) for number in np.asarray(affine).reshape(-1))
        self.lines.append(f'volume {nx} {ny} {nz} {int(known)} {int(color)} {error!r} {name} {numbers}')

    def problem(self, name, words):
        self.lines.append(f'problem {name} {words}')

    def finish(self):
        with open(os.path.join(self.root, self.name + '.txt'), 'w', encoding='utf-8') as text:
            text.write('\n'.join(self.lines) + '\n')


def random_values(case, frames, bits=16, stored=None, is_signed=False):
    stored = stored or bits
    low, high = (-2 ** (stored - 1), 2 ** (stored - 1)) if is_signed else (0, 2 ** stored)
    shape = frames, case.height, case.width
    return np.array([case.rng.randrange(low, high) for _ in range(int(np.prod(shape)))], dtype=np.int64).reshape(shape)


def greys_read(path):
    ds = pydicom.dcmread(path)
    return apply_modality_lut(ds.pixel_array, ds).astype(np.float64).reshape(-1, ds.Rows, ds.Columns)


def common_error(parts):
    """parts: slope, greys. What the best common scale may be off: half of the finest step, or what levels can be."""
    varied = [abs(slope) for slope, greys in parts if greys.min() < greys.max()]
    finest = min(varied or [abs(slope) for slope, _ in parts])
    low = min(greys.min() for _, greys in parts)
    high = max(greys.max() for _, greys in parts)
    return max(finest, (high - low) / LEVEL_STEPS) / 2


# Single files


def single_grey(case):
    rng = case.rng
    bits = rng.choice([8, 16, 16, 32])
    stored = bits if bits != 16 else rng.choice([16, 12, 10])
    is_signed = rng.random() < 0.4
    ds = case.data_set()
    case.place(ds, case.corner)
    thickness = round(rng.uniform(0.5, 5), 3)
    ds.SliceThickness = decimal(thickness)
    values = random_values(case, 1, bits, stored, is_signed)
    case.pixels(ds, values, bits, stored, is_signed)
    slope = 1.0
    if rng.random() < 0.7:
        slope = float(decimal(rng.choice([1, -1]) * 10 ** rng.uniform(-6, 4)))
        ds.RescaleSlope, ds.RescaleIntercept = decimal(slope), decimal(rng.uniform(-2000, 2000))
    if rng.random() < 0.3:
        ds.PhotometricInterpretation = 'MONOCHROME1'
    greys = greys_read(case.write(ds, 'one.dcm'))
    error = abs(slope) * 2 if bits == 32 else 0.0
    case.expect(greys, case.affine(case.corner, case.turn[2] * thickness), error)


def single_table(case):
    rng = case.rng
    ds = case.data_set()
    case.place(ds, case.corner)
    ds.SliceThickness = '2'
    case.pixels(ds, random_values(case, 1, 8), 8)
    count, first = rng.randint(2, 256), rng.randint(0, 200)
    table = Dataset()
    table.add_new(0x00283002, 'US', [count, first, 16])
    table.add_new(0x00283006, 'US', [rng.randrange(65536) for _ in range(count)])
    ds.ModalityLUTSequence = Sequence([table])
    greys = greys_read(case.write(ds, 'table'))
    case.expect(greys, case.affine(case.corner, case.turn[2] * 2))


def single_color(case):
    rng = case.rng
    ds = case.data_set()
    case.place(ds, case.corner)
    ds.SliceThickness = '1.5'
    kind = rng.choice(['RGB', 'YBR_FULL', 'PALETTE COLOR'])
    ds.PhotometricInterpretation = kind
    error = 0.0
    if kind == 'PALETTE COLOR':
        case.pixels(ds, random_values(case, 1, 8), 8)
        count = rng.randint(256 - 20, 256)
        for color, tag in enumerate((0x00281101, 0x00281102, 0x00281103)):
            ds.add_new(tag, 'US', [count, 0, 16])
            ds.add_new(tag + 0x100, 'OW', np.array([rng.randrange(65536) for _ in range(count)], '<u2').tobytes())
        if case.syntax == ExplicitVRBigEndian:
            case.syntax = ExplicitVRLittleEndian
        read = pydicom.dcmread(case.write(ds, 'palette.dcm'))
        colors = apply_color_lut(read.pixel_array, read) >> 8
    else:
        values = np.array([rng.randrange(256) for _ in range(case.height * case.width * 3)], np.uint8)
        case.pixels(ds, values.reshape(case.height, case.width, 3), 8)
        read = pydicom.dcmread(case.write(ds, 'color.dcm'))
        colors = read.pixel_array
        if kind == 'YBR_FULL':
            colors = convert_color_space(colors, kind, 'RGB')
            error = 1.0  # of every component: rounding
    colors = colors.astype(np.int64)
    packed = colors[..., 0] | colors[..., 1] << 8 | colors[..., 2] << 16
    case.expect(packed[np.newaxis], case.affine(case.corner, case.turn[2] * 1.5), error, color=True)


# Stacks: where slices lie, and what has to be said of it


def stack_corners(case, kind, nz, gap):
    """Corners from the lowest along the normal to the highest. nz is 5 or more."""
    rng = case.rng
    along = [np.array(case.turn[2]) * gap * at for at in range(nz)]
    if kind == 'tilted':
        # So that the last slice lies a pixel off at least.
        sideways = case.turn[1] * rng.choice([-1, 1]) * rng.uniform(0.3, 0.8) * max(gap, max(case.spacing))
        along = [offset + sideways * at for at, offset in enumerate(along)]
    elif kind == 'missing':
        gone = rng.randint(1, nz - 2)
        along = along[:gone] + along[gone + 1:]
    elif kind == 'curved':
        middle = nz // 2
        along[middle] = along[middle] + case.turn[0] * min(case.spacing) * rng.uniform(0.2, 0.4)
    return [case.corner + offset for offset in along]


STACK_WORDS = {'tilted': ('tilted by', 'tilted by'), 'missing': ('uneven distance', 'uneven distances'),
               'curved': ('beside the line', 'beside the line')}


def end_to_end(corners):
    return (corners[-1] - corners[0]) / (len(corners) - 1)


def scales(case, nz):
    """Slope and intercept of every slice."""
    rng = case.rng
    kind = rng.choice(['none', 'one', 'several', 'wide'])
    if kind == 'none':
        return [None] * nz
    if kind == 'one':
        return [(round(rng.uniform(0.1, 3), 3), round(rng.uniform(-1000, 100), 1))] * nz
    if kind == 'several':
        return [(round(rng.uniform(0.1, 3), 3), round(rng.uniform(-10, 10), 1)) for _ in range(nz)]
    return [(float(decimal(10 ** rng.uniform(-4, 1))), 0.0) for _ in range(nz)]


def stack_error(of_slices, slices):
    if all(one == of_slices[0] for one in of_slices):
        return 0.0
    return common_error([((one or (1.0, 0))[0], greys) for one, greys in zip(of_slices, slices)])


def series(case, kind):
    rng = case.rng
    nz = rng.randint(5, 8)
    gap = round(rng.uniform(0.5, 6), 3)
    corners = stack_corners(case, kind, nz, gap)
    nz = len(corners)
    numbers = list(range(1, nz + 1))
    order = rng.choice(['rising', 'falling', 'mixed'])
    if order == 'falling':
        numbers.reverse()
    elif order == 'mixed':
        rng.shuffle(numbers)
    of_slices = scales(case, nz)
    slices = []
    jitter = rotation(rng, 1e-6) if rng.random() < 0.5 else np.eye(3)
    for at, corner in enumerate(corners):
        ds = case.data_set(numbers[at])
        case.place(ds, corner, case.turn @ jitter if at % 2 else case.turn)
        if kind == 'no direction':
            del ds.ImageOrientationPatient
        if kind == 'no series':
            del ds.SeriesInstanceUID
        if of_slices[at]:
            ds.RescaleSlope, ds.RescaleIntercept = decimal(of_slices[at][0]), decimal(of_slices[at][1])
        stored = 12
        case.pixels(ds, random_values(case, 1, 16, stored), 16, stored)
        slices.append(greys_read(case.write(ds, f'{numbers[at]:03}.dcm')))
    error = stack_error(of_slices, slices)
    case.expect(np.concatenate(slices), case.affine(corners[0], end_to_end(corners)), error)
    if kind in STACK_WORDS:
        case.problem('*', STACK_WORDS[kind][0])
    if kind == 'no series':
        case.problem('*', 'names no series')


def series_no_direction(case):
    axis = case.rng.randrange(3)
    rows = [[0, 1, 0], [1, 0, 0], [1, 0, 0]][axis]
    columns = [[0, 0, -1], [0, 0, -1], [0, 1, 0]][axis]
    case.turn = np.array([rows, columns, np.cross(rows, columns)], dtype=float)
    series(case, 'no direction')
    case.lines[0] = case.lines[0].replace(' 1 0 ', ' 0 0 ', 1)
    case.problem('*', 'not how they are turned')


def series_twice(case):
    """One place twice, numbered from either end."""
    rng = case.rng
    nz, gap = rng.randint(4, 7), round(rng.uniform(1, 5), 2)
    corners = stack_corners(case, 'plain', nz, gap)
    twice = rng.randrange(nz)
    places = list(range(nz)) + [twice]
    is_falling = rng.random() < 0.5
    places.sort(reverse=is_falling)
    greys = {}
    second = None
    for number, at in enumerate(places, 1):
        ds = case.data_set(number)
        case.place(ds, corners[at])
        ds.SliceThickness = decimal(gap)
        case.pixels(ds, random_values(case, 1))
        read = greys_read(case.write(ds, f'{number:03}'))
        if at in greys:
            second = read, f'{number:03}'
        else:
            greys[at] = read
    case.expect(np.concatenate([greys[at] for at in range(nz)]), case.affine(corners[0], end_to_end(corners)))
    case.expect(second[0], case.affine(corners[twice], case.turn[2] * gap))
    case.problem(second[1], 'do not occur equally often')


def series_times(case):
    """Acquisitions with trigger times, or positions in time, or nothing that tells them."""
    rng = case.rng
    nz, gap = rng.randint(2, 5), round(rng.uniform(1, 5), 2)
    corners = stack_corners(case, 'plain', nz, gap)
    kind = rng.choice(['acquisition', 'trigger', 'both', 'position', 'nothing'])
    moments = {'acquisition': [(1, None, None), (2, None, None)], 'trigger': [(None, 0, None), (None, 33.5, None)],
               'both': [(1, 0, None), (1, 700, None), (2, 10, None)], 'position': [(None, None, 1), (None, None, 2)],
               'nothing': [(None, None, None)] * 2}[kind]
    files = [(time, at) for time in range(len(moments)) for at in range(nz)]
    if kind != 'nothing':
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
        case.pixels(ds, random_values(case, 1))
        greys[time, at] = greys_read(case.write(ds, f'{number:03}'))
    for time in range(len(moments)):
        case.expect(np.concatenate([greys[time, at] for at in range(nz)]),
                    case.affine(corners[0], end_to_end(corners)))
    if kind == 'nothing':
        case.problem('*', 'does not say which is earlier')


# Frames of one file


def group(case, corner, turn, time=None, scale=None):
    item, position, direction = Dataset(), Dataset(), Dataset()
    position.ImagePositionPatient = decimals(corner)
    item.PlanePositionSequence = Sequence([position])
    direction.ImageOrientationPatient = decimals(list(turn[0]) + list(turn[1]))
    item.PlaneOrientationSequence = Sequence([direction])
    if time is not None:
        content = Dataset()
        content.TemporalPositionIndex = time
        item.FrameContentSequence = Sequence([content])
    if scale is not None:
        values = Dataset()
        values.RescaleSlope, values.RescaleIntercept, values.RescaleType = decimal(scale[0]), decimal(scale[1]), 'US'
        item.PixelValueTransformationSequence = Sequence([values])
    return item


def shared(case, thickness):
    item, measures = Dataset(), Dataset()
    measures.PixelSpacing = decimals([case.spacing[1], case.spacing[0]])
    measures.SliceThickness = decimal(thickness)
    item.PixelMeasuresSequence = Sequence([measures])
    return item


def frames_read(path, of_frames):
    stored = pydicom.dcmread(path).pixel_array.astype(np.float64)
    return [values * (scale or (1.0, 0.0))[0] + (scale or (1.0, 0.0))[1]
            for values, scale in zip(stored.reshape(-1, *stored.shape[-2:]), of_frames)]


def frames(case, kind):
    rng = case.rng
    gap = round(rng.uniform(0.5, 6), 3)
    corners = stack_corners(case, kind, rng.randint(5, 8), gap)
    nz = len(corners)
    times = rng.choice([1, 1, 2, 3]) if kind == 'plain' else 1
    order = [(time, at) for time in range(times) for at in range(nz)]
    how = rng.choice(['rising', 'falling', 'mixed'])
    if how == 'falling':
        order.reverse()
    elif how == 'mixed':
        rng.shuffle(order)
    by_place = scales(case, nz * times)
    of_frames = [by_place[time * nz + at] for time, at in order]
    ds = case.data_set()
    bits = rng.choice([8, 16, 32])
    stored = 12 if bits == 16 else (20 if bits == 32 else 8)
    case.pixels(ds, random_values(case, nz * times, bits, stored), bits, stored)
    ds.SharedFunctionalGroupsSequence = Sequence([shared(case, gap)])
    ds.PerFrameFunctionalGroupsSequence = Sequence(
        [group(case, corners[at], case.turn, time + 1, scale) for (time, at), scale in zip(order, of_frames)])
    greys = dict(zip(order, frames_read(case.write(ds, 'frames.dcm'), of_frames)))
    whole = stack_error(of_frames, [greys[one] for one in order])
    for time in range(times):
        case.expect(np.stack([greys[time, at] for at in range(nz)]), case.affine(corners[0], end_to_end(corners)),
                    whole)
    if kind in STACK_WORDS:
        case.problem('frames.dcm', STACK_WORDS[kind][1])


def frames_directions(case):
    """A localizer: several planes in one file."""
    rng = case.rng
    turns = [rotation(rng) for _ in range(3)]
    nz = [rng.randint(1, 3) for _ in turns]
    corners = [case.corner + np.array([rng.uniform(-50, 50) for _ in range(3)]) for _ in turns]
    order = [(plane, at) for plane in range(3) for at in range(nz[plane])]
    rng.shuffle(order)
    ds = case.data_set()
    case.pixels(ds, random_values(case, len(order)))
    ds.SharedFunctionalGroupsSequence = Sequence([shared(case, 4)])
    ds.PerFrameFunctionalGroupsSequence = Sequence(
        [group(case, corners[plane] + turns[plane][2] * 7 * at, turns[plane]) for plane, at in order])
    greys = dict(zip(order, frames_read(case.write(ds, 'planes'), [None] * len(order))))
    for plane in range(3):
        step = turns[plane][2] * (7 if nz[plane] > 1 else 4)
        case.expect(np.stack([greys[plane, at] for at in range(nz[plane])]),
                    case.affine(corners[plane], step, turns[plane]))


def frames_unequal(case):
    rng = case.rng
    nz = rng.randint(4, 7)
    corners = stack_corners(case, 'plain', nz, 3)
    twice = rng.randrange(nz)
    order = list(range(nz))
    rng.shuffle(order)
    order.append(twice)
    ds = case.data_set()
    case.pixels(ds, random_values(case, nz + 1))
    ds.SharedFunctionalGroupsSequence = Sequence([shared(case, 2)])
    ds.PerFrameFunctionalGroupsSequence = Sequence([group(case, corners[at], case.turn) for at in order])
    read = frames_read(case.write(ds, 'twice'), [None] * len(order))
    case.expect(np.stack([read[order.index(at)] for at in range(nz)]), case.affine(corners[0], case.turn[2] * 3))
    case.expect(read[-1][np.newaxis], case.affine(corners[twice], case.turn[2] * 2))
    case.problem('twice', 'do not occur equally often')


def frames_of_one_place(case):
    """Moments: the volume's slices are the times."""
    rng = case.rng
    times = rng.randint(2, 6)
    order = list(range(times))
    rng.shuffle(order)
    ds = case.data_set()
    case.pixels(ds, random_values(case, times))
    ds.SharedFunctionalGroupsSequence = Sequence([shared(case, 2.5)])
    ds.PerFrameFunctionalGroupsSequence = Sequence([group(case, case.corner, case.turn, at + 1) for at in order])
    read = frames_read(case.write(ds, 'moments'), [None] * times)
    case.expect(np.stack([read[order.index(at)] for at in range(times)]),
                case.affine(case.corner, case.turn[2] * 2.5))


def dose(case):
    rng = case.rng
    kind = rng.choice(['rising', 'falling', 'height', 'uneven'])
    nz, gap = rng.randint(4, 8), round(rng.uniform(1, 5), 2)
    offsets = [gap * at for at in range(nz)]
    if kind == 'height':
        case.turn = np.array([[1.0, 0, 0], [0, rng.choice([1, -1]), 0], [0, 0, 0]])
        case.turn[2] = np.cross(case.turn[0], case.turn[1])
        case.corner = np.array([float(decimal(number)) for number in case.corner])
    if kind == 'uneven':
        offsets[-1] += gap * 2
    if kind == 'falling':
        offsets = [-offset for offset in offsets]
    ds = case.data_set()
    case.place(ds, case.corner)
    ds.Modality = 'RTDOSE'
    scaling = float(decimal(10 ** rng.uniform(-7, -2)))
    ds.DoseGridScaling = decimal(scaling)
    case.pixels(ds, random_values(case, nz, 32, 28), 32, 28)
    ds.GridFrameOffsetVector = decimals([case.corner[2] + offset for offset in offsets] if kind == 'height' else offsets)
    sign = case.turn[2][2] if kind == 'height' else 1.0
    read = frames_read(case.write(ds, 'dose.dcm'), [(scaling, 0.0)] * nz)
    placed = [(sign * offset, values) for offset, values in zip(offsets, read)]
    placed.sort(key=lambda one: one[0])
    corners = [case.corner + case.turn[2] * offset for offset, _ in placed]
    case.expect(np.stack([values for _, values in placed]), case.affine(corners[0], end_to_end(corners)))
    if kind == 'uneven':
        case.problem('dose.dcm', 'uneven distances')


KINDS = [single_grey, single_table, single_color,
         lambda case: series(case, 'plain'), lambda case: series(case, 'tilted'), lambda case: series(case, 'missing'),
         lambda case: series(case, 'curved'), lambda case: series(case, 'no series'), series_no_direction, series_twice,
         series_times,
         lambda case: frames(case, 'plain'), lambda case: frames(case, 'tilted'), lambda case: frames(case, 'missing'),
         lambda case: frames(case, 'curved'), frames_directions, frames_unequal, frames_of_one_place, dose]


def main():
    folder, count, seed = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
    os.makedirs(folder, exist_ok=True)
    for number in range(count):
        case = Case(folder, f'dicom_{number:04}', random.Random(f'{seed} {number}'))
        KINDS[number % len(KINDS)](case)
        case.finish()


main()
