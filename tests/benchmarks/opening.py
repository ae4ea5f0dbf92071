#!/usr/bin/env python3
"""Times the workbench from the start of its process to the first picture, and NumPy reading the same files, in turn:

    scripts/with_display tests/benchmarks/opening.py WORKBENCH.exe FOLDER FIGURES.json [ROUNDS]

Images of 512 x 512 x 300 voxels of 16 bits are made in FOLDER and stay there: a NIfTI file, the same packed, and 300
DICOM files. The system has all of them in its cache. FIGURES.json holds medians, as the other benchmarks write theirs:
milliseconds to the window, the picture, and the histograms; of the witness, a running Python with its libraries loaded;
and the most memory that the process ever had, in megabytes of 10^6 bytes, beside the voxels.
"""
import gzip
import importlib.util
import json
import os
import pathlib
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time

if importlib.util.find_spec("nibabel") is None and sys.executable != "/usr/bin/python3":
    os.execv("/usr/bin/python3", ["/usr/bin/python3", *sys.argv])  # the one that has the distribution's libraries

import nibabel  # noqa: E402
import numpy  # noqa: E402
import pydicom  # noqa: E402
from pydicom.dataset import Dataset, FileMetaDataset  # noqa: E402

WIDTH, HEIGHT, SLICES = 512, 512, 300
VOXEL_BYTES = WIDTH * HEIGHT * SLICES * 2
PATIENCE = 120  # seconds for one start


def voxels():
    """A head of rings with noise, in x, y, z."""
    random = numpy.random.default_rng(1)
    x, y, z = (numpy.linspace(-1, 1, size, dtype=numpy.float32) for size in (WIDTH, HEIGHT, SLICES))
    made = numpy.empty((WIDTH, HEIGHT, SLICES), numpy.int16, order="F")
    for at, height in enumerate(z):
        distance = numpy.sqrt(x[:, None] ** 2 + y[None, :] ** 2 + height**2)
        level = numpy.where(distance < 0.9, 300 + 200 * numpy.cos(20 * distance), -1000)
        made[:, :, at] = level + random.integers(0, 24, (WIDTH, HEIGHT))
    return made


def write_series(folder, levels):
    study, series = "1.2.826.0.1.3680043.10.1.1", "1.2.826.0.1.3680043.10.1.2"
    folder.mkdir()
    for at in range(SLICES):
        image = Dataset()
        image.file_meta = FileMetaDataset()
        image.file_meta.TransferSyntaxUID = pydicom.uid.ExplicitVRLittleEndian
        image.file_meta.MediaStorageSOPClassUID = image.SOPClassUID = "1.2.840.10008.5.1.4.1.1.2"
        image.file_meta.MediaStorageSOPInstanceUID = image.SOPInstanceUID = f"{series}.{at + 1}"
        image.StudyInstanceUID, image.SeriesInstanceUID = study, series
        image.Modality, image.PatientName, image.PatientID = "CT", "Opening^Timed", "1"
        image.InstanceNumber = at + 1
        image.ImagePositionPatient = [0, 0, at]
        image.ImageOrientationPatient = [1, 0, 0, 0, 1, 0]
        image.PixelSpacing = [0.5, 0.5]
        image.SliceThickness = 1
        image.Rows, image.Columns = HEIGHT, WIDTH
        image.SamplesPerPixel, image.PhotometricInterpretation = 1, "MONOCHROME2"
        image.BitsAllocated, image.BitsStored, image.HighBit, image.PixelRepresentation = 16, 16, 15, 1
        image.RescaleSlope, image.RescaleIntercept = 1, 0
        image.PixelData = levels[:, :, at].T.tobytes()
        image.is_little_endian, image.is_implicit_VR = True, False
        image.save_as(folder / f"{at:03}.dcm", write_like_original=False)


def make_images(folder):
    if (folder / "made").exists():
        return
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    levels = voxels()
    nibabel.save(nibabel.Nifti1Image(levels, numpy.diag([0.5, 0.5, 1, 1])), folder / "head.nii")
    with open(folder / "head.nii", "rb") as plain, gzip.open(folder / "head.nii.gz", "wb", compresslevel=6) as packed:
        shutil.copyfileobj(plain, packed)
    write_series(folder / "series", levels)
    (folder / "made").touch()


def read_nifti(path):
    """All voxels in memory of their own, as the file has them."""
    return numpy.array(nibabel.load(path).dataobj.get_unscaled())


def read_series(path):
    images = sorted((pydicom.dcmread(file) for file in path.iterdir()), key=lambda image: image.ImagePositionPatient[2])
    return numpy.stack([image.pixel_array for image in images])


