"""From bands to labels, corrections, the table of the TAGs, comparison; against NumPy, SciPy and nibabel."""
import csv
import shutil
import subprocess
import time

from driver.scenario import Skipped, scenario
from driver.workbench import windows_path

SIDE, SLICES = 96, 40
SPACING = (1.0, 1.0, 2.0)
# Ellipsoids by TAG: centre and half axes in mm, grey value; the band around it.
ORGANS = {1: ((30, 48, 40), (18, 26, 30), 160, (100, 280)),
          2: ((68, 34, 40), (14, 12, 22), 400, (280, 3000)),
          3: ((66, 68, 36), (15, 14, 18), -120, (-400, -40))}


def witnesses():
    try:
        import nibabel
        import numpy
        import scipy.ndimage
        import scipy.spatial
    except ImportError as missing:
        raise Skipped("NumPy, SciPy and nibabel are not all there") from missing
    return numpy, scipy, nibabel


def ct(run):
    """A body of 40 HU in air with three organs of known shape, and noise. Returns the image's path and the truth's."""
    numpy, _, nibabel = witnesses()
    x, y, z = (grid * step for grid, step in
               zip(numpy.meshgrid(range(SIDE), range(SIDE), range(SLICES), indexing="ij"), SPACING))

    def inside(centre, axes):
        return sum(((value - at) / half) ** 2 for value, at, half in zip((x, y, z), centre, axes)) <= 1
    image = numpy.where(inside((48, 48, 40), (46, 46, 39)), 40.0, -1000.0)
    truth = numpy.zeros(image.shape, numpy.uint8)
    for tag, (centre, axes, grey, _) in ORGANS.items():
        image[inside(centre, axes)] = grey
        truth[inside(centre, axes)] = tag
    image += numpy.random.default_rng(4).normal(0.0, 22.0, image.shape)
    affine = numpy.diag([*SPACING, 1.0])
    paths = run.data / "ct.nii.gz", run.folder / "truth.nii.gz"
    nibabel.save(nibabel.Nifti1Image(numpy.round(image).astype(numpy.int16), affine), paths[0])
    nibabel.save(nibabel.Nifti1Image(truth, affine), paths[1])
    return paths


def saved(path):
    """Voxels of a file in its order."""
    numpy, _, nibabel = witnesses()
    return numpy.asanyarray(nibabel.load(path).dataobj)


def ask(app, command, title, answer):
    app.menu(command)
    return app.fill(title, answer)


def band(app, tag, low, high):
    app.key(str(tag))
    ask(app, "Lower threshold", "Lower threshold", str(low))
    ask(app, "Upper threshold", "Upper threshold", str(high))


def bands(app):
    for tag, (_, _, _, (low, high)) in ORGANS.items():
        band(app, tag, low, high)


def told(app, pattern):
    """Waits for a word about an operation."""
    return app.wait_said("status " + pattern)


def save_table(app, title, path):
    app.fill(title, windows_path(path))
    app.front()
    return list(csv.DictReader(path.read_text(encoding="utf-8").splitlines()))


def numbers_are_scipys(run, rows, labels, greys, spacing):
    """Every number of the table is what NumPy and SciPy find in the voxels."""
    numpy, scipy, _ = witnesses()
    for row in rows:
        mask = labels == int(row["TAG"])
        own = greys[mask].astype(float)
        used = numpy.nonzero(mask.any(axis=(0, 1)))[0]
        expected = {"Voxels": own.size, "Volume (ml)": own.size * numpy.prod(spacing) / 1000, "Mean": own.mean(),
                    "SD": own.std(), "Minimum": own.min(), "Median": numpy.median(own), "Maximum": own.max(),
                    "Percentile 5": numpy.percentile(own, 5), "Percentile 95": numpy.percentile(own, 95),
                    "Regions": scipy.ndimage.label(mask, numpy.ones((3, 3, 3)))[1],
                    "First slice": used[0] + 1, "Last slice": used[-1] + 1}
        wrong = {name: (row[name], value) for name, value in expected.items()
                 if not numpy.isclose(float(row[name]), value, rtol=1e-9)}
        run.check(f"the numbers of TAG {row['TAG']} are SciPy's", not wrong, wrong)


