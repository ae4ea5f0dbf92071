"""Makes segmentation objects and structure sets of many forms with pydicom, and the labels that each of them means.

    make_segmentations.py FOLDER

FOLDER/manifest.txt has a line per case: name (of structure sets it begins with "regions"), threshold or -, 1 where the
labels lie on the image's voxels or 0, what the error or the warnings, a "|" between them, must say or -. FOLDER/image.txt is the image: sizes, then the twelve numbers of its affine (to
the right, front and top). NAME.dcm is the object, NAME.raw its labels, a byte per voxel, NAME.grid the labels' own
geometry in the form of image.txt where they do not lie on the image.
"""

import pathlib
import sys

import numpy
import pydicom
from pydicom.dataset import Dataset, FileDataset, FileMetaDataset
from pydicom.encaps import encapsulate
from pydicom.sequence import Sequence
from pydicom.uid import DeflatedExplicitVRLittleEndian, ExplicitVRLittleEndian, RLELossless, generate_uid

SEGMENTATION = "1.2.840.10008.5.1.4.1.1.66.4"
LABEL_MAP = "1.2.840.10008.5.1.4.1.1.66.7"

random = numpy.random.default_rng(20)
size = numpy.array([12, 9, 7])
spacing = numpy.array([0.8, 1.1, 2.5])
turn = numpy.radians(10)
directions = numpy.array([[numpy.cos(turn), numpy.sin(turn), 0], [-numpy.sin(turn), numpy.cos(turn), 0], [0, 0, 1]])
corner = numpy.array([-31.5, 12.25, 80.0])


def place_of(voxel):
    """Left, back, top of a voxel of the image."""
    return corner + sum(voxel[axis] * spacing[axis] * directions[axis] for axis in range(3))


def decimal(number):
    return f"{number:.9g}"


def affine_text(count, first, steps):
    flip = numpy.array([-1, -1, 1])
    columns = [flip * step for step in steps] + [flip * first]
    rows = numpy.stack(columns, axis=1)
    return " ".join(str(n) for n in count) + " " + " ".join(repr(float(x)) for x in rows.ravel()) + "\n"


class Object:
    """A segmentation object while it is put together."""

    def __init__(self, kind="BINARY", sop_class=SEGMENTATION):
        meta = FileMetaDataset()
        meta.MediaStorageSOPClassUID = sop_class
        meta.MediaStorageSOPInstanceUID = generate_uid()
        meta.TransferSyntaxUID = ExplicitVRLittleEndian
        self.data = FileDataset("", {}, file_meta=meta, preamble=b"\0" * 128)
        self.data.is_little_endian = True
        self.data.is_implicit_VR = False
        self.data.SOPClassUID = sop_class
        self.data.SOPInstanceUID = meta.MediaStorageSOPInstanceUID
        self.data.Modality = "SEG"
        self.data.SegmentationType = kind
        self.data.SegmentSequence = Sequence()
        self.data.PerFrameFunctionalGroupsSequence = Sequence()
        self.pixels = []

    def segment(self, number, label, description=None):
        item = Dataset()
        item.SegmentNumber = number
        item.SegmentLabel = label
        if description is not None:
            item.SegmentDescription = description
        self.data.SegmentSequence.append(item)

    def shared(self, rows_apart, columns_apart, slices_apart, along_row, along_column):
        measures = Dataset()
        measures.PixelSpacing = [decimal(rows_apart), decimal(columns_apart)]
        measures.SliceThickness = decimal(slices_apart)
        orientation = Dataset()
        orientation.ImageOrientationPatient = [decimal(x) for x in [*along_row, *along_column]]
        item = Dataset()
        item.PixelMeasuresSequence = Sequence([measures])
        item.PlaneOrientationSequence = Sequence([orientation])
        self.data.SharedFunctionalGroupsSequence = Sequence([item])

    def axial(self):
        self.shared(spacing[1], spacing[0], spacing[2], directions[0], directions[1])

    def frame(self, pixels, position, segment=None):
        """Pixels are rows of columns."""
        item = Dataset()
        plane = Dataset()
        plane.ImagePositionPatient = [decimal(x) for x in position]
        item.PlanePositionSequence = Sequence([plane])
        if segment is not None:
            named = Dataset()
            named.ReferencedSegmentNumber = segment
            item.SegmentIdentificationSequence = Sequence([named])
        self.data.PerFrameFunctionalGroupsSequence.append(item)
        self.pixels.append(pixels)

    def save(self, path, bits=1, syntax=ExplicitVRLittleEndian):
        data = self.data
        frames = numpy.stack(self.pixels)
        data.NumberOfFrames, data.Rows, data.Columns = frames.shape
        data.SamplesPerPixel = 1
        data.PhotometricInterpretation = "MONOCHROME2"
        data.PixelRepresentation = 0
        data.BitsAllocated = data.BitsStored = bits
        data.HighBit = bits - 1
        data.file_meta.TransferSyntaxUID = syntax
        if bits == 1:
            packed = numpy.packbits(frames.astype(numpy.uint8).ravel(), bitorder="little").tobytes()
            data.PixelData = packed + b"\0" * (len(packed) % 2)
            data["PixelData"].VR = "OB"
        elif syntax == RLELossless:
            from pydicom.pixel_data_handlers.rle_handler import rle_encode_frame

            data.PixelData = encapsulate([rle_encode_frame(one.astype(f"<u{bits // 8}")) for one in frames])
            data["PixelData"].VR = "OB"
            data["PixelData"].is_undefined_length = True
        else:
            packed = frames.astype(f"<u{bits // 8}").tobytes()
            data.PixelData = packed + b"\0" * (len(packed) % 2)
            data["PixelData"].VR = "OB" if bits == 8 else "OW"
        pydicom.dcmwrite(path, data, write_like_original=False)


