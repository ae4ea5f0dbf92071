"""The tools in the image: brushes in the band and as balls, fills, growing, polygons, measurements."""
from driver.scenario import scenario
from scenarios.segment import band, ct, saved, SPACING, told, witnesses


def radius(pixels):
    """Of the disc that has so many pixels: those nearer than it to the middle."""
    for wanted in range(1, 60):
        reach = range(1 - wanted, wanted)
        if sum(x * x + y * y < wanted * wanted for x in reach for y in reach) == pixels:
            return wanted
    return 1 if pixels == 1 else None


@scenario(is_short=True)
def the_brush_keeps_to_the_band(run):
    """Only voxels whose grey value the TAG claims are painted, in the slices and in another plane; one step each."""
    numpy, _, _ = witnesses()
    image, _ = ct(run)
    greys = saved(image)
    labels = run.folder / "labels.nii.gz"
    app = run.start(image, labels=labels)
    band(app, 1, 100, 280)
    app.click("Brush", "Brush 7")
    app.key("backslash")
    told(app, "The brush paints only within the band")
    app.move(*app.in_image(52, 40))
    run.shot("tool_band", " - Workbench")
    app.stroke((20, 40), (60, 40))
    steps = app.expect("a stroke paints", lambda s: s.count(1) > 50).undo_nb
    app.key("y")
    app.expect("Y shows two more planes", planes=1)
    app.stroke((30, 40), (40, 60), plane=0)
    painted = app.expect("so it does in the coronal picture, as one step", lambda s: s.undo_nb == steps + 1).count(1)
    app.key("ctrl+s")
    app.expect("saving leaves nothing unsaved", unsaved=0)
    there = saved(labels) == 1
    run.same("the file holds what was painted", int(numpy.count_nonzero(there)), painted)
    run.check("and only voxels of the band", bool(numpy.all((greys[there] >= 100) & (greys[there] <= 280))))
    app.key("ctrl+z", "ctrl+z")
    app.expect("undo takes both back", counts={})


@scenario(is_short=True)
def a_ball_is_round_in_millimetres(run):
    """Its voxels are those nearer than the brush's radius, whatever the distance of the slices."""
    image, _ = ct(run)
    app = run.start(image)
    app.click("Brush", "Brush 4")
    reach = radius(app.state().brush_pixels)
    app.key("bar", "equal")
    told(app, f"The brush reaches {reach} mm")
    app.click_image(50, 50)
    steps = [range(-reach, reach + 1)] * 3
    expected = sum((x * SPACING[0]) ** 2 + (y * SPACING[1]) ** 2 + (z * SPACING[2]) ** 2 < reach ** 2
                   for x in steps[0] for y in steps[1] for z in steps[2])
    state = app.expect("one click paints the ball", lambda s: s.count(1) == expected)
    run.check("beyond the shown slice", state.slice_pixels < expected)
    run.same("in one step", state.undo_nb, 1)
    app.key("y")
    app.expect("Y shows two more planes", planes=1)
    run.shot("tool_ball", " - Workbench")
    app.key("ctrl+z")
    app.expect("undo takes it back", counts={})
