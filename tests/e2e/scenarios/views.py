"""The views of the image: how many there are, what ties them together, how smooth they are."""
from driver.scenario import scenario
from scenarios.segment import ORGANS, SLICES, SPACING, bands, ct, saved, told, witnesses


def table(state):
    """The lines of the fourth view."""
    main = state.window(" - Workbench")
    fields = [child["title"] for child in main["children"] if child["class"].lower() == "edit"]
    return fields[0].replace("\r", "").split("\n") if fields else []


def row(state, tag):
    """The cells of a TAG's row, by its number."""
    return next((line.split() for line in table(state)[1:] if line.split()[:1] == [str(tag)]), None)


def scales(state):
    """Screen pixels of a millimetre in each of three views of the synthetic CT."""
    across = [SPACING[0], SPACING[0], SPACING[1]]
    places = [state.slice_place, state.plane_place_0, state.plane_place_1]
    return [round(place["scale_x"] / mm, 6) for place, mm in zip(places, across)]


def middle(state, place, view):
    """What stands in the middle of a view, across and down, in pixels of its picture."""
    box = state.box(view)
    width = box.width - 16  # the slider
    return ((width / 2 - place["left"]) / place["scale_x"], (box.height / 2 - place["top"]) / place["scale_y"])


@scenario(is_short=True)
def four_views_show_a_live_table(run):
    """Three planes and the statistics; a stroke is counted at once; what is chosen is kept."""
    witnesses()
    image, _ = ct(run)
    app = run.start(image)
    app.key("ampersand")
    app.expect("& shows four views", views=4, planes=1)
    app.key("1")
    app.stroke((30, 40), (60, 40))
    app.expect("a stroke paints", lambda s: s.count(1) > 50)
    app.wait("the table follows, or says that it waits", lambda s: row(s, 1) or "Ctrl+T" in table(s)[0])
    app.key("ctrl+t")
    state = app.expect("the stroke is in the table", lambda s: row(s, 1) and str(s.count(1)) in row(s, 1))
    boxes = [state.box(name) for name in ("image", "plane_0", "plane_1", "table")]
    run.check("they are of about one size", max(box.width for box in boxes) - min(box.width for box in boxes) < 8)
    run.shot("four_views", " - Workbench")
    app.expect("Ctrl+T has opened no other table", lambda s: s.window("Statistics of the TAGs") is None)
    app.key("asciitilde")
    state = app.expect("~ makes another plane the first", large_view=1)
    run.check("it takes the place of the slices", state.box("plane_0").tuple() == boxes[0].tuple())
    app.key("F8")
    app.expect("the light theme", light=1)
    run.shot("four_views_light", " - Workbench")
    app.key("ampersand")
    app.expect("& again shows one view", views=1)
    state = app.expect("which is the plane that was the first", lambda s: not s.is_shown("image"))
    depth = state.cross[1]
    app.key("Page_Up")
    app.expect("keys go through its pictures", lambda s: s.cross[1] != depth and s.slice == state.slice)
    app.key("i")
    app.expect("the keyboard's cursor brings the slices back", lambda s: s.is_shown("image") and s.cursor_x >= 0)
    app.key("ampersand", "asciitilde")
    app.end()
    app = run.start(image)
    app.expect("views are kept", views=4, large_view=1, planes=1)


@scenario(is_short=True)
def linked_views_zoom_and_move_together(run):
    """A millimetre is as long in all, the same place in the middle of all; without the link each goes by itself."""
    witnesses()
    image, _ = ct(run)
    app = run.start(image)
    app.key("y")
    state = app.expect("three views", planes=1)
    app.screen.hold("ctrl", True)
    app.wheel(2, app.in_image(50, 50, plane=0))
    app.screen.hold("ctrl", False)
    alone = app.expect("one view zooms by itself",
                       lambda s: s.plane_place_0["scale_x"] > 1.5 * state.plane_place_0["scale_x"])
    run.check("and no other", alone.slice_place == state.slice_place and alone.plane_place_1 == state.plane_place_1)
    app.key("grave")
    told(app, "Zoom and centre of one view are those of all")
    app.expect("linked, a millimetre is as long in all", lambda s: len(set(scales(s))) == 1, linked=1)
    run.shot("linked_fit", " - Workbench")
    fitted = app.state()
    app.move(*app.in_image(30, 30))
    app.screen.hold("ctrl", True)
    app.wheel(3, app.in_image(30, 30))
    app.screen.hold("ctrl", False)
    state = app.expect("the wheel zooms all", lambda s: scales(s)[0] > 2 * scales(fitted)[0] and len(set(scales(s))) == 1)
    slices = middle(state, state.slice_place, "image")
    coronal = middle(state, state.plane_place_0, "plane_0")
    run.check("the same column stands in the middle", abs(slices[0] - coronal[0]) < 1.5, (slices, coronal))
    app.screen.hold("shift", True)
    app.drag(app.in_image(50, 50, plane=0), [at + 40 for at in app.in_image(50, 50, plane=0)])
    app.screen.hold("shift", False)
    state = app.expect("moving one moves the others", lambda s: s.slice_place != state.slice_place)
    slices = middle(state, state.slice_place, "image")
    coronal = middle(state, state.plane_place_0, "plane_0")
    run.check("to the same column", abs(slices[0] - coronal[0]) < 1.5, (slices, coronal))
    run.shot("linked_views", " - Workbench")
    app.key("F7")
    app.expect("F7 fits all at one scale", lambda s: scales(s) == scales(fitted))
    app.end()
    app = run.start(image)
    app.expect("the link is kept", lambda s: s.linked == 1 and len(set(scales(s))) == 1)


