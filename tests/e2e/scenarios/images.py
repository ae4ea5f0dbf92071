"""The image that is shown, saved in other formats: what other programs read there, and what is asked before."""
import math
import re

from driver.scenario import scenario
from driver.workbench import windows_path
from scenarios.segment import band, saved, told, witnesses
from scenarios.truth import diffusion

TITLE = "Save image as"
SIZE = (40, 32, 24)
BAND = (5000, 9000)
NAMES = ("copy.nrrd", "copy.mha")
TYPES = {"int16": "<i2", "MET_SHORT": "<i2", "float": "<f4", "MET_FLOAT": "<f4"}


def oblique(run):
    """An image that lies askew and is stored from left to right; no two voxels are alike. Returns the path, voxels and
    place: of a voxel in millimetres to the right, the front and the top."""
    numpy, _, nibabel = witnesses()
    turn, tilt = math.radians(20), math.radians(-10)
    around_z = numpy.array([[math.cos(turn), -math.sin(turn), 0], [math.sin(turn), math.cos(turn), 0], [0, 0, 1]])
    around_x = numpy.array([[1, 0, 0], [0, math.cos(tilt), -math.sin(tilt)], [0, math.sin(tilt), math.cos(tilt)]])
    place = numpy.eye(4)
    place[:3, :3] = around_x @ around_z @ numpy.diag([-0.75, 1.25, 2.5])
    place[:3, 3] = 31.5, -47.25, 12.125
    voxels = (numpy.arange(math.prod(SIZE)) - 1000).reshape(SIZE, order="F").astype(numpy.int16)
    path = run.data / "askew.nii.gz"
    nibabel.save(nibabel.Nifti1Image(voxels, place), path)
    return path, voxels, place


def numbers(text):
    return [float(number) for number in text.replace("(", " ").replace(")", " ").replace(",", " ").split()]


def voxels_of(data, size, kind):
    numpy, _, _ = witnesses()
    return numpy.frombuffer(data, TYPES[kind]).reshape([int(side) for side in size], order="F")


def read_nrrd(path):
    """Voxels, and their place to the right, the front and the top, by nothing but the header's words."""
    numpy, _, _ = witnesses()
    head, _, data = path.read_bytes().partition(b"\n\n")
    first, *lines = head.decode("ascii").split("\n")
    field = dict(line.split(": ", 1) for line in lines)
    told_form = first, field.get("space"), field["encoding"], field["endian"]
    if told_form not in [("NRRD0004", space, "raw", "little") for space in ("right-anterior-superior", None)]:
        raise ValueError(f"another form: {told_form}")
    place = numpy.eye(4)
    if "space" not in field:  # it is not known where the image lies
        place[:3, :3] = numpy.diag(numbers(field["spacings"]))
        return voxels_of(data, numbers(field["sizes"]), field["type"]), place
    place[:3, :3] = numpy.reshape(numbers(field["space directions"]), (3, 3)).T
    place[:3, 3] = numbers(field["space origin"])
    return voxels_of(data, numbers(field["sizes"]), field["type"]), place


def read_meta_image(path):
    """The same of the other format, which counts to the left and the back."""
    numpy, _, _ = witnesses()
    head, mark, data = path.read_bytes().partition(b"ElementDataFile = LOCAL\n")
    field = dict(line.split(" = ", 1) for line in head.decode("ascii").strip().split("\n"))
    told_form = bool(mark), field["BinaryData"], field["BinaryDataByteOrderMSB"], field["CompressedData"]
    if told_form != (True, "True", "False", "False"):
        raise ValueError(f"another form: {told_form}")
    place = numpy.eye(4)
    place[:3, :3] = numpy.reshape(numbers(field["TransformMatrix"]), (3, 3)).T * numbers(field["ElementSpacing"])
    place[:3, 3] = numbers(field["Offset"])
    place[:2] *= -1
    return voxels_of(data, numbers(field["DimSize"]), field["ElementType"]), place


READERS = dict(zip(NAMES, (read_nrrd, read_meta_image)))


def save(app, path):
    app.menu("Save image as")
    app.choose_file(TITLE, path)
    told(app, f"The image was saved to {path.name}")


def is_image(path, voxels, place):
    """Whether a file holds just this, as someone else reads it."""
    numpy, _, _ = witnesses()
    read, read_place = READERS[path.name](path)
    return (read.shape == voxels.shape and numpy.array_equal(read, voxels)
            and numpy.allclose(read_place, place, rtol=0, atol=1e-5))


def told_truly(app, voxels, place):
    """Whether the workbench tells index, place and grey value of the voxels under the mouse, at their middles."""
    numpy, _, _ = witnesses()
    for column, row in ((8, 11), (30, 11), (20, 25)):
        app.move(*app.in_image(100 * (column + 0.5) / SIZE[0], 100 * (row + 0.5) / SIZE[1]))
        text = app.wait("a voxel is told", lambda s: s.voxel).voxel
        *values, grey = numbers(re.match(r"(.*) mm +grey ([^ ]+)", text).expand(r"\1 \2"))
        at = tuple(int(value) for value in values[:3])
        if grey != voxels[at] or not numpy.allclose((place @ [*at, 1])[:3], values[3:], rtol=0, atol=0.06):
            return False
    return True


