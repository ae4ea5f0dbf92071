"""Cases of one DICOM file with one picture: values, scales, tables, colours, pixel sizes, headers."""
import io

import numpy
import pydicom
from pydicom import filewriter
from pydicom.dataset import Dataset
from pydicom.filebase import DicomBytesIO
from pydicom.pixel_data_handlers.util import apply_color_lut, apply_modality_lut, convert_color_space
from pydicom.sequence import Sequence
from pydicom.uid import (ExplicitVRBigEndian, ExplicitVRLittleEndian, ImplicitVRLittleEndian, JPEGBaseline8Bit,
                         RLELossless)

from dicom_case import decimal, item_of, scale_error, scale_told, scaled


def greys_read(path):
    ds = pydicom.dcmread(path)
    return apply_modality_lut(ds.pixel_array, ds).astype(numpy.float64).reshape(-1, ds.Rows, ds.Columns)


def grey(case, photometric="MONOCHROME2"):
    rng = case.rng
    bits = rng.choice([8, 16, 16, 32])
    stored = bits if bits != 16 else rng.choice([16, 14, 12, 10])
    is_signed = rng.random() < 0.4
    ds = case.data_set()
    case.place(ds, case.corner)
    thickness = 1.0  # where the file does not say
    if rng.random() < 0.7:
        thickness = round(rng.uniform(0.5, 5), 3)
        ds.SliceThickness = decimal(thickness)
    values = case.values(1, bits, stored, is_signed)
    if bits == 32 and rng.random() < 0.5:
        # All that 32 bits can be: four numbers more than there are levels.
        values[0, 0, 0], values[0, 0, 1] = (-2**31, 2**31 - 1) if is_signed else (0, 2**32 - 1)
    case.pixels(ds, values, bits, stored, is_signed)
    scale = None
    if rng.random() < 0.7:
        scale = float(decimal(rng.choice([1, -1]) * 10 ** rng.uniform(-6, 4))), float(decimal(rng.uniform(-2000, 2000)))
        ds.RescaleSlope, ds.RescaleIntercept = decimal(scale[0]), decimal(scale[1])
    ds.PhotometricInterpretation = photometric
    greys = greys_read(case.write(ds, "one.dcm"))
    error = scale_error([(scale, values)])
    case.expect(greys, case.affine(case.corner, case.turn[2] * thickness), error)
    case.told("one.dcm", scale_told("frames", [abs(scale[0] if scale else 1.0)], error))


def grey_inverted(case):
    """Shown with dark and bright exchanged; greys are the same."""
    grey(case, "MONOCHROME1")


def grey_table(case):
    rng = case.rng
    ds = case.data_set()
    case.place(ds, case.corner)
    ds.SliceThickness = "2"
    case.pixels(ds, case.values(1, 8), 8)
    count, first = rng.randint(2, 256), rng.randint(0, 200)
    table = Dataset()
    table.add_new(0x00283002, "US", [count, first, 16])
    table.add_new(0x00283006, "US", [rng.randrange(65536) for _ in range(count)])
    ds.ModalityLUTSequence = Sequence([table])
    greys = greys_read(case.write(ds, "table"))
    case.expect(greys, case.affine(case.corner, case.turn[2] * 2))


def packed_of(colors):
    colors = colors.astype(numpy.int64)
    return (colors[..., 0] | colors[..., 1] << 8 | colors[..., 2] << 16)[numpy.newaxis]


def palette(case, is_signed=False):
    """Colours by number; the table's descriptor may be written as signed numbers."""
    rng = case.rng
    ds = case.data_set()
    case.place(ds, case.corner)
    ds.SliceThickness = "1.5"
    ds.PhotometricInterpretation = "PALETTE COLOR"
    case.pixels(ds, case.values(1, 8), 8)
    count = rng.randint(256 - 20, 256)
    tables = []
    for color, tag in enumerate((0x00281101, 0x00281102, 0x00281103)):
        ds.add_new(tag, "SS" if is_signed else "US", [count, 0, 16])
        tables.append(numpy.array([rng.randrange(65536) for _ in range(count)], "<u2"))
        ds.add_new(tag + 0x100, "OW", tables[color].tobytes())
    if case.syntax == ExplicitVRBigEndian:
        case.syntax = ExplicitVRLittleEndian
    read = pydicom.dcmread(case.write(ds, "palette.dcm"))
    if is_signed:
        numbers = numpy.minimum(read.pixel_array, count - 1)
        colors = numpy.stack([table[numbers] >> 8 for table in tables], axis=-1)
    else:
        colors = apply_color_lut(read.pixel_array, read) >> 8
    case.expect(packed_of(colors), case.affine(case.corner, case.turn[2] * 1.5), color=0)


def palette_signed(case):
    palette(case, True)