def seconds(read, path):
    """Of one reading in a child of this process: its libraries are loaded, its memory is as new as the workbench's."""
    receiving, sending = os.pipe()
    child = os.fork()
    if child == 0:
        try:
            begin = time.monotonic()
            read(path)
            os.write(sending, repr(time.monotonic() - begin).encode())
        finally:
            os._exit(0)  # whatever happens, it must not go on as its parent
    os.close(sending)
    with os.fdopen(receiving) as told:
        text = told.read()
    os.waitpid(child, 0)
    if not text:
        raise SystemExit(f"opening: the witness could not read {path}")
    return float(text)


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def program_id(mark):
    """Of the process that was started with this argument."""
    for place in pathlib.Path("/proc").iterdir():
        try:
            if place.name.isdigit() and mark in (place / "cmdline").read_bytes():
                return int(place.name)
        except OSError:
            pass  # it has ended meanwhile
    raise SystemExit("opening: the workbench has ended")


class Start:
    """One start of the workbench, from beginning to end."""

    def __init__(self, workbench, path, last):
        """@param last the event after which it is ended"""
        with tempfile.TemporaryDirectory() as scratch:
            log = pathlib.Path(scratch) / "report.txt"
            log.touch()
            report = windows_path(log)
            files = [windows_path(path)] if path else []
            wine = subprocess.Popen(["wine", workbench, "--report", report, *files], stdin=subprocess.DEVNULL,
                                    stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            self.times = {}
            end = time.monotonic() + PATIENCE
            while last not in self.times:
                if time.monotonic() > end or wine.poll() is not None:
                    raise SystemExit(f"opening: '{last}' did not come for {path or 'an empty start'}: "
                                     f"{log.read_text(errors='replace')[-500:]}")
                time.sleep(0.02)
                for line in log.read_text(errors="replace").splitlines():
                    words = line.split()
                    if len(words) == 3 and words[0] == "time" and words[2].isdigit():
                        self.times.setdefault(words[1], int(words[2]))
            process = program_id(report.encode())
            status = pathlib.Path(f"/proc/{process}/status").read_text()
            self.peak = 1024 * int(status.split("VmHWM:")[1].split()[0])
            os.kill(process, signal.SIGKILL)
            wine.wait()


def hold_start(program):
    """Keeps Wine's services alive between the starts, until the display of this run ends."""
    scripts = pathlib.Path(__file__).resolve().parents[2] / "scripts"
    subprocess.run(["bash", "-c", f'. "{scripts}/wine_environment"; wine_hold_start "$0"', program], check=True)


def figures(name, starts, witness, voxel_bytes):
    """Of one thing that was opened: as Google Benchmark writes its own."""
    found = {"name": name}
    for event in starts[0].times:
        found[f"{event}_ms"] = statistics.median(start.times[event] for start in starts)
    found["peak_mb"] = statistics.median(start.peak for start in starts) / 1e6
    found["beside_mb"] = found["peak_mb"] - voxel_bytes / 1e6
    if witness:
        found["witness_ms"] = 1e3 * statistics.median(witness)
        found["picture_ratio"] = found["picture_ms"] / found["witness_ms"]
    return found


def main():
    if len(sys.argv) not in (4, 5):
        sys.exit(__doc__)
    workbench, folder, out = (pathlib.Path(text).resolve() for text in sys.argv[1:4])
    rounds = int(sys.argv[4]) if len(sys.argv) > 4 else 5
    make_images(folder)
    listed = subprocess.run(["dpkg", "-L", "mricron-data"], capture_output=True, text=True, check=True).stdout
    brain = next(line for line in listed.splitlines() if line.endswith("/ch2.nii.gz"))
    opened = {  # name: what, how the witness reads it, the last event, bytes of voxels
        "Open_Nothing": (None, None, "ready", 0),
        "Open_Brain": (pathlib.Path(brain), read_nifti, "counted", 0),
        "Open_Nifti": (folder / "head.nii", read_nifti, "counted", VOXEL_BYTES),
        "Open_Packed_Nifti": (folder / "head.nii.gz", read_nifti, "counted", VOXEL_BYTES),
        "Open_Series": (folder / "series", read_series, "counted", VOXEL_BYTES),
    }
    starts = {name: [] for name in opened}
    witness = {name: [] for name in opened}
    hold_start(workbench.with_name("guihold.exe"))
    for at in range(rounds + 1):  # the first one fills the system's cache and is not counted
        for name, (path, read, last, _) in opened.items():
            start = Start(str(workbench), path, last)
            reading = seconds(read, path) if read else 0.0
            if at > 0:
                starts[name].append(start)
                witness[name] += [reading] if read else []
                print(f"{name}: {start.times}, {start.peak / 1e6:.0f} MB at most, witness {reading:.3f} s", flush=True)
    made = [figures(name, starts[name], witness[name], opened[name][3]) for name in opened]
    out.write_text(json.dumps({"benchmarks": made}, indent=1) + "\n")


if __name__ == "__main__":
    main()
