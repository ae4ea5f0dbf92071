"""What the workbench tells about itself at one moment."""


class Failure(Exception):
    """A check that does not hold, or something that never came."""


class Box:
    """A place on the screen: left, top, width and height in pixels."""

    def __init__(self, place):
        self.left, self.top, self.width, self.height = place

    def point(self, x=0.5, y=0.5):
        """A point by shares of width and height."""
        return int(self.left + self.width * x), int(self.top + self.height * y)

    def tuple(self):
        return self.left, self.top, self.width, self.height


def without_mnemonic(text):
    return text.split("\t")[0].replace("&", "").rstrip(".")


def text_of(item):
    """What a window, a control or a part is called."""
    return item.get("name") or without_mnemonic(item.get("title", ""))


class State:
    """Values as attributes: state.tag_cur. `report` is the whole answer."""

    def __init__(self, report):
        self.report = report

    def __getattr__(self, name):
        try:
            return self.report[name]
        except KeyError:
            raise AttributeError(f"the workbench tells nothing of that name: {name}") from None

    def count(self, tag):
        return self.counts.get(str(tag), 0)

    def marker(self, number):
        """x, y and slice; None: not placed."""
        return self.markers.get(str(number))

    def is_shown(self, place):
        return self.places[place]["is_shown"]

    def box(self, place):
        return Box(self.places[place]["place"])

    def window(self, title):
        """The window whose title holds that text; None: there is none."""
        return next((window for window in self.windows if title in window["title"]), None)

    @property
    def active(self):
        return next((window for window in self.windows if window["is_active"]), None)

    def item(self, panel, part=None):
        """A panel, a control or a window by its name, or a part of it; None: it cannot be seen."""
        for window in self.windows:
            for owner in [window, *window["children"]]:
                if text_of(owner) == panel and part is None:
                    return owner
                if text_of(owner) == panel:
                    for found in owner.get("parts", []):
                        if found["name"] == part:
                            return found
        return None

    def row(self, name):
        """A row of the database by its name; None: there is none."""
        return next((row for row in self.db_rows if row["name"] == name), None)

    def level(self, name):
        row = self.row(name)
        return row["level"] if row else None

    def menu_path(self, text):
        """The letters that lead to a command in the menus."""
        for menu in self.menus.get("entries", []):
            for entry in menu.get("entries", []):
                words = without_mnemonic(entry["text"])
                if words == text or words.startswith((text + " ", text + ":")):
                    return [item["text"].partition("&")[2][:1].lower() for item in (menu, entry)]
        raise Failure(f"no menu has the command '{text}'")

    def brief(self):
        """The values on one line, without windows and places."""
        left_out = ("windows", "menus", "db_rows", "places")
        values = ", ".join(f"{key} {value}" for key, value in self.report.items() if key not in left_out)
        titles = ", ".join(repr(window["title"]) + (" (active)" if window["is_active"] else "")
                           for window in self.windows)
        return f"windows: {titles}; {values}"[:1500]
