"""A folder that is listed by the heads of its files: pixels are read when a volume is shown."""
from driver.scenario import Skipped, scenario
from scenarios.database import click_row, row_point, show
from scenarios.work import LEFT, wait_kept

SERIES = 6
SLICES = 24
SIDE = 128


def folder_made(run, damaged=()):
    """A folder of series of one patient, each slice a file. @param damaged slices of the second series that are cut"""
    try:
        import numpy
        import pydicom
        from pydicom.dataset import FileDataset, FileMetaDataset
        from pydicom.uid import ExplicitVRLittleEndian
    except ImportError:
        raise Skipped("python3-pydicom is not there")
    folder = run.data / "series"
    for series in range(SERIES):
        (folder / str(series)).mkdir(parents=True)
        for z in range(SLICES):
            meta = FileMetaDataset()
            meta.MediaStorageSOPClassUID = "1.2.840.10008.5.1.4.1.1.4"
            meta.MediaStorageSOPInstanceUID = f"1.2.3.{series + 1}.{z + 1}"
            meta.TransferSyntaxUID = ExplicitVRLittleEndian
            path = folder / str(series) / f"{z:03}.dcm"
            one = FileDataset(str(path), {}, file_meta=meta, preamble=b"\0" * 128)
            one.SOPClassUID = meta.MediaStorageSOPClassUID
            one.SOPInstanceUID = meta.MediaStorageSOPInstanceUID
            one.PatientName, one.PatientID, one.StudyInstanceUID = "Sample^Patient", "1", "1.2.3"
            one.SeriesInstanceUID, one.SeriesNumber, one.Modality = f"1.2.3.{series + 1}", series + 1, "MR"
            one.SeriesDescription, one.InstanceNumber = f"series {'abcdef'[series]}", z + 1
            one.ImagePositionPatient, one.ImageOrientationPatient = [0, 0, 3 * z], [1, 0, 0, 0, 1, 0]
            one.PixelSpacing, one.SliceThickness = [1, 1], 3
            one.Rows = one.Columns = SIDE
            one.SamplesPerPixel, one.PhotometricInterpretation = 1, "MONOCHROME2"
            one.BitsAllocated = one.BitsStored = 16
            one.HighBit, one.PixelRepresentation = 15, 0
            y, x = numpy.mgrid[0:SIDE, 0:SIDE]
            disc = (x - 64 - 3 * series) ** 2 + (y - 64) ** 2 < (20 + 4 * series + z) ** 2
            one.PixelData = (100 + 400 * disc + (x + y + z) % 50).astype("<u2").tobytes()
            one.is_little_endian, one.is_implicit_VR = True, False
            one.save_as(path, write_like_original=False)
            if series == 1 and z in damaged:
                path.write_bytes(path.read_bytes()[:-1000])
    return folder


def settings_set(run, **lines):
    run.settings.parent.mkdir(parents=True, exist_ok=True)
    before = run.settings.read_text() if run.settings.exists() else ""
    run.settings.write_text(before + "".join(f"{name} {value}\n" for name, value in lines.items()))


@scenario(is_short=True)
def a_large_folder_is_listed_before_its_pixels_are_read(run):
    """The tree stands at once; a series is read when it is shown, whatever brings it."""
    settings_set(run, whole_folder=0)
    app = run.start(folder_made(run))
    state = app.expect("all series are listed", volume_nb=SERIES)
    run.same("the pixels of one series are read", state.read_nb, 1)
    all_pixels = SLICES * SIDE * SIDE
    run.same("and counted", state.histogram_pixels, all_pixels)
    app.key("ctrl+n")
    state = app.expect("the next series is shown", read_nb=2)
    app.expect("and counted", histogram_pixels=all_pixels)
    db_rows = show(app, "2D classes").db_shown
    click_row(app, "Volume: MR 1: series a", is_lead=True)
    app.wait("the branch closed", lambda s: s.db_shown < db_rows)
    for series in "bcd":
        click_row(app, f"Volume: MR {'abcd'.index(series) + 1}: series {series}", is_lead=True)
    run.shot("large_folder", " - Workbench")
    click_row(app, "Volume: MR 5: series e")
    state = app.expect("a click on another series shows it", lambda s: "series e" in s.volume_title)
    app.expect("the histogram is that of its frames", histogram_pixels=all_pixels)
    app.press_at(*app.state().box("image").point())
    app.expect("it can be painted on", unsaved=1)
    app.click("Tree", "Select All")
    app.expect("all frames are checked", db_checked=SERIES * SLICES)
    app.expect("those of the series in view are counted", histogram_pixels=all_pixels, histogram_source="frames 1 to 24")
    app.expect("checking reads nothing", read_nb=3)
    click_row(app, "Volume: MR 4: series d")
    app.expect("a click shows the next one", lambda s: "series d" in s.volume_title)
    app.move(*row_point(app, "Volume: MR 1: series a"))
    app.expect("and the press is over: moving checks no more rows", db_checked=SLICES)
    app.expect("the workbench keeps its contract", contract_reports=0)