@scenario(is_short=True)
def bands_become_labels(run):
    """The bands of all TAGs, in one step: the counts are those of the image; undo, redo, and the file hold the same."""
    numpy, _, _ = witnesses()
    image, _ = ct(run)
    greys = saved(image)
    app = run.start(image, labels=run.folder / "labels.nii.gz")
    bands(app)
    app.key("semicolon")
    run.shot("segment_preview", " - Workbench")
    app.key("semicolon")
    steps = app.state().undo_nb
    app.key("ctrl+a")
    expected = {str(tag): int(numpy.count_nonzero((greys >= low) & (greys <= high)))
                for tag, (_, _, _, (low, high)) in ORGANS.items()}
    app.expect("every voxel of a band has its TAG, in one step", counts=expected, undo_nb=steps + 1)
    told(app, f"Apply all bands: {sum(expected.values())} voxels in [0-9]+ slices")
    app.key("ctrl+z")
    app.expect("undo takes all of it back", counts={})
    app.key("ctrl+y")
    app.expect("redo does it again", counts=expected)
    app.key("ctrl+s")
    app.expect("saving leaves nothing unsaved", unsaved=0)
    labels = saved(run.folder / "labels.nii.gz")
    run.check("the file holds what the image says", all(
        numpy.array_equal(labels == tag, (greys >= low) & (greys <= high))
        for tag, (_, _, _, (low, high)) in ORGANS.items()))


@scenario(is_short=True)
def operations_keep_to_slices_tags_and_locks(run):
    """The shown slice, a range, inside a TAG; what is locked stays."""
    numpy, _, _ = witnesses()
    image, _ = ct(run)
    greys = saved(image)
    app = run.start(image)
    band(app, 1, 100, 280)
    band(app, 2, 200, 3000)
    app.menu("Work on the shown slice")
    shown = app.state().slice
    app.key("1", "ctrl+b")
    in_slice = int(numpy.count_nonzero((greys[:, :, shown] >= 100) & (greys[:, :, shown] <= 280)))
    app.expect("only the shown slice has the TAG", counts={"1": in_slice})
    app.key("ctrl+z")
    ask(app, "Work on a range of slices", "Range of slices", "11 to 20")
    app.key("ctrl+b")
    part = greys[:, :, 10:20]
    in_range = int(numpy.count_nonzero((part >= 100) & (part <= 280)))
    app.expect("only the range has it", counts={"1": in_range})
    app.menu("Locked (not overwritten)")
    app.menu("Work on the whole volume")
    app.key("2", "ctrl+b")
    both = int(numpy.count_nonzero((part >= 200) & (part <= 280)))
    high = int(numpy.count_nonzero(greys >= 200)) - both
    app.expect("a locked TAG stays", counts={"1": in_range, "2": high})
    app.key("ctrl+z", "1")
    app.menu("Locked (not overwritten)")
    app.menu("Only inside")
    app.window("Only inside a TAG")
    app.key("Down", "Down")
    app.answer_key("Only inside a TAG", "Return")
    app.key("2", "ctrl+b")
    app.expect("inside TAG 1 only its voxels change", counts={"1": in_range - both, "2": both})


@scenario()
def organs_are_segmented_and_measured(run):
    """Bands, the largest region, holes, smoothing: close to the truth. Both tables are what SciPy finds."""
    numpy, scipy, _ = witnesses()
    image, truth_path = ct(run)
    truth, greys = saved(truth_path), saved(image)
    app = run.start(image, labels=run.folder / "labels.nii.gz")
    bands(app)
    app.key("ctrl+a")
    told(app, "Apply all bands: ")
    for tag in ORGANS:
        app.key(str(tag))
        app.menu("Keep the largest region")
        told(app, "Keep the largest region of .*: [0-9]+ voxel")
        app.menu("Fill holes in space")
        ask(app, "Smooth", "Smooth", "2")
        app.wait_said("status Smooth .*", tag)
        app.menu("Keep the largest region")
    app.key("ctrl+s")
    app.expect("the labels are saved", unsaved=0)
    labels = saved(run.folder / "labels.nii.gz")

    app.menu("Compare with a label file")
    app.choose_file("Compare with a label file", truth_path)
    app.window("Agreement with the file")
    run.shot("segment_agreement", "Agreement with the file")
    app.answer("Agreement with the file", "Save as CSV")
    rows = save_table(app, "Save how the labels agree", run.folder / "agreement.csv")
    run.same("every organ is compared", [row["TAG"] for row in rows], [str(tag) for tag in ORGANS])
    for row in rows:
        tag = int(row["TAG"])
        one, other = labels == tag, truth == tag
        dice = 2 * numpy.count_nonzero(one & other) / (numpy.count_nonzero(one) + numpy.count_nonzero(other))
        run.note(f"TAG {tag}: Dice {float(row['Dice']):.4f}, Hausdorff {row['Hausdorff (mm)']} mm")
        run.check(f"TAG {tag} is close to the truth", float(row["Dice"]) >= 0.99, row["Dice"])
        run.check(f"Dice of TAG {tag}", abs(float(row["Dice"]) - dice) < 1e-12)
        surfaces = [numpy.argwhere(mask & ~scipy.ndimage.binary_erosion(mask)) * SPACING for mask in (one, other)]
        there = scipy.spatial.cKDTree(surfaces[1]).query(surfaces[0])[0]
        back = scipy.spatial.cKDTree(surfaces[0]).query(surfaces[1])[0]
        expected = (max(there.max(), back.max()), max(numpy.percentile(there, 95), numpy.percentile(back, 95)),
                    numpy.concatenate([there, back]).mean())
        given = [float(row[name]) for name in ("Hausdorff (mm)", "Hausdorff 95 % (mm)", "Mean surface distance (mm)")]
        run.check(f"distances of TAG {tag}", numpy.allclose(given, expected, rtol=1e-6), f"({given}, {expected})")

    app.key("ctrl+t")
    app.window("Statistics of the TAGs")
    run.shot("segment_statistics", "Statistics of the TAGs")
    app.close("Statistics of the TAGs")
    app.menu("Export statistics")
    rows = save_table(app, "Save the statistics of the TAGs", run.folder / "statistics.csv")
    run.same("every TAG has a row", [row["TAG"] for row in rows], ["0", *(str(tag) for tag in ORGANS)])
    numbers_are_scipys(run, rows, labels, greys, SPACING)


