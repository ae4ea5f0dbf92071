"""Checks a written segmentation object with pydicom against what it was written from.

    check_segmentation.py OBJECT LABELS WIDTH HEIGHT SLICES SOURCE...

LABELS holds a byte per voxel; SOURCE are the image files in the order of the slices. Ends with 1 and says what is wrong.
"""

import pathlib
import sys

import numpy
import pydicom

path, labels_path, *rest = sys.argv[1:]
width, height, slices = (int(x) for x in rest[:3])
sources = [pydicom.dcmread(one) for one in rest[3:]]
data = pydicom.dcmread(path)
labels = numpy.frombuffer(pathlib.Path(labels_path).read_bytes(), numpy.uint8).reshape(slices, height, width)


def demand(condition, what):
    if not condition:
        sys.exit(f"wrong: {what}")


first = sources[0]
demand(data.SOPClassUID == "1.2.840.10008.5.1.4.1.1.66.4" == data.file_meta.MediaStorageSOPClassUID, "class")
demand(data.file_meta.MediaStorageSOPInstanceUID == data.SOPInstanceUID, "instance")
for name in ("StudyInstanceUID", "FrameOfReferenceUID", "PatientID", "StudyDate"):
    demand(getattr(data, name) == getattr(first, name), name)
demand(str(data.PatientName) == str(first.PatientName), f"name {data.PatientName}")
demand(data.SeriesInstanceUID != first.SeriesInstanceUID, "series")
demand((data.Modality, data.SegmentationType, data.BitsAllocated) == ("SEG", "BINARY", 1), "kind")
demand(data.ContentLabel and "PatientSex" in data and "ReferringPhysicianName" in data, "fields that must be there")
tags = [int(item.SegmentDescription.split()[1]) for item in data.SegmentSequence]
demand([item.SegmentNumber for item in data.SegmentSequence] == list(range(1, len(tags) + 1)), "numbers")
demand(tags == sorted(set(labels.ravel().tolist()) - {0}), f"TAGs {tags}")
for item in data.SegmentSequence:
    demand(item.SegmentedPropertyCategoryCodeSequence[0].CodingSchemeDesignator == "SCT", "category")
    demand(item.SegmentedPropertyTypeCodeSequence[0].CodeMeaning, "type")
    demand(len(item.RecommendedDisplayCIELabValue) == 3, "colour")
    demand(item.TrackingUID, "tracking")
pixels = data.pixel_array.reshape(data.NumberOfFrames, height, width)
seen = numpy.zeros_like(labels)
groups = data.PerFrameFunctionalGroupsSequence
demand(len(groups) == data.NumberOfFrames, "frames")
slice_of_instance = {one.SOPInstanceUID: z for z, one in enumerate(sources)}
position_of_slice = {}
for frame, group in zip(pixels, groups):
    number = group.SegmentIdentificationSequence[0].ReferencedSegmentNumber
    image = group.DerivationImageSequence[0].SourceImageSequence[0]
    z = slice_of_instance[image.ReferencedSOPInstanceUID]
    demand(image.ReferencedSOPClassUID == sources[z].SOPClassUID, "referenced class")
    place = group.PlanePositionSequence[0].ImagePositionPatient
    demand(numpy.allclose(place, sources[z].ImagePositionPatient, rtol=0, atol=1e-6), f"place of slice {z}")
    segment_index, position = group.FrameContentSequence[0].DimensionIndexValues
    demand(segment_index == number, "index of the segment")
    demand(position_of_slice.setdefault(z, position) == position, "index of the position")
    demand(frame.any(), "a frame without a voxel")
    seen[z][frame == 1] = tags[number - 1]
demand(sorted(position_of_slice.values()) == list(range(1, len(position_of_slice) + 1)), "positions")
demand(sorted(position_of_slice, key=position_of_slice.get) == sorted(position_of_slice), "order of positions")
demand((seen == labels).all(), f"{int((seen != labels).sum())} voxels differ")
shared = data.SharedFunctionalGroupsSequence[0]
demand(numpy.allclose(shared.PixelMeasuresSequence[0].PixelSpacing, first.PixelSpacing), "spacing")
demand(numpy.allclose(shared.PlaneOrientationSequence[0].ImageOrientationPatient, first.ImageOrientationPatient),
       "orientation")
listed = {item.ReferencedSOPInstanceUID for item in data.ReferencedSeriesSequence[0].ReferencedInstanceSequence}
demand(listed == set(slice_of_instance), "references")
