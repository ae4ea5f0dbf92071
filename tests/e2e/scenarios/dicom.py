"""Folders of DICOM files: the folder of a package, in which every kind of file lies that cannot be shown, too."""
import os
import pathlib
import shutil
import subprocess

from driver.scenario import Skipped, package_file, scenario
from driver.state import Box
from driver.workbench import windows_path
from scenarios.database import click_row, show


def opened(run, with_head=True):
    """A workbench with a small image, and the folder."""
    folder = package_file("python3-pydicom", "/dicomdirtests")
    if folder is None or not os.path.isdir(folder):
        raise Skipped("the package python3-pydicom is not there")
    app = run.start(*([run.image()] if with_head else []))
    app.key("ctrl+d")
    app.window("Open folder")
    app.type(windows_path(folder))
    run.shot("dicom_dialog")
    app.answer_key("Open folder", "Return")
    app.wait_said("status [0-9]* volumes of")
    if not app.state().is_shown("database"):
        app.key("F3")
    app.wait("the database", lambda s: s.is_shown("database"))
    return app


@scenario(is_short=True)
def a_folder_is_stacked_and_shown(run):
    """Its slices are stacked, its file's window is used; what was left out is told with its reason."""
    app = opened(run)
    app.expect("a folder of DICOM files is opened", lambda s: s.volume_nb >= 20)
    app.expect("its slices are stacked", slice_nb=5)
    app.expect("its file's window is used", window_low_x100=-16000, window_high_x100=23900)
    for key, low, high, what in (("2", 0, 7900, "the brain's"), ("4", -135000, 14900, "the lung's")):
        app.key("alt+i")
        app.wait("a menu", lambda s: s.is_in_menu)
        app.key(key)
        app.expect(f"a CT can be looked at through {what} window", window_low_x100=low, window_high_x100=high)
    app.key("alt+i")
    app.wait("a menu", lambda s: s.is_in_menu)
    app.key("1")
    app.expect("and through its file's again", window_low_x100=-16000, window_high_x100=23900)
    run.same("what was left out is told", len(app.said("warning .* files were not opened")), 1)
    run.check("every file left out has its reason", len(app.said("problem .* holds no image")) >= 40)
    app.menu("Files not opened")
    app.window("Files not opened")
    run.check("the list of files left out opens", True)
    run.shot("dicom_left_out")
    app.close("Files not opened")
    app.expect("the workbench keeps its contract with folders too", contract_reports=0)
    run.same("it closes after a folder with status 0", app.end(), 0)


def opened_branch(app, name):
    """Opens a branch of the tree; returns the name of its first row below."""
    state = app.wait(f"the row {name}", lambda s: named(s, name))
    click_row(app, named(state, name), is_lead=True)
    state = app.wait(f"a row below {name}", lambda s: below(s, name))
    return below(state, name)


def named(state, name):
    """The whole text of the row of that name."""
    parts = state.item("Tree")["parts"]
    return next((part["name"] for part in parts if part["level"] and part["name"].endswith(name)), None)


def below(state, name):
    parts = [part for part in state.item("Tree")["parts"] if part["level"]]
    for part, following in zip(parts, parts[1:]):
        if part["name"].endswith(name) and following["level"] > part["level"]:
            return following
    return None


def click_part(app, part):
    app.press_at(app.state().box("database_panel").left + 2 * app.last.space + 20 * (part["level"] - 1) + 70,
                 Box(part["place"]).point()[1])


