"""The whole application without a mouse: panels, the cursor in the image, menus by their letters."""
from driver.scenario import scenario


def letters(app, first, *following):
    """Menus by Alt and letters."""
    app.key("alt+" + first)
    app.wait("a menu", lambda s: s.is_in_menu)
    return app.key(*following)


def start_aside(run, *files):
    """The pointer stays in a corner: nothing here may need it."""
    app = run.start(*files)
    app.screen.move(1599, 999)
    return app


def focus_database(app):
    """Tab, until the database has the mark: it comes last."""
    for _ in range(8):
        if app.state().focus == 6:
            return
        app.key("Tab")


@scenario()
def panels_are_reached_and_used_by_keyboard(run):
    """Tab goes through the panels; arrows pick, Space hides, Enter names."""
    app = start_aside(run, run.image())
    state = app.expect("the first start is dark", light=0)
    run.same("the first start has the scale 100 %", state.scale_x100, 100)
    run.same("nothing has the keyboard's mark", state.focus, -1)
    app.key("Tab")
    app.expect("Tab goes to the image first", focus=0)
    app.key("Tab")
    app.expect("then to the TAGs", focus=1)
    run.shot("focus_tag", " - Workbench")
    app.key("Home", "Right", "Right", "Up")
    app.expect("arrows pick TAGs in the grid", tag_cur=6)
    app.key("space")
    app.expect("Space hides the TAG", tag_enable=0)
    app.key("space", "Return")
    app.fill(app.dialog(), "Liver")
    app.expect("Enter names it", tag_label="Liver")
    app.expect("Space shows it again", tag_enable=1)
    app.key("Tab")
    brush = app.state().brush_cur
    app.key("Right")
    app.expect("arrows pick brushes", brush_cur=brush + 1)
    app.key("Tab")
    slice_now = app.state().slice
    app.key("Up")
    app.expect("arrows step slices in the frames panel", slice=slice_now + 1)
    app.key("Tab", "Right", "Right")
    app.expect("arrows pick markers", marker_cur=2)
    app.key("Return")
    app.fill(app.dialog(), "Apex")
    app.expect("Enter names the marker", marker_label="Apex")


@scenario()
def the_histogram_is_used_by_keyboard(run):
    """Up magnifies it, X folds it away, Enter enlarges it; Shift+Tab goes back."""
    app = start_aside(run, run.image())
    app.key("shift+Tab")
    for _ in range(8):
        if app.state().focus != 5:
            app.key("shift+Tab")
    scale = app.expect("the histogram has the mark", focus=5).histogram_scale_x1000
    app.key("Up")
    app.expect("Up magnifies the histogram", lambda s: s.histogram_scale_x1000 < scale)
    run.shot("focus_histogram", " - Workbench")
    app.key("x")
    app.expect("X folds the panel away", folded=16)
    app.key("x", "Return")
    app.window("Histogram Graph")
    run.check("Enter opens the enlarged histogram", True)
    app.close("Histogram Graph")
    app.key("shift+Tab")
    app.expect("Shift+Tab goes back", focus=4)


@scenario()
def keys_move_a_cursor_in_the_image(run):
    """It paints, draws with the pen down, picks TAGs and places markers."""
    app = start_aside(run, run.image())
    app.key("bracketleft", "bracketleft", "1", "i")
    x = app.expect("I starts the cursor in the image", lambda s: s.cursor_x > 0).cursor_x
    app.expect("and marks the image", focus=0)
    app.key("Right", "Right", "shift+Right")
    app.expect("arrows move it, with Shift by ten", cursor_x=x + 12)
    app.key("space")
    dab = app.expect("Space paints exactly the brush's pixels", lambda s: s.count(1) == s.brush_pixels > 0).count(1)
    app.key("shift+Down", "Return", "shift+Left", "shift+Left", "Return")
    app.expect("with the pen down the cursor draws", lambda s: s.count(1) > dab * 2)
    run.shot("keyboard_cursor", " - Workbench")
    app.key("ctrl+z")
    app.expect("one undo takes the whole stroke back", lambda s: s.count(1) == dab)
    app.key("shift+Up", "shift+Right", "shift+Right", "5", "a")
    app.expect("A picks the TAG at the cursor", tag_cur=1)
    app.key("m", "space", "m")
    app.expect("in marker mode Space places the marker", lambda s: (s.marker(0) or [None])[0] == s.cursor_x)
    app.key("Escape")
    app.expect("Escape ends the cursor", cursor_x=-1)


@scenario()
def tags_that_look_alike_are_pointed_out(run):
    """Two TAGs side by side that look alike without the receptor for short waves; without them the mark is gone."""
    app = start_aside(run, run.brain(of_brain_only=False))
    app.key("9", "i", "space", "2", "shift+Left", "shift+Left", "shift+Left", "space")
    app.expect("TAGs of the slice that look alike are pointed out", alike=1)
    run.shot("alike", " - Workbench")
    app.key("ctrl+z", "ctrl+z", "Escape")
    app.expect("without them the mark is gone", alike=0)


@scenario()
def menus_and_the_database_by_letters(run):
    """Alt and letters run commands; Tab reaches the database, Space checks the row that arrows reached."""
    app = start_aside(run, run.image())
    high = app.state().window_high_x100
    letters(app, "i", "l")
    app.expect("Alt, I, L widens the window", lambda s: s.window_high_x100 > high)
    letters(app, "d", "s")
    app.expect("Alt, D, S shows the database", lambda s: s.is_shown("database"))
    letters(app, "d", "2")
    width = app.state().box("database").width
    letters(app, "d", "w")
    app.expect("Alt, D, W makes it wider", lambda s: s.box("database").width > width)
    focus_database(app)
    app.expect("Tab reaches the database", focus=6)
    app.key("Home", "Down", "Down", "Down", "space")
    app.expect("Space checks the row that the arrows reached", lambda s: s.db_checked > 0)
    run.shot("focus_database", " - Workbench")


@scenario()
def tag_colours_are_checked_and_changed(run):
    """The check finds pairs among the first colours; changed, none are left; the former ones come back."""
    app = start_aside(run, run.image())
    app.menu("Check TAG colours")
    app.window("TAG colours")
    run.shot("tag_colours")
    alike = app.wait_said("alike_pairs")
    run.check("the check of TAG colours finds pairs among the first colours", int(alike.split()[1]) > 0, alike)
    app.answer_key("TAG colours", "alt+h")
    run.same("Change colours leaves none", app.wait_said("alike_pairs", 2), "alike_pairs 0")
    app.menu("Check TAG colours")
    app.answer_key("TAG colours", "alt+f")
    app.menu("Check TAG colours")
    app.window("TAG colours")
    run.same("Former colours brings them back", app.said("alike_pairs")[-1], alike)
    app.answer_key("TAG colours", "Escape")
    app.key("F1")
    app.wait("the list of keys", lambda s: len(s.windows) == 2)
    run.shot("keys")
    app.key("Escape")
    app.expect("Escape closes the list of keys", lambda s: len(s.windows) == 1)
