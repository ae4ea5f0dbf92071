// The database column: views, find, and the editor of the class trees.
#include <functional>
#include <numeric>
#include <string>
#include <utility>

#include "workbench/application.h"
#include "workbench/wide_text.h"

namespace workbench {

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

void Application::Execute_Database(Command command) {
    switch (command) {
        case Command::DATABASE:
            return Database_Show(!database.Is_Shown());
        case Command::DATABASE_FIND:
            Database_Show(true);
            return database.Find_Begin();
        case Command::DATABASE_EXPAND:
        case Command::DATABASE_COLLAPSE:
            Database_Show(true);
            return database.Expand_All(command == Command::DATABASE_EXPAND);
        case Command::CLASS_UNDO:
        case Command::CLASS_REDO:
            return Class_Undo_Or_Redo(command == Command::CLASS_REDO);
        default: {
            const bool is_on = database.Is_Shown() && database.Is_Editor();
            Database_Show(true);
            return database.Editor_Set(!is_on);
        }
    }
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
    unsigned __int64 flags = std::exchange(database_flags, 0);
    if (Has_Any(flags, UPDATE_STRUCTURE)) {
        Class_Changes_Note();
    }
    if (Has_All(flags, UPDATE_SELECTION | UPDATE_LEVEL_2D)) {
        Selection_Taken();
        frame = frame != nullptr ? frame : objects.Selected_Frame();  // the file view asks for no frame
    }
    const int volume_before = volumes.Current();
    flags |= Frame_Follow(frame);
    if (flags != 0) {
        On_Panel_Request(flags);
    }
    if (volume_before != volumes.Current() || Has_Any(flags, UPDATE_SELECTION)) {
        Histogram_Scale_Suggest();
    }
    if (std::exchange(is_redraw_asked, false)) {
        image.Refresh();
    }
}

void Application::Selection_Taken() {
    is_histogram_of_checked = true;
    is_histogram_of_shown = false;
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
    Announce(UPDATE_STRUCTURE | level[static_cast<std::size_t>(step->kind)]);
    Status((redo ? L"Class trees, done again: " : L"Class trees, undone: ") + Wide_Of_Utf8(step->title));
    Class_Changes_Save();
}

bool Application::Is_Class_Undo(POINT pointer) const {
    return database.Is_Shown() && database.Is_Editor_Shown() && tool_area.Panel_At(pointer) == nullptr;
}

void Application::Class_Menu_Refresh(HMENU menu) {
    const auto name = [menu](Command command, const wchar_t* text, const std::string& title) {
        std::wstring shown = Wide_Of_Utf8(title);
        for (std::size_t at = shown.find(L'&'); at != std::wstring::npos; at = shown.find(L'&', at + 2)) {
            shown.insert(at, 1, L'&');  // a class's own "&" is to be seen
        }
        const auto id = static_cast<UINT>(command);
        ::ModifyMenuW(menu, id, static_cast<UINT>(MF_BYCOMMAND | MF_STRING | (title.empty() ? MF_GRAYED : MF_ENABLED)),
                      id, (text + (title.empty() ? L"" : L": " + shown)).c_str());
    };
    if (::GetMenuState(menu, static_cast<UINT>(Command::CLASS_UNDO), MF_BYCOMMAND) != static_cast<UINT>(-1)) {
        name(Command::CLASS_UNDO, L"&Undo in the class trees", class_history.Journal().Undo_Title());
        name(Command::CLASS_REDO, L"&Redo in the class trees", class_history.Journal().Redo_Title());
    }
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
