"""TAGs: picking, naming, thresholds, states."""
from driver.scenario import scenario


@scenario(is_short=True)
def a_tag_is_picked_and_renamed(run):
    """A click picks a TAG, a right click renames it; undo, redo and Escape do what they say."""
    app = run.start(run.image())
    state = app.expect("the volume is shown", slice_nb=30)
    run.same("the middle slice is shown first", state.slice, 15)
    run.same("the TAG count is a multiple of four", state.tag_nb % 4, 0)
    app.click("TAG", "CSF")
    app.expect("a click picks a TAG", tag_cur=3)
    app.click("TAG", "White matter", button=3)
    app.type("Tissue")
    run.shot("rename")
    app.key("Return")
    app.click("TAG", "Tissue")
    app.expect("a right click renames a TAG", tag_cur=2, tag_label="Tissue")
    app.expect("renaming is a step", undo_nb=1)
    app.key("ctrl+z")
    app.expect("undo brings the name back", tag_label="White matter")
    app.key("ctrl+y")
    app.expect("redo renames again", tag_label="Tissue")
    app.click("TAG", "Tissue", button=3)
    app.type("Nothing")
    app.key("Escape")
    app.expect("Escape gives a renaming up", tag_label="Tissue", undo_nb=1)


@scenario()
def a_threshold_is_set_in_threshold_mode(run):
    """In threshold mode the editor of a TAG sets its threshold; the mode changes nothing else."""
    app = run.start(run.brain(of_brain_only=False))
    app.move(*app.in_image(50, 50))
    app.key("t")
    app.expect("T starts the threshold mode", threshold_mode=1)
    app.click_tag(2, button=3)
    app.type("95")
    app.key("Return", "2")
    app.expect("in threshold mode the editor sets the threshold", tag_cur=2, threshold_min=95)
    run.shot("threshold", " - Workbench")
    app.key("ctrl+z", "t")
    app.expect("undo brings the threshold back", threshold_min=-100000)
    app.expect("T ends the threshold mode", threshold_mode=0)


@scenario(is_short=True)
def keys_change_the_states_of_a_tag(run):
    """E, S and L show, select and lock the TAG; digits, N and P pick one."""
    app = run.start(run.image())
    app.key("2", "e")
    app.expect("E hides the TAG", tag_cur=2, tag_enable=0)
    app.key("e", "s")
    app.expect("E shows it again", tag_enable=1)
    app.expect("S deselects it", tag_select=0)
    app.key("s", "l")
    app.expect("L locks it", tag_select=1, tag_lock=1)
    run.shot("locked", " - Workbench")
    app.key("l", "1", "n")
    app.expect("1 and N pick TAG 2", tag_cur=2, tag_lock=0)
    app.key("p")
    app.expect("P picks the one before", tag_cur=1)


@scenario()
def the_wheel_scrolls_the_tags(run):
    """TAGs that do not fit come into view with the wheel."""
    app = run.start(run.image())
    hidden = app.state()
    run.check("TAG 21 is out of view", hidden.item("TAG", "21") is None)
    app.wheel(3, app.find("TAG", "Grey matter").point())
    app.click("TAG", "21")
    app.expect("the wheel scrolls the TAGs into view", tag_cur=21)
    run.shot("scrolled", " - Workbench")


@scenario(is_short=True)
def each_volume_has_names_of_its_own(run):
    """A name, a threshold and a lock stay with their volume; a choice of the menu gives them to all."""
    app = run.start(run.image("one.nii"), run.image("two.nii"))
    first = app.expect("two images are open", volume_nb=2).volume_cur
    app.click("TAG", "White matter", button=3)
    app.type("Tissue")
    app.key("Return", "2", "l")
    app.expect("the TAG has another name and is locked", tag_label="Tissue", tag_lock=1)
    app.key("ctrl+n")
    app.expect("the other volume has its own", lambda s: s.volume_cur != first and s.tag_label == "White matter",
               tag_lock=0, undo_nb=0)
    run.shot("own_names", " - Workbench")
    app.key("ctrl+p")
    app.expect("the first has its name still", volume_cur=first, tag_label="Tissue", tag_lock=1, undo_nb=1)
    app.key("ctrl+z")
    app.expect("undo works on its own name", tag_label="White matter")
    app.key("ctrl+y")
    app.expect("and brings it back", tag_label="Tissue")
    app.menu("Names and colours for all open volumes")
    app.answer("Names and colours", "Yes")
    app.key("ctrl+n")
    app.expect("all volumes have one name now", lambda s: s.volume_cur != first, tag_label="Tissue", tag_lock=1)
