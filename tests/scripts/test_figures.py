"""What ./test ends with: scripts/test_figures on a made-up run."""
import os
import subprocess
import sys
import tempfile
import unittest

SCRIPT = os.path.join(os.path.dirname(__file__), "..", "..", "scripts", "test_figures")


def junit(entries):
    cases = "".join('<testcase name="%s" time="%s" status="%s"/>' % entry for entry in entries)
    return "<testsuite>%s</testsuite>" % cases


def gtest(passed, failed, skipped=0):
    cases = '<testcase classname="Grid" name="good" status="run"/>' * passed
    cases += '<testcase classname="Grid" name="left_out" status="run" result="skipped"/>' * skipped
    cases += "".join('<testcase classname="Grid" name="bad%d" status="run"><failure/></testcase>' % i for i in range(failed))
    return "<testsuites><testsuite>%s</testsuite></testsuites>" % cases


class Figures(unittest.TestCase):
    def setUp(self):
        self.root = tempfile.TemporaryDirectory()
        self.addCleanup(self.root.cleanup)
        self.folder = os.path.join(self.root.name, "mingw-debug", "test_results")
        os.makedirs(self.folder)

    def put(self, name, text):
        with open(os.path.join(self.folder, name), "w") as file:
            file.write(text)

    def lines(self, entries, reasons=""):
        """(status, printed lines) of a run of these entries, (name, seconds, status) each."""
        self.put("ctest.junit", junit(entries))
        self.put("ctest.log", "The following tests FAILED:\n" + reasons)
        done = subprocess.run([sys.executable, SCRIPT, os.path.join(self.folder, "ctest.junit")], capture_output=True,
                              text=True, check=False)
        return done.returncode, done.stdout.splitlines()

    def test_a_run_without_failures_ends_with_one_line_of_figures(self):
        self.put("panel_test.xml", gtest(3, 0))
        self.assertEqual(self.lines([("panel_test", 1, "run"), ("lint_tidy", 1, "run")]),
                         (0, ["mingw-debug: 4 passed, 0 failed, 0 skipped", "4 passed, 0 failed"]))

    def test_the_time_limit_is_told_from_a_finding(self):
        status, lines = self.lines([("lint_tidy", 3600.4, "fail"), ("lint_exports", 2, "fail")],
                                   "\t  1 - lint_tidy (Timeout)\n\t  2 - lint_exports (Failed)\n")
        self.assertEqual(status, 1)
        self.assertEqual(lines[1:], ["failed: mingw-debug lint_tidy: time limit, after 3600 s",
                                     "failed: mingw-debug lint_exports: finding", "0 passed, 2 failed"])

    def test_a_program_names_the_cases_that_failed(self):
        self.put("panel_test.xml", gtest(1, 2))
        self.assertEqual(self.lines([("panel_test", 1, "fail")], "\t  1 - panel_test (Failed)\n")[1][1:],
                         ["failed: mingw-debug panel_test: finding: Grid.bad0, Grid.bad1", "1 passed, 2 failed"])

    def test_of_many_failed_cases_the_first_are_named(self):
        self.put("panel_test.xml", gtest(0, 7))
        self.assertIn("Grid.bad3, Grid.bad4 and 2 more", self.lines([("panel_test", 1, "fail")])[1][1])

    def test_as_many_failed_cases_as_are_named_have_no_more_behind_them(self):
        self.put("panel_test.xml", gtest(0, 5))
        self.assertTrue(self.lines([("panel_test", 1, "fail")])[1][1].endswith("Grid.bad3, Grid.bad4"))

    def test_what_was_left_out_is_neither_passed_nor_failed(self):
        self.put("panel_test.xml", gtest(2, 0, skipped=1))
        self.assertEqual(self.lines([("panel_test", 1, "run"), ("lint_tidy", 0, "disabled"), ("script_progress", 0, "notrun")]),
                         (1, ["mingw-debug: 2 passed, 1 failed, 2 skipped",
                              "failed: mingw-debug script_progress: it could not be started",
                              "2 passed, 1 failed, 2 skipped"]))

    def test_a_program_that_ran_out_of_time_with_results_counts_for_its_time(self):
        self.put("panel_test.xml", gtest(2, 0))
        self.assertEqual(self.lines([("panel_test", 3600, "fail")], "\t  1 - panel_test (Timeout)\n")[1][1],
                         "failed: mingw-debug panel_test: time limit, after 3600 s")

    def test_crashes_and_programs_without_results_are_told(self):
        status, lines = self.lines([("grid_test", 1, "fail"), ("silent_test", 1, "run"), ("gone_test", 0, "notrun")],
                                   "\t  1 - grid_test (SEGFAULT)\n\t  3 - gone_test (Not Run)\n")
        self.assertEqual(status, 1)
        self.assertEqual(lines[1:4], ["failed: mingw-debug grid_test: it crashed: SEGFAULT",
                                      "failed: mingw-debug silent_test: it ended without results",
                                      "failed: mingw-debug gone_test: it could not be started"])

    def test_a_program_without_results_is_told_with_the_last_line_it_wrote(self):
        self.put("ctest.junit", '<testsuite><testcase name="icons_test" time="1" status="fail"><system-out>'
                                'Running main()\nunder_wine: icons_test.exe ended with status 5.%s\n\n</system-out>'
                                '</testcase></testsuite>' % ("." * 300))
        done = subprocess.run([sys.executable, SCRIPT, os.path.join(self.folder, "ctest.junit")], capture_output=True,
                              text=True, check=False)
        said = "under_wine: icons_test.exe ended with status 5.".ljust(200, ".")
        self.assertIn(f"icons_test: it ended without results, after '{said}'\n", done.stdout)

    def test_former_results_of_a_program_that_could_not_be_started_do_not_count(self):
        self.put("panel_test.xml", gtest(3, 0))
        self.assertEqual(self.lines([("panel_test", 0, "notrun")])[1][-1], "0 passed, 1 failed")

    def test_a_run_of_nothing_fails(self):
        self.assertEqual(self.lines([])[0], 1)


if __name__ == "__main__":
    unittest.main()
