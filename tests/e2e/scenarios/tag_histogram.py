"""The histogram: of a TAG's pixels, of a frame; its export."""
import re
import subprocess
import sys

from driver.scenario import ROOT, scenario
from driver.workbench import windows_path


class Follower:
    """Compares what the histogram counts with the TAG's pixels, which must be others than before."""

    def __init__(self, app):
        self.app = app
        self.before = None

    def expect(self, name):
        state = self.app.expect(f"{name}: the histogram counts the TAG's pixels, and their number changed",
                                lambda s: s.histogram_pixels == s.count(s.tag_cur) != self.before)
        self.before = state.count(state.tag_cur)


@scenario(is_short=True)
def the_histogram_of_a_tag_follows_its_pixels(run):
    """Strokes, undo, redo, propagation and loaded labels: the histogram counts exactly the TAG's pixels."""
    labels = run.folder / "labels.nii.gz"
    app = run.start(run.image(), labels=labels)
    every = app.expect("the histogram is that of all frames", histogram_mark="all").histogram_pixels
    app.stroke((40, 45), (60, 45))
    app.key("ctrl+s")
    app.expect("the labels are saved", unsaved=0)
    follower = Follower(app)
    app.key("b")
    follower.expect("B")
    app.click_image(20, 85)
    follower.expect("a stroke")
    app.key("ctrl+z")
    follower.expect("undo")
    app.key("ctrl+y")
    follower.expect("redo")
    app.click("Frames", "Up")
    follower.expect("propagation")
    app.key("ctrl+l")
    app.answer_key("Unsaved work", "alt+n")
    app.choose_file("Load labels", labels)
    follower.expect("loading labels")
    app.key("b")
    app.expect("B again counts all pixels", histogram_pixels=every)


def with_a_band(app):
    """TAG 2, called Tissue, claims the grey values from 95 up."""
    app.click("TAG", "White matter", button=3)
    app.type("Tissue")
    app.key("Return", "t")
    app.click_tag(2, button=3)
    app.type("95")
    app.key("Return", "t", "2")
    app.expect("the band is set", tag_label="Tissue", threshold_min=95)


def confirmed(run, volume, export, slices):
    """An independent count of the volume's grey values agrees with the export."""
    counted = subprocess.run([sys.executable, ROOT / "tests/e2e/check_histogram_export.py", volume, export, "0",
                              str(slices - 1), "2=Tissue:95:-"], capture_output=True, text=True)
    run.note(counted.stdout.strip().splitlines()[-1] if counted.stdout else counted.stderr)
    return counted.returncode == 0


@scenario()
def an_exported_histogram_agrees_with_the_volume(run):
    """The file is read back; an independent count confirms it; a changed file is told apart."""
    volume = run.brain(of_brain_only=False)
    app = run.start(volume)
    with_a_band(app)
    run.shot("histogram", " - Workbench")
    export = run.folder / "histogram.csv"
    app.key("ctrl+e")
    app.fill(app.dialog(), windows_path(export))
    run.same("the histogram is read back and agrees", app.wait_said("export_differences"), "export_differences 0")
    run.same("the histogram is exported", export.read_bytes()[:4], b"sep=")
    run.check("an independent count confirms the export", confirmed(run, volume, export, app.state().slice_nb))
    wrong = run.folder / "wrong.csv"
    lines = export.read_bytes().split(b"\n")
    lines[6] = re.sub(rb"^[^,]*,[^,]*", b"7,7", lines[6])
    wrong.write_bytes(b"\n".join(lines))
    app.menu("Verify export")
    app.choose_file("Verify export", wrong)
    run.same("a changed file is told apart", app.wait_said("export_differences", 2), "export_differences 2")
    app.window("Export verified")
    run.shot("export_verified")
    app.answer_key("Export verified", "Escape")
    app.key("h")
    app.wait_said("status grey: mean")
    app.expect("H makes the histogram that of the shown frame", histogram_mark="shown")


@scenario()
def peaks_become_bands_in_one_step(run):
    """The Gaussian fit, then the table of peaks and TAGs as it proposes them."""
    app = run.start(run.brain(of_brain_only=False))
    app.menu("Fit Gaussians")
    app.window("Peak analysis")
    before = app.expect("peaks are found", lambda s: s.peaks).undo_nb
    run.shot("analysis")
    app.front()
    app.menu("Peaks to TAG bands")
    app.answer_key("Peaks to TAG bands", "Return")
    app.wait_said(r"status (One TAG band was|[0-9]+ TAG bands were) set")
    app.expect("the peaks become TAG bands in one step", undo_nb=before + 1)
    app.key("ctrl+z")
    app.expect("undo takes them back", undo_nb=before)
    app.close("Peak analysis")
