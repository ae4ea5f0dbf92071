"""The editor of the class trees: names, moves, removals, undo, the journal beside the data."""
import subprocess
import time

from driver.scenario import scenario
from driver.state import Box
from scenarios.database import show


def open_editor(run, *files, labels=None):
    """A workbench whose window has room for three levels of the diagram."""
    app = run.start(*files, labels=labels)
    return edit(app)


def edit(app):
    app.place(" - Workbench", 20, 40, 1540, 900)
    show(app, "3D classes")
    if not app.state().db_editor:
        app.key("F11")
    app.expect("the editor is open", db_editor=1)
    return app


def node(app, name):
    """The place of a class in the diagram."""
    def found(state):
        parts = (state.item("Tree") or {}).get("parts", [])
        return next((part for part in parts if part["level"] and part["name"].endswith(": " + name)), None)
    return Box(found(app.wait(f"the class {name}", found))["place"])


def hover(app, name):
    app.move(*node(app, name).point())


def hang(app, child, parent, is_all=False):
    """Drags a class (with is_all: all children of it) to another parent, handle to handle."""
    begin, end = node(app, child), node(app, parent)
    y = begin.top + begin.height // 2
    app.drag((begin.left + (begin.width if is_all else 0), y), (end.left + end.width, end.top + end.height // 2))


def ask_rename(app, name):
    """The rename dialog of a class, with its entry emptied."""
    app.press_at(*node(app, name).point(), button=3)
    app.window("Class Rename")
    left, top, width, height = app.last.active["place"]
    app.press_at(left + 60, top + height - 54)  # the entry
    app.key("ctrl+a")


def rename(app, name, new, button="Save"):
    ask_rename(app, name)
    app.type(new)
    app.click("Class Rename", button)
    return app.gone("Class Rename")


def delete(app, name, key):
    """Deletes a class and answers the question about it by a key."""
    hover(app, name)
    app.key("Delete")
    app.window("Class tree")
    app.scenario.shot("database_question")
    return app.answer_key("Class tree", key)


@scenario(is_short=True)
def classes_are_renamed(run):
    """The right button renames a class; letters outside ASCII arrive whole, Cancel leaves the name."""
    app = open_editor(run, run.image())
    ask_rename(app, "Vessels")
    run.shot("database_rename")
    app.type("Blood vessels")
    app.click("Class Rename", "Save")
    app.expect("the right button renames a class", lambda s: s.row("Blood vessels"))
    app.expect("renaming is a step of the class trees", class_undo="Rename Vessels")
    # Pasted: the virtual display's keyboard has no such keys.
    subprocess.run(["xclip", "-selection", "clipboard"], input="Größe ß ü".encode(), check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(1.5)  # nothing tells when Wine has heard of another program's clipboard
    ask_rename(app, "Blood vessels")
    app.key("ctrl+v")
    run.shot("database_letters")
    app.click("Class Rename", "Save")
    app.expect("letters outside ASCII arrive whole", lambda s: s.row("Größe ß ü"))
    app.expect("and in the name of the step", class_undo="Rename Blood vessels")
    rename(app, "Größe ß ü", "Blood vessels")
    app.expect("they can be typed over", lambda s: s.row("Blood vessels"))
    rename(app, "Skull", "Nothing", button="Cancel")
    app.expect("Cancel leaves the name", lambda s: s.row("Skull") and not s.row("Nothing"))


@scenario()
def classes_are_moved_and_deleted(run):
    """A drag moves a class; Delete asks, No leaves it, Yes takes it out and leaves its children."""
    image = run.image()
    app = open_editor(run, image)
    hang(app, "Lesions", "Vessels")
    app.expect("a drag moves a class below another parent", lambda s: s.level("Lesions") == 2)
    app.expect("moving is a step", class_undo="Move Lesions")
    run.shot("database_moved", " - Workbench")
    delete(app, "Lesions", "alt+n")
    app.expect("Delete asks, and No leaves the class", lambda s: s.row("Lesions"))
    delete(app, "Lesions", "alt+y")
    app.expect("Yes takes the class out", lambda s: s.row("Lesions") is None)
    app.expect("its children stay", lambda s: s.row("Lesion 1"))
    hover(app, "Anatomy")
    app.key("Delete")
    app.expect("the root cannot be deleted",
               lambda s: s.db_rows[0]["name"] == "Anatomy" and s.window("Class tree") is None)
    undone = app.state().undo_nb
    app.key("ctrl+z")
    app.expect("Ctrl+Z brings the class back", lambda s: (s.level("Lesions"), s.level("Lesion 1")) == (2, 3))
    app.expect("redo would delete it again", class_redo="Delete Lesions")
    app.key("ctrl+z")
    app.expect("Ctrl+Z again moves it back", lambda s: s.level("Lesions") == 1)
    app.key("ctrl+y")
    app.expect("Ctrl+Y moves it once more", lambda s: s.level("Lesions") == 2)
    app.expect("the work on the image is left alone", undo_nb=undone)
    app.menu("Undo in the class trees")
    app.expect("the menu undoes too", lambda s: s.level("Lesions") == 1)
    app.menu("Redo in the class trees")
    app.expect("and does it again", lambda s: s.level("Lesions") == 2)


@scenario()
def all_children_move_and_no_class_hangs_below_itself(run):
    """The right handle moves all children; what would close a ring is refused with a warning."""
    image = run.image()
    app = open_editor(run, image)
    hang(app, "Lesions", "Vessels")
    app.expect("a class is moved", lambda s: s.level("Lesions") == 2)
    hang(app, "Vessels", "Brain", is_all=True)
    app.expect("a drag at the right handle moves all children",
               lambda s: [s.level(name) for name in ("Arteries", "Lesions", "Lesion 1")] == [3, 3, 4])
    hang(app, "Head", "Brain")
    app.expect("a class cannot hang below itself", lambda s: s.level("Head") == 1)
    app.expect("a warning says so", lambda s: s.is_shown("banner"))
    app.key("Escape")
    run.shot("class_editor", " - Workbench")
    app.expect("the journal is saved", class_unsaved=0)
    journal = (run.data / (image.name + ".classes.txt")).read_text()
    run.same("beside the data, readable",
             journal.count('\nmove "Anatomy/Lesions" from "Anatomy" 2 to "Anatomy/Vessels" 2'), 1)


@scenario()
def classes_of_slices_and_profiles_are_journalled(run):
    """Renaming in the 2D and the 1D view is a step, too."""
    app = open_editor(run, run.image())
    show(app, "2D classes")
    rename(app, "1", "First frame")
    app.expect("2D classes are journalled", class_undo="Rename 1")
    show(app, "1D classes")
    rename(app, "Profile 1", "Profile of a vessel")
    app.expect("1D classes are journalled", class_undo="Rename Profile 1")
    app.expect("the workbench keeps its contract with the panels", contract_reports=0)


def with_moved_classes(run):
    """An image whose journal holds three steps; the last one renames Profile 1."""
    image = run.image()
    app = open_editor(run, image)
    hang(app, "Lesions", "Vessels")
    app.expect("a class is moved", lambda s: s.level("Lesions") == 2)
    hang(app, "Vessels", "Brain", is_all=True)
    app.expect("its children are moved", lambda s: s.level("Arteries") == 3)
    show(app, "1D classes")
    rename(app, "Profile 1", "Profile of a vessel")
    app.expect("a profile is renamed", class_undo="Rename Profile 1")
    app.end()
    return image, run.data / (image.name + ".classes.txt")


@scenario()
def class_trees_are_kept_from_one_start_to_the_next(run):
    """The next start does the changes again, and they can be taken back and done again."""
    image, _ = with_moved_classes(run)
    app = open_editor(run, image)
    app.expect("the next start does the changes of the class trees again",
               lambda s: (s.level("Arteries"), s.level("Lesions")) == (3, 3))
    app.expect("and knows the steps", class_undo="Rename Profile 1")
    run.shot("class_editor_restored", " - Workbench")
    app.key("ctrl+z", "ctrl+z")
    app.expect("they can be taken back", lambda s: (s.level("Arteries"), s.level("Lesions")) == (2, 2))
    app.end()
    app = open_editor(run, image)
    app.expect("what was taken back stays so", lambda s: (s.level("Arteries"), s.level("Lesions")) == (2, 2))
    app.expect("and can be done again", class_redo="Move 3 classes")
    app.end()
    run.check("closing asks nothing", app.said("closed"))


@scenario()
def a_damaged_journal_is_told_and_kept(run):
    """The class trees are as they were built then; a new journal is begun."""
    image, journal = with_moved_classes(run)
    half = journal.read_bytes()[:150]
    journal.write_bytes(half)
    app = open_editor(run, image)
    app.expect("a damaged journal is told", lambda s: s.is_shown("banner"))
    app.expect("the class trees are as they were built", lambda s: s.level("Lesions") == 1, class_undo="")
    run.shot("journal_damaged", " - Workbench")
    app.key("Escape")
    delete(app, "Lesions", "alt+y")
    app.expect("a class is deleted", lambda s: s.row("Lesions") is None)
    run.same("a new journal is begun", journal.read_text().count("Delete Lesions"), 1)
    run.same("the damaged one is kept", journal.with_name(journal.name + ".damaged").read_bytes(), half)


@scenario()
def a_journal_that_cannot_be_written_is_told(run):
    """What was done stays, closing asks, and the next step saves all."""
    image = run.image()
    journal = run.data / (image.name + ".classes.txt")
    app = open_editor(run, image)
    delete(app, "Lesions", "alt+y")
    app.expect("a class is deleted", lambda s: s.row("Lesions") is None)
    journal.unlink()
    journal.mkdir()
    app.key("ctrl+z")
    app.expect("a journal that cannot be written is told", lambda s: s.is_shown("banner"))
    app.expect("what was done stays", lambda s: s.level("Lesions") == 1, class_unsaved=1)
    app.key("ctrl+q")
    app.window("Class tree")
    run.shot("journal_unsaved")
    run.check("closing asks", not app.said("closed"))
    journal.rmdir()
    app.answer_key("Class tree", "alt+n")
    app.key("ctrl+y")
    app.expect("the next step saves all", class_unsaved=0)
    app.end()
    run.check("and closing asks nothing", app.said("closed"))