folder = pathlib.Path(sys.argv[1])
folder.mkdir(parents=True, exist_ok=True)
cases = []


def case(name, made, labels, says="-", threshold="-", is_on_image=1, grid=None, **how):
    made.save(folder / f"{name}.dcm", **how)
    if labels is not None:
        (folder / f"{name}.raw").write_bytes(labels.astype(numpy.uint8).ravel(order="F").tobytes())
    if grid is not None:
        (folder / f"{name}.grid").write_text(grid)
    cases.append("\t".join([name, threshold, str(is_on_image), says]))


def blobs(count):
    """Labels 0 .. count, x first."""
    labels = random.integers(0, count + 1, size)
    labels[:, :, 2] = 0  # a slice without any
    return labels


def slices_of(labels, number):
    return [z for z in range(size[2]) if (labels[:, :, z] == number).any()]


(folder / "image.txt").write_text(
    affine_text(size, corner, [spacing[axis] * directions[axis] for axis in range(3)]))

# Segments listed out of order, frames shuffled, slices without a voxel left out.
labels = blobs(3)
made = Object()
for number in (3, 1, 2):
    made.segment(number, f"Segment {number}")
made.axial()
order = [(number, z) for number in (1, 2, 3) for z in slices_of(labels, number)]
random.shuffle(order)
for number, z in order:
    made.frame((labels[:, :, z] == number).T, place_of([0, 0, z]), number)
case("permuted", made, labels)
case("deflated", made, labels, syntax=DeflatedExplicitVRLittleEndian)
case("bytes_for_bits", made, labels, bits=8)
case("run_lengths", made, labels, bits=8, syntax=RLELossless)

# TAG numbers from this program's own descriptions.
labels = blobs(2)
made = Object()
made.segment(1, "White matter", "TAG 17")
made.segment(2, "Grey matter", "TAG 4")
made.axial()
for number, z in [(n, z) for n in (1, 2) for z in slices_of(labels, n)]:
    made.frame((labels[:, :, z] == number).T, place_of([0, 0, z]), number)
case("described_tags", made, numpy.choose(labels, [0, 17, 4]))

# Numbers beyond the TAGs are counted anew.
made = Object()
made.segment(1000, "A")
made.segment(7, "B")
made.axial()
for number, z in [(n, z) for n in (1, 2) for z in slices_of(labels, n)]:
    made.frame((labels[:, :, z] == number).T, place_of([0, 0, z]), (1000, 7)[number - 1])
case("large_numbers", made, labels, "numbers its segments beyond 255: they became TAGs 1 to 2")

# Two segments have the same voxels.
first = random.integers(0, 2, size)
second = random.integers(0, 2, size)
made = Object()
made.segment(1, "Lower")
made.segment(2, "Higher")
made.axial()
for z in range(size[2]):
    made.frame(second[:, :, z].T, place_of([0, 0, z]), 2)
    made.frame(first[:, :, z].T, place_of([0, 0, z]), 1)
overlapping = int((first & second).sum())
case("overlapping", made, numpy.where(second == 1, 2, first),
     f"has segments that overlap: {overlapping} voxels went to the segment with the higher number")

# One segment for all frames.
made = Object()
made.segment(5, "Only")
made.axial()
for z in range(size[2]):
    made.frame(first[:, :, z].T, place_of([0, 0, z]))
