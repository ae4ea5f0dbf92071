"""A scenario: a function that drives workbenches of its own, with settings, data and a display of its own."""
import pathlib
import shutil
import subprocess

from driver.screen import Screen
from driver.state import Failure
from driver.workbench import Workbench, windows_path

ROOT = pathlib.Path(__file__).resolve().parents[3]
SCENARIOS = {}


def scenario(is_short=False):
    """Marks a function as a scenario. The short ones are part of ./test."""
    def note(function):
        if function.__name__ in SCENARIOS:
            raise ValueError(f"two scenarios are called {function.__name__}")
        SCENARIOS[function.__name__] = function
        function.is_short = is_short
        return function
    return note


def package_file(package, ending):
    """The first file of an installed package whose path ends so; None: there is none."""
    listed = subprocess.run(["dpkg", "-L", package], capture_output=True, text=True).stdout.splitlines()
    return next((path for path in listed if path.endswith(ending)), None)


class Skipped(Exception):
    """What a scenario needs is not there."""


class Run:
    """What a scenario is given."""

    def __init__(self, name, options, folder):
        self.name = name
        self.options = options
        self.folder = pathlib.Path(folder)
        self.out = pathlib.Path(options.out)
        self.data = self.folder / "data"
        self.data.mkdir()
        self.settings = self.folder / "settings.txt"
        self.screen = Screen()
        self.workbenches = []
        self.holder = None
        self.is_scaled = False
        self.lines = []

    # ------------------------------------------------------------------------------------------------------ the data
    def image(self, name="head.nii"):
        """A small image of 60 x 50 x 30 voxels, whose grey values rise along every axis."""
        subprocess.run([ROOT / "scripts/work_image", "image", self.data / name], check=True)
        return self.data / name

    def box_labels(self, geometry):
        """Labels of one box in a geometry of their own, outside the data: see scripts/work_image."""
        path = self.folder / f"{geometry}.nii.gz"
        subprocess.run([ROOT / "scripts/work_image", "labels", path, geometry], check=True)
        return path

    def brain(self, of_brain_only=True):
        """A copy of the sample brain, or of the volume that the user names."""
        path = self.options.volume or package_file("mricron-data", "/ch2.nii.gz")
        if path is None or (of_brain_only and pathlib.Path(path).name != "ch2.nii.gz"):
            raise Skipped("the sample brain is not there, or another volume is wanted")
        shutil.copy(path, self.data)
        return self.data / pathlib.Path(path).name

    # ------------------------------------------------------------------------------------------------- the workbench
    def screen_scale(self, percent):
        """Of the whole Wine prefix, from the next start on; the end of the scenario sets it back."""
        self.is_scaled = percent != 100
        keys = self.folder / "scale.reg"
        keys.write_text("REGEDIT4\n\n[HKEY_CURRENT_USER\\Control Panel\\Desktop]\n"
                        f'"LogPixels"=dword:{96 * percent // 100:08x}\n')
        subprocess.run(["wine", "regedit", "/S", windows_path(keys)], stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
        # Programs take it over from the running desktop, so that has to end.
        subprocess.run(["wineserver", "-k", "-w"], stdin=subprocess.DEVNULL, check=False)

    def _desktop_hold(self):
        """Wine's desktop goes when its last program ends, and one that starts at that moment gets no window."""
        program = pathlib.Path(self.options.workbench).with_name("guihold.exe")
        if program.exists() and (self.holder is None or self.holder.poll() is not None):
            self.holder = subprocess.Popen(["wine", program], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                           stderr=subprocess.DEVNULL)

    def launch(self, *files, labels=None):
        """Starts a workbench and does not wait. It keeps the settings of the one before."""
        self._desktop_hold()
        arguments = ["--settings", windows_path(self.settings)]
        if labels:
            arguments += ["--labels", windows_path(labels)]
        workbench = Workbench(self, self.screen, self.folder, arguments + [windows_path(path) for path in files])
        self.workbenches.append(workbench)
        return workbench

    def start(self, *files, labels=None, is_counted=True):
        """The same, and waits until it is ready and in front, the histogram counted or not."""
        workbench = self.launch(*files, labels=labels)
        workbench.wait_ready(is_counted)
        workbench.front("Workbench")
        return workbench

    def end(self):
        for workbench in self.workbenches:
            if not workbench.has_ended():
                workbench.kill()
        if self.is_scaled:
            self.screen_scale(100)

    # -------------------------------------------------------------------------------------------- checks and pictures
    def checked(self, name, call):
        """Runs what raises Failure when a check does not hold, and notes the verdict."""
        try:
            result = call()
        except Failure as failure:
            self.lines.append(f"FAIL {name}: {failure}")
            raise
        self.lines.append(f"PASS {name}")
        return result

    def check(self, name, holds, told=""):
        """Of what does not change any more: a file, a value that was read."""
        def call():
            if not holds:
                raise Failure(f"does not hold {told}")
        return self.checked(name, call)

    def same(self, name, actual, expected):
        return self.check(name, actual == expected, f"({actual!r}, not {expected!r})")

    def note(self, line):
        """A figure for the report."""
        self.lines.append(f"     {line}")

    def shot(self, name, window=None):
        """A picture: of all that is seen, or of one window with its frame."""
        place = None
        if window:
            left, top, width, height = self.workbenches[-1].state().window(window)["place"]
            above = 46 if window == " - Workbench" else 26  # its title, and the menus
            place = (max(left - 4, 0), max(top - above, 0), width + 8, height + above + 4)
        self.screen.picture(self.out / f"{name}.png", place)
