#!/usr/bin/env python3
"""Compressed DICOM images with what the codecs' own programs decode them to: make_compressed.py FOLDER SAMPLES...

SAMPLES are folders of DICOM files. One file of every kind (bits, sign, colours, frames) is compressed by dcmcjpeg, dcmcjpls
and opj_compress in every way; that, and what is already compressed among the samples, is decoded by dcmdjpeg, dcmdjpls and
opj_decompress. manifest.txt has lines of

    pair COMPRESSED PLAIN     two DICOM files of the same levels
    warned COMPRESSED PLAIN   the same, and the codec warns of the stream
    raw COMPRESSED VALUES     a DICOM file and its levels, little-endian int32
"""
import os
import shutil
import subprocess
import sys
from pathlib import Path

import numpy
import pydicom
from pydicom.encaps import encapsulate, generate_pixel_data_frame
from pydicom.uid import UID

JPEG = ["1.2.840.10008.1.2.4.50", "1.2.840.10008.1.2.4.51", "1.2.840.10008.1.2.4.57", "1.2.840.10008.1.2.4.70"]
JPEG_LS = ["1.2.840.10008.1.2.4.80", "1.2.840.10008.1.2.4.81"]
JPEG_2000 = ["1.2.840.10008.1.2.4.90", "1.2.840.10008.1.2.4.91"]
PLAIN = ["1.2.840.10008.1.2", "1.2.840.10008.1.2.1", "1.2.840.10008.1.2.2"]
WAYS = {
    "lossless": ["dcmcjpeg", "+el"],
    "sv1": ["dcmcjpeg", "+e1"],
    "baseline": ["dcmcjpeg", "+eb"],
    "extended": ["dcmcjpeg", "+ee"],
    "ls": ["dcmcjpls", "+el"],
    "near": ["dcmcjpls", "+en", "+md", "3"],
}
JPEG_2000_WAYS = {"j2k": [], "lossy": ["-I", "-r", "4"], "tiles": ["-t", "33,17"], "jp2": []}
PIXELS_MOST = 1 << 20


def ran(*command):
    return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0


def images(folders):
    """Files with pixels, in order."""
    for folder in folders:
        for path in sorted(Path(folder).rglob("*")):
            try:
                image = pydicom.dcmread(path)
                yield path, image, image.file_meta.TransferSyntaxUID
            except Exception:  # of the samples many are damaged on purpose
                continue


def kind_of(image):
    return (image.BitsAllocated, image.BitsStored, image.HighBit, image.PixelRepresentation, image.SamplesPerPixel,
            image.PhotometricInterpretation, int(image.get("NumberOfFrames", 1) or 1) > 1,
            image.get("PlanarConfiguration", 0))


def is_plain_grey(image):
    """Levels are the stored values."""
    return image.SamplesPerPixel == 1 and image.PhotometricInterpretation.startswith("MONOCHROME") \
        and "ModalityLUTSequence" not in image and "PixelPaddingValue" not in image \
        and "PerFrameFunctionalGroupsSequence" not in image


