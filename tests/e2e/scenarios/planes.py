"""The three planes of a volume: what they show, the cross-hair, strokes and markers in each."""
from driver.scenario import scenario


def planes_of_the_brain(run):
    app = run.start(run.brain(of_brain_only=False))
    app.key("y")
    return app, app.expect("Y shows two more planes", planes=1)


@scenario(is_short=True)
def a_stroke_in_another_plane_is_one_step_through_many_slices(run):
    """Painted in the coronal picture, undone and redone as one step, erased in the sagittal one."""
    app, state = planes_of_the_brain(run)
    run.check("the planes are those that the slices do not lie in",
              state.plane_text_0.startswith("Coronal") and state.plane_text_1.startswith("Sagittal"))
    app.click("Brush", "Brush 5")
    app.stroke((45, 30), (45, 60), plane=0)
    state = app.expect("a stroke paints", lambda s: s.count(1) > 2 * s.brush_pixels)
    painted = state.count(1)
    run.check("the shown slice has a part of it", 0 < state.slice_pixels < painted)
    run.same("it is one step", state.undo_nb, 1)
    app.key("ctrl+z")
    app.expect("undo takes all of it back", lambda s: s.count(1) == 0)
    app.key("ctrl+y")
    app.expect("redo paints it again", lambda s: s.count(1) == painted)
    app.click_image(45, 45, held="ctrl+shift", plane=0)
    app.click_image(*share(app.state(), 1), button=3, plane=1)
    app.expect("the right button erases in the sagittal picture", lambda s: s.count(1) < painted)
    run.shot("three_planes", " - Workbench")


def share(state, plane):
    """Where the cross-hair stands in a sagittal picture of axial slices, in percent."""
    picture = getattr(state, f"plane_place_{plane}")
    return (100 * (state.cross[1] + 0.5) / picture["width"], 100 * (1 - (state.cross[2] + 0.5) / picture["height"]))


@scenario()
def the_cross_hair_ties_the_planes(run):
    """Ctrl + Shift and the left button take it along; the wheel goes through the plane under the pointer."""
    app, state = planes_of_the_brain(run)
    run.same("it begins in the middle of the slice",
             state.cross[:2], [state.slice_place["width"] // 2, state.slice_place["height"] // 2])
    app.click_image(30, 40, held="ctrl+shift")
    state = app.expect("it moves in the slice", lambda s: s.cross[:2] != state.cross[:2])
    picture = state.slice_place
    run.check("to the pixel under the pointer", abs(state.cross[0] - 0.3 * picture["width"]) <= 1
              and abs(state.cross[1] - 0.4 * picture["height"]) <= 1)
    app.click_image(50, 20, held="ctrl+shift", plane=0)
    state = app.expect("in a coronal picture it takes the slices along", lambda s: s.slice != state.slice)
    run.check("to the slice under the pointer", abs(state.slice - 0.8 * state.slice_nb) <= 2)
    before = state.cross
    app.wheel(3, app.in_image(50, 50, plane=0))
    app.expect("the wheel over a coronal picture goes to the front",
               lambda s: s.cross == [before[0], before[1] - 3, before[2]])
    app.wheel(-2, app.in_image(50, 50, plane=1))
    app.expect("over a sagittal one it goes to the side", lambda s: s.cross == [before[0] + 2, before[1] - 3, before[2]])
    app.key("i", "Right", "j")
    app.expect("J takes it to the keyboard's cursor", lambda s: s.cross == [s.cursor_x, s.cursor_y, s.slice])
    app.key("y")
    app.expect("Y hides the planes", planes=0)


@scenario()
def a_marker_is_placed_in_another_plane(run):
    """It stands in the voxel that was clicked, in all planes; the voxel under the pointer is told."""
    app, state = planes_of_the_brain(run)
    app.key("m")
    app.click_image(40, 25, plane=1)
    state = app.expect("a marker is placed", lambda s: s.marker(0) is not None)
    x, y, slice_of = state.marker(0)
    run.same("in the plane that is shown", x, state.cross[0])
    run.check("at the pixel that was clicked", abs(y - 0.4 * state.plane_place_1["width"]) <= 1
              and abs(slice_of - 0.75 * state.slice_nb) <= 2)
    run.check("the pixel under the pointer is told", str(slice_of) in state.voxel)