@scenario()
def the_oldest_series_leaves_when_memory_is_short(run):
    """One series fits beside another; the one with unsaved work stays, and what was painted comes back."""
    settings_set(run, whole_folder=0, image_memory=2)
    app = run.start(folder_made(run))
    app.expect("one is read", read_nb=1)
    app.press_at(*app.state().box("image").point())
    painted = app.expect("it can be painted on", unsaved=1).count(1)
    for count in (2, 2, 2):
        app.key("ctrl+n")
        app.wait("the next series", lambda s: s.unsaved == 0)
        app.expect("two are read at most", read_nb=count)
    for _ in range(3):
        app.key("ctrl+p")
    state = app.expect("the painted one is shown again", unsaved=1)
    run.same("with what was painted", state.count(1), painted)
    app.expect("its histogram is there", histogram_pixels=SLICES * SIDE * SIDE)


@scenario()
def work_on_series_that_wait_is_taken_up_after_a_kill(run):
    """The next start lists the folder again; work lies on its series also where their pixels are not read yet."""
    settings_set(run, whole_folder=0)
    app = run.start(folder_made(run))
    app.press_at(*app.state().box("image").point())
    painted = app.expect("the first series has work", unsaved=1).count(1)
    app.key("ctrl+n")
    app.wait("the next series", lambda s: "series b" in s.volume_title and s.unsaved == 0)
    app.press_at(*app.state().box("image").point())
    app.expect("the second, too", unsaved=1)
    wait_kept(app, run)
    app.kill()
    app = run.launch()
    app.wait_said("ask recovery")
    app.answer_key(LEFT, "alt+t")
    app.wait_ready()
    app.expect("the work of the first is there", lambda s: "series a" in s.volume_title and s.unsaved == 1)
    run.same("all of it", app.state().count(1), painted)
    run.same("the second still waits", app.state().read_nb, 1)
    app.key("ctrl+n")
    state = app.expect("it is shown with its work", lambda s: "series b" in s.volume_title and s.unsaved == 1)
    run.same("all of it as well", state.count(1), painted)
    run.same("no problem was met", app.said("warning"), [])


@scenario()
def a_series_with_damaged_slices_is_shown(run):
    """A slice that cannot be read is empty and told; one that another program has taken away, too."""
    settings_set(run, whole_folder=0)
    folder = folder_made(run, damaged=(3,))
    app = run.start(folder)
    (folder / "1" / "005.dcm").unlink()
    app.key("ctrl+n")
    app.expect("the series is shown all the same", lambda s: "series b" in s.volume_title and s.slice_nb == SLICES)
    run.same("both slices are told", len(app.said("problem 00[35].dcm .*its slice is empty")), 2)
    app.expect("the others are counted", histogram_pixels=(SLICES - 2) * SIDE * SIDE)
    run.shot("damaged_slices", " - Workbench")
    for path in (folder / "2").iterdir():
        path.unlink()
    app.key("ctrl+n")
    app.wait_said("warning .*series c cannot be shown: it cannot be read any more")
    app.expect("the series before stays", lambda s: "series b" in s.volume_title)
