"""Brushes, strokes, locked TAGs, propagation."""
from driver.scenario import scenario


@scenario(is_short=True)
def strokes_paint_and_erase(run):
    """A click paints the brush's pixels, a drag a stroke, the right button erases; undo takes it all back."""
    app = run.start(run.image())
    app.click("Brush", "Brush 7")
    app.expect("a click picks a brush", brush_cur=6)
    app.key("bracketleft", "bracketleft", "bracketleft")
    app.expect("[ makes the brush smaller", brush_cur=3)
    app.click_image(50, 80)
    state = app.expect("one click paints exactly the brush's pixels", lambda s: s.count(1) == s.brush_pixels)
    app.stroke((30, 45), (70, 45))
    state = app.expect("a stroke paints", lambda s: s.count(1) > 2 * s.brush_pixels)
    painted = state.count(1)
    app.click_image(50, 45, button=3)
    erased = app.expect("the right button erases", lambda s: s.count(1) < painted).count(1)
    app.key("ctrl+z")
    app.expect("undo takes the whole erasing back", lambda s: s.count(1) == painted)
    app.key("ctrl+y")
    app.expect("redo erases again", lambda s: s.count(1) == erased)


@scenario(is_short=True)
def a_locked_tag_is_not_painted_over(run):
    """What is locked stays; beside it another TAG paints. Ctrl and a click pick the TAG under the pointer."""
    app = run.start(run.image())
    app.click("Brush", "Brush 4")
    app.stroke((30, 45), (70, 45))
    painted = app.expect("TAG 1 is painted", lambda s: s.count(1) > 0).count(1)
    app.key("l", "2")
    app.click_image(50, 45)
    app.expect("a locked TAG is not painted over", lambda s: s.count(1) == painted and s.tag_cur == 2)
    app.click_image(50, 80)
    app.expect("another TAG paints beside it", lambda s: s.count(2) > 0 and s.count(1) == painted)
    app.click_image(40, 45, held="ctrl")
    app.expect("Ctrl + click picks the TAG under the pointer", tag_cur=1)
    app.key("l")
    app.expect("L unlocks the TAG", tag_lock=0)
    app.key("2")
    app.click_image(50, 45)
    app.expect("unlocked, it is painted over", lambda s: s.count(1) < painted)


@scenario()
def painting_is_seen_in_the_brain(run):
    """A stroke over the sample brain; pictures of the manual."""
    app = run.start(run.brain(of_brain_only=False))
    run.shot("start", " - Workbench")
    app.click("Brush", "Brush 5")
    app.stroke((35, 45), (60, 45))
    app.expect("a stroke paints", lambda s: s.count(1) > s.brush_pixels)
    app.move(*app.in_image(35, 45))
    run.shot("painting", " - Workbench")


@scenario()
def tags_propagate_to_the_next_frames(run):
    """Up grows or copies TAGs into the next frame, repeat goes on; Down goes back."""
    app = run.start(run.brain(of_brain_only=False))
    first = app.state().slice
    app.stroke((40, 45), (60, 45))
    app.click("Frames", "Up")
    app.expect("Up goes to the next frame", slice=first + 1)
    app.expect("grow carries TAGs there", lambda s: s.slice_pixels > 0)
    run.shot("grow", " - Workbench")
    app.key("c")
    before = app.state().slice_pixels
    app.click("Frames", "Up")
    app.expect("copy carries exactly the same pixels", slice=first + 2, slice_pixels=before)
    app.key("ctrl+z")
    app.expect("undo takes a propagation back", slice_pixels=0)
    app.key("ctrl+y", "w", "ctrl+r")
    app.fill("Repeat propagation", "4")
    app.expect("repeat goes four frames on", slice=first + 6)
    app.expect("the last frame has TAGs", lambda s: s.slice_pixels > 0)
    run.shot("repeated", " - Workbench")
    app.click("Frames", "Down")
    app.expect("Down goes to the frame before", slice=first + 5)


@scenario(is_short=True)
def slices_and_the_grey_window_follow_mouse_and_keys(run):
    """The wheel, Page Down and the slider go through the slices; a middle drag changes the window, R resets it."""
    app = run.start(run.image())
    first = app.state().slice
    app.wheel(2, app.in_image(50, 50))
    app.expect("the wheel over the image steps slices", slice=first + 2)
    app.key("Page_Down")
    app.expect("Page Down steps back", slice=first + 1)
    app.key("End")
    app.expect("End goes to the last slice", slice=29)
    app.click("Image: head.nii: 60 × 50 × 30", x=0.993)
    state = app.expect("the slider goes to the middle slice", lambda s: abs(s.slice - 15) <= 1)
    low, high = state.window_low_x100, state.window_high_x100
    app.drag(app.in_image(50, 50), app.in_image(40, 60), button=2)
    app.expect("a middle drag changes the window", lambda s: s.window_high_x100 != high)
    run.shot("window", " - Workbench")
    app.key("r")
    app.expect("R resets the window", window_low_x100=low, window_high_x100=high)
    app.key("F6")
    app.expect("F6 shows 200 %", lambda s: s.slice_place["scale_x"] == 2)
    app.key("F7")
    app.expect("F7 lets it fit", lambda s: s.slice_place["scale_x"] > 2)


@scenario(is_short=True)
def markers_are_placed_moved_and_named(run):
    """In marker mode a click places the marker, a drag moves it, a right click in its panel names it."""
    app = run.start(run.image())
    app.click("Markers", "M3")
    app.expect("a click picks a marker", marker_cur=2)
    app.key("m")
    app.click_image(50, 30)
    state = app.expect("a click in the image places it", lambda s: s.marker(2) is not None)
    run.same("in the shown slice", state.marker(2)[2], state.slice)
    place = state.marker(2)
    app.stroke((50, 30), (65, 40))
    app.expect("a drag moves it", lambda s: s.marker(2) != place)
    app.key("ctrl+z")
    app.expect("undo moves it back", lambda s: s.marker(2) == place)
    app.click("Markers", "M3", button=3)
    app.type("Genu")
    app.key("Return", "m")
    app.expect("a right click names it", marker_label="Genu")
    run.shot("markers", " - Workbench")