case("one_segment", made, 5 * first)

# A label map, with a number that no segment has.
labels = blobs(4)
for name, bits, syntax in (("label_map", 8, ExplicitVRLittleEndian), ("label_map_16", 16, ExplicitVRLittleEndian),
                           ("label_map_run_lengths", 16, RLELossless)):
    made = Object("LABELMAP", LABEL_MAP)
    for number in (0, 1, 2, 3):
        made.segment(number, "Background" if number == 0 else f"Segment {number}")
    made.axial()
    for z in reversed(range(size[2])):
        made.frame(labels[:, :, z].T, place_of([0, 0, z]))
    unknown = int((labels == 4).sum())
    case(name, made, numpy.where(labels == 4, 0, labels),
         f"has {unknown} voxels of segments that it does not describe; left out", bits=bits, syntax=syntax)

# Shares of voxels.
shares = random.integers(0, 201, size)
made = Object("FRACTIONAL")
made.data.SegmentationFractionalType = "OCCUPANCY"
made.data.MaximumFractionalValue = 200
made.segment(1, "Shares")
made.axial()
for z in range(size[2]):
    made.frame(shares[:, :, z].T, place_of([0, 0, z]), 1)
case("shares_half", made, (shares >= 100).astype(int), threshold="0.5", bits=8)
case("shares_quarter", made, (shares >= 50).astype(int), threshold="0.25", bits=8)
case("shares_all", made, (shares > 0).astype(int), threshold="0", bits=8)
case("shares_unasked", made, None, "holds shares of voxels; a threshold is needed", bits=8)

# Frames along another plane of the image: rows to the top, columns to the back.
labels = blobs(2)
made = Object()
made.segment(1, "One")
made.segment(2, "Two")
made.shared(spacing[1], spacing[2], spacing[0], -directions[2], directions[1])
for number in (1, 2):
    for x in range(size[0]):
        made.frame((labels[x, :, ::-1] == number), place_of([x, 0, size[2] - 1]), number)
case("sagittal", made, labels)

# Pictures turned upside down, of a part of the image that reaches beyond it.
part = random.integers(0, 2, [6, 5, size[2]])
start = numpy.array([9, 2, 0])
made = Object()
made.segment(1, "Part")
made.shared(spacing[1], spacing[0], spacing[2], directions[0], -directions[1])
for z in range(size[2]):
    made.frame(part[:, ::-1, z].T, place_of([*(start[:2] + [0, 4]), z]), 1)
labels = numpy.zeros(size, int)
labels[9:, 2:7, :] = part[:3]
beyond = int(part[3:].sum())
case("part", made, labels, f"has segments that reach beyond the image: {beyond} voxels were left out")

# Slices that lie unevenly beside the image's.
labels = random.integers(0, 2, size)
made = Object()
made.segment(1, "Uneven")
made.axial()
for z in range(size[2]):
    made.frame(labels[:, :, z].T, place_of([0, 0, z + 0.3 * (z % 2)]), 1)
case("uneven", made, labels, "slices beside those of the image; each is on the nearest")

# Voxels of another size: the labels come on their own grid, slices without frames included.
labels = random.integers(0, 2, [5, 4, 6])
labels[:, :, 3] = 0
made = Object()
made.segment(1, "Own")
made.shared(2.0, 1.5, 4.0, directions[0], directions[1])
first_corner = place_of([1.3, 0.6, 0.2])
for z in (4, 0, 5, 1, 2):
    made.frame(labels[:, :, z].T, first_corner + 4.0 * z * directions[2], 1)
own_steps = [1.5 * directions[0], 2.0 * directions[1], 4.0 * directions[2]]
case("own_grid", made, labels, is_on_image=0, grid=affine_text([5, 4, 6], first_corner, own_steps))

# What cannot be read.
made = Object()
made.segment(1, "Own")
made.shared(2.0, 1.5, 4.0, directions[0], directions[1])
for depth in (0, 4.0, 9.5):
    made.frame(labels[:, :, 0].T, first_corner + depth * directions[2], 1)
