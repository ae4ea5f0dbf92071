"""What files hold in the eyes of independent programs, written down for the comparison with the library.

A set is a folder with `manifest.txt` and, for every volume, its values. The manifest is lines of a word and its text:

    item PATH        a file or folder to open, relative to the set; ends the item before it
    dicom            the item needs the DICOM reader
    volume NX NY NZ  one volume that opening must give, in this order; no such line: nothing may open
    affine 12 NUMBERS  rows of the matrix from voxel indices to millimetres (right, front, top)
    source NAME      where the matrix comes from: sform, qform or spacing (the file does not say)
    values FILE      grey values, little-endian float64, x fastest; no number: outside the scale.
                     Colours: packed, red in the low byte
    error NUMBER     the largest error that the volume may own up to; 0: exact
    colours NUMBER   the volume is one of colours, whose components may differ by so much
    told TEXT        a sentence that must be told about the item; there may be no other
"""
import os

import numpy


class Witness:
    """Collects the items of a set."""

    def __init__(self, folder):
        self.folder = folder
        self.lines = []
        self.item_nb = 0
        self.file_nb = 0
        self.value_nb = 0
        os.makedirs(folder, exist_ok=True)

    def path(self, name):
        """Where an item's file is to be written; folders on the way are made."""
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        return path

    def item(self, name, dicom=False, files=1):
        """Begins an item. files: how many files were written for it."""
        self.lines.append("item " + name)
        if dicom:
            self.lines.append("dicom")
        self.item_nb += 1
        self.file_nb += files

    def volume(self, values, affine, source, error=0.0, color=None):
        """A volume that must open. values: array of axes x, y, z; affine: 3 x 4 or 4 x 4, None: not compared; color: it
        is one of colours, and by how much their components may differ."""
        values = numpy.asarray(values)
        name = "values/%05d.f64" % self.value_nb
        self.value_nb += 1
        with open(self.path(name), "wb") as file:
            file.write(values.astype("<f8").tobytes(order="F"))
        self.lines.append("volume %d %d %d" % values.shape)
        if affine is not None:
            rows = numpy.asarray(affine, dtype=float)[:3].ravel()
            self.lines.append("affine " + " ".join(repr(float(number)) for number in rows))
        self.lines.append("source " + source)
        self.lines.append("values " + name)
        self.lines.append("error " + repr(float(error)))
        if color is not None:
            self.lines.append("colours %d" % color)

    def told(self, sentence):
        """A sentence that must be told."""
        self.lines.append("told " + sentence)

    def close(self):
        with open(os.path.join(self.folder, "manifest.txt"), "w", encoding="utf-8") as file:
            file.write("\n".join(self.lines) + "\n")


def count_text(count):
    """A count as the library writes it."""
    return "{:,}".format(count)


def value_text(value):
    """A value as the library writes it."""
    return "%.6g" % value
