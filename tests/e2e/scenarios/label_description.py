"""What is kept beside the labels: names, colours, thresholds, states and markers, in a text of lines."""
from driver.scenario import scenario


def description(labels):
    return labels.with_name(labels.name.replace(".nii.gz", ".labels.txt"))


def line_of(labels, start):
    """The rest of the line that begins so: "tag 2"."""
    lines = description(labels).read_text("utf-8").splitlines()
    return next((line[len(start) + 1:] for line in lines if line.startswith(start + " ")), None)


def name_tag(app, name):
    app.key("F2")
    return app.fill(app.dialog(), name)


def labelled(run):
    """Labels of a stroke; TAG 5 has a name, and is called Deep "grey". Returns image and labels."""
    image, labels = run.image(), run.folder / "kept.nii.gz"
    app = run.start(image, labels=labels)
    app.stroke((40, 45), (60, 45))
    app.key("5")
    name_tag(app, 'Deep "grey"')
    app.expect("the TAG has its name", tag_label='Deep "grey"')
    app.key("ctrl+s")
    app.expect("the labels are saved", unsaved=0)
    app.end()
    return image, labels


@scenario(is_short=True)
def names_and_markers_are_kept_beside_the_labels(run):
    """The next start knows the TAG's name and the marker with its place; loading is no unsaved work."""
    image, labels = run.image(), run.folder / "kept.nii.gz"
    app = run.start(image, labels=labels)
    app.key("2")
    name_tag(app, "Tissue")
    app.click("Markers", "M3")
    app.key("m")
    app.click_image(50, 30)
    app.click("Markers", "M3", button=3)
    app.type("Genu")
    app.key("Return", "m")
    place = app.expect("the marker is named", marker_label="Genu").marker(2)
    app.key("ctrl+s")
    app.expect("all is saved", unsaved=0)
    app.end()
    text = description(labels).read_text("utf-8")
    run.same("the description stands beside the labels", text.splitlines()[0], "label description 1")
    run.check("it names the TAG", line_of(labels, "tag 2").endswith('"Tissue"'))
    run.check("and the marker", line_of(labels, "marker 2").endswith('"Genu"'))
    app = run.start(image, labels=labels)
    app.key("2")
    app.click("Markers", "Genu")
    app.expect("the next start knows the TAG's name", tag_label="Tissue")
    app.expect("the marker's name", marker_label="Genu")
    app.expect("and the marker's place", lambda s: s.marker(2) == place)
    app.expect("loading is no unsaved work", unsaved=0, undo_nb=0)


@scenario()
def thresholds_and_states_of_a_tag_are_kept(run):
    """A name and a threshold are unsaved work; name, threshold and state come back."""
    image, labels = run.image(), run.folder / "kept.nii.gz"
    app = run.start(image, labels=labels)
    app.key("5", "t")
    app.click_tag(5, button=3)
    app.type("40")
    app.key("Return", "t", "e", "s", "l")
    name_tag(app, 'Deep "grey"')
    app.expect("a name and a threshold are unsaved work", unsaved=1, undo_nb=2)
    app.key("ctrl+s")
    app.expect("saved", unsaved=0)
    run.same("with the state of the TAG", line_of(labels, "tag 5").split(" ", 1)[1], '0 0 1 40 - "Deep \\"grey\\""')
    app.end()
    app = run.start(image, labels=labels)
    app.key("5")
    app.expect("name, threshold and state come back", tag_label='Deep "grey"', threshold_min=40, tag_enable=0,
               tag_select=0, tag_lock=1)
    run.shot("labels_restored", " - Workbench")


