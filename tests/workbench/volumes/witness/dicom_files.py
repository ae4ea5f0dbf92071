"""DICOM files, written by pydicom: single images, series, files of several frames. What they hold is noted by a model
of the format, for pydicom leaves the geometry to its user."""
import os

import numpy
import pydicom
from pydicom.dataset import Dataset, FileDataset, FileMetaDataset
from pydicom.uid import ExplicitVRBigEndian, ExplicitVRLittleEndian, ImplicitVRLittleEndian

SYNTAXES = [ImplicitVRLittleEndian, ExplicitVRLittleEndian, ExplicitVRBigEndian]
CT_IMAGE = "1.2.840.10008.5.1.4.1.1.2"


def decimal(number):
    """As a decimal string of at most 16 letters."""
    return "%.10g" % number


def affine_of(corner, row, column, spacing, step):
    """Voxel index to NIfTI's millimetres: DICOM counts to the left and the back. spacing: along x, along y."""
    matrix = numpy.zeros((3, 4))
    matrix[:, 0] = numpy.asarray(row) * spacing[0]
    matrix[:, 1] = numpy.asarray(column) * spacing[1]
    matrix[:, 2] = step
    matrix[:, 3] = corner
    return matrix * numpy.array([[-1.0], [-1.0], [1.0]])


def image(stored, syntax=ExplicitVRLittleEndian, series="1.2.3", number=1, slope=None, intercept=None, place=None,
          bits=None):
    """A data set of one grey slice. stored: rows of columns. place: corner, row, column, spacing (along x, y)."""
    meta = FileMetaDataset()
    meta.MediaStorageSOPClassUID = CT_IMAGE
    meta.MediaStorageSOPInstanceUID = "%s.%d" % (series, number)
    meta.TransferSyntaxUID = syntax
    data = FileDataset("", {}, file_meta=meta, preamble=b"\0" * 128)
    data.is_little_endian = syntax != ExplicitVRBigEndian
    data.is_implicit_VR = syntax == ImplicitVRLittleEndian
    data.SOPClassUID = CT_IMAGE
    data.SOPInstanceUID = meta.MediaStorageSOPInstanceUID
    data.StudyInstanceUID = "1.2"
    data.SeriesInstanceUID = series
    data.Modality = "CT"
    data.InstanceNumber = number
    data.Rows, data.Columns = stored.shape[-2:]
    data.SamplesPerPixel = 1
    data.PhotometricInterpretation = "MONOCHROME2"
    data.BitsAllocated = stored.dtype.itemsize * 8
    data.BitsStored = bits or data.BitsAllocated
    data.HighBit = data.BitsStored - 1
    data.PixelRepresentation = 1 if stored.dtype.kind == "i" else 0
    if slope is not None:
        data.RescaleSlope = decimal(slope)
        data.RescaleIntercept = decimal(intercept or 0.0)
    if place is not None:
        corner, row, column, spacing = place
        data.ImagePositionPatient = [decimal(value) for value in corner]
        data.ImageOrientationPatient = [decimal(value) for value in list(row) + list(column)]
        data.PixelSpacing = [decimal(spacing[1]), decimal(spacing[0])]
    order = "<" if data.is_little_endian else ">"
    data.PixelData = stored.astype(stored.dtype.newbyteorder(order)).tobytes()
    if len(data.PixelData) % 2:
        data.PixelData += b"\0"
    return data


def save(data, path):
    data.save_as(path, write_like_original=False)


def turned(random):
    axes, _ = numpy.linalg.qr(random.normal(size=(3, 3)))
    return numpy.round(axes[:, 0], 10), numpy.round(axes[:, 1], 10)


def stored_of(random, kind, shape, bits=None):
    ends = numpy.iinfo(kind)
    high = 2 ** (bits - (ends.min < 0)) - 1 if bits else ends.max
    low = -high - 1 if ends.min < 0 else 0
    return random.integers(low, high, shape, dtype=kind, endpoint=True)


def single_files(witness, random):
    for index in range(90):
        kind, bits = [("u1", None), ("u2", 12), ("i2", None), ("u2", None), ("i2", 14)][index % 5]
        stored = stored_of(random, kind, tuple(random.integers(3, 9, 2)), bits)
        slope, intercept = [(None, None), (1.0, -1024.0), (0.125, 3.5)][index // 5 % 3]
        row, column = turned(random)
        corner = numpy.round(random.uniform(-100, 100, 3), 3)
        spacing = numpy.round(random.uniform(0.3, 2.0, 2), 4)
        data = image(stored, SYNTAXES[index % 3], "1.2.3.%d" % index, 1, slope, intercept,
                     (corner, row, column, spacing), bits)
        name = "dicom/single/d%03d.dcm" % index
        save(data, witness.path(name))
        witness.item(name, dicom=True)
        values = pydicom.dcmread(witness.path(name)).pixel_array.astype(float) * (slope or 1.0) + (intercept or 0.0)
        step = numpy.cross(row, column)  # one slice: a millimetre thick where the file does not say
        witness.volume(values.T[:, :, None], affine_of(corner, row, column, spacing, step), "qform")


def series(witness, random):
    for index in range(12):
        slices = int(random.integers(2, 6))
        row, column = turned(random)
        normal = numpy.cross(row, column)
        gap = round(float(random.uniform(0.5, 5.0)), 3)
        corner = random.uniform(-100, 100, 3)
        spacing = numpy.round(random.uniform(0.3, 2.0, 2), 4)
        slopes = [1.0] * slices if index % 2 else [0.25 * int(random.integers(1, 5)) for _ in range(slices)]
        planes = []
        order = random.permutation(slices)
        for at in range(slices):
            stored = stored_of(random, "i2", (4, 6))
            data = image(stored, SYNTAXES[index % 3], "1.2.4.%d" % index, int(order[at]) + 1, slopes[at], -7.0,
                         (numpy.round(corner + normal * gap * at, 6), row, column, spacing))
            save(data, witness.path("dicom/series/s%02d/i%02d.dcm" % (index, order[at])))
            planes.append(stored.T * slopes[at] - 7.0)
        witness.item("dicom/series/s%02d" % index, dicom=True, files=slices)
        witness.volume(numpy.stack(planes, axis=2), affine_of(corner, row, column, spacing, normal * gap), "qform",
                       0.0 if len(set(slopes)) == 1 else min(slopes) / 2)


def make(witness):
    random = numpy.random.default_rng(21)
    single_files(witness, random)
    series(witness, random)