case("uneven_own", made, None, "has frames that lie neither on the voxels of the image nor at even distances")
made = Object()
made.segment(1, "One")
made.segment(1, "Same")
made.axial()
made.frame(first[:, :, 0].T, place_of([0, 0, 0]), 1)
case("same_numbers", made, None, "has two segments of the number 1")
made = Object()
made.segment(1, "One")
made.axial()
made.frame(first[:, :, 0].T, place_of([0, 0, 0]), 2)
case("unknown_segment", made, None, "has a frame of segment 2, which it does not describe")
made = Object()
made.segment(1, "One")
made.segment(2, "Two")
made.axial()
made.frame(first[:, :, 0].T, place_of([0, 0, 0]))
case("unnamed_segment", made, None, "does not say which segment frame 1 belongs to")
made = Object("LINES")
made.segment(1, "One")
made.axial()
made.frame(first[:, :, 0].T, place_of([0, 0, 0]), 1)
case("unknown_kind", made, None, "is of an unknown kind of segmentation (LINES)")


# Structure sets: contours filled at the centres of the voxels.
def enclosed(polygon):
    """Of every pixel whether the angles under which it sees the edges go round it, an odd number of times."""
    x, y = numpy.meshgrid(numpy.arange(size[0]), numpy.arange(size[1]), indexing="ij")
    turned = numpy.zeros(x.shape)
    for (x0, y0), (x1, y1) in zip(polygon, numpy.roll(polygon, -1, axis=0)):
        angle = numpy.arctan2(y1 - y, x1 - x) - numpy.arctan2(y0 - y, x0 - x)
        turned += (angle + numpy.pi) % (2 * numpy.pi) - numpy.pi
    return numpy.rint(turned / (2 * numpy.pi)).astype(int) % 2 == 1


def polygon(middle, radius, corners):
    angles = numpy.sort(random.uniform(0, 2 * numpy.pi, corners))
    radii = random.uniform(0.5, 1, corners) * radius
    return numpy.stack([middle[0] + radii * numpy.cos(angles), middle[1] + radii * numpy.sin(angles)], axis=1)


def structures(regions, kind="CLOSED_PLANAR"):
    """Regions: number, name, colour, contours of a slice and a polygon each."""
    made = Object("BINARY", "1.2.840.10008.5.1.4.1.1.481.3")
    data = made.data
    del data.SegmentationType, data.SegmentSequence, data.PerFrameFunctionalGroupsSequence
    data.Modality = "RTSTRUCT"
    data.StructureSetROISequence = Sequence()
    data.ROIContourSequence = Sequence()
    for number, name, color, contours in regions:
        item = Dataset()
        item.ROINumber, item.ROIName = number, name
        data.StructureSetROISequence.append(item)
        item = Dataset()
        item.ReferencedROINumber, item.ROIDisplayColor, item.ContourSequence = number, color, Sequence()
        for z, points in contours:
            contour = Dataset()
            contour.ContourGeometricType = kind
            contour.NumberOfContourPoints = len(points)
            contour.ContourData = [decimal(x) for point in points for x in place_of([*point, z])]
            item.ContourSequence.append(contour)
        data.ROIContourSequence.append(item)
    return made


def regions_case(name, made, labels, says="-"):
    pydicom.dcmwrite(folder / f"{name}.dcm", made.data, write_like_original=False)
    if labels is not None:
        (folder / f"{name}.raw").write_bytes(labels.astype(numpy.uint8).ravel(order="F").tobytes())
    cases.append("\t".join([name, "-", "1", says]))


labels = numpy.zeros(size, int)
listed = []
for number, middle in ((3, (3, 4)), (8, (8, 4))):
    contours = [(z, polygon(middle, 3.2, 9)) for z in range(size[2]) for _ in range(2) if z != 3]
    for z in range(size[2]):
        inside = sum(enclosed(points) for at, points in contours if at == z) % 2 == 1
        labels[:, :, z] = numpy.where(inside, number, labels[:, :, z])
    listed.append((number, f"Region {number}", [255, number, 0], contours))
overlapping = sum(int((((sum(enclosed(p) for at, p in listed[0][3] if at == z)) % 2 == 1)
                       & ((sum(enclosed(p) for at, p in listed[1][3] if at == z)) % 2 == 1)).sum())
                  for z in range(size[2]) if z != 3)
regions_case("regions", structures(listed), labels,
             "-" if overlapping == 0 else "has regions that overlap: %d voxel" % overlapping)
ring = [(2, numpy.array([[1.2, 1.2], [9.3, 1.2], [9.3, 7.4], [1.2, 7.4]])),
        (2, numpy.array([[3.2, 3.2], [6.3, 3.2], [6.3, 5.4], [3.2, 5.4]]))]
labels = numpy.zeros(size, int)
labels[2:10, 2:8, 2] = 1
labels[4:7, 4:6, 2] = 0
regions_case("regions_with_a_hole", structures([(1, "Ring", [1, 2, 3], ring)]), labels)
regions_case("regions_of_large_numbers", structures([(700, "Ring", [1, 2, 3], ring)]), labels,
             "numbers its regions otherwise than TAGs: they became TAGs 1 to 1")
