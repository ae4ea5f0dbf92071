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


@scenario(is_short=True)
def a_click_fills_by_the_band(run):
    """In the picture that is clicked, or in space, where the scope and the neighbours say so; SciPy finds the same."""
    numpy, scipy, _ = witnesses()
    image, _ = ct(run)
    greys = saved(image)
    app = run.start(image)
    band(app, 1, 100, 280)
    app.key("at")
    told(app, "A click fills in the picture")
    shown = app.state().slice
    app.click_image(69, 50)
    mask = (greys >= 100) & (greys <= 280)
    regions, nb = scipy.ndimage.label(mask[:, :, shown])
    sizes = numpy.bincount(regions.ravel(), minlength=nb + 1)[1:]
    app.expect("the organ in the shown slice has the TAG", lambda s: s.count(1) == max(sizes), undo_nb=2 + 1)
    app.key("ctrl+z", "question")
    app.click_image(69, 50)
    regions, nb = scipy.ndimage.label(mask)
    sizes = numpy.bincount(regions.ravel(), minlength=nb + 1)[1:]
    app.expect("in space all of it has", lambda s: s.count(1) == max(sizes))
    app.key("ctrl+z", "colon")
    app.click_image(69, 50)
    regions, nb = scipy.ndimage.label(mask, numpy.ones((3, 3, 3)))
    sizes = numpy.bincount(regions.ravel(), minlength=nb + 1)[1:]
    app.expect("over corners, too", lambda s: s.count(1) == max(sizes))


@scenario(is_short=True)
def a_region_is_grown_and_taken_over(run):
    """It is seen while the tolerance changes; Escape drops it, Enter takes it over as one step."""
    image, _ = ct(run)
    app = run.start(image)
    app.key("1", "numbersign")
    app.click_image(69, 50)
    told(app, "Growing .* by a tolerance of 10: .*")
    for _ in range(12):
        app.key("bracketright")
    told(app, "Growing .* by a tolerance of [2-9][0-9]: [0-9]+ voxels.*")
    app.expect("nothing has changed yet", counts={}, undo_nb=0)
    run.shot("tool_growth", " - Workbench")
    app.key("Escape")
    told(app, "The region was dropped: nothing has changed")
    app.click_image(69, 50)
    app.drag(app.in_image(69, 50), app.in_image(90, 50))
    line = told(app, "Growing .* by a tolerance of [0-9]{2,}: [0-9]+ voxels.*")
    app.key("Return")
    app.expect("Enter takes it over as one step", lambda s: s.count(1) > 100, undo_nb=1)
    run.note(str(line))
    app.key("ctrl+z")
    app.expect("undo takes it back", counts={})


@scenario(is_short=True)
def polygons_and_lassos_paint_and_erase(run):
    """A polygon by four clicks in the slice, one in the coronal picture, a lasso that erases."""
    image, _ = ct(run)
    app = run.start(image)
    app.key("dollar")
    for corner in ((25, 25), (75, 25), (75, 75), (25, 75)):
        app.click_image(*corner)
    app.move(*app.in_image(50, 90))
    run.shot("tool_polygon", " - Workbench")
    app.key("Return")
    state = app.expect("Enter paints the inside", lambda s: abs(s.count(1) - 48 * 48) <= 150, undo_nb=1)
    square = state.count(1)
    app.click_image(10, 10)
    app.key("Escape")
    app.key("percent")
    app.drag(app.in_image(40, 40), app.in_image(60, 60), button=3)
    app.expect("a lasso that is only a line erases nothing", lambda s: s.count(1) == square)
    app.key("dollar")
    for corner in ((40, 40), (60, 40), (50, 60)):
        app.click_image(*corner, button=3)
    app.key("Return")
    app.expect("the right button erases", lambda s: 0 < s.count(1) < square, undo_nb=2)
    app.key("ctrl+z", "ctrl+z", "y")
    app.expect("undo takes both back", counts={}, planes=1)
    for corner in ((30, 30), (60, 30), (60, 60)):
        app.click_image(*corner, plane=0)
    app.key("Return")
    state = app.expect("in the coronal picture, too, as one step", lambda s: s.count(1) > 50, undo_nb=1)
    run.check("through many slices", state.slice_pixels < state.count(1) / 4)


@scenario(is_short=True)
def distances_and_angles_are_true(run):
    """In the slice, and in a coronal picture where a pixel is twice as high as wide."""
    image, _ = ct(run)
    app = run.start(image)
    app.key("quotedbl")
    app.click_image(20, 30)
    app.click_image(70, 30)
    told(app, "Distance: 4[78][.][0-9] mm")
    app.key("y")
    app.expect("Y shows two more planes", planes=1)
    app.click_image(50, 25, plane=0)
    app.click_image(50, 75, plane=0)
    told(app, "Distance: (39|40)[.][0-9] mm")
    app.key("apostrophe")
    app.click_image(70, 60)
    app.click_image(30, 60)
    app.click_image(30, 90)
    told(app, "Angle: (89|90)[.][0-9].*")
    run.shot("tool_measure", " - Workbench")
    state = app.expect("they are no part of the labels' history", counts={}, undo_nb=0)
    run.same("three measurements", len(state.measurements), 3)
    app.click_image(70, 30, button=3)
    app.expect("the right button removes one", lambda s: len(s.measurements) == 2)
    app.menu("Remove all measurements")
    app.expect("the menu removes all", lambda s: not s.measurements)


@scenario(is_short=True)
def a_distance_through_slices_is_dashed(run):
    """From one slice to another: told in space, drawn dashed in both and between them, and in no other."""
    image, _ = ct(run)
    app = run.start(image)
    app.key("quotedbl")
    app.click_image(30, 30)
    app.key(*["Page_Up"] * 6)
    app.click_image(70, 60)
    width = app.state().slice_place["width"]
    mm = ((0.4 * width * SPACING[0]) ** 2 + (0.3 * width * SPACING[1]) ** 2 + (6 * SPACING[2]) ** 2) ** 0.5
    state = app.expect("the distance is that in space",
                       lambda s: s.measurements and abs(float(s.measurements[0].split()[0]) - mm) < 0.6)
    app.key(*["Page_Down"] * 3, "y")
    state = app.expect("a slice between", slice=state.slice - 3, planes=1)
    app.move(state.box("tag").left + 5, state.box("tag").top + 5)
    run.shot("tool_measure_dashed", " - Workbench")
    image_place = state.places["image"]["place"]
    drawn = run.screen.sum(image_place)
    app.menu("Remove all measurements")
    app.expect("no measurement is left", measurements=[])
    run.check("it was drawn there", run.screen.sum(image_place) != drawn)