@scenario()
def corrections_by_the_cursor(run):
    """Filling and choosing where the mouse points; the keys tell when it points at nothing."""
    _, scipy, _ = witnesses()
    image, truth_path = ct(run)
    app = run.start(image)
    band(app, 2, 280, 3000)
    x, y, z = (int(value / step) for value, step in zip(ORGANS[2][0], SPACING))
    while app.state().slice != z:
        app.key("Page_Up" if app.state().slice < z else "Page_Down")
    # The slice is shown turned: the patient's right is at the left, and the front above.
    app.move(*app.in_image(100 * (SIDE - 0.5 - x) / SIDE, 100 * (SIDE - 0.5 - y) / SIDE))
    app.key("f")
    truth = saved(truth_path) == 2
    state = app.expect("the organ under the mouse is filled",
                       lambda s: abs(s.count(2) - truth.sum()) < 0.01 * truth.sum())
    app.key("3", "q")
    app.expect("its region goes to another TAG", lambda s: s.count(3) == state.count(2) and s.count(2) == 0)
    app.key("ctrl+z", "ctrl+z", "2", "ctrl+b")
    app.expect("the band has specks, too", lambda s: s.count(2) >= state.count(2))
    app.key("ctrl+u")
    app.expect("one region stays", counts={"2": state.count(2)})
    app.key("ctrl+k")
    app.answer_key("Fill by tolerance", "Escape")
    app.expect("Escape changes nothing", counts={"2": state.count(2)})


def large(run):
    """An image in which smoothing by many millimetres takes a while."""
    numpy, _, nibabel = witnesses()
    path = run.data / "large.nii.gz"
    values = numpy.random.default_rng(5).integers(0, 1000, (200, 200, 160), numpy.int16)
    nibabel.save(nibabel.Nifti1Image(values, numpy.eye(4)), path)
    return path


def begin_smoothing(app):
    band(app, 1, 500, 1000)
    app.key("ctrl+a")
    told(app, "Apply all bands: ")
    state = app.state()
    app.menu("Smooth")
    app.window("Smooth")
    app.key("ctrl+a")
    app.type("20\n")
    app.window("Please wait")
    return state


@scenario()
def an_operation_can_be_given_up(run):
    """Escape while it runs: nothing has changed, and there is no step."""
    app = run.start(large(run))
    before = begin_smoothing(app)
    run.shot("segment_progress", "Please wait")
    app.key("Escape")
    told(app, "Smooth .* was given up: nothing has changed")
    app.expect("nothing has changed", counts=before.counts, undo_nb=before.undo_nb)


@scenario()
def killed_in_an_operation_the_work_before_it_is_there(run):
    """The end in the middle of an operation loses nothing that was there when it began."""
    from scenarios.work import LEFT, wait_kept
    app = run.start(large(run))
    band(app, 1, 500, 1000)
    app.key("ctrl+a")
    told(app, "Apply all bands: ")
    before = app.state()
    wait_kept(app, run)
    app.menu("Smooth")
    app.window("Smooth")
    app.key("ctrl+a")
    app.type("20\n")
    app.window("Please wait")
    app.kill()
    app = run.launch()
    app.wait_said("ask recovery")
    app.answer_key(LEFT, "alt+t")
    app.wait_ready()
    app.expect("all is there", counts=before.counts, unsaved=1)