@scenario(is_short=True)
def the_image_is_smooth_on_request(run):
    """Grey values between the voxels; the colours of TAGs keep the voxels' sides."""
    witnesses()
    image, _ = ct(run)
    app = run.start(image)
    app.screen.hold("ctrl", True)
    app.wheel(4, app.in_image(30, 50))
    app.screen.hold("ctrl", False)
    bands(app)
    app.key("ctrl+b", "y", "3")
    app.expect("three views", planes=1, linear=0)
    run.shot("not_smooth", " - Workbench")
    app.key("asciicircum")
    app.expect("^ makes the image smooth", linear=1)
    app.stroke((45, 40), (55, 45))
    app.expect("painting goes on in it", lambda s: s.count(3) > 50)
    run.shot("smooth", " - Workbench")
    app.end()
    app = run.start(image)
    app.expect("it is kept", linear=1)


@scenario(is_short=True)
def differences_to_a_file_are_seen(run):
    """After a comparison, in all planes, until they are switched off; a correction takes them away at once."""
    numpy, _, _ = witnesses()
    image, truth_path = ct(run)
    truth, greys = saved(truth_path), saved(image)
    app = run.start(image)
    app.key("ctrl+g")
    told(app, "Compare with a label file first")
    bands(app)
    app.key("ctrl+a", "y")
    told(app, "Apply all bands: ")
    app.menu("Compare with a label file")
    app.choose_file("Compare with a label file", truth_path)
    app.window("Agreement with the file")
    app.close("Agreement with the file", "Escape")
    own = numpy.zeros(truth.shape, truth.dtype)
    for tag, (_, _, _, (low, high)) in ORGANS.items():
        own[(greys >= low) & (greys <= high)] = tag
    counts = [numpy.count_nonzero(mask) for mask in
              ((own != 0) & (truth == 0), (own == 0) & (truth != 0), (own != 0) & (truth != 0) & (own != truth))]
    told(app, f"Differences in all {SLICES} slices: {counts[0]} voxels only here, {counts[1]} only in the file, "
              f"{counts[2]} of another TAG")
    app.expect("the differences are shown", differences=1, planes=1)
    run.shot("differences", " - Workbench")
    seen = run.screen.sum(app.state().places["image"]["place"])
    app.key("ctrl+g")
    app.expect("Ctrl+G shows the TAG colours", differences=0)
    run.check("which look otherwise", run.screen.sum(app.state().places["image"]["place"]) != seen)
    app.key("ctrl+g")
    app.expect("and the differences again", differences=1)
    app.key("F8")
    app.expect("the light theme", light=1)
    run.shot("differences_light", " - Workbench")


@scenario()
def a_row_of_the_table_is_its_histogram(run):
    """A double click or Enter on a row makes its TAG current, and the histogram that of its voxels."""
    witnesses()
    image, _ = ct(run)
    app = run.start(image)
    bands(app)
    app.key("ctrl+a", "1", "ctrl+t")
    app.window("Statistics of the TAGs")
    app.key("ctrl+Home", "Down", "Down", "Down", "Return")
    app.expect("Enter in the third row", tag_cur=2)
    app.expect("its voxels are counted", lambda s: s.histogram_pixels == s.count(2) > 0)
    run.shot("row_histogram")
    app.close("Statistics of the TAGs")
    app.key("ampersand")
    state = app.expect("four views", lambda s: row(s, 3), views=4)
    x, y = state.box("table").tuple()[:2]
    for _ in range(3):  # on a busy machine the second press may come too late to make it a double one
        # The fifth line, below the title of 24 pixels.
        if app.double_click(x + 60, y + 24 + 4 * 15 + 7).tag_cur == 3:
            break
    app.expect("so does a double click in the fourth view", lambda s: s.tag_cur == 3 and s.histogram_pixels == s.count(3))
    app.key("n")
    app.expect("letters are still keys of the application", tag_cur=4)


@scenario(is_short=True)
def a_slider_widens_a_growing_region(run):
    """Drawn in the picture while the region is only seen; its buttons take it over or drop it."""
    witnesses()
    image, _ = ct(run)
    app = run.start(image)
    app.key("1", "numbersign")
    app.click_image(69, 50)
    state = app.expect("a slider is there", lambda s: "tool_slider" in s.report)
    left, top, width, height = state.tool_slider["track"]
    box = state.box("image")

    def on_track(share):
        return int(box.left + left + width * share), int(box.top + top + height / 2)
    app.drag(on_track(0.05), on_track(0.35))
    line = told(app, "Growing .* by a tolerance of [0-9]{3,}: [0-9]+ voxels.*")
    run.note(str(line))
    app.expect("nothing has changed yet", counts={}, undo_nb=0)
    run.shot("tool_slider", " - Workbench")

    def button(name):
        place = app.state().tool_slider[name]
        app.press_at(int(box.left + place[0] + place[2] / 2), int(box.top + place[1] + place[3] / 2))
    button("drop")
    app.expect("Drop drops it", lambda s: "tool_slider" not in s.report, counts={}, undo_nb=0)
    app.click_image(69, 50)
    app.expect("another region", lambda s: "tool_slider" in s.report)
    app.key("F8")
    app.expect("the light theme", light=1)
    run.shot("tool_slider_light", " - Workbench")
    button("take")
    app.expect("Take over makes it one step", lambda s: s.count(1) > 0, undo_nb=1)
