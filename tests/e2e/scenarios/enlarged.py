"""The enlarged histogram: wheel, rectangles, selectors, export. The picture is the point here."""
from driver.scenario import scenario
from driver.state import Box
from driver.workbench import windows_path
from scenarios.tag_histogram import confirmed, with_a_band

TITLE = "Histogram Graph"


class Plot:
    """The curve in the enlarged window, without the controls above and the axes beside it."""

    def __init__(self, app, left=420, top=300, width=None, height=None):
        self.app = app
        app.click("Histogram", "Blow")
        app.window(TITLE)
        self.place(left, top, width, height)

    def place(self, left, top, width=None, height=None):
        self.app.place(TITLE, left, top, width, height)
        self.box = Box(self.app.find(TITLE).tuple())

    def at(self, x, y):
        return self.box.point(x, y)

    def rest(self):
        """The mouse where it changes nothing."""
        self.app.move(*self.at(0.5, 0.5))

    def sum(self):
        box = self.box
        self.app.state()  # painted
        return self.app.screen.sum((box.left + 60, box.top + 90, box.width - 80, box.height - 150))

    def expect(self, name, predicate):
        """A check of the picture."""
        return self.app.expect(name, lambda state: predicate(self.sum()))

    def shot(self, name):
        self.app.scenario.shot(name, TITLE)


@scenario()
def the_wheel_zooms_the_enlarged_histogram(run):
    """Back narrows the view about the pointer, forward widens it; the setting turns that, and is kept."""
    image = run.image()
    app = run.start(image)
    plot = Plot(app)
    app.move(*plot.at(0.33, 0.66))
    full = plot.sum()
    app.wheel(-4)
    plot.expect("the wheel zooms in", lambda now: now != full)
    plot.shot("enlarged_wheel")
    app.wheel(8)
    plot.expect("the wheel zooms out to the full view", lambda now: now == full)
    app.close(TITLE)
    app.menu("Enlarged histogram: wheel forward zooms in")
    app.expect("the wheel is turned", wheel_turned=1)
    app.key("z")
    app.window(TITLE)
    plot.place(420, 300)
    app.move(*plot.at(0.5, 0.5))
    app.move(*plot.at(0.33, 0.66))
    app.wheel(4)
    plot.expect("turned, the wheel forward zooms in", lambda now: now != full)
    plot.shot("enlarged_wheel_turned")
    app.wheel(-8)
    plot.expect("and back zooms out", lambda now: now == full)
    app.close(TITLE)
    app.end()
    run.start(image).expect("the wheel's direction is kept", wheel_turned=1)


@scenario()
def the_enlarged_histogram_comes_back_where_it_stood(run):
    """Closed and opened again, and in the next session, it stands at its last place."""
    image = run.image()
    app = run.start(image)
    app.click("Histogram", "Blow")
    app.window(TITLE)
    app.place(TITLE, 300, 200, 700, 350)
    place = app.state().window(TITLE)["place"]
    app.close(TITLE)
    app.click("Histogram", "Blow")
    app.window(TITLE)
    app.expect("it comes back where it stood", lambda s: s.window(TITLE)["place"] == place)
    app.end()
    app = run.start(image)
    app.click("Histogram", "Blow")
    app.window(TITLE)
    app.expect("also in the next session", lambda s: s.window(TITLE)["place"] == place)


@scenario()
def a_rectangle_zooms_the_enlarged_histogram(run):
    """A drag zooms to its rectangle, a flat one does not; Reset Zoom brings the full view back."""
    app = run.start(run.image())
    plot = Plot(app)
    plot.rest()
    plot.shot("enlarged_full")
    full = plot.sum()
    bottom = plot.box.top + plot.box.height
    x = plot.at(0.25, 0)[0]
    app.drag((x, bottom - 80), (x + 300, bottom - 86))
    plot.rest()
    plot.expect("a flat drag does not zoom", lambda now: now == full)
    app.drag(plot.at(0.25, 0.45), plot.at(0.6, 0.8))
    plot.expect("a drag zooms to its rectangle", lambda now: now != full)
    plot.shot("enlarged_zoom")
    app.click(TITLE, "Reset Zoom")
    plot.rest()
    plot.expect("Reset Zoom brings the full view back", lambda now: now == full)
    app.close(TITLE)
    app.expect("it closes", lambda s: s.window(TITLE) is None)


@scenario()
def the_enlarged_histogram_shows_tags_and_the_mouse(run):
    """TAG ranges are shaded, a line follows the mouse over the image; pictures of the manual."""
    app = run.start(run.brain(of_brain_only=False))
    with_a_band(app)
    plot = Plot(app)
    plot.rest()
    plot.shot("enlarged")
    full = plot.sum()
    app.click(TITLE, "Display TAG", x=0.97)
    plot.rest()
    plot.expect("the TAG ranges are shaded", lambda now: now != full)
    plot.shot("enlarged_tags")
    app.click(TITLE, "Display Cursor", x=0.97)
    app.move(*app.in_image(15, 20))
    before = plot.sum()
    app.move(*app.in_image(30, 25))
    plot.expect("the cursor line follows the image mouse", lambda now: now != before)
    plot.shot("enlarged_cursor")
    plot.place(300, 60, 900, 560)
    bottom = plot.box.top + plot.box.height
    app.drag((plot.box.left + 75, bottom - 102), (plot.at(0.625, 0)[0], bottom - 114))
    app.move(*plot.at(0.5, 0.05))
    plot.shot("enlarged_detail")
    plot.place(300, 60, 300, 200)
    plot.shot("enlarged_small")
    plot.place(10, 40, 1560, 900)
    plot.shot("enlarged_large")


@scenario()
def the_enlarged_histogram_shows_and_exports_peaks(run):
    """Peaks appear as their sum and one by one; Export writes a file that an independent count confirms."""
    volume = run.brain(of_brain_only=False)
    app = run.start(volume)
    with_a_band(app)
    plot = Plot(app)
    app.front()
    app.menu("Fit Gaussians")
    app.close("Peak analysis", "Escape")
    app.front(TITLE)
    plot.rest()
    without = plot.sum()
    app.click(TITLE, "Display Peak", x=0.97)
    plot.rest()
    plot.expect("the peaks appear as their sum", lambda now: now != without)
    plot.shot("enlarged_composite")
    composite = plot.sum()
    app.click(TITLE, "Display Peak", x=0.97)
    plot.rest()
    plot.expect("and one by one", lambda now: now not in (composite, without))
    plot.shot("enlarged_peaks")
    export = run.folder / "enlarged.csv"
    app.click(TITLE, "Export")
    title = app.dialog()
    run.shot("enlarged_export")
    app.fill(title, windows_path(export))
    app.window(TITLE)
    app.expect("Export writes a file", lambda s: export.exists() and export.read_bytes()[:4] == b"sep=")
    app.expect("the window is in front again", lambda s: s.active and s.active["title"] == TITLE)
    run.check("an independent count confirms that file", confirmed(run, volume, export, app.state().slice_nb))
    app.close(TITLE)
    app.menu("Verify export")
    app.choose_file("Verify export", export)
    said = app.wait_said("export_differences")
    run.same("the enlarged window's file, with peaks, agrees", said, "export_differences 0")
