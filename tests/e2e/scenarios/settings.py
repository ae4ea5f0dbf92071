"""What is kept from one start to the next; scales of the screen."""
from driver.scenario import scenario
from scenarios.keyboard import start_aside


@scenario()
def theme_place_and_files_are_kept(run):
    """The settings are a readable file: theme, the window's place, the database, the file opened lately."""
    app = start_aside(run, run.image())
    run.shot("dark", " - Workbench")
    app.key("F8")
    app.expect("F8 is the light theme", light=1)
    app.key("F3")
    app.place(" - Workbench", 60, 70, 1210, 790)
    place = app.state().places["window"]
    app.end()
    text = run.settings.read_text()
    run.check("the settings are a readable file", "\ntheme light" in "\n" + text, text)
    app = start_aside(run)
    app.expect("the theme is kept", light=1)
    app.expect("the window's place is kept", lambda s: s.places["window"] == place)
    app.expect("the database is kept", lambda s: s.is_shown("database"))
    app.expect("the file opened lately is kept", recent_nb=1)
    app.key("alt+f")
    app.wait("a menu", lambda s: s.is_in_menu)
    run.shot("recent")
    app.key("1")
    app.expect("1 in the File menu opens it again", slice_nb=30)


@scenario()
def a_damaged_settings_file_is_no_disaster(run):
    """What is damaged is counted; the program starts as if it were the first time."""
    run.settings.write_bytes(b"theme lig\0\377\nwindow 99999999 1\nrecent \n\n")
    app = start_aside(run)
    app.expect("a damaged settings file is no disaster", light=0)
    run.same("and what is damaged is counted", app.said("settings_ignored"), ["settings_ignored 3"])
    run.same("it closes with status 0", app.end(), 0)


def at_scale(run, percent):
    run.screen_scale(percent)
    app = start_aside(run, run.brain(of_brain_only=False))
    app.expect(f"{percent} %: the workbench follows the screen", scale_x100=percent)
    run.shot(f"scaling_{percent}", " - Workbench")
    app.key("Tab", "Tab", "Tab", "Tab", "Tab", "Tab")
    app.expect(f"{percent} %: the marked panel is scrolled into view",
               lambda s: s.focus == 5 and s.box("histogram").top + s.box("histogram").height <= 1000)
    run.shot(f"scaling_{percent}_histogram", " - Workbench")
    app.key("g")
    app.window("Go to TAG")
    run.shot(f"scaling_{percent}_prompt")
    app.answer_key("Go to TAG", "Escape")
    app.key("F3")
    app.expect(f"{percent} %: the database is shown", lambda s: s.is_shown("database"))
    run.shot(f"scaling_{percent}_database", " - Workbench")
    app.key("F4")
    app.window("Peak analysis")
    run.shot(f"scaling_{percent}_analysis")
    app.close("Peak analysis", "Escape")
    app.key("F1")
    app.wait("the list of keys", lambda s: len(s.windows) == 2)
    run.shot(f"scaling_{percent}_keys")
    app.key("Escape")
    app.wait("only the main window", lambda s: len(s.windows) == 1)
    run.same(f"{percent} %: it closes with status 0", app.end(), 0)


@scenario()
def the_workbench_follows_a_screen_of_150_percent(run):
    """Everything is larger; the marked panel is scrolled into view."""
    at_scale(run, 150)


@scenario()
def the_workbench_follows_a_screen_of_200_percent(run):
    """Everything is twice as large; the marked panel is scrolled into view."""
    at_scale(run, 200)
