"""Times SciPy's operations on labels beside ours; scripts/compare_labels calls it.

compare_labels.py PROGRAM PAGE: the table goes to the standard output and between its marks on the page.
"""

import pathlib
import subprocess
import sys
import tempfile
import time

import numpy
import scipy
from scipy import ndimage

SHAPE = (100, 160, 160)  # slices, rows, columns
SPACING = (2.0, 1.0, 1.0)  # mm
ROUNDS = 3
TITLES = {
    "label": "Regions (`ndimage.label`)",
    "holes": "Holes filled in space (`binary_fill_holes`)",
    "erosion": "Shrunk by 1 voxel (`binary_erosion`)",
    "dilation": "Grown by 1 voxel (`binary_dilation`)",
    "dilation_3": "Grown by 3 voxels (`binary_dilation`, a ball)",
    "distance": "Distances in mm (`distance_transform_edt`)",
    "bands": "Band of one TAG applied (beside copying the levels)",
}


def head():
    """A head of three tissues with noise, in air: levels, and a mask with holes and loose voxels."""
    z, y, x = numpy.ogrid[: SHAPE[0], : SHAPE[1], : SHAPE[2]]
    radius = sum(((at - n // 2) / (0.45 * n)) ** 2 for at, n in zip((z, y, x), SHAPE))
    levels = numpy.select([radius > 1.0, radius > 0.5, radius > 0.1], [0, 600, 900], 300).astype(numpy.int32)
    levels += numpy.random.default_rng(1).integers(0, 64, SHAPE, dtype=numpy.int32)
    return levels, ((levels >= 600) & (levels <= 655)).astype(numpy.uint8)


def least(operation):
    """The least time of some rounds in ms, and the last result."""
    times = []
    for _ in range(ROUNDS):
        start = time.perf_counter()
        result = operation()
        times.append((time.perf_counter() - start) * 1e3)
    return min(times), result


def scipy_times(levels, mask):
    """By operation: milliseconds, and the figure of the result that ours tells too."""
    on = mask.astype(bool)
    reach = numpy.arange(-3, 4)
    ball = sum(numpy.meshgrid(reach**2, reach**2, reach**2)) <= 9
    figures = {
        "label": lambda: ndimage.label(on),
        "holes": lambda: ndimage.binary_fill_holes(on),
        "erosion": lambda: ndimage.binary_erosion(on, border_value=1),
        "dilation": lambda: ndimage.binary_dilation(on),
        "dilation_3": lambda: ndimage.binary_dilation(on, ball),
        "distance": lambda: ndimage.distance_transform_edt(on, SPACING),
        "bands": lambda: (levels >= 600) & (levels <= 655),
    }
    found = {}
    for name, operation in figures.items():
        milliseconds, result = least(operation)
        if name == "label":
            figure = result[1]
        elif name == "distance":
            figure = float(result.ravel()[::97].sum())
        elif name == "erosion":  # ours tells what lies within reach of the outside
            figure = on.size - int(result.sum())
        else:
            figure = int(result.sum())
        found[name] = (milliseconds, figure)
    return found


def our_times(program, file):
    words = [program, file, *(str(n) for n in reversed(SHAPE)), str(ROUNDS)]
    lines = subprocess.run(words, check=True, capture_output=True, text=True).stdout.splitlines()
    return {line.split()[0]: [float(word) for word in line.split()[1:]] for line in lines}


def machine():
    model = [line for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines() if line.startswith("model name")]
    return model[0].split(": ")[1] if model else "an unnamed processor"


def main():
    program, page = sys.argv[1], pathlib.Path(sys.argv[2])
    levels, mask = head()
    with tempfile.NamedTemporaryFile() as file:
        levels.tofile(file)
        mask.tofile(file)
        file.flush()
        ours = our_times(program, file.name)
        theirs = scipy_times(levels, mask)
        # Ours before and after, so that a machine that became busy meanwhile is not taken for a slow program.
        for name, again in our_times(program, file.name).items():
            ours[name] = [min(ours[name][0], again[0]), min(ours[name][1], again[1]), again[2]]
    good = True
    table = [
        f"Native release build on one core of {machine()}, SciPy {scipy.__version__}, {SHAPE[2]} x {SHAPE[1]} x {SHAPE[0]} voxels; least of "
        f"{2 * ROUNDS} rounds, SciPy {ROUNDS}.",
        "",
        "| Operation | SciPy, ms | Plain loop, ms | Ours, ms | Times as fast as SciPy | Result |",
        "|---|---|---|---|---|---|",
    ]
    for name, title in TITLES.items():
        milliseconds, plain, figure = ours[name]
        scipy_ms, expected = theirs[name]
        same = abs(figure - expected) <= 1e-6 * abs(expected)
        good = good and same and milliseconds <= scipy_ms
        if name == "bands":  # beside copying, which keeps nothing for a history
            good = good and milliseconds <= 3 * plain
        plain_text = f"{plain:.1f}" if plain >= 0 else "-"
        table.append(
            f"| {title} | {scipy_ms:.1f} | {plain_text} | {milliseconds:.1f} | {scipy_ms / milliseconds:.1f} | {'same' if same else 'DIFFERS'} |"
        )
    text = "\n".join(table) + "\n"
    print(text, end="")
    begin, end = "<!-- compare_labels: begin -->\n", "<!-- compare_labels: end -->\n"
    before, rest = page.read_text().split(begin)
    page.write_text(before + begin + text + end + rest.split(end)[1])
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
