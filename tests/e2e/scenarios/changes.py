"""Who is told of a change: everybody, once."""
from driver.scenario import scenario


@scenario(is_short=True)
def every_action_is_told_once(run):
    """Whatever is done, the panels, views and notes are told of it in one round."""
    app = run.start(run.image())

    def once(name, action, **expected):
        before = app.state().rounds_told
        action()
        state = app.expect(name, lambda s: s.rounds_told > before, **expected)
        run.same(f"{name}, told once", state.rounds_told - before, 1)

    app.click("Brush", "Brush 4")
    once("a click picks a TAG", lambda: app.click("TAG", "CSF"), tag_cur=3)
    once("a stroke paints", lambda: app.click_image(50, 80), undo_nb=1)
    app.key("b")
    app.expect("the histogram counts the TAG only", lambda s: s.histogram_pixels == s.count(3))
    once("a stroke is counted, too", lambda: app.click_image(50, 45), undo_nb=2)
    once("another TAG is counted", lambda: app.key("2"), tag_cur=2, histogram_pixels=0)
    once("undo", lambda: app.key("ctrl+z"), undo_nb=1)
    once("a TAG is locked", lambda: app.key("l"), tag_lock=1)
    once("the next slice", lambda: app.key("Next"))
    app.key("h")
    app.expect("the histogram follows the slice", histogram_mark="shown")
    once("the next slice is counted", lambda: app.key("Next"))
    once("the window of the grey values", lambda: app.key("r"))


@scenario()
def a_long_warning_is_read_to_its_end(run):
    """What has no room in one row goes on in the next; the image begins below."""
    app = run.start(run.image(), run.folder / ("a_file_with_a_long_name_" * 8 + ".nii"))
    state = app.expect("the warning takes more than a row", lambda s: s.is_shown("banner") and s.box("banner").height >= 54)
    banner = state.box("banner")
    run.same("the image begins below", state.box("image").top, banner.top + banner.height)
    run.shot("long_warning", " - Workbench")
    app.key("F4")
    app.window("Peak analysis")
    run.shot("peaks_dark")
    app.key("F8")
    app.expect("the light theme", light=1)
    run.shot("peaks_light")
