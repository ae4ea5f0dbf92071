"""Label files, broken images, the end of the program."""
import gzip
import struct

from driver.scenario import scenario


def nifti(path):
    """The voxels' bytes, the size, and where the volume lies."""
    data = gzip.open(path).read() if path.suffix == ".gz" else path.read_bytes()
    begin = int(struct.unpack("<f", data[108:112])[0])
    return data[begin:], struct.unpack("<8h", data[40:56])[1:4], data[252:344]


@scenario(is_short=True)
def saved_labels_hold_what_was_painted(run):
    """The label file has the image's size and place, and as many voxels of the TAG as were counted."""
    image = run.image()
    labels = run.folder / "labels.nii.gz"
    app = run.start(image, labels=labels)
    app.stroke((40, 45), (60, 45))
    state = app.expect("work is unsaved", unsaved=1)
    app.key("ctrl+s")
    app.expect("saving leaves nothing unsaved", unsaved=0)
    run.check("the label file is there", labels.stat().st_size > 0)
    voxels, size, place = nifti(labels)
    _, image_size, image_place = nifti(image)
    run.same("the file holds the voxels of TAG 1", voxels.count(1), state.count(1))
    run.check("the file lies on the image", (size, place) == (image_size, image_place))
    run.same("it holds every voxel", len(voxels), size[0] * size[1] * size[2])


@scenario(is_short=True)
def a_broken_file_gives_a_warning(run):
    """A file that is cut off is told by its name; the image stays. Escape closes the warning."""
    image = run.image()
    broken = run.data / "broken.nii"
    broken.write_bytes(image.read_bytes()[:6000])
    app = run.start(image)
    app.key("ctrl+o")
    app.choose_file("Open volume", broken)
    app.expect("a broken file gives a warning", lambda s: s.is_shown("banner"))
    run.check("the warning names the file", app.said("warning .*broken.nii"))
    app.expect("the image stays", slice_nb=30, volume_title="head.nii")
    run.shot("warning", " - Workbench")
    app.key("Escape")
    app.expect("Escape closes the warning", lambda s: not s.is_shown("banner"))


@scenario()
def window_sizes_and_views(run):
    """Trace view, light theme, and a small window that can be painted in."""
    app = run.start(run.brain(of_brain_only=False))
    app.key("F9")
    app.expect("F9 opens the trace view", lambda s: s.is_shown("trace"))
    run.shot("trace", " - Workbench")
    app.key("F9", "F8")
    app.expect("F8 is the light theme", lambda s: s.light == 1 and not s.is_shown("trace"))
    run.shot("light", " - Workbench")
    app.key("F8")
    width = app.state().box("image").width
    app.place(" - Workbench", 20, 40, 1000, 640)
    app.expect("the image follows the window's size", lambda s: s.box("image").width < width)
    app.click_image(30, 75)
    app.expect("the small window can be painted in", unsaved=1)
    run.shot("small", " - Workbench")


@scenario(is_short=True)
def closing_with_unsaved_work_asks(run):
    """The key that closes asks first; No ends the program with status 0."""
    app = run.start(run.image())
    app.click_image(50, 50)
    app.expect("there is unsaved work", unsaved=1)
    app.key("ctrl+q")
    app.window("Unsaved work")
    run.check("closing with unsaved work asks", not app.said("closed"))
    run.shot("unsaved")
    app.answer_key("Unsaved work", "Escape")
    app.expect("Escape leaves all as it is", unsaved=1)
    app.key("ctrl+q")
    app.answer_key("Unsaved work", "alt+n")
    run.same("it closes with status 0", app.wait_ended(), 0)


def header_of(size, kind, bits):
    """Of a volume of cubic voxels, whose bytes follow it."""
    header = bytearray(352)
    struct.pack_into("<i", header, 0, 348)
    struct.pack_into("<8h", header, 40, 3, *size, 1, 1, 1, 1)
    struct.pack_into("<hh", header, 70, kind, bits)
    struct.pack_into("<8f", header, 76, *[1.0] * 8)
    struct.pack_into("<f", header, 108, 352.0)
    header[344:348] = b"n+1\0"
    return header


def large_image(run):
    """512 x 512 x 300 voxels, two halves of one value each."""
    half = 512 * 512 * 150 * 2
    path = run.data / "large.nii"
    with open(path, "wb") as file:
        file.write(header_of((512, 512, 300), 512, 16))
        file.write(b"\x05\x00" * (half // 2))
        file.truncate(352 + 2 * half)
    return path


@scenario()
def the_picture_is_there_before_the_histogram(run):
    """A large image is shown and painted in while its histogram is counted; the end does not wait for it."""
    image = large_image(run)
    app = run.start(image, is_counted=False)
    state = app.state()
    run.same("the image is shown", state.slice_nb, 300)
    run.check("no part of the histogram is shown for the whole", state.histogram_counting == 0 or
              state.histogram_pixels == 0)
    app.stroke((40, 45), (60, 45))
    painted = app.expect("it is painted in", lambda s: s.count(1) > 0, unsaved=1).count(1)
    state = app.expect("the histogram comes by itself", histogram_counting=0, histogram_pixels=512 * 512 * 300)
    run.same("what was painted stays", state.count(1), painted)
    order = [line.split()[1] for line in app.said("time (picture|counted) ")]
    run.same("the picture was first", order, ["picture", "counted"])
    run.shot("counted", " - Workbench")
    run.same("it ends well", app.end(), 0)
    app = run.launch(image)
    app.wait_ready(is_counted=False)
    run.same("it ends well in the middle of counting", app.end(), 0)


@scenario()
def labels_of_an_image_beyond_two_gigabytes_come_back(run):
    """What was saved of an image that takes more memory than other files may is read again."""
    size = 1024, 1024, 1040
    image = run.data / "vast.nii"
    with open(image, "wb") as file:  # mostly a hole
        file.write(header_of(size, 2, 8))
        file.truncate(352 + size[0] * size[1] * size[2])
    labels = run.folder / "vast_labels.nii.gz"
    app = run.start(image, labels=labels, is_counted=False)
    app.stroke((40, 45), (60, 45))
    painted = app.expect("work is unsaved", unsaved=1).count(1)
    run.check("something was painted", painted > 0)
    app.key("ctrl+s")
    app.expect("saving leaves nothing unsaved", unsaved=0)
    app.stroke((40, 65), (60, 65))
    app.expect("more was painted", lambda s: s.count(1) > painted)
    app.key("ctrl+l")
    app.answer_key("Unsaved work", "alt+n")
    app.choose_file("Load labels", labels)
    state = app.expect("the labels came back", lambda s: s.count(1) == painted)
    run.check("nothing is warned of", not state.is_shown("banner"))
