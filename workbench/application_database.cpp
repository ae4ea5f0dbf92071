// The database column: views, find, and the editor of the class trees.
#include <algorithm>
#include <functional>
#include <numeric>
#include <string>
#include <utility>

#include "workbench/application.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int WIDTH_STEP = 40;  // of the column, pixels at 96 dots per inch

}  // namespace

Database_Host Application::Database_Services() {
    Database_Host services;
    services.run = [this](const std::function<void()>& event) { Database_Run(event); };
    services.may_remove = [this](const std::string& name) { return May_Remove_Class(name); };
    services.width_set = [this](int width) {
        database_width = width;
        Lay_Out();
    };
    services.changed = [this] { Lay_Out(); };
    return services;
}

void Application::Database_Find() {
    Database_Show(true);
    database.Find_Begin();
}

void Application::Database_View_Set(int view) {
    Database_Show(true);
    database.View_Set(static_cast<Database_View>(view));
}

void Application::Database_Width_Step(int step) {
    Database_Show(true);
    database_width = std::max<int>(static_cast<int>(database.Client().right) + step * look.Px(WIDTH_STEP),
                                   look.Px(DATABASE_WIDTH_LEAST));
    Lay_Out();
}

void Application::Database_Expand_All(bool open) {
    Database_Show(true);
    database.Expand_All(open);
}

void Application::Database_Editor_Set(bool on) {
    Database_Show(true);
    database.Editor_Set(on);
}

bool Application::Is_Database_Editor() const {
    return database.Is_Shown() && database.Is_Editor();
}

void Application::Database_Show(bool shown) {
    if (database.Is_Shown() == shown) {
        return;
    }
    database.Show(shown);
    Lay_Out();
    database.Lay_Out();
}

void Application::Database_Run(const std::function<void()>& event) {
    ++database_events;
    try {
        event();
    } catch (...) {
        --database_events;
        throw;
    }
    if (--database_events > 0) {
        return;
    }
    Quorel_2D* frame = std::exchange(database_frame, nullptr);
    const unsigned __int64 flags = std::exchange(database_flags, 0);
    if (Has_Any(flags, UPDATE_STRUCTURE)) {
        Class_Changes_Note();
    }
    if (Has_All(flags, UPDATE_SELECTION | UPDATE_LEVEL_2D)) {
        Selection_Taken();
        frame = frame != nullptr ? frame : objects.Selected_Frame();  // the file view asks for no frame
    }
    Frame_Follow(frame);
    On_Panel_Request(flags);
}

void Application::Selection_Taken() {
    histogram.Checked_Take();
}

bool Application::May_Remove_Class(const std::string& class_name) {
    const std::wstring question = L"Take \"" + Wide_Of_Panel(class_name.c_str()) +
                                  L"\" out of the class tree?\n\nIts children move up to its parent.";
    return ::MessageBoxW(window.Handle(), question.c_str(), L"Class tree", MB_YESNO | MB_ICONQUESTION) == IDYES;
}

void Application::Class_Changes_Opened(const std::string& problem) {
    if (!problem.empty()) {
        Warn(problem);
    }
    class_problem.clear();
    report.Line("class_changes " + std::to_string(class_history.Journal().Done_Nb()));
}

void Application::Class_Changes_Note() {
    if (class_history.Note()) {
        Status(L"Class trees: " + Wide_Of_Utf8(class_history.Journal().Undo_Title()));
        Class_Changes_Save();
    }
}

void Application::Class_Changes_Save() {
    const std::string problem = class_history.Save();
    if (!problem.empty() && problem != class_problem) {
        Warn(problem);  // once, not with every further step
    }
    class_problem = problem;
}

void Application::Class_Undo_Or_Redo(bool redo) {
    const std::optional<Class_Step> step = redo ? class_history.Redo() : class_history.Undo();
    if (!step) {
        Status(redo ? L"There is nothing to redo in the class trees" : L"There is nothing to undo in the class trees");
        return;
    }
    constexpr unsigned __int64 level[CLASS_KIND_NB] = {UPDATE_LEVEL_1D, UPDATE_LEVEL_2D, UPDATE_LEVEL_3D};
    hub.Ask(UPDATE_STRUCTURE | level[static_cast<std::size_t>(step->kind)]);
    Status((redo ? L"Class trees, done again: " : L"Class trees, undone: ") + Wide_Of_Utf8(step->title));
    Class_Changes_Save();
}

bool Application::Is_Class_Undo(POINT pointer) const {
    return database.Is_Shown() && database.Is_Editor_Shown() && tool_area.Panel_At(pointer) == nullptr;
}

std::optional<std::string> Application::Next_Class_Step(bool redo) const {
    const std::string title = redo ? class_history.Journal().Redo_Title() : class_history.Journal().Undo_Title();
    return title.empty() ? std::nullopt : std::optional(title);
}

bool Application::Ask_Class_Changes() {
    Class_Changes_Save();
    if (!class_history.Is_Unsaved()) {
        return true;
    }
    const std::wstring why = class_problem.empty()
                                 ? L"The changes of the class trees are kept beside an image, and none is open."
                                 : Wide_Of_Utf8(class_problem);
    return ::MessageBoxW(window.Handle(), (why + L"\n\nGo on without them?").c_str(), L"Class tree",
                         MB_YESNO | MB_ICONWARNING) == IDYES;
}

}  // namespace workbench