@scenario(is_short=True)
def an_image_is_saved_for_other_programs(run):
    """As NRRD and MetaImage: another reader finds every voxel in its place, and so does the workbench."""
    numpy, _, _ = witnesses()
    image, voxels, place = oblique(run)
    app = run.start(image)
    before = app.state()
    run.check("the image is told truly", told_truly(app, voxels, place))
    for name in NAMES:
        save(app, run.data / name)
        run.check(f"{name} holds every voxel in its place", is_image(run.data / name, voxels, place))
    run.same("the image stays, and nothing else is left", sorted(path.name for path in run.data.iterdir()),
             sorted([image.name, *NAMES]))
    run.same("nothing was warned of", app.said("warning "), [])
    run.same("it ends well", app.end(), 0)
    expected = ((voxels >= BAND[0]) & (voxels <= BAND[1])).astype(numpy.uint8)
    for name in NAMES:
        labels = run.folder / f"{name}_labels.nii.gz"
        app = run.start(run.data / name, labels=labels)
        app.expect(f"{name} is opened", volume_title=name, slice_nb=SIZE[2], slice=before.slice,
                   histogram_pixels=before.histogram_pixels)
        run.check(f"{name} is told truly", told_truly(app, voxels, place))
        run.shot("image_" + name.rpartition(".")[2], " - Workbench")
        band(app, 1, *BAND)
        app.key("ctrl+b")
        app.expect("the band has the voxels of the image", counts={"1": int(expected.sum())})
        app.key("ctrl+s")
        app.expect("labels on it are saved", unsaved=0)
        run.check(f"labels on {name} are voxel for voxel right", numpy.array_equal(saved(labels), expected))
        run.check(f"labels on {name} lie on the image", lies_at(labels, place))
        run.same("it ends well", app.end(), 0)


def lies_at(path, place):
    numpy, _, nibabel = witnesses()
    return numpy.allclose(nibabel.load(path).affine, place, rtol=0, atol=1e-4)


def stamp(path):
    """Another one when the file was written, though it be with the same content."""
    told_by_system = path.stat()
    return told_by_system.st_ino, told_by_system.st_mtime_ns, told_by_system.st_size


def ask_for_written_file(app, path):
    """As far as the question whether a file that is there is written over."""
    app.menu("Save image as")
    app.window(TITLE)
    app.key("ctrl+a")
    app.type(windows_path(path) + "\n")
    app.wait("the question about the file that is there",
             lambda s: sum(TITLE in window["title"] for window in s.windows) == 2)


@scenario(is_short=True)
def an_image_is_not_written_over_a_file_unasked(run):
    """No leaves the file as it was, Yes writes over it; a file that is open here stays in any case."""
    image, voxels, place = oblique(run)
    theirs = run.data / NAMES[1]
    theirs.write_bytes(b"of somebody else")
    former = stamp(theirs)
    app = run.start(image)
    ask_for_written_file(app, theirs)
    run.shot("image_over")
    app.key("alt+n")
    app.wait("the choice of a name", lambda s: sum(TITLE in window["title"] for window in s.windows) == 1)
    app.answer_key(TITLE, "Escape")
    run.same("No leaves the file", theirs.read_bytes(), b"of somebody else")
    run.same("untouched", stamp(theirs), former)
    run.same("and does not tell that it was saved", app.said("status The image was saved"), [])
    ask_for_written_file(app, theirs)
    app.key("alt+y")
    told(app, f"The image was saved to {theirs.name}")
    run.check("Yes writes over it", is_image(theirs, voxels, place))
    run.same("nothing else is left", sorted(path.name for path in run.data.iterdir()), [image.name, theirs.name])
    run.same("it ends well", app.end(), 0)

    former = stamp(theirs)
    app = run.start(theirs)
    ask_for_written_file(app, theirs)
    app.key("alt+y")
    app.wait_said(f"warning The image was not saved: {theirs.name} is open here")
    app.wait_said("ask save_image_as", 2)
    app.answer_key(TITLE, "Escape")
    run.same("what is open here stays", stamp(theirs), former)
    run.shot("image_open_here", " - Workbench")
    run.same("it ends well", app.end(), 0)


@scenario()
def an_image_that_is_not_exact_is_saved_after_a_question(run):
    """Grey values that were rounded or are none: No saves nothing, Yes writes real numbers as exact as those here."""
    numpy, _, _ = witnesses()
    image = diffusion(run)
    greys = saved(image)
    app = run.start(image)
    app.menu("Save image as")
    app.window(TITLE)
    run.shot("image_inexact")
    app.answer(TITLE, "No")
    run.same("No asks for no name", app.said("ask save_image_as"), [])
    app.menu("Save image as")
    app.window(TITLE)
    app.key("alt+y")
    app.wait_said("ask save_image_as")
    app.choose_file(TITLE, run.data / NAMES[0])
    told(app, f"The image was saved to {NAMES[0]}")
    read, place = READERS[NAMES[0]](run.data / NAMES[0])
    run.check("voxels are as large as they were", numpy.allclose(place, numpy.diag([2, 2, 3, 1])), place)
    run.check("what is no number stays none", numpy.array_equal(numpy.isnan(read), numpy.isnan(greys)))
    worst = float(numpy.nanmax(numpy.abs(read - greys)))
    run.note(f"largest error {worst:.3g}")
    run.check("grey values are as exact as in the panels", worst <= 0.5e-6, worst)
