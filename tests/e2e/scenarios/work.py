"""What protects a user's work: other geometries, two programs on one file, history, the end in the middle."""
import hashlib
import random
import time

from driver.scenario import scenario
from driver.workbench import windows_path

BOX = 21 * 16 * 11  # voxels of the labels' box
PART = 21 * 16 * 6  # those that the labels 30 mm further up reach
DOUBTS = "Save labels"
GEOMETRY = "Labels of another geometry"
LEFT = "Work that was not saved"


def load(app, labels, drops_work=False):
    app.key("ctrl+l")
    if drops_work:
        app.answer_key("Unsaved work", "alt+n")
    return app.choose_file("Load labels", labels)


def scribble(app):
    """A stroke somewhere, of TAG 2 or 3 in turn, so that every one changes something."""
    app.key("3" if app.state().tag_cur == 2 else "2")
    def somewhere():
        return random.randrange(15, 85), random.randrange(15, 85)
    steps = app.state().undo_nb
    while app.state().undo_nb == steps:  # a click of the same TAG on the same place is no step
        app.stroke(somewhere(), somewhere())


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


@scenario(is_short=True)
def labels_of_another_order_are_put_right(run):
    """Labels of the image's voxels are taken unasked, also when they are stored the other way round."""
    app = run.start(run.image())
    load(app, run.box_labels("same"))
    state = app.expect("labels of the image's voxels are taken", lambda s: s.count(1) == BOX)
    load(app, run.box_labels("flipped"))
    app.wait_said(r"warning flipped.nii.gz holds .*another order \(x flipped\)")
    run.check("labels stored the other way round are told", True)
    app.expect("they are put right", lambda s: s.count(1) == BOX)
    app.expect("every voxel of the slice", slice_pixels=state.slice_pixels)
    run.same("nothing was asked", app.said("ask labels_place"), [])


@scenario(is_short=True)
def the_text_under_a_mouse_at_rest_follows_labels_and_volumes(run):
    """Loaded labels and another image change it though the mouse does not move."""
    first, second = run.image(), run.image("other.nii")
    app = run.start(first, second)
    load(app, run.box_labels("same"))
    state = app.expect("labels are loaded", lambda s: s.count(1) == BOX)
    places = [(x, y) for x in range(20, 80, 10) for y in range(20, 80, 10)]
    app.move(*app.in_image(*places[0]))
    while places and "TAG 1 " not in app.state().voxel:
        app.move(*app.in_image(*places.pop()))
    run.check("the mouse is on the labels", "TAG 1 " in app.state().voxel)
    app.key("ctrl+n")
    app.expect("it follows another volume", lambda s: s.volume_cur != state.volume_cur and "TAG 0 " in s.voxel)
    load(app, run.box_labels("same"))
    app.expect("it follows labels that are loaded", lambda s: s.count(1) == BOX and "TAG 1 " in s.voxel)


@scenario(is_short=True)
def labels_that_lie_elsewhere_are_asked_about(run):
    """Escape changes nothing; by index every voxel stays where it is in the file, resampled in the patient."""
    app = run.start(run.image())
    load(app, run.box_labels("same"))
    app.expect("labels are loaded", lambda s: s.count(1) == BOX)
    moved = run.box_labels("moved")
    load(app, moved)
    app.window(GEOMETRY)
    run.shot("geometry")
    run.check("both geometries are named", app.said(r"ask labels_place .*\(-60, -50, 0\) mm.*\(-60, -50, -30\) mm"))
    app.answer_key(GEOMETRY, "Escape")
    app.expect("Escape changes nothing", lambda s: s.count(1) == BOX)
    load(app, moved)
    app.answer_key(GEOMETRY, "alt+i")
    app.expect("by index every voxel stays where it is in the file", lambda s: s.count(1) == PART, slice_pixels=0)
    run.same("and says so", len(app.said("warning moved.nii.gz was laid on by index")), 1)
    app.expect("no file holds them so: they are to be saved", unsaved=1)
    app.key("Escape")
    load(app, moved, drops_work=True)
    app.answer_key(GEOMETRY, "alt+r")
    app.expect("resampled, the box is where it is in the patient", lambda s: s.count(1) == PART, slice_pixels=21 * 16)
    load(app, run.box_labels("coarse"), drops_work=True)
    app.answer_key(GEOMETRY, "alt+r")
    app.expect("labels of larger voxels are resampled", lambda s: 3000 < s.count(1) != PART)
    run.same("after a question", len(app.said("ask labels_place")), 4)