regions_case("regions_open", structures([(1, "Ring", [1, 2, 3], ring)], "OPEN_PLANAR"), 0 * labels,
             "has 2 contours of open lines or points; left out")
beyond = [(2, numpy.array([[-3, 1.2], [2.5, 1.2], [2.5, 4.5], [-3, 4.5]])), (9, ring[0][1])]
labels = numpy.zeros(size, int)
labels[0:3, 2:5, 2] = 1
regions_case("regions_beyond", structures([(1, "Beyond", [1, 2, 3], beyond)]), labels,
             "has 1 contour beyond the image's slices; left out|has 1 contour reaching beyond the image; cut off there")
box = [(2, numpy.array([[2.2, 2.2], [5.3, 2.2], [5.3, 6.4], [2.2, 6.4]]))]
labels = numpy.zeros(size, int)
labels[2:10, 2:8, 2] = 1
labels[4:7, 4:6, 2] = 0
shared = int(labels[3:6, 3:7, 2].sum())
labels[3:6, 3:7, 2] = 2
regions_case("regions_overlapping", structures([(1, "Ring", [1, 2, 3], ring), (2, "Box", [3, 2, 1], box)]), labels,
             f"has regions that overlap: {shared} voxels went to the later region")
made = structures([(1, "Ring", [1, 2, 3], ring)])
made.data.ROIContourSequence[0].ReferencedROINumber = 2
regions_case("regions_unknown", made, None, "has contours of a region that it does not describe")
made = structures([(1, "A", [1, 2, 3], ring), (1, "B", [1, 2, 3], ring)])
regions_case("regions_same_number", made, None, "has a region without a number of its own")

# Planes between the slices, and on every third one only.
labels = numpy.zeros(size, int)
labels[2:10, 2:8, 1:4] = 1
planes = [(z, ring[0][1]) for z in (1, 1.4, 2.2, 2.45, 3)]
regions_case("regions_between", structures([(1, "Between", [1, 2, 3], planes)]), labels,
             "has 2 contours between the slices of the image, beside others that are nearer; left out|"
             "has contours that lie up to 0.2 slices beside those of the image; each is on the nearest")
labels = numpy.zeros(size, int)
labels[2:10, 2:8, ::3] = 1
regions_case("regions_sparse", structures([(1, "Sparse", [1, 2, 3], [(z, ring[0][1]) for z in (0, 3, 6)])]), labels,
             "has 1 region without contours on every slice; those between stay empty")
regions_case("regions_elsewhere", structures([(1, "Elsewhere", [1, 2, 3], [(40, ring[0][1])])]), None,
             "lies wholly beyond the image")

# Thicker slices than the image's: the slices between must not stay empty.
labels = random.integers(0, 2, [*size[:2], 3])
made = Object()
made.segment(1, "Thick")
made.shared(spacing[1], spacing[0], 3 * spacing[2], directions[0], directions[1])
for z in range(3):
    made.frame(labels[:, :, z].T, place_of([0, 0, 3 * z]), 1)
thick_steps = [spacing[0] * directions[0], spacing[1] * directions[1], 3 * spacing[2] * directions[2]]
case("thick", made, labels, is_on_image=0, grid=affine_text([*size[:2], 3], corner, thick_steps))
# Thickness is not distance: frames that lie twice as far apart as they are thick have nothing between them.
made = Object()
made.segment(1, "Gaps")
made.shared(2.0, 1.5, 2.0, directions[0], directions[1])
for z in range(3):
    made.frame(labels[:, :, z].T, first_corner + 4.0 * z * directions[2], 1)
case("thin", made, labels, is_on_image=0,
     grid=affine_text([*size[:2], 3], first_corner, [1.5 * directions[0], 2.0 * directions[1], 4.0 * directions[2]]))
made = Object()
made.segment(1, "Elsewhere")
made.axial()
made.frame(numpy.ones([size[1], size[0]], int), place_of([0, 0, 50]), 1)
case("elsewhere", made, None, "lies wholly beyond the image")
made = Object()
made.segment(1, "Sizeless")
made.axial()
del made.data.SharedFunctionalGroupsSequence[0].PixelMeasuresSequence[0].PixelSpacing
made.frame(numpy.ones([size[1], size[0]], int), place_of([0, 0, 0]), 1)
case("sizeless", made, None, "does not say how large its pixels are")

(folder / "manifest.txt").write_text("".join(line + "\n" for line in cases))