class Set:
    def __init__(self, folder):
        self.folder = Path(folder)
        self.lines = []

    def decoded(self, path, program):
        """Notes a compressed file with what the program makes of it."""
        plain = path.with_suffix(".plain")
        done = subprocess.run([program, path, plain], capture_output=True, text=True)
        if done.returncode == 0:
            told = [line for line in done.stderr.splitlines() if line.startswith("W: ") and "DcmItem" not in line]
            kind = "warned" if told else "pair"
            self.lines.append(f"{kind} {path.name} {plain.name}")

    def compressed(self, path, name):
        for way, (program, *options) in WAYS.items():
            out = self.folder / f"{name}.{way}.dcm"
            if ran(program, *options, path, out):
                self.decoded(out, program.replace("dcmc", "dcmd"))

    def frame_decoded(self, stream, image):
        """Levels of a JPEG 2000 frame as opj_decompress gives them."""
        wrapped = stream.startswith(b"\0\0\0\x0cjP")
        work = self.folder / ("work.jp2" if wrapped else "work.j2k")
        out = self.folder / "work_out.rawl"
        work.write_bytes(stream)
        out.unlink(missing_ok=True)
        if not ran("opj_decompress", "-i", work, "-o", out):
            return None
        samples = image.SamplesPerPixel
        pixels = image.Rows * image.Columns * samples
        size = out.stat().st_size // pixels
        start = stream.index(b"\xff\x4f\xff\x51") + 42
        signed = stream[start] >> 7
        bits = (stream[start] & 127) + 1
        values = numpy.fromfile(out, f"<{'i' if signed else 'u'}{size}").astype(numpy.int32)
        if image.PixelRepresentation == 1 and not signed and samples == 1:
            values = numpy.where(values >> (bits - 1) & 1, values - (1 << bits), values)
        if samples == 3:
            red, green, blue = values.reshape(3, -1)
            values = red | green << 8 | blue << 16
        return values.astype("<i4")

    def jpeg_2000(self, path, image):
        """Notes a file of JPEG 2000 frames."""
        frames = int(image.get("NumberOfFrames", 1) or 1)
        values = [self.frame_decoded(stream, image) for stream in generate_pixel_data_frame(image.PixelData, frames)]
        if all(one is not None for one in values):
            raw = path.with_suffix(".i32")
            numpy.concatenate(values).tofile(raw)
            self.lines.append(f"raw {path.name} {raw.name}")

    def compressed_2000(self, image, name):
        frames = int(image.get("NumberOfFrames", 1) or 1)
        samples = image.SamplesPerPixel
        shape = (frames, image.Rows, image.Columns, samples)
        values = image.pixel_array.reshape(shape)
        bits = image.BitsStored
        kind = "s" if image.PixelRepresentation else "u"
        for way, options in JPEG_2000_WAYS.items():
            streams = []
            for frame in values:
                raw = self.folder / "work_in.rawl"
                frame.transpose(2, 0, 1).astype(f"<{'i' if kind == 's' else 'u'}{1 if bits <= 8 else 2}").tofile(raw)
                out = self.folder / ("work_made.jp2" if way == "jp2" else "work_made.j2k")
                out.unlink(missing_ok=True)
                if not ran("opj_compress", "-i", raw, "-o", out, "-n", "3", "-F",
                           f"{image.Columns},{image.Rows},{samples},{bits},{kind}", *options):
                    break
                streams.append(out.read_bytes())
            if len(streams) != frames:
                continue
            made = image.copy()
            made.PixelData = encapsulate(streams)
            made["PixelData"].is_undefined_length = True
            made["PixelData"].VR = "OB"
            made.file_meta.TransferSyntaxUID = UID(JPEG_2000[1 if way == "lossy" else 0])
            made.is_little_endian, made.is_implicit_VR = True, False
            if samples == 3:
                made.PhotometricInterpretation = "YBR_ICT" if way == "lossy" else "YBR_RCT"
                made.PlanarConfiguration = 0
            path = self.folder / f"{name}.{way}.dcm"
            made.save_as(path)
            self.jpeg_2000(path, made)

    def close(self):
        (self.folder / "manifest.txt").write_text("\n".join(self.lines) + "\n")


def main(folder, samples):
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    made = Set(folder)
    known = set()
    for number, (path, image, syntax) in enumerate(images(samples)):
        name = f"{number:03d}_{path.stem}"
        if "PixelData" not in image:
            continue
        if syntax in JPEG + JPEG_LS + JPEG_2000:
            copy = made.folder / f"{name}.dcm"
            shutil.copyfile(path, copy)
            if syntax not in JPEG_2000:
                made.decoded(copy, "dcmdjpeg" if syntax in JPEG else "dcmdjpls")
            elif is_plain_grey(image):
                made.jpeg_2000(copy, image)
        elif syntax in PLAIN:
            try:
                kind = kind_of(image)
                usable = kind not in known and image.pixel_array.size <= PIXELS_MOST
            except Exception:
                continue
            if usable:
                known.add(kind)
                made.compressed(path, name)
                if image.BitsAllocated <= 16 and image.HighBit == image.BitsStored - 1 and image.BitsStored > 1 \
                        and (is_plain_grey(image) or image.PhotometricInterpretation == "RGB" and image.BitsStored == 8):
                    made.compressed_2000(image, name)
    made.close()
    print(f"{len(made.lines)} compressed files of {len(known)} kinds")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2:]))
