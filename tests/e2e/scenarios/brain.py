"""Grey and white matter of the sample brain by the Gaussian fit, compared with classes that were found without any."""
import gzip
import struct
import subprocess

from driver.scenario import Skipped, package_file, scenario

FIRST, LAST = 71, 90  # frames


def tissue_classes():
    """Three means of the brain-extracted volume (fluid, grey matter, white matter) in the same frames: the two levels
    between them, and the means of grey and white matter."""
    path = package_file("mricron-data", "/ch2bet.nii.gz")
    if path is None:
        raise Skipped("the brain-extracted volume is not there")
    data = gzip.open(path).read()
    size = struct.unpack("<8h", data[40:56])
    begin = int(struct.unpack("<f", data[108:112])[0])
    plane = size[1] * size[2]
    voxels = data[begin + (FIRST - 1) * plane:begin + LAST * plane]
    counts = [voxels.count(level) if level else 0 for level in range(256)]
    means = [40.0, 80.0, 120.0]
    for _ in range(200):
        sums = [[0, 0] for _ in means]
        for level, count in enumerate(counts):
            best = min(range(3), key=lambda k: abs(level - means[k]))
            sums[best][0] += count
            sums[best][1] += count * level
        means = [total / count if count else mean for (count, total), mean in zip(sums, means)]
    return (means[0] + means[1]) / 2, (means[1] + means[2]) / 2, means[1], means[2]


def ask(app, command, title, answer):
    app.menu(command)
    return app.fill(title, answer)


def fitted(run):
    """Smoothed pixels of the frames in fine bins, and their peaks."""
    app = run.start(run.brain())
    ask(app, "Histogram of a range of frames", "Histogram of a range of frames", f"{FIRST}-{LAST}")
    app.menu("Smoothed pixels (3 × 3)")
    ask(app, "Most bins", "Bins of the histogram", "512")
    app.menu("Fit Gaussians")
    app.window("Peak analysis")
    return app, app.expect("peaks are found", lambda s: s.peaks)


@scenario()
def peaks_stand_at_grey_and_white_matter(run):
    """Once each, and where an independent classification has them; a second fit gives the same."""
    app, state = fitted(run)
    run.same("the histogram is that of smoothed pixels", state.histogram_smoothed, 1)
    run.check("its bins are finer than the stored levels", state.histogram_bins > 256)
    plane = state.slice_place["width"] * state.slice_place["height"]
    run.same("it counts the pixels of these frames", state.histogram_pixels, plane * (LAST - FIRST + 1))
    dark, grey, grey_mean, white_mean = tissue_classes()
    run.note(f"brain classes: grey matter {grey_mean:.1f}, white matter {white_mean:.1f}")
    for peak in state.peaks:
        run.note("peak: " + peak["text"])
    centres = [peak["centre"] for peak in state.peaks]
    found_grey = [centre for centre in centres if dark < centre < grey]
    found_white = [centre for centre in centres if grey < centre < 140]
    run.same("the fit finds the grey matter once", len(found_grey), 1)
    run.same("the fit finds the white matter once", len(found_white), 1)
    run.check("a peak stands at the grey matter", abs(found_grey[0] - grey_mean) < 8)
    run.check("a peak stands at the white matter", abs(found_white[0] - white_mean) < 8)
    fits = len(app.said("status "))
    app.front()
    app.menu("Fit Gaussians")
    app.wait("another fit", lambda s: len(app.said("status ")) > fits)
    app.expect("the fit repeated gives the same peaks", peaks=state.peaks)


@scenario()
def the_table_of_peaks_is_copied(run):
    """The table's button puts the peaks on the clipboard, as text."""
    app, state = fitted(run)
    app.click("Peak analysis", "Copy table")
    expected = [peak["text"] for peak in state.peaks]

    def copied():
        pasted = subprocess.run(["xclip", "-o", "-selection", "clipboard", "-t", "UTF8_STRING"], capture_output=True,
                                timeout=20, text=True).stdout
        rows = [line.split("\t")[:6] for line in pasted.replace("\r", "").splitlines()]
        return [" ".join(row) for row in rows if row[0].isdigit()]
    app.expect("the copied table has the peaks", lambda s: copied() == expected)


@scenario()
def histogram_settings_go_back(run):
    """Without smoothing and with as many bins as before, the stored levels of all frames are counted again."""
    app = run.start(run.brain())
    before = app.state()
    ask(app, "Histogram of a range of frames", "Histogram of a range of frames", f"{FIRST}-{LAST}")
    app.menu("Smoothed pixels (3 × 3)")
    ask(app, "Most bins", "Bins of the histogram", "512")
    app.expect("another histogram", lambda s: s.histogram_bins != before.histogram_bins, histogram_smoothed=1)
    app.menu("Smoothed pixels (3 × 3)")
    ask(app, "Most bins", "Bins of the histogram", "4096")
    app.menu("Histogram of all frames")
    app.expect("the histogram counts the stored levels again", histogram_smoothed=0,
               histogram_bins=before.histogram_bins, histogram_pixels=before.histogram_pixels)


@scenario()
def peaks_can_be_looked_at_closely(run):
    """The curve and its peaks, enlarged, above the table; the picture of the manual."""
    app, _ = fitted(run)
    from scenarios.enlarged import TITLE, Plot
    app.front()
    plot = Plot(app, 330, 30, 900, 480)
    app.place("Peak analysis", 330, 550, 900, 420)
    app.front(TITLE)
    plot.rest()
    without = plot.sum()
    app.click(TITLE, "Display Peak", x=0.97)
    app.click(TITLE, "Display Peak", x=0.97)
    bottom = plot.box.top + plot.box.height
    app.drag((plot.box.left + 75, bottom - 91), (plot.at(0.625, 0)[0], bottom - 103))
    app.move(*plot.at(0.5, 0.05))
    plot.expect("the peaks can be looked at closely", lambda now: now != without)
    run.screen.picture(run.out / "peaks_brain.png", (324, 4, 912, 972))


@scenario()
def the_head_without_the_air_around_it(run):
    """Three classes, with the air and without: what the fluid's class is made of."""
    app = run.start(run.brain())

    def shares(picture):
        app.front()
        ask(app, "Derivative method", "Derivative method", "3")
        state = app.expect("three classes", lambda s: len(s.peaks) == 3 and not s.peaks_stale)
        box = state.box("histogram")
        app.front("Peak analysis")
        app.place("Peak analysis", box.left + box.width + 12, box.top + 24, 1080, box.height - 24)
        run.screen.picture(run.folder / picture, (box.left, box.top - 2, box.width + 1100, box.height + 4))
        return [peak["share"] for peak in state.peaks]
    every = app.state().histogram_pixels
    air = shares("with_air.png")
    app.front()
    app.menu("Leave out the background")
    head = shares("without_air.png")
    run.check("with the air the lowest class is half of everything", 0.4 < air[0] < 0.6, air)
    run.check("without it the fluid is a tenth of the head", 0.05 < head[0] < 0.2, head)
    run.check("grey matter is more than half of it", 0.5 < head[1] < 0.75, head)
    run.check("white matter a quarter", 0.15 < head[2] < 0.35, head)
    subprocess.run(["convert", run.folder / "with_air.png", run.folder / "without_air.png", "-append",
                    run.out / "background.png"], check=True)
    app.close("Peak analysis")
    app.menu("Leave out the background")
    app.expect("the air is counted again", histogram_pixels=every)
