"""What is shown is true: small grey values, the text under a mouse at rest, peaks of another selection, bands."""
import random
import re
import struct

from driver.scenario import scenario

SIDE, SLICES = 64, 6


def diffusion(run):
    """An image of 0 to 0.003, as diffusion is measured: two kinds of tissue in air."""
    random.seed(3)
    head = bytearray(352)
    struct.pack_into("<i", head, 0, 348)
    struct.pack_into("<8h", head, 40, 3, SIDE, SIDE, SLICES, 1, 1, 1, 1)
    struct.pack_into("<2h", head, 70, 16, 32)
    struct.pack_into("<8f", head, 76, 1, 2, 2, 3, 1, 1, 1, 1)
    struct.pack_into("<f", head, 108, 352)
    head[344:348] = b"n+1\0"
    values = []
    for _ in range(SLICES):
        for y in range(SIDE):
            for x in range(SIDE):
                r = ((x - 32) ** 2 + (y - 32) ** 2) ** 0.5
                tissue = (0.0022, 0.0001) if r < 12 else (0.0009, 0.0001) if r < 28 else (0.00002, 0.00001)
                values.append(min(max(random.gauss(*tissue), 0.0), 0.003))
    values[0] = float("nan")
    values[1] = 0.003
    path = run.data / "diffusion.nii"
    path.write_bytes(bytes(head) + struct.pack(f"<{len(values)}f", *values))
    return path


def told(state, pattern):
    """A number in the text about the voxel under the mouse."""
    found = re.search(pattern, state.voxel)
    return float(found[1]) if found else None


@scenario()
def small_grey_values_have_digits(run):
    """The panels get millionths; histogram, statistics and the text under the mouse have digits enough."""
    app = run.start(diffusion(run))
    app.expect("small grey values are told to the panels in millionths", histogram_exponent=6)
    app.expect("their histogram has thousands of bins", lambda s: s.histogram_bins > 2000)
    run.check("the statistics have digits", app.said(r"status .*mean 0\.00[0-9]{3,}, deviation 0\.000[0-9]"))
    app.move(*app.in_image(50, 50))
    app.expect("the pixel under the mouse has a grey value",
               lambda s: 0.0017 < (told(s, r"grey ([^ ]+) ") or 0) < 0.0027)


@scenario(is_short=True)
def the_text_under_a_mouse_at_rest_is_true(run):
    """Slices, strokes, undo and zoom change it though the mouse does not move."""
    app = run.start(diffusion(run))
    app.move(*app.in_image(50, 50))
    before = app.expect("there is a text", lambda s: s.voxel).voxel
    app.key("Page_Up")
    app.expect("the text under a mouse at rest follows the slice", lambda s: s.voxel != before)
    app.expect("it names the slice", lambda s: told(s, r"^\([0-9]+, [0-9]+, ([0-9]+)\)") == s.slice)
    app.press_at(*app.in_image(50, 50))
    app.expect("it follows a stroke", lambda s: told(s, "TAG ([0-9]+) ") == s.tag_cur)
    app.key("ctrl+z")
    before = app.expect("it follows undo", lambda s: told(s, "TAG ([0-9]+) ") == 0).voxel
    app.move(*app.in_image(48, 48))
    before = app.expect("the mouse is elsewhere", lambda s: s.voxel != before).voxel
    app.key("F6")
    app.expect("it follows the zoom", lambda s: s.voxel and s.voxel != before)
    app.key("F7")
    run.shot("truth_voxel", " - Workbench")


@scenario()
def the_background_is_left_out(run):
    """Its threshold lies between air and tissue; the tissue is counted."""
    app = run.start(diffusion(run))
    app.menu("Leave out the background")
    state = app.expect("there is a threshold", lambda s: s.background != "none")
    run.check("the background's threshold lies between air and tissue", 0.00005 < float(state.background) < 0.0018)
    every = SIDE * SIDE * SLICES
    run.check("what surrounds the image is left out", state.histogram_pixels < 0.7 * every)
    run.check("tissue is counted", state.histogram_pixels > 0.4 * every)


def fitted(run):
    """The peaks of the two tissues, smoothed and without background."""
    app = run.start(diffusion(run))
    app.menu("Leave out the background")
    app.menu("Smoothed pixels (3 × 3)")
    app.menu("Fit Gaussians")
    app.window("Peak analysis")
    app.expect("peaks are found", lambda s: s.peaks)
    app.front()
    return app


@scenario()
def peaks_stand_at_the_tissues(run):
    """One at each; their shares are of the whole; another selection makes them those of the former."""
    app = fitted(run)
    state = app.state()
    for peak in state.peaks:
        run.note("peak: " + peak["text"])
    def near(low, high):
        return sum(low < peak["centre"] < high for peak in state.peaks)
    run.same("one peak stands at the one tissue", near(0.00085, 0.00095), 1)
    run.same("one peak stands at the other", near(0.0021, 0.0023), 1)
    run.check("shares are of the whole", sum(peak["share"] for peak in state.peaks) <= 1.0001)
    app.expect("the peaks are those of the selection", peaks_stale=0)
    app.key("h")
    app.expect("another selection makes the peaks those of the former", peaks_stale=1)
    app.front("Peak analysis")
    run.shot("truth_peaks")
    app.front()
    app.menu("Peaks to TAG bands")
    app.window("Peaks of another selection")
    run.check("bands of former peaks are asked about first", True)
    app.answer_key("Peaks of another selection", "Escape")


@scenario(is_short=True)
def bands_are_asked_about(run):
    """Giving up changes nothing, agreeing sets them in one step."""
    app = fitted(run)
    steps = app.state().undo_nb
    app.menu("Peaks to TAG bands")
    app.window("Peaks to TAG bands")
    run.shot("truth_bands")
    app.answer_key("Peaks to TAG bands", "Escape")
    app.front()
    app.expect("giving up changes nothing", undo_nb=steps)
    app.menu("Peaks to TAG bands")
    app.answer_key("Peaks to TAG bands", "Return")
    app.front()
    app.expect("agreeing sets the bands in one step", undo_nb=steps + 1)
    app.key("ctrl+z")
    app.expect("undo takes them back", undo_nb=steps)
    app.expect("no check of the host's duties fails", contract_reports=0)
    run.same("it closes with status 0", app.end(), 0)