def color(case):
    rng = case.rng
    ds = case.data_set()
    case.place(ds, case.corner)
    ds.SliceThickness = "1.5"
    kind = rng.choice(["RGB", "YBR_FULL"])
    ds.PhotometricInterpretation = kind
    values = numpy.array([rng.randrange(256) for _ in range(case.height * case.width * 3)], numpy.uint8)
    case.pixels(ds, values.reshape(case.height, case.width, 3), 8)
    colors = pydicom.dcmread(case.write(ds, "color.dcm")).pixel_array
    if kind == "YBR_FULL":
        colors = convert_color_space(colors, kind, "RGB")
    case.expect(packed_of(colors), case.affine(case.corner, case.turn[2] * 1.5), color=int(kind != "RGB"))  # rounding


def region(x, y, units=3, form=1):
    """A part of an ultrasound picture. x, y: cm of a pixel; form: 1 is a flat picture."""
    return item_of(RegionSpatialFormat=form, RegionDataType=1, PhysicalUnitsXDirection=units,
                   PhysicalUnitsYDirection=units, PhysicalDeltaX=x, PhysicalDeltaY=y, RegionLocationMinX0=0,
                   RegionLocationMinY0=0, RegionLocationMaxX1=1, RegionLocationMaxY1=1)


def ultrasound(case):
    """Pixel sizes that the picture's regions say, which may differ, or be of things that are no lengths."""
    rng = case.rng
    case.modality = "US"
    ds = case.data_set()
    case.pixels(ds, case.values(1, 8), 8)
    kind = rng.choice(["one", "curve first", "two alike", "two unlike", "times only"])
    x, y = round(rng.uniform(0.005, 0.1), 6), round(rng.uniform(0.005, 0.1), 6)
    regions = [region(x, y)]
    if kind == "curve first":
        regions.insert(0, region(0.5, 0.25, form=2))
    elif kind == "two alike":
        regions.append(region(-x, y))
    elif kind == "two unlike":
        regions.append(region(x * 2, y))
        case.told("us.dcm", "has regions whose pixels differ in size: lengths are right in the first of them only")
    elif kind == "times only":
        regions = [region(x, y, units=4)]
        x = y = 0.1
    ds.SequenceOfUltrasoundRegions = Sequence(regions)
    case.spacing = [x * 10, y * 10]
    case.expect(greys_read(case.write(ds, "us.dcm")), case.no_place(1.0), known=False)


def proportion(case):
    """Only the proportion of a pixel's sides is said: height, width."""
    rng = case.rng
    ds = case.data_set()
    case.pixels(ds, case.values(1, 8), 8)
    height, width = rng.randint(1, 9), rng.randint(1, 9)
    ds.PixelAspectRatio = [height, width]
    case.spacing = [1.0, height / width]
    case.expect(greys_read(case.write(ds, "x.dcm")), case.no_place(1.0), known=False)


def real_world(case):
    """Values of the real world: greys where the file has no other scale, and where they hold for all that is stored."""
    rng = case.rng
    ds = case.data_set()
    case.place(ds, case.corner)
    ds.SliceThickness = "2"
    is_signed = rng.random() < 0.5
    stored = case.values(1, 16, 12, is_signed)
    case.pixels(ds, stored, 16, 12, is_signed)
    lowest = -2048 if is_signed else 0
    kind = rng.choice(["alone", "alone", "in group", "beside", "same", "part", "two", "table"])
    slope, intercept = float(decimal(rng.uniform(0.001, 9))), float(decimal(rng.uniform(-50, 50)))
    mapping = item_of(RealWorldValueSlope=slope, RealWorldValueIntercept=intercept, LUTLabel="X")
    mapping.add_new(0x00409216, "SS" if is_signed else "US", lowest)
    mapping.add_new(0x00409211, "SS" if is_signed else "US", lowest + (4095 if kind != "part" else 1000))
    if kind == "table":
        del mapping.RealWorldValueSlope, mapping.RealWorldValueIntercept
        mapping.RealWorldValueLUTData = [1.0] * 4096
    mappings = [mapping] * (2 if kind == "two" else 1)
    if kind == "in group":
        ds.SharedFunctionalGroupsSequence = Sequence([item_of(RealWorldValueMappingSequence=Sequence(mappings))])
    else:
        ds.RealWorldValueMappingSequence = Sequence(mappings)
    scale = (slope, intercept) if kind in ("alone", "in group", "same") else None
    if kind in ("beside", "same"):
        scale = scale or (2.0, 1.0)
        ds.RescaleSlope, ds.RescaleIntercept = decimal(scale[0]), decimal(scale[1])
    case.write(ds, "x.dcm")
    case.expect(scaled(stored, scale), case.affine(case.corner, case.turn[2] * 2))
    if kind == "beside":
        case.told("x.dcm", "names real-world values beside its rescale: greys are those of the rescale")
    if kind in ("part", "two", "table"):
        case.told("x.dcm", "names real-world values in a way that is not read (a table, several, or not for all "
                  "values): stored values are shown as they are")