@scenario()
def a_full_disk_keeps_the_former_table(run):
    """The table is written whole or not at all, and the user is told."""
    image, _ = ct(run)
    disk = run.folder / "disk"
    disk.mkdir()
    if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=16k", "tmpfs", disk], capture_output=True).returncode:
        raise Skipped("no small disk can be made")
    try:
        app = run.start(image)
        band(app, 1, 100, 280)
        app.key("ctrl+a")
        told(app, "Apply all bands: ")
        app.menu("Export statistics")
        save_table(app, "Save the statistics of the TAGs", disk / "table.csv")
        before = (disk / "table.csv").read_bytes()
        app.key("ctrl+z")
        with open(disk / "rest", "wb", buffering=0) as rest:
            try:
                while rest.write(b"x" * 512):
                    pass
            except OSError:
                pass
        app.menu("Export statistics")
        title = "Save the statistics of the TAGs"
        app.window(title)
        app.key("ctrl+a")
        app.type(windows_path(disk / "table.csv") + "\n")
        app.wait("the question about the file that is there",
                 lambda s: sum(title in window["title"] for window in s.windows) == 2)
        app.key("alt+y")
        app.wait_said("warning The table was not saved: table.csv ")
        run.same("the former table is whole", (disk / "table.csv").read_bytes(), before)
        run.same("nothing else is left", sorted(path.name for path in disk.iterdir()), ["rest", "table.csv"])
        app.end()
    finally:
        time.sleep(0.5)
        subprocess.run(["umount", "-l", disk], check=False)


@scenario()
def slices_are_saved_as_pictures(run):
    """A view as on the screen and voxel for voxel, with and without colours; a sheet of slices; read by ImageMagick."""
    image, _ = ct(run)
    app = run.start(image)
    band(app, 2, 280, 3000)
    app.key("ctrl+b")
    state = app.expect("the slice has the TAG", lambda s: s.slice_pixels > 0)

    def picture(way, view=0):
        app.menu("Save picture")
        app.window("Save picture")
        app.key(*["Down"] * (4 * view + way), "Return")
        name = f"view_{view}_{way}.png"
        app.choose_file("Save picture", run.folder / name)
        app.wait_said(f"status The picture was saved to {name}")
        return read(run.folder / name)

    def read(path):
        """Width, height, and the pixels that are neither grey nor of the ground, which is nearly so."""
        size = subprocess.run(["identify", "-format", "%w %h", path], capture_output=True, text=True, check=True)
        raw = subprocess.run(["convert", path, "-depth", "8", "rgb:-"], capture_output=True, check=True).stdout
        numpy, _, _ = witnesses()
        pixels = numpy.frombuffer(raw, numpy.uint8).reshape(-1, 3).astype(int)
        return [int(side) for side in size.stdout.split()], int((pixels.max(1) - pixels.min(1) > 20).sum())
    run.same("one pixel per voxel, those of the TAG are coloured", picture(2), ([SIDE, SIDE], state.slice_pixels))
    run.same("the image alone is grey", picture(3), ([SIDE, SIDE], 0))
    size, colored = picture(0)
    scale = state.slice_place["scale_x"] * state.slice_place["scale_y"]
    beside = colored - state.slice_pixels * scale  # soft letters have coloured edges
    run.check("the TAG is as large as on the screen", abs(beside) < 0.05 * colored, f"({colored} pixels)")
    run.same("the screen's image alone is as large, and grey", picture(1), (size, 0))
    app.key("y")
    run.same("the coronal view is told apart", picture(2, 1)[0], [SIDE, SLICES])
    app.key("y")
    app.menu("Save contact sheet")
    app.fill("Contact sheet", "5")
    app.choose_file("Save contact sheet", run.folder / "sheet.png")
    app.wait_said("status The picture was saved to sheet.png")
    size, colored = read(run.folder / "sheet.png")
    run.check("eight slices and a list", size[0] >= 320 and size[1] > 2 * SIDE and colored > 0, f"({size})")
    app.menu("Save picture")
    app.answer_key("Save picture", "Escape")
    run.same("Escape saves none", len(list(run.folder.glob("*.png"))), 6)
    for name in ("view_0_0.png", "sheet.png"):
        shutil.copy(run.folder / name, run.out / f"saved_{name}")