@scenario(is_short=True)
def labels_are_saved_beside_the_image(run):
    """The image's folder and name are proposed; then the labels' own file is saved unasked."""
    image = run.image()
    labels = image.with_name("head_labels.nii.gz")
    app = run.start(image)
    scribble(app)
    app.key("ctrl+s")
    app.window("Save labels")
    run.shot("save_as")
    proposed = "ask save_as " + windows_path(labels)
    run.same("the image's own folder and name are proposed", app.wait_said("ask save_as"), proposed)
    app.answer_key("Save labels", "Return")
    app.expect("and taken", lambda s: labels.stat().st_size > 0, unsaved=0)
    scribble(app)
    app.expect("work is unsaved", unsaved=1)
    app.key("ctrl+s")
    app.expect("the labels' own file is saved unasked", unsaved=0)
    run.same("nothing more was asked", len(app.said("ask save_as")), 1)
    app.menu("Save labels as")
    app.window("Save labels")
    run.same("and proposed under Save as", app.wait_said("ask save_as", 2), proposed)
    app.answer_key("Save labels", "Escape")


def with_own_labels(run):
    """A workbench that has saved its labels, and has something to save again."""
    image = run.image()
    app = run.start(image)
    scribble(app)
    app.key("ctrl+s")
    app.answer_key("Save labels", "Return")
    app.expect("the labels are saved", unsaved=0)
    scribble(app)
    app.expect("there is more work", unsaved=1)
    return app, image.with_name("head_labels.nii.gz")


def overwrite_from(path, source):
    path.write_bytes(source.read_bytes())


@scenario(is_short=True)
def a_file_that_another_program_wrote_is_asked_about(run):
    """Escape leaves theirs and the work; Save as asks for a name; theirs can be loaded, or written over."""
    same, flipped = run.box_labels("same"), run.box_labels("flipped")
    app, labels = with_own_labels(run)
    overwrite_from(labels, same)
    app.key("ctrl+s")
    app.window(DOUBTS)
    run.shot("doubts")
    run.same("a file that another program wrote is asked about", len(app.said("ask save_doubts")), 1)
    app.answer_key(DOUBTS, "Escape")
    app.expect("Escape leaves the work", unsaved=1)
    run.same("and theirs", digest(labels), digest(same))
    app.key("ctrl+s")
    app.window(DOUBTS)
    app.key("alt+s")
    app.wait_said("ask save_as", 2)
    run.check("Save as asks for a name", True)
    app.answer_key("Save labels", "Escape")
    app.key("ctrl+s")
    app.answer_key(DOUBTS, "alt+l")
    app.expect("Load theirs takes it", lambda s: s.count(1) == BOX and s.count(2) == s.count(3) == 0, unsaved=0)
    scribble(app)
    overwrite_from(labels, flipped)
    app.key("ctrl+s")
    app.answer_key(DOUBTS, "alt+o")
    app.expect("Overwrite writes", lambda s: digest(labels) != digest(flipped), unsaved=0)


@scenario()
def the_text_beside_the_labels_counts_too(run):
    """Who changes the description is asked about as if it were the labels."""
    app, labels = with_own_labels(run)
    with open(labels.with_name("head_labels.labels.txt"), "a") as stream:
        stream.write("# somebody\n")
    app.key("ctrl+s")
    app.wait_said("ask save_doubts")
    run.check("the text beside the labels counts, too", True)
    app.answer_key(DOUBTS, "alt+o")
    app.expect("written over", unsaved=0)


@scenario()
def a_protected_file_is_asked_about(run):
    """It is left alone, unless the user wants it; it stays protected."""
    app, labels = with_own_labels(run)
    before = digest(labels)
    labels.chmod(0o444)
    app.key("ctrl+s")
    app.wait_said("ask save_doubts .*is protected")
    app.window(DOUBTS)
    run.shot("protected")
    app.answer_key(DOUBTS, "Escape")
    app.expect("a protected file is asked about", unsaved=1)
    run.same("and left alone", digest(labels), before)
    app.key("ctrl+s")
    app.answer_key(DOUBTS, "alt+o")
    app.expect("unless the user wants it", unsaved=0)
    run.check("it stays protected", labels.stat().st_mode & 0o222 == 0 and digest(labels) != before)


