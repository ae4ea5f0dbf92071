"""What scripts/progress tells of a long command, and what it keeps."""
import os
import pty
import subprocess
import sys
import tempfile
import unittest

PROGRESS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "scripts", "progress")


def ninja(nb):
    return "".join(f"[{at}/{nb}] Building CXX object a.o\n" for at in range(1, nb + 1))


class Progress(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.log = os.path.join(self.folder.name, "log")

    def tearDown(self):
        self.folder.cleanup()

    def told(self, text, **options):
        return subprocess.run([PROGRESS, self.log], input=text, text=True, capture_output=True, check=True, **options).stdout

    def test_objects_are_counted_with_a_line_for_every_tenth(self):
        lines = self.told(ninja(200)).splitlines()
        self.assertEqual(len(lines), 11)
        self.assertEqual(lines[0], "    1 of 200 objects built")
        self.assertEqual(lines[1], "    20 of 200 objects built")
        self.assertEqual(lines[-1], "    200 of 200 objects built")

    def test_packages_are_counted_as_fetched_and_as_set_up(self):
        text = "1 upgraded, 2 newly installed, 0 to remove\nGet:1 a\nGet:2 b\nGet:3 c\nSetting up a\nSetting up b\n"
        self.assertEqual(self.told(text).splitlines(), [
            "    1 of 3 packages fetched", "    2 of 3 packages fetched", "    3 of 3 packages fetched",
            "    1 of 3 packages set up", "    2 of 3 packages set up"])

    def test_package_lists_are_no_packages(self):
        self.assertEqual(self.told("Get:1 http://server bookworm InRelease\n"), "")

    def test_everything_is_kept_in_the_log(self):
        text = "-- Configuring\n" + ninja(3) + "error: a \\backslash  and blanks\nno end of line"
        self.told(text)
        with open(self.log, encoding="utf-8") as kept:
            self.assertEqual(kept.read(), text + "\n")

    def test_a_terminal_gets_one_line_that_changes(self):
        ours, theirs = pty.openpty()
        subprocess.run([PROGRESS, self.log], input=ninja(3), text=True, stdout=theirs, check=True)
        os.close(theirs)
        told = os.read(ours, 4096).decode()
        os.close(ours)
        self.assertEqual(told.count("\r    "), 3)
        self.assertEqual(told.count("\n"), 1)


if __name__ == "__main__":
    sys.exit(unittest.main())
