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