@scenario(is_short=True)
def the_history_goes_back_and_forward_at_once(run):
    """The list of steps leads to the beginning and to the end."""
    app = run.start(run.image())
    for _ in range(3):
        app.key("Page_Up")
        scribble(app)
    state = app.state()
    steps, counts = state.undo_nb, state.counts
    app.menu("History")
    app.window("History")
    run.shot("history")
    app.key("Home")
    app.answer_key("History", "Return")
    app.expect("the history goes back to its beginning at once", undo_nb=0, redo_nb=steps, counts={})
    app.menu("History")
    app.window("History")
    app.key("End")
    app.answer_key("History", "Return")
    app.expect("and forward to its end", undo_nb=steps, counts=counts)
    app.key("ctrl+z")
    app.expect("Ctrl+Z takes back one step", undo_nb=steps - 1)


def kept_work(run):
    return list((run.folder / "settings.recovery").glob("*.work"))


def wait_kept(app, run):
    """Until the program has looked at its work since the last change, and has written what it found. A look just before
    this call leaves no further line: after two periods (of 5 s) without one there is nothing new to keep."""
    looked, since = len(app.said("recovery_looked")), time.monotonic()
    app.wait("a look at the work", lambda s: kept_work(run) and (
        len(app.said("recovery_looked")) > looked or time.monotonic() > since + 11))
    written = []
    app.wait("the work to be written", lambda s: written.append(digest(kept_work(run)[0])) or
             (len(written) > 2 and written[-1] == written[-3]))


def worked_and_killed(run):
    """Saved labels, then a stroke and a marker; killed when these are kept. Returns the last state."""
    app, _ = with_own_labels(run)
    app.key("m")
    app.click_image(40, 40)
    app.key("m")
    state = app.state()
    wait_kept(app, run)
    run.same("work that is not saved is kept beside the settings", len(kept_work(run)), 1)
    run.same("nothing beside the data", list(run.data.glob("*.work*")), [])
    app.kill()
    return state


def start_asking(run):
    """The next start, which offers the work."""
    app = run.launch()
    app.wait_said("ask recovery")
    app.window(LEFT)
    return app


@scenario(is_short=True)
def work_is_taken_up_after_a_kill(run):
    """The next start offers it and says what it is; it can wait; taken up, all is there, also after another kill."""
    before = worked_and_killed(run)
    app = start_asking(run)
    run.shot("recovery")
    run.check("the next start offers it, and says what it is",
              app.said("ask recovery .*head.nii: .* voxels with TAGs, 1 marker "))
    app.answer_key(LEFT, "alt+n")
    app.wait_ready()
    run.same("it can wait", len(kept_work(run)), 1)
    app.end()
    for name in ("taken up, all is there", "killed again at once, it is still there"):
        app = start_asking(run)
        app.answer_key(LEFT, "alt+t")
        app.wait_ready()
        app.expect(name, counts=before.counts, markers=before.markers, unsaved=1)
        if name.startswith("taken"):
            app.kill()
    app.key("ctrl+s")
    app.expect("the labels' own file is known", unsaved=0)
    run.same("nothing was asked", app.said("ask save"), [])
    app.end()
    run.same("a clean end leaves nothing", [path.name for path in (run.folder / "settings.recovery").iterdir()
                                            if ".work" in path.name or path.suffix == ".lock"], [])


@scenario()
def a_damaged_journal_of_work_is_told_and_kept(run):
    """What cannot be taken up is not thrown away."""
    worked_and_killed(run)
    for path in kept_work(run):
        path.write_bytes(path.read_bytes()[:90])
    app = run.start(run.data / "head.nii")
    app.wait_said("warning Work that was not saved cannot be taken up: .* is damaged")
    run.same("a damaged journal is told and kept", len(list((run.folder / "settings.recovery").glob("*.damaged"))), 1)