@scenario()
def changed_colours_are_kept(run):
    """Changed colours are unsaved work; closing asks, Yes saves them, and they come back."""
    image, labels = labelled(run)
    before = description(labels).read_text("utf-8").splitlines()
    app = run.start(image, labels=labels)
    app.menu("Check TAG colours")
    app.answer_key("TAG colours", "alt+h")
    app.expect("changed colours are unsaved work", unsaved=1, undo_nb=1)
    app.key("ctrl+q")
    app.window("Unsaved work")
    run.check("and closing asks", not app.said("closed"))
    run.shot("labels_unsaved")
    app.answer_key("Unsaved work", "alt+y")
    app.wait_ended()
    after = description(labels).read_text("utf-8").splitlines()
    recolored = [line.split() for line, old in zip(after, before) if line.split()[:3] != old.split()[:3]]
    run.check("Yes saves them", recolored)
    _, tag, color = recolored[0][:3]
    app = run.start(image, labels=labels)
    app.key("g")
    app.fill("Go to TAG", tag)
    app.expect("a changed colour comes back", lambda s: f"#{s.tag_color:06X}" == color)


@scenario()
def a_marker_alone_is_work(run):
    """It is saved although no voxel is painted anew."""
    image, labels = labelled(run)
    app = run.start(image, labels=labels)
    app.key("m")
    app.click_image(40, 30)
    app.key("m")
    app.expect("a marker alone is unsaved work", unsaved=1)
    app.key("ctrl+s")
    app.expect("and is saved", unsaved=0)
    run.check("in the description", line_of(labels, "marker 0") is not None)


@scenario()
def lines_that_mean_nothing_are_told(run):
    """The other lines count; the damaged file is kept; a name of other letters stays as it is."""
    image, labels = labelled(run)
    text = description(labels).read_text("utf-8") + "tag 900 nonsense\nno line at all\n"
    old = line_of(labels, "tag 6")
    text = text.replace(f"tag 6 {old}", f"tag 6 {old[:old.index(chr(34))]}\"Größe 肝\"")
    description(labels).write_text(text, "utf-8")
    app = run.start(image, labels=labels)
    app.wait_said("warning kept.labels.txt: 2 lines were left out; the first is line")
    run.check("lines that are not understood are told", True)
    app.key("5")
    app.expect("the others count", tag_label='Deep "grey"')
    run.shot("labels_damaged", " - Workbench")
    app.key("Escape", "ctrl+s")
    kept = description(labels).with_name("kept.labels.txt.damaged")
    app.expect("the damaged file is kept", lambda s: kept.exists() and kept.read_text("utf-8") == text)
    app.expect("all is saved", unsaved=0)
    run.check("a name of other letters stays as it is", line_of(labels, "tag 6").endswith('"Größe 肝"'))


@scenario()
def a_description_of_a_later_version_is_not_taken(run):
    """Its voxels are, and saving keeps the file."""
    image, labels = labelled(run)
    text = description(labels).read_text("utf-8").replace("label description 1", "label description 2")
    description(labels).write_text(text, "utf-8")
    app = run.start(image, labels=labels)
    app.key("5")
    app.expect("a later version is told", lambda s: len(app.said("warning .*written by a later version")) == 1)
    app.expect("and not taken", lambda s: s.tag_cur == 5 and s.tag_label != 'Deep "grey"')
    app.expect("its voxels are", lambda s: s.count(1) > 0)
    app.key("Escape", "ctrl+s")
    kept = description(labels).with_name("kept.labels.txt.newer")
    app.expect("saving keeps it", lambda s: kept.exists() and kept.read_text("utf-8") == text)


@scenario()
def a_description_that_cannot_be_written_is_told(run):
    """The labels are saved, their names are not: the work stays unsaved."""
    image, labels = labelled(run)
    app = run.start(image, labels=labels)
    description(labels).unlink()
    description(labels).mkdir()
    app.key("5")
    name_tag(app, "Other")
    app.key("ctrl+s")
    app.wait_said("warning The labels are saved, but not their names")
    app.expect("where it cannot be written that is told, and the work is unsaved", unsaved=1)
    description(labels).rmdir()
    app.key("Escape", "ctrl+s")
    app.expect("later it can", unsaved=0)