@scenario()
def files_of_a_folder_are_checked(run):
    """A click on a file's frame checks it, shows it and makes the histogram of it, also of another series."""
    app = opened(run)
    state = app.state()
    series, every = state.volume_title, state.histogram_pixels
    show(app, "Files")
    click_part(app, opened_branch(app, "2392"))
    app.expect("a click on a file's frame checks it", db_checked=1)
    app.expect("the histogram is made of that frame", histogram_pixels=every // 5)
    app.expect("the image goes to that frame", volume_title=series, slice=3)
    click_part(app, opened_branch(app, "6154"))
    app.expect("a frame of another series brings that series", volume_title="CR 1: Cervical LAT")
    app.expect("the histogram follows to the other series", histogram_pixels=256)
    run.shot("dicom_files", " - Workbench")


@scenario()
def series_are_checked_in_the_class_view(run):
    """Scouts and series have their names; a click on a series checks its frames; Ctrl+N and Ctrl+P go through them."""
    app = opened(run)
    state = app.state()
    series, every = state.volume_title, state.histogram_pixels
    state = show(app, "2D classes")
    app.expect("the class view names scouts", lambda s: s.row("CT 4: Scout")["title"] == "Scout")
    app.wheel(-1, app.find("Tree").point())
    scout = app.wait("the scout", lambda s: below(s, "CT 4: Scout"))
    click_part(app, below(scout, "CT 4: Scout"))
    app.expect("a click in the class view brings the scout", volume_title="CT 4: Scout")
    click_row(app, named(app.state(), series))
    app.expect("a click on a series checks its frames", db_checked=5)
    app.expect("and shows the series", volume_title=series)
    app.expect("the histogram is that of the series", histogram_pixels=every)
    run.shot("dicom_classes", " - Workbench")
    before = app.state().volume_cur
    app.key("ctrl+n")
    app.expect("Ctrl+N goes to the next series", volume_cur=before + 1)
    app.expect("its frames are the checked ones", lambda s: s.db_checked == s.slice_nb)
    app.key("ctrl+p")
    app.expect("Ctrl+P goes back", volume_title=series)


@scenario()
def images_are_checked_by_patient_and_series(run):
    """The patients stand in the order of their names; a click on a series checks its frames and shows it."""
    app = opened(run, with_head=False)
    state = app.state()
    series, every = state.volume_title, state.histogram_pixels
    state = show(app, "Patients")
    names = [part["name"] for part in state.item("Tree")["parts"] if part["level"] == 1]
    run.check("there are several patients", len(names) >= 2)
    run.same("they are in the order of their names", names, sorted(names))
    rows = [part for part in app.state().item("Tree")["parts"] if part["level"] == 3]
    run.check("series stand below their studies", len(rows) >= 4)
    wanted = next(part["name"] for part in rows if series.split(":")[1].strip() in part["name"])
    click_row(app, wanted)
    app.expect("a click on a series checks its frames", db_checked=5)
    app.expect("and shows the series", volume_title=series)
    app.expect("the histogram is that of the series", histogram_pixels=every)
    run.shot("dicom_patients", " - Workbench")
    app.click("Database", "Edit the class tree")
    app.expect("the editor is that of classes", lambda s: s.item("Database", "3D classes")["is_selected"])


@scenario()
def every_series_has_work_of_its_own(run):
    """Painting on one leaves the next alone; undo comes back with a series."""
    app = opened(run)
    app.press_at(*app.state().box("image").point())
    app.expect("a series can be painted on", unsaved=1)
    app.key("ctrl+n")
    app.expect("the next series has no such work", unsaved=0)
    app.key("ctrl+p")
    app.expect("the work is that of its series", unsaved=1)
    app.key("ctrl+z")
    app.expect("its own undo comes back with a series", unsaved=0)


def shown_series(run, folder):
    """What a workbench shows and tells of a folder with one series."""
    app = run.start(folder)
    state = app.expect("a series is opened", slice_nb=5)
    box = state.box("image")
    picture = app.screen.sum((box.left, box.top, box.width, box.height))
    told = (state.volume_title, state.slice, state.window_low_x100, state.window_high_x100, state.histogram_pixels)
    run.shot(f"dicom_{folder.name}", " - Workbench")
    run.same("no file has anything to be told of", app.said("status .* not opened|problem"), [])
    run.same("it closes after the series with status 0", app.end(), 0)
    return picture, told


@scenario()
def a_compressed_series_is_the_uncompressed_one(run):
    """Compressed without loss by another program, a series has the same picture, window and greys."""
    samples = package_file("python3-pydicom", "/dicomdirtests")
    if samples is None or shutil.which("dcmcjpeg") is None:
        raise Skipped("python3-pydicom or dcmtk is not there")
    plain = run.data / "plain"
    shutil.copytree(pathlib.Path(samples) / "98892001" / "CT5N", plain)
    wanted = shown_series(run, plain)
    for name, command in (("jpeg", ["dcmcjpeg", "+e1"]), ("jpeg_ls", ["dcmcjpls", "+el"])):
        folder = run.data / name
        folder.mkdir()
        for path in plain.iterdir():
            subprocess.run([*command, path, folder / path.name], check=True)
        run.same(f"{name}: the picture and the greys are the uncompressed ones", shown_series(run, folder), wanted)


def ct_series(run):
    """A folder with one CT series of five slices."""
    samples = package_file("python3-pydicom", "/dicomdirtests")
    if samples is None:
        raise Skipped("python3-pydicom is not there")
    folder = run.data / "ct"
    shutil.copytree(pathlib.Path(samples) / "98892001" / "CT5N", folder)
    return folder


def pydicom_library():
    try:
        import pydicom
    except ImportError as missing:
        raise Skipped("python3-pydicom is not there") from missing
    return pydicom


@scenario()
def labels_leave_and_come_back_as_a_segmentation_object(run):
    """An independent library finds the TAG's voxels, name and image in the object; the workbench loads it again."""
    pydicom = pydicom_library()
    folder = ct_series(run)
    target = run.folder / "seg.dcm"
    app = run.start(folder)
    app.key("2")
    app.menu("Name by anatomy")
    app.window("Name by anatomy")
    app.type("l")
    run.shot("dicom_anatomy", "Name by anatomy")
    app.answer_key("Name by anatomy", "Return")
    app.expect("the TAG has the name", tag_label="Lateral ventricle")
    app.stroke((40, 45), (60, 45))
    painted = app.expect("work is unsaved", unsaved=1).count(2)
    app.menu("Save as DICOM segmentation")
    app.answer("Labels as a DICOM object", "Plain: every system reads it")
    app.choose_file("Save as DICOM segmentation", target)
    app.wait_said("status Segmentation object saved to seg.dcm")
    data = pydicom.dcmread(target)
    run.same("it has the segment with the name", [item.SegmentLabel for item in data.SegmentSequence], ["Lateral ventricle"])
    run.same("and its code", data.SegmentSequence[0].SegmentedPropertyTypeCodeSequence[0].CodeValue, "66720007")
    run.same("it has the voxels", int(data.pixel_array.sum()), painted)
    slices = {pydicom.dcmread(path).SOPInstanceUID for path in folder.iterdir()}
    derivation = data.PerFrameFunctionalGroupsSequence[0].DerivationImageSequence[0]
    run.check("it belongs to an image of the series",
              derivation.SourceImageSequence[0].ReferencedSOPInstanceUID in slices)
    app.expect("markers and thresholds are not in it, so the work is still to be saved", unsaved=1)
    app.key("ctrl+z")
    app.expect("undo takes the voxels away", lambda s: s.count(2) == 0)
    app.key("ctrl+l")
    if app.dialog() == "Unsaved work":
        app.answer("Unsaved work", "No")
    app.choose_file("Load labels", target)
    app.expect("the object brings them back", lambda s: s.count(2) == painted)
    before = target.read_bytes()
    app.key("ctrl+s")
    app.window("Save labels")
    app.answer_key("Save labels", "Escape")
    run.check("saving asks for another file and leaves the object alone", target.read_bytes() == before)
