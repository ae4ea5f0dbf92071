"""Both hosts in C, one of the panels' compiler and one of another, do the same: c_hosts_test.py ROOT BIN_FOLDER HOST ...
And the programs that the guide shows can be built.

Each gets a slice of the sample brain, picks and renames a TAG by messages to the panel's window, and prints the peaks.
"""
import gzip
import os
import re
import subprocess
import sys
import tempfile

SAMPLE = "/usr/share/mricron/templates/ch2.nii.gz"
WIDTH, HEIGHT, SLICE, HEADER = 181, 217, 90, 352
# What the reader of a block has already.
PRELUDE = """#include "kit_panels.h"
int32_t On_Event(void* context, const kit_event* event);
void Block(void* window);
"""


def blocks(root, page):
    with open(os.path.join(root, page), encoding="utf-8") as file:
        return re.findall(r"```c\n(.*?)```", file.read(), re.DOTALL)


def build(root, work, program, *what):
    """As C and as C++."""
    source = os.path.join(work, "guide.c")
    with open(source, "w", encoding="utf-8") as file:
        file.write(program)
    for compiler in ["x86_64-w64-mingw32-gcc", "-std=c11"], ["x86_64-w64-mingw32-g++", "-xc++", "-std=c++20"]:
        subprocess.run([*compiler, "-Wall", "-Wextra", "-Werror", "-I", os.path.join(root, "c_interface"), source, "-xnone", *what,
                        "-o", os.path.join(work, "guide.exe")], check=True)


def guide_builds(root, folder, work):
    """The program of the page for C, copied from it, is built as the page says; what the page before it shows compiles."""
    build(root, work, blocks(root, "docs/languages/c.md")[0], os.path.join(folder, "../lib/libkit_panels_c.dll.a"))
    shown = blocks(root, "docs/c_interface.md")
    assert shown, "docs/c_interface.md shows no C"
    for block in shown:
        build(root, work, PRELUDE + "void Block(void* window) {\n" + block + "}\n", "-c", "-Wno-missing-field-initializers")


def main():
    root, folder = sys.argv[1:3]
    with gzip.open(SAMPLE) as file:
        volume = file.read()
    size = WIDTH * HEIGHT
    said = {}
    with tempfile.TemporaryDirectory(dir=folder) as work:
        guide_builds(root, folder, work)
        path = os.path.join(work, "slice.raw")
        with open(path, "wb") as file:
            file.write(volume[HEADER + SLICE * size:HEADER + (SLICE + 1) * size])
        for host in sys.argv[3:]:
            run = subprocess.run([os.path.join(root, "scripts/under_wine"), "./" + host,
                                  os.path.relpath(path, folder).replace("/", "\\"), str(WIDTH), str(HEIGHT)],
                                 cwd=folder, stdout=subprocess.PIPE, text=True, timeout=600, check=False)
            said[host] = run.stdout
            print(host, run.returncode, run.stdout, sep="\n")
            assert run.returncode == 0, "%s ended with %d" % (host, run.returncode)
    for host, text in said.items():
        assert "picked 2\n" in text, "%s: the click picked nothing" % host
        assert "TAG 2 is called Grey matter\n" in text, "%s: the new label did not come back" % host
        centres = [float(centre) for centre in re.findall(r"^peak at ([\d.]+),", text, re.MULTILINE)]
        # The tissue of the brain; the mean grey level of what is not air lies there.
        assert any(90 < centre < 130 for centre in centres), "%s: no peak at the tissue: %s" % (host, centres)
        assert text == next(iter(said.values())), "%s says something else" % host


if __name__ == "__main__":
    main()
