"""The database column: views, checking rows, the histogram of what is checked."""
from driver.scenario import scenario
from driver.state import Box


def click_row(app, name, is_lead=False, held=None):
    """A click on a row's text, or on its lead cell, which opens and closes the branch."""
    return app.press_at(*row_point(app, name, is_lead), held=held)


def row_point(app, name, is_lead=False):
    state = app.wait(f"the row {name}", lambda s: s.item("Tree", name))
    part = state.item("Tree", name)
    x = state.box("database_panel").left + 2 * state.space + 20 * (part["level"] - 1) + 10
    return x + (0 if is_lead else 60), Box(part["place"]).point()[1]


def show(app, view):
    """Shows the database column with one of its views."""
    if not app.state().is_shown("database"):
        app.key("F3")
    app.click("Database", view)
    return app.expect(f"the view '{view}' is shown", lambda s: s.item("Database", view)["is_selected"])


@scenario(is_short=True)
def frames_are_checked_in_the_class_view(run):
    """Clicks, drags and Ctrl check rows; image and histogram follow."""
    app = run.start(run.image())
    app.key("F3")
    app.expect("F3 shows the database", lambda s: s.is_shown("database"))
    state = show(app, "2D classes")
    app.expect("the class view lists volume and frames", db_leaves=30)
    all_pixels = state.histogram_pixels
    rows = [part["name"] for part in state.item("Tree")["parts"] if part["level"] == 3]
    click_row(app, rows[3])
    state = app.expect("a click checks one frame", db_checked=1)
    app.expect("the image goes to the checked frame", slice=3)
    app.expect("the histogram is made of the checked frame", histogram_pixels=all_pixels // 30)
    app.expect("no entry of the menu claims the checked frames", histogram_mark="")
    run.shot("database_classes", " - Workbench")
    app.drag(row_point(app, rows[6]), row_point(app, rows[9]))
    app.expect("a drag checks the rows that it covers", db_checked=4)
    app.expect("the histogram follows the drag", histogram_pixels=4 * all_pixels // 30)
    click_row(app, rows[1], held="ctrl")
    app.expect("Ctrl keeps the checked rows", db_checked=5)


@scenario()
def branches_buttons_wheel_and_keys_of_the_tree(run):
    """A branch closes without losing its marks; Select All, the wheel and keys do what they say."""
    app = run.start(run.image())
    state = show(app, "2D classes")
    parts = state.item("Tree")["parts"]
    branch = next(part["name"] for part in parts if part["level"] == 2)
    frame = next(part["name"] for part in parts if part["level"] == 3)
    click_row(app, frame)
    shown = app.expect("a frame is checked", db_checked=1).db_shown
    click_row(app, branch, is_lead=True)
    app.expect("a click on the lead cell closes the branch", lambda s: s.db_shown < shown)
    app.expect("and changes no check mark", db_checked=1)
    click_row(app, branch, is_lead=True)
    app.click("Tree", "Select All")
    app.expect("Select All checks every frame", db_checked=30)
    app.expect("the histogram is that of all frames", histogram_pixels=60 * 50 * 30)
    app.place(" - Workbench", 20, 40, 1300, 480)
    app.wheel(-5, app.find("Tree").point())
    app.expect("the wheel scrolls the tree", db_scroll=90)
    app.key("Home", "Down", "Down", "Down", "space")
    app.expect("keys walk the tree and Space unchecks a row", db_checked=29)
    run.shot("database_keys", " - Workbench")


@scenario()
def every_view_of_the_database_lists_its_things(run):
    """Files, structures in space, the editor of the class tree; F3 hides it all again."""
    app = run.start(run.image())
    show(app, "Files")
    app.expect("the file view lists the volume's file", lambda s: s.db_nb >= 2)
    run.shot("database_files", " - Workbench")
    show(app, "3D classes")
    app.expect("the 3D view lists the structures", lambda s: s.db_nb >= 10)
    run.shot("database_structures", " - Workbench")
    app.key("F11")
    app.expect("F11 opens the editor of the class tree", db_editor=1)
    run.shot("database_editor", " - Workbench")
    app.key("F11", "F3")
    app.expect("F3 hides the database again", lambda s: not s.is_shown("database"))
    app.expect("the workbench keeps its contract with the panels", contract_reports=0)
