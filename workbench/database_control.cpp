#include "workbench/database_control.h"

#include <algorithm>
#include <utility>

#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int WIDTH_FIRST = 380;
constexpr int IMAGE_WIDTH_LEAST = 200;
constexpr int WIDTH_STEP = 40;  // of the column, pixels at 96 dots per inch

}  // namespace

Database_Control::Database_Control(Database_Parts parts)
    : of(std::move(parts)),
      history({[](const char* text) { return Utf8_Of_Wide(Wide_Of_Panel(text)); },
               [](const std::string& text) { return Panel_Of_Wide(Wide_Of_Utf8(text)); }}),
      pane(of.look, Services()) {}

void Database_Control::Begin() {
    classes.emplace();
    history.Begin(classes->Root_1D(), classes->Root_3D());
}

int Database_Control::Width(int room) const {
    // The editor's diagram needs the image's room.
    const int wanted = width > 0 ? width : of.look.Px(WIDTH_FIRST);
    const int most = std::max(room - of.look.Px(IMAGE_WIDTH_LEAST), std::min(room, of.look.Px(DATABASE_WIDTH_LEAST)));
    return pane.Is_Editor() ? room : std::min(wanted, most);
}

bool Database_Control::Take_Request(unsigned __int64 asked) {
    flags |= events > 0 ? asked : 0;
    return events > 0;
}

bool Database_Control::Take_Frame(Quorel_2D* wanted) {
    frame = events > 0 ? wanted : frame;
    return events > 0;
}

Database_Host Database_Control::Services() {
    Database_Host services;
    services.run = [this](const std::function<void()>& event) { Run(event); };
    services.may_remove = [this](const std::string& name) { return May_Remove(name); };
    services.width_set = [this](int wanted) {
        width = wanted;
        of.lay_out();
    };
    services.changed = of.lay_out;
    services.origin_of = [this](const void* record) { return of.objects.Origin_Of(record); };
    return services;
}

void Database_Control::Database_Find() {
    Database_Show(true);
    pane.Find_Begin();
}

void Database_Control::Database_View_Set(int view) {
    Database_Show(true);
    pane.View_Set(static_cast<Database_View>(view));
}

void Database_Control::Database_Width_Step(int step) {
    Database_Show(true);
    width = std::max<int>(static_cast<int>(pane.Client().right) + step * of.look.Px(WIDTH_STEP),
                          of.look.Px(DATABASE_WIDTH_LEAST));
    of.lay_out();
}

void Database_Control::Database_Expand_All(bool open) {
    Database_Show(true);
    pane.Expand_All(open);
}

void Database_Control::Database_Editor_Set(bool on) {
    Database_Show(true);
    pane.Editor_Set(on);
}

void Database_Control::Database_Show(bool shown) {
    if (pane.Is_Shown() == shown) {
        return;
    }
    pane.Show(shown);
    of.lay_out();
    pane.Lay_Out();
}

void Database_Control::Run(const std::function<void()>& event) {
    ++events;
    try {
        event();
    } catch (...) {
        --events;
        throw;
    }
    if (--events > 0) {
        return;
    }
    Quorel_2D* wanted = std::exchange(frame, nullptr);
    const unsigned __int64 asked = std::exchange(flags, 0);
    if (Has_Any(asked, UPDATE_STRUCTURE)) {
        Note();
    }
    if (Has_All(asked, UPDATE_SELECTION | UPDATE_LEVEL_2D)) {
        of.checked();
        wanted = wanted != nullptr ? wanted : of.objects.Selected_Frame();  // the file view asks for no frame
    }
    of.go(wanted);
    of.requested(asked);
}

bool Database_Control::May_Remove(const std::string& class_name) {
    return of.dialogs.Yes_No_Ask("Class tree", "Take \"" + Utf8_Of_Wide(Wide_Of_Panel(class_name.c_str())) +
                                                   "\" out of the class tree?\n\nIts children move up to its parent.");
}

void Database_Control::Opened_Tell(const std::string& found) {
    if (!found.empty()) {
        of.dialogs.Warn(found);
    }
    problem.clear();
    of.dialogs.Log("class_changes " + std::to_string(history.Journal().Done_Nb()));
}

void Database_Control::Note() {
    if (history.Note()) {
        of.dialogs.Tell("Class trees: " + history.Journal().Undo_Title());
        Save();
    }
}

void Database_Control::Save() {
    const std::string now = history.Save();
    if (!now.empty() && now != problem) {
        of.dialogs.Warn(now);  // once, not with every further step
    }
    problem = now;
}

void Database_Control::Class_Undo_Or_Redo(bool redo) {
    const std::optional<Class_Step> step = redo ? history.Redo() : history.Undo();
    if (!step) {
        of.dialogs.Tell(redo ? "There is nothing to redo in the class trees"
                             : "There is nothing to undo in the class trees");
        return;
    }
    constexpr unsigned __int64 level[CLASS_KIND_NB] = {UPDATE_LEVEL_1D, UPDATE_LEVEL_2D, UPDATE_LEVEL_3D};
    of.work.hub.Ask(UPDATE_STRUCTURE | level[static_cast<std::size_t>(step->kind)]);
    of.dialogs.Tell((redo ? "Class trees, done again: " : "Class trees, undone: ") + step->title);
    Save();
}

std::optional<std::string> Database_Control::Next_Class_Step(bool redo) const {
    const std::string title = redo ? history.Journal().Redo_Title() : history.Journal().Undo_Title();
    return title.empty() ? std::nullopt : std::optional(title);
}

bool Database_Control::May_Leave() {
    Save();
    if (!history.Is_Unsaved()) {
        return true;
    }
    const std::string why =
        problem.empty() ? "The changes of the class trees are kept beside an image, and none is open." : problem;
    return of.dialogs.Yes_No_Ask("Class tree", why + "\n\nGo on without them?");
}

}  // namespace workbench
