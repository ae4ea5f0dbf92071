"""The steps of docs/tutorial.md: ventricles and white matter of the T1 brain; against NumPy, SciPy and nibabel."""
import re
import shutil
import subprocess

from driver.scenario import ROOT, Skipped, package_file, scenario
from scenarios.segment import ask, band, numbers_are_scipys, save_table, saved, told, witnesses

VENTRICLES, WHITE_MATTER = 8, 2


def point_at(app, voxel, size):
    """The mouse over a voxel of an image whose axes run to the right, the front and the top: it is shown turned."""
    while (at := app.state().slice) != voxel[2]:
        app.key("Page_Up" if at < voxel[2] else "Page_Down")
    app.move(*app.in_image(*(100 * (side - 0.5 - place) / side for place, side in zip(voxel[:2], size))))


def brain_alone():
    """The sample brain without its skull, as its distributor cut it."""
    path = package_file("mricron-data", "/ch2bet.nii.gz")
    if path is None:
        raise Skipped("the brain-extracted volume is not there")
    return path


def shown_table(app):
    """What the shown table's copied text says: its rows by TAG, and the areas of the current TAG by slice."""
    # The window that told of a long count has given the keyboard back to its owner, perhaps only now.
    app.front("Statistics of the TAGs")
    app.key("ctrl+a", "ctrl+c")
    asked = ["xclip", "-o", "-selection", "clipboard", "-t", "UTF8_STRING"]

    def copied():
        pasted = subprocess.run(asked, capture_output=True, timeout=20, text=True).stdout
        return pasted.replace("\r", "") if pasted.startswith("TAG ") else ""
    app.wait("the copied table", lambda s: copied())
    rows, _, _, areas = copied().split("\n\n")
    cells = [re.split(r" {2,}", line.strip()) for line in rows.split("\n")]
    return ({int(line[0]): dict(zip(cells[0], line)) for line in cells[1:]},
            {int(line.split()[0]): float(line.split()[1]) for line in areas.strip().split("\n")[1:]})


def shown_numbers_are_numpys(run, rows, labels, greys):
    """Of voxels of 1 mm: what people read has four digits at least."""
    numpy, _, _ = witnesses()
    for tag, row in rows.items():
        own = greys[labels == tag].astype(float)
        used = numpy.nonzero((labels == tag).any(axis=(0, 1)))[0] + 1
        expected = {"ml": own.size / 1000, "Mean": own.mean(), "SD": own.std(), "Min": own.min(),
                    "Median": numpy.median(own), "Max": own.max(), "5 %": numpy.percentile(own, 5),
                    "95 %": numpy.percentile(own, 95)}
        wrong = {name: (row[name], value) for name, value in expected.items()
                 if not numpy.isclose(float(row[name]), value, rtol=5.01e-4)}
        told_whole = row["Voxels"], row["Slices"]
        run.check(f"the shown numbers of TAG {tag} are NumPy's", not wrong, wrong)
        run.same(f"so are its voxels and slices, TAG {tag}", told_whole, (str(own.size), f"{used[0]} to {used[-1]}"))