def wrong_syntax(case):
    """The header names implicit elements and the data set has explicit ones, or the other way round."""
    ds = case.data_set()
    case.place(ds, case.corner)
    ds.SliceThickness = "3"
    values = case.values(1, 16, 12)
    case.pixels(ds, values, 16, 12)
    is_implicit = case.rng.random() < 0.5
    meta = ds.file_meta
    meta.TransferSyntaxUID = ExplicitVRLittleEndian if is_implicit else ImplicitVRLittleEndian
    meta.MediaStorageSOPClassUID, meta.MediaStorageSOPInstanceUID = ds.SOPClassUID, ds.SOPInstanceUID
    head = io.BytesIO()
    head.write(b"\0" * 128 + b"DICM")
    filewriter.write_file_meta_info(head, meta, enforce_standard=True)
    body = DicomBytesIO()
    body.is_little_endian, body.is_implicit_VR = True, is_implicit
    ds.is_little_endian, ds.is_implicit_VR = True, is_implicit
    del ds.file_meta
    filewriter.write_dataset(body, ds)
    with open(case.path("wrong.dcm"), "wb") as file:
        file.write(head.getvalue() + body.getvalue())
    case.expect(values, case.affine(case.corner, case.turn[2] * 3))
    case.told("wrong.dcm", "says that its elements have forms (explicit), but they have none; read as written"
              if is_implicit else
              "says that its elements have no forms (implicit), but they have; read as written")


def frames_none(case):
    """NumberOfFrames is 0."""
    ds = case.data_set()
    case.place(ds, case.corner)
    ds.SliceThickness = "3"
    if case.syntax == RLELossless:
        case.syntax = ExplicitVRLittleEndian
    case.pixels(ds, case.values(1, 16), 16)
    greys = greys_read(case.write(ds, "none.dcm"))
    ds.NumberOfFrames = 0
    case.file_nb -= 1
    if case.syntax == ExplicitVRBigEndian:
        words = numpy.frombuffer(ds.PixelData, ">u2")
        ds.PixelData = words.astype("<u2").tobytes()
    case.write(ds, "none.dcm")
    case.expect(greys, case.affine(case.corner, case.turn[2] * 3))
    case.told("none.dcm", "says that it has 0 frames; there is 1")


def refused(case):
    """What cannot be read says why."""
    rng = case.rng
    ds = case.data_set()
    case.place(ds, case.corner)
    case.pixels(ds, case.values(1, 16), 16)
    case.syntax = ExplicitVRLittleEndian
    kind = rng.choice(["packed", "short", "bits", "nothing", "size"])
    if kind == "nothing":
        del ds.PixelData
        case.told("x.dcm", "holds no image (SecondaryCaptureImageStorage)")
    elif kind == "short":
        whole = len(ds.PixelData)
        ds.PixelData = ds.PixelData[:whole // 4 * 2]
        case.told("x.dcm", "has fewer pixels than it says (%d of %d bytes)" % (whole // 4 * 2, whole))
    elif kind == "bits":
        ds.HighBit = 7
        case.told("x.dcm", "has bits that do not fit one another (16 stored of 16, highest 7)")
    elif kind == "size":
        ds.Rows = 0
        case.told("x.dcm", "has no usable size (%d x 0 pixels)" % case.width)
    path = case.write(ds, "x.dcm")
    if kind == "packed":
        # pydicom writes no pixels in a form that it has not packed.
        with open(path, "rb") as file:
            content = file.read()
        meta_end = content.index(b"1.2.840.10008.1.2.1\0")
        body = content[meta_end + 20:]
        rest = body.index(b"\x08\0\x16\0")
        pixels_at = body.rindex(b"\xe0\x7f\x10\0OW")
        packed = b"\xe0\x7f\x10\0OB\0\0\xff\xff\xff\xff\xfe\xff\0\xe0\0\0\0\0\xfe\xff\0\xe0\4\0\0\0\xff\xd8\xff\xd9" \
                 b"\xfe\xff\xdd\xe0\0\0\0\0"
        name = (JPEGBaseline8Bit + "\0").encode()
        name += b"\0" * (len(name) % 2)
        between = body[:rest]
        head = content[:meta_end - 2] + len(name).to_bytes(2, "little") + name + between
        length_at = 128 + 4 + 8
        length = int.from_bytes(head[length_at:length_at + 4], "little") + len(name) - 20
        head = head[:length_at] + length.to_bytes(4, "little") + head[length_at + 4:]
        with open(path, "wb") as file:
            file.write(head + body[rest:pixels_at] + packed)
        case.told("x.dcm", "has pixels that cannot be decoded (frame 1: its beginning is damaged or of a form that is not read)")


KINDS = [grey, grey_inverted, grey_table, palette, palette_signed, color, ultrasound, proportion, real_world,
         wrong_syntax, frames_none, refused]
