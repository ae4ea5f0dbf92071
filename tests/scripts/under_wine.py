"""What scripts/under_wine makes of the ways in which a program ends, with a made-up wine in place of Wine."""
import os
import pathlib
import subprocess
import tempfile
import unittest

UNDER_WINE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "scripts", "under_wine")
CASES = "--gtest_output=xml:results.xml"


class Under_Wine(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        prefix = self.folder / "prefix"
        prefix.mkdir()
        (prefix / "kit_ready").touch()
        self.kept = self.folder / "kept"
        self.kept.mkdir()
        self.environment = {**os.environ, "TMPDIR": str(self.kept), "PATH": f"{self.folder}:{os.environ['PATH']}",
                            "KIT_WINEPREFIX": str(prefix)}

    def ended(self, body, *arguments):
        """(status, number of starts, what was told) where the made-up Wine runs these lines of a shell."""
        starts = self.folder / "starts"
        starts.unlink(missing_ok=True)
        wine = self.folder / "wine"
        wine.write_text(f"#!/bin/sh\necho >> {starts}\nnb=$(wc -l < {starts})\n{body}\n")
        wine.chmod(0o755)
        done = subprocess.run([UNDER_WINE, "panel_test.exe", *arguments], env=self.environment, capture_output=True,
                              text=True, check=False)
        self.assertEqual(list(self.kept.iterdir()), [], "what it left behind")
        return done.returncode, len(starts.read_text().splitlines()), done.stderr

    begin = 'echo 0 > "$TEST_PREMATURE_EXIT_FILE"'
    end = 'rm "$TEST_PREMATURE_EXIT_FILE"'

    def test_a_program_that_passes_is_started_once_and_nothing_is_told(self):
        self.assertEqual(self.ended(f"{self.begin}; {self.end}", CASES), (0, 1, ""))

    def test_a_program_that_failed_or_crashed_is_not_started_again(self):
        self.assertEqual(self.ended(f"{self.begin}; {self.end}; exit 1", CASES),
                         (1, 1, "under_wine: panel_test.exe ended with status 1.\n"))
        self.assertEqual(self.ended(f"{self.begin}; exit 5", CASES)[:2], (5, 1))

    def test_a_program_that_never_began_is_started_once_more(self):
        status, starts, told = self.ended(f"[ $nb = 2 ] || exit 3; {self.begin}; {self.end}", CASES)
        self.assertEqual((status, starts), (0, 2))
        self.assertIn("ended with status 3 before it began; it is started once more", told)

    def test_a_program_that_never_begins_has_failed(self):
        status, starts, told = self.ended("exit 3", CASES)
        self.assertEqual((status, starts), (3, 2))
        self.assertIn("panel_test.exe ended with status 3.", told)

    def test_a_killed_program_is_started_once_more(self):
        status, starts, told = self.ended("[ $nb = 2 ] || exit 137")
        self.assertEqual((status, starts), (0, 2))
        self.assertIn("was killed from outside", told)

    def test_a_program_without_cases_that_failed_is_not_started_again(self):
        self.assertEqual(self.ended("exit 3")[:2], (3, 1))


if __name__ == "__main__":
    unittest.main()
