"""A running workbench: its state, what it said, and what a user does to it."""
import json
import os
import re
import subprocess
import time

from driver.state import Box, Failure, State, without_mnemonic

# Seconds for what must come; nothing waits that long when all is well.
PATIENCE = float(os.environ.get("E2E_PATIENCE", 60))
START = 2 * PATIENCE  # seconds for Wine and the workbench to start
LOOK_EVERY = 0.004
PROCESSORS = os.cpu_count() or 1
FRAME = 60  # pixels: a window's frame with title and menu is lower
FRAME_SIDE = 12  # and narrower than this at a side


def is_late(begin, patience=PATIENCE):
    """Whether what began then should have come by now. Where others want the processors too, everything takes longer."""
    return time.monotonic() > begin + patience * max(1.0, os.getloadavg()[0] / PROCESSORS)


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


class Workbench:
    """Every action returns when the workbench has dealt with it, or has ended."""

    def __init__(self, scenario, screen, folder, arguments):
        self.scenario = scenario
        self.screen = screen
        self.log = folder / f"state_{len(scenario.workbenches)}.log"
        self.question = self.log.with_name(self.log.name + ".ask")
        self.log.write_bytes(b"")
        self.read = 0
        self.rest = b""
        self.events = []
        self.last = None
        self.answers = 0
        self.errors = self.log.with_suffix(".errors")
        with open(self.errors, "wb") as errors:
            self.program = subprocess.Popen(
                ["wine", scenario.options.workbench, "--check", "--report", windows_path(self.log), *arguments],
                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=errors)

    # -------------------------------------------------------------------------------------------------- what it says
    def _listen(self):
        with open(self.log, "rb") as stream:
            stream.seek(self.read)
            new = stream.read()
        self.read += len(new)
        *lines, self.rest = (self.rest + new).split(b"\n")
        for raw in lines:
            line = raw.decode("utf-8", "replace").rstrip("\r")
            if line.startswith("state {"):
                self.last = State(json.loads(line[6:]))
                self.answers += 1
            else:
                self.events.append(line)

    def has_ended(self):
        return self.program.poll() is not None

    def _until(self, what, predicate, patience=PATIENCE):
        """Waits for something that needs no question."""
        begin = time.monotonic()
        while True:
            self._listen()
            found = predicate()
            if found:
                return found
            if is_late(begin, patience):
                raise Failure(f"{what} did not come; the last lines were {self.events[-4:]}; " + self._brief())
            time.sleep(LOOK_EVERY)

    def _brief(self):
        return "the last state: " + self.last.brief() if self.last else "no state was told"

    def said(self, pattern):
        """Lines that begin with a regular expression, from the start."""
        self._listen()
        return [line for line in self.events if re.match(pattern, line)]

    def wait_said(self, pattern, count=1):
        """Waits until so many such lines were said; returns the last one."""
        patience = PATIENCE if self.last else START
        return self._until(f"'{pattern}'", lambda: self.said(pattern)[count - 1:], patience)[-1]

    def wait_ready(self, is_counted=True):
        """@param is_counted whether the histogram must be there too"""
        self._until("ready", lambda: self.has_ended() or self.said("ready"), START)
        if self.has_ended():
            raise Failure(f"the workbench ended with status {self.program.returncode} when it started: "
                          f"{self.errors.read_text(errors='replace')[-300:]!r}")
        return self.wait("the window is in front",
                         lambda s: s.active is not None and not (is_counted and s.histogram_counting))

    def state(self):
        """Asked anew; None when the workbench has ended."""
        before = self.answers
        if not self.question.exists():
            self.question.touch()
        self._until("an answer", lambda: self.answers > before or self.has_ended())
        return self.last if self.answers > before else None

    def wait(self, what, predicate):
        """Waits until a state fulfils the predicate, and returns it."""
        begin = time.monotonic()
        while True:
            state = self.state()
            if state is None:
                raise Failure(f"{what}: the workbench has ended with status {self.program.returncode}")
            if predicate(state):
                return state
            if is_late(begin):
                raise Failure(f"{what}: not within {PATIENCE:.0f} s; " + self._brief())

    def expect(self, name, predicate=None, **values):
        """A check: the predicate holds, and the values are those. Waits for it, and returns the state."""
        def holds(state):
            return ((predicate is None or predicate(state)) and
                    all(getattr(state, key) == value for key, value in values.items()))
        return self.scenario.checked(name, lambda: self.wait(f"{name} {values or ''}", holds))

    # ------------------------------------------------------------------------------------------------------- devices
    def _arrived(self, kind, count):
        """Waits until so many more have arrived; all that came before has been dealt with then."""
        wanted = self.last.input[kind] + count
        before = len(self.last.windows)
        begin = time.monotonic()
        while True:
            state = self.state()
            if state is None or state.input[kind] >= wanted:
                return state
            # What opens at once when a button goes down keeps the button's release from the window below.
            if kind == "buttons" and len(state.windows) > before:
                return state
            if is_late(begin):
                raise Failure(f"the workbench has not heard of {count} {kind}; " + self._brief())

    def _focused(self):
        """Waits until keys go to the active window: the window manager may still be on its way. When it leaves a new
        window without the keyboard it is asked for it, as a user clicks on the window then."""
        begin = time.monotonic()
        asked = time.monotonic()
        while True:
            active = self.last.active
            if self.last.is_in_menu or (active is not None and self.screen.focused_title() == active["title"]):
                return
            if is_late(begin):
                raise Failure(f"keys go to '{self.screen.focused_title()}'; " + self._brief())
            if active is not None and time.monotonic() > asked + 1:
                asked = time.monotonic()
                self.screen.manage(active["title"], "windowactivate")
            time.sleep(LOOK_EVERY)
            self.state()

    def key(self, *names):
        for name in names:
            self._focused()
            state = self._arrived("keys", self.screen.key(name))
        return state

    def type(self, text):
        self._focused()
        return self._arrived("keys", self.screen.type(text))

    def move(self, x, y):
        """To a place over a window of the workbench that takes the mouse."""
        if self.screen.move(x, y):
            self.wait(f"the pointer at {x}, {y}", lambda s: s.input["pointer"] == [x, y])

    def press_at(self, x, y, button=1, held=None):
        """A click at a place on the screen, with a modifier held or without."""
        self.move(x, y)
        if held:
            self.screen.hold(held, True)
        self.screen.button(button, True)
        self.screen.button(button, False)
        state = self._arrived("buttons", 1)
        if held:
            self.screen.hold(held, False)
            self.state()
        return state

    def double_click(self, x, y):
        self.move(x, y)
        for is_down in (True, False, True, False):  # the second must follow soon
            self.screen.button(1, is_down)
        return self.state()

    def find(self, panel, part=None):
        """Waits until it can be seen; returns its place."""
        wanted = f"'{panel}'" + (f", '{part}'" if part else "")
        return Box(self.wait(f"{wanted} to be seen", lambda s: s.item(panel, part)).item(panel, part)["place"])

    def click(self, panel, part=None, button=1, held=None, x=0.5, y=0.5):
        """A click on what has a name: click("Frames", "Up")."""
        return self.press_at(*self.find(panel, part).point(x, y), button, held)

    def wheel(self, notches, place=None):
        """Notches forward (negative: back), where the pointer stands or at a place."""
        if place:
            self.move(*place)
        for _ in range(abs(notches)):
            number = 4 if notches > 0 else 5
            self.screen.button(number, True)
            self.screen.button(number, False)
        return self._arrived("wheels", abs(notches))

    def drag(self, begin, end, button=1, steps=5):
        self.move(*begin)
        self.screen.button(button, True)
        for step in range(1, steps + 1):
            self.screen.move(*(int(a + (b - a) * step / steps) for a, b in zip(begin, end)))
        self.wait("the pointer at the drag's end", lambda s: s.input["pointer"] == list(end))
        self.screen.button(button, False)
        return self._arrived("buttons", 1)

    # ------------------------------------------------------------------------------------------------ windows, menus
    def menu(self, text):
        """Runs a command by its menu, opened with Alt and its letter."""
        first, second = self.state().menu_path(text)
        self.key("alt+" + first)
        self.wait("a menu", lambda s: s.is_in_menu)
        return self.key(second)

    def window(self, title):
        """Waits until the window is active and keys go to it."""
        self.wait(f"the window '{title}'", lambda s: s.active is not None and title in s.active["title"])
        self._focused()
        return self.last.active

    def dialog(self):
        """Waits for a question of the system's kind, whatever its title; returns the title."""
        self.wait("a question", lambda s: s.active is not None and s.active["class"] == "#32770")
        self._focused()
        return self.last.active["title"]

    def gone(self, title):
        """Waits until there is no such window."""
        return self.wait(f"'{title}' to go", lambda s: s.window(title) is None)

    def front(self, title="Workbench"):
        """Brings a window to the front, as a click on its name elsewhere would."""
        asked = 0
        def is_in_front(state):
            nonlocal asked
            if state.active is not None and title in state.active["title"]:
                return True
            if time.monotonic() > asked + 1:
                asked = time.monotonic()
                self.screen.manage(title, "windowactivate")
            return False
        self.wait(f"the window '{title}' in front", is_in_front)
        self._focused()
        return self.state()

    def close(self, title, key=None):
        """Closes another window by a key, or as its title's button does, and comes back."""
        self.front(title)
        if key:
            self.key(key)
        else:
            self.screen.close(title)
        self.gone(title)
        return self.front()

    def answer(self, title, button):
        """Answers a question by its button, and waits until it is gone."""
        self.window(title)
        active = self.last.active
        control = next((item for item in active["children"] if without_mnemonic(item["title"]) == button), None)
        if control is None:
            raise Failure(f"'{title}' has no button '{button}'; " + self._brief())
        self.press_at(*Box(control["place"]).point())
        return None if self.has_ended() else self._left(title)

    def answer_key(self, title, key):
        """The same by a key."""
        self.window(title)
        self.key(key)
        return None if self.has_ended() else self._left(title)

    def _left(self, title):
        begin = time.monotonic()
        while True:
            state = self.state()
            if state is None or state.window(title) is None:
                return state
            if is_late(begin):
                raise Failure(f"'{title}' does not go; " + self._brief())

    def fill(self, title, text, key="Return"):
        """Types into the field of a question, in place of what stands there, and leaves it."""
        self.window(title)
        self.key("ctrl+a")
        self.type(text)
        return self.answer_key(title, key)

    def choose_file(self, title, path):
        return self.fill(title, windows_path(path))

    def place(self, title, left, top, width=None, height=None):
        """Moves a window, and gives it another size; waits for it."""
        if width:
            self.screen.manage(title, "windowsize", str(width), str(height))
        self.screen.manage(title, "windowmove", str(left), str(top))

        def is_there(state):
            box = Box(state.window(title)["place"])
            size = not width or (abs(box.width - width) < FRAME and abs(box.height - height) < FRAME)
            return size and abs(box.left - left) < FRAME_SIDE and 0 <= box.top - top < FRAME
        return self.wait(f"'{title}' at its new place", is_there)

    # ------------------------------------------------------------------------------------------------ the image, TAGs
    def click_tag(self, number, button=1):
        """A click on a TAG that can be seen when the panel is not scrolled, whatever stands on it."""
        parts = self.state().item("TAG")["parts"]
        buttons = [part for part in parts if part["name"]]
        return self.press_at(*Box(buttons[number]["place"]).point(), button)

    def in_image(self, x, y, plane=None):
        """The place on the screen of a point of the slice, or of the picture of another plane (0 or 1), by shares of
        its width and height in percent."""
        state = self.state()
        box = state.box("image" if plane is None else f"plane_{plane}")
        picture = state.slice_place if plane is None else getattr(state, f"plane_place_{plane}")
        return (int(box.left + picture["left"] + picture["width"] * picture["scale_x"] * x / 100),
                int(box.top + picture["top"] + picture["height"] * picture["scale_y"] * y / 100))

    def click_image(self, x, y, button=1, held=None, plane=None):
        return self.press_at(*self.in_image(x, y, plane), button, held)

    def stroke(self, begin, end, button=1, plane=None):
        return self.drag(self.in_image(*begin, plane), self.in_image(*end, plane), button)

    # ------------------------------------------------------------------------------------------------------- the end
    def wait_ended(self):
        """Waits for the end; returns the status."""
        self._until("the end", self.has_ended)
        return self.program.returncode

    def end(self):
        """Closes it by its key, without saving; returns the status."""
        self.front()
        if self.key("ctrl+q") is not None:
            begin = time.monotonic()
            while not self.has_ended() and not is_late(begin):
                state = self.state()
                if state is not None and state.active is not None and state.active["class"] == "#32770":
                    self.answer(state.active["title"], "No")
        return self.wait_ended()

    def kill(self):
        """As a power cut would end it."""
        for folder in os.listdir("/proc"):
            try:
                with open(f"/proc/{folder}/cmdline", "rb") as stream:
                    if windows_path(self.log).encode() in stream.read():
                        os.kill(int(folder), 9)
            except (OSError, ValueError):
                continue
        self.program.wait()