@scenario()
def ventricles_and_white_matter_are_measured(run):
    """The steps of docs/tutorial.md on the T1 brain, with its pictures: voxel for voxel and number for number what
    SciPy makes of the same steps."""
    numpy, scipy, nibabel = witnesses()
    path = run.brain()
    greys = saved(path)
    inside = numpy.asanyarray(nibabel.load(brain_alone()).dataobj) > 0
    app = run.start(path, labels=run.folder / "labels.nii.gz")
    seed = (78, 125, 95)
    point_at(app, seed, greys.shape)
    run.shot("tutorial_begin", " - Workbench")
    band(app, VENTRICLES, 10, 50)
    band(app, WHITE_MATTER, 105, 150)
    app.key("semicolon")
    run.shot("tutorial_bands", " - Workbench")
    app.key("semicolon", str(VENTRICLES))

    ask(app, "Work on a range of slices", "Range of slices", "76 to 106")
    point_at(app, seed, greys.shape)
    app.key("f")
    told(app, "Fill with .*: [0-9]+ voxels")
    part = greys[:, :, 75:106]
    regions, _ = scipy.ndimage.label((part >= 10) & (part <= 50))
    fluid = regions == regions[78, 125, 95 - 75]
    app.expect("the fluid around the cursor is filled", counts={str(VENTRICLES): int(fluid.sum())})
    run.shot("tutorial_ventricles", " - Workbench")
    app.menu("Fill holes in space")
    told(app, "Fill holes of .* in space: [0-9]+ voxel")
    expected = numpy.zeros(greys.shape, numpy.uint8)
    expected[:, :, 75:106][scipy.ndimage.binary_fill_holes(fluid)] = VENTRICLES

    app.menu("Work on the whole volume")
    app.key(str(WHITE_MATTER), "ctrl+b")
    told(app, "Apply the band of .*: [0-9]+ voxels")
    app.menu("Keep the largest region")
    told(app, "Keep the largest region of .*: [0-9]+ voxel")
    regions, _ = scipy.ndimage.label((greys >= 105) & (greys <= 150), numpy.ones((3, 3, 3)))
    expected[regions == numpy.bincount(regions.ravel())[1:].argmax() + 1] = WHITE_MATTER
    app.key("y")
    app.expect("three planes", planes=1)
    run.shot("tutorial_planes", " - Workbench")
    app.key("y", "ctrl+s")
    app.expect("the labels are saved", unsaved=0)
    labels = saved(run.folder / "labels.nii.gz")
    run.check("voxel for voxel what SciPy makes", numpy.array_equal(labels, expected))

    app.key("ctrl+t")
    app.window("Statistics of the TAGs")
    run.shot("tutorial_statistics", "Statistics of the TAGs")
    shown, areas = shown_table(app)
    run.same("every TAG has a shown row", list(shown), [0, WHITE_MATTER, VENTRICLES])
    shown_numbers_are_numpys(run, shown, labels, greys)
    own = (labels == WHITE_MATTER).sum(axis=(0, 1))
    used = numpy.nonzero(own)[0]
    expected_areas = {at + 1: own[at] for at in range(used[0], used[-1] + 1)}
    run.check("the areas of the white matter are NumPy's", list(areas) == list(expected_areas) and numpy.allclose(
        list(areas.values()), list(expected_areas.values()), rtol=5.01e-4), areas)
    app.close("Statistics of the TAGs")
    app.menu("Export statistics")
    rows = save_table(app, "Save the statistics of the TAGs", run.folder / "statistics.csv")
    numbers_are_scipys(run, rows, labels, greys, (1.0, 1.0, 1.0))
    run.same("as many regions are shown", [row["Regions"] for row in shown.values()], [row["Regions"] for row in rows])
    volumes = {int(row["TAG"]): float(row["Volume (ml)"]) for row in rows}
    run.note(f"ventricles {volumes[VENTRICLES]:.1f} ml, white matter {volumes[WHITE_MATTER]:.1f} ml")
    tutorial = (ROOT / "docs/tutorial.md").read_text(encoding="utf-8")
    sentences = (f"is filled, {int(fluid.sum()):,} voxels.", f"The ventricles have {volumes[VENTRICLES]:.1f} ml, "
                 f"the white matter {volumes[WHITE_MATTER]:.0f} ml")
    run.same("the tutorial names these numbers", [text for text in sentences if text not in tutorial], [])
    run.check("the ventricles are as large as such are", 15 < volumes[VENTRICLES] < 20)
    share = numpy.count_nonzero(inside & (labels == WHITE_MATTER)) / numpy.count_nonzero(labels == WHITE_MATTER)
    run.check("the white matter lies in the brain", share > 0.9999, f"({share})")
    app.menu("Save contact sheet")
    app.fill("Contact sheet", "12")
    app.choose_file("Save contact sheet", run.folder / "sheet.png")
    app.wait_said("status The picture was saved to sheet.png")
    shutil.copy(run.folder / "sheet.png", run.out / "tutorial_sheet.png")
