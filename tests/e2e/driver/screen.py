"""The X display: input as from real devices, the window manager, pictures."""
import ctypes
import hashlib
import re
import subprocess

MODIFIERS = {"shift": "Shift_L", "ctrl": "Control_L", "alt": "Alt_L"}
KEY_NAMES = {"Enter": "Return", "Esc": "Escape", "Space": "space", "Backspace": "BackSpace", "Page Up": "Page_Up",
             "Page Down": "Page_Down"}
NOT_A_LETTER = {"\n": "Return", "\t": "Tab"}


def _library(name):
    return ctypes.CDLL(name)


class _Message(ctypes.Structure):
    """A client message, as large as any event."""
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("kind", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 20)]


class Screen:
    """The display of the environment variable DISPLAY."""

    def __init__(self):
        self.x11 = _library("libX11.so.6")
        self.test = _library("libXtst.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XStringToKeysym.restype = ctypes.c_ulong
        self.x11.XkbKeycodeToKeysym.restype = ctypes.c_ulong
        self.x11.XInternAtom.restype = ctypes.c_ulong
        self.x11.XDefaultRootWindow.restype = ctypes.c_ulong
        # A window may go between a question and its answer: by default that would end this program.
        handler = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)
        self.on_error = handler(lambda display, event: 0)
        self.x11.XSetErrorHandler(self.on_error)
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(None))
        if not self.display:
            raise RuntimeError("there is no display")
        self.x11.XAutoRepeatOff(self.display)
        self.name_atom = self.x11.XInternAtom(self.display, b"_NET_WM_NAME", 0)
        self.pointer = None

    def _sync(self):
        self.x11.XSync(self.display, 0)

    # ------------------------------------------------------------------------------------------------------ devices
    def move(self, x, y):
        """False when the pointer stands there already, so that nobody hears of it."""
        is_moved = self.pointer != (x, y)
        self.pointer = (x, y)
        self.test.XTestFakeMotionEvent(self.display, -1, int(x), int(y), 0)
        self._sync()
        return is_moved

    def button(self, number, is_down):
        self.test.XTestFakeButtonEvent(self.display, number, int(is_down), 0)
        self._sync()

    def _code(self, keysym):
        code = self.x11.XKeysymToKeycode(self.display, ctypes.c_ulong(keysym))
        if not code:
            raise ValueError(f"the keyboard has no key for {keysym:#x}")
        is_shifted = self.x11.XkbKeycodeToKeysym(self.display, ctypes.c_ubyte(code), 0, 0) != keysym
        return code, is_shifted

    def _press(self, code, is_down):
        self.test.XTestFakeKeyEvent(self.display, code, int(is_down), 0)

    def hold(self, modifier, is_down):
        """Holds a modifier down, or several ("ctrl+shift"), or lets them go."""
        for name in modifier.split("+"):
            self._press(self._named(MODIFIERS[name])[0], is_down)
        self._sync()

    def _named(self, name):
        keysym = self.x11.XStringToKeysym(KEY_NAMES.get(name, name).encode())
        return self._code(keysym if keysym else ord(name))

    def key(self, name):
        """A key with its modifiers: "ctrl+z". Returns how many keys went down."""
        *held, last = name.split("+") if len(name) > 1 else [name]
        code, is_shifted = self._named(last)
        if is_shifted:
            held.append("shift")
        codes = [self._named(MODIFIERS[modifier])[0] for modifier in held] + [code]
        for pressed in codes:
            self._press(pressed, True)
        for pressed in reversed(codes):
            self._press(pressed, False)
        self._sync()
        return len(codes)

    def type(self, text):
        """Returns how many keys went down."""
        return sum(self.key(NOT_A_LETTER.get(letter, letter)) for letter in text)

    # ------------------------------------------------------------------------------------------------------ windows
    def _title(self, window):
        kind, bits, count, left = ctypes.c_ulong(), ctypes.c_int(), ctypes.c_ulong(), ctypes.c_ulong()
        value = ctypes.c_char_p()
        self.x11.XGetWindowProperty(self.display, ctypes.c_ulong(window), ctypes.c_ulong(self.name_atom), 0, 1024, 0, 0,
                                    ctypes.byref(kind), ctypes.byref(bits), ctypes.byref(count), ctypes.byref(left),
                                    ctypes.byref(value))
        title = (value.value or b"").decode("utf-8", "replace")
        if value:
            self.x11.XFree(value)
        return title

    def focused_title(self):
        """Of the window that keys go to; None: they go nowhere."""
        window, reverts = ctypes.c_ulong(), ctypes.c_int()
        self.x11.XGetInputFocus(self.display, ctypes.byref(window), ctypes.byref(reverts))
        return self._title(window.value) if window.value > 1 else None

    @staticmethod
    def _found(title):
        plain = re.sub(r"([.*+?^$|(){}\[\]\\])", r"\\\1", title)  # a star of unsaved work is no pattern
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", plain], capture_output=True, text=True)
        return found.stdout.split()[:1]

    def manage(self, title, *orders):
        """Asks the window manager: manage("Workbench", "windowsize", "1000", "640")."""
        for window in self._found(title):
            subprocess.run(["xdotool", orders[0], window, *orders[1:]], capture_output=True)

    def close(self, title):
        """What the button at the end of a window's title does."""
        for window in self._found(title):
            event = _Message(type=33, display=self.display, window=int(window), format=32,
                             kind=self.x11.XInternAtom(self.display, b"_NET_CLOSE_WINDOW", 0))
            root = ctypes.c_ulong(self.x11.XDefaultRootWindow(self.display))
            self.x11.XSendEvent(self.display, root, 0, ctypes.c_long(0x180000), ctypes.byref(event))
            self._sync()

    # ----------------------------------------------------------------------------------------------------- pictures
    @staticmethod
    def _crop(place):
        left, top, width, height = place
        return ["-crop", f"{width}x{height}+{left}+{top}", "+repage"]

    def picture(self, path, place=None):
        """Writes what is seen, all of it or a place (left, top, width, height)."""
        subprocess.run(["import", "-window", "root", *(self._crop(place) if place else []), str(path)], check=True)

    def sum(self, place):
        """The same for the same picture."""
        raw = subprocess.run(["import", "-window", "root", *self._crop(place), "rgb:-"], capture_output=True,
                             check=True)
        return hashlib.sha256(raw.stdout).hexdigest()
