#include "workbench/application.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <span>
#include <vector>

#include "kits/common/contract.h"
#include "kits/common/messages.h"
#include "workbench/accessible_names.h"
#include "workbench/crash_report.h"
#include "workbench/enlarged_keyboard.h"
#include "workbench/enlarged_wheel.h"
#include "workbench/global_keys.h"
#include "workbench/menu_bar.h"
#include "workbench/volumes/message_text.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int TOOL_WIDTH_LEAST = 320;
constexpr int TOOL_PERCENT = 45;   // of the window, when that is less than TOOL_AREA_WIDTH
constexpr int MESSAGE_TRACE = 10;  // this level and higher ones are traces

/** Between two events no panel operation runs: nothing that one holds may be left. */
void Contract_Check() {
    if (Contract_Checks()) {
        Contract_Check_Variables();
        Contract_Check_Iterators();
        Contract_Check_Drawing();
    }
}

std::vector<std::filesystem::path> Files_Named(const Command_Line& options) {
    std::vector<std::filesystem::path> paths;
    for (const std::string& file : options.files) {
        paths.push_back(volumes::Path_From_Utf8(file));
    }
    return paths;
}

}  // namespace

Application::Application(const Command_Line& command_line) : parts(command_line, *this) {
    Prog_Name = "workbench";
    Contract_Checks_Set(parts.options.check);
    parts.variables.Define();
    parts.database.Begin();
    parts.labels.Adopt();
    views.Listen();
    Library_Listen();
}

Application::~Application() {
    Request_Listener_Set({});
    hwnd = nullptr;
}

void Application::Library_Listen() {
    Message_Receiver_Add([](void* context, HWND, int level,
                            const char* text) { static_cast<Application*>(context)->On_Message(level, text); },
                         this, true);
    Request_Listener listener;
    listener.context = this;
    listener.update = [](void* context, unsigned __int64 flags, void*, void*) {
        Application_Parts& of = static_cast<Application*>(context)->parts;
        if (!of.database.Take_Request(flags)) {
            of.Ask(flags);
        }
    };
    listener.redraw = [](void* context, unsigned __int64, void*, void*) {
        static_cast<Application*>(context)->parts.work.hub.Note(Change::View);
    };
    listener.change_child = [](void* context, Quorel_Window*, Quorel_2D* new_frame, Quorel_2D*) {
        static_cast<Application*>(context)->On_Change_Child(new_frame);
    };
    Request_Listener_Set(listener);
}

bool Application::Start(int show) {
    HWND const frame = parts.window.Make() ? parts.window.Handle() : nullptr;
    if (frame == nullptr || !parts.panels.Make(frame) || !parts.image.Make(frame) || !parts.status_line.Make(frame) ||
        !parts.banner.Make(frame) || !parts.trace.Make(frame) || !parts.database.Column().Make(frame)) {
        return false;
    }
    hwnd = frame;
    parts.look.Dpi_Set(Window_Dpi(frame));
    parts.variables.Scale_Set(parts.look.Scale());
    parts.window_control.Settings_Open();
    if (!parts.options.files.empty()) {
        parts.opener.Read_Ahead(Files_Named(parts.options));
    }
    parts.panels.Add(
        {[this](int tag) { parts.tags.Tag_Set(tag, false); }, [this](int brush) { parts.tags.Brush_Set(brush); },
         [this](int marker) { parts.tags.Marker_Set(marker); }, [this] { parts.work.hub.Ask(UPDATE_HISTO_PAINT); }});
    const std::string& report_file = parts.options.report;
    if (!report_file.empty() && !parts.report.Open(report_file)) {
        parts.dialogs.Warn("The report file " + report_file + " cannot be written.");
    }
    if (parts.report.Is_Open()) {
        parts.report.Time("settings_read");
        parts.state_report.Begin(report_file);
    }
    parts.window_control.Settings_Apply();
    const auto row = [this](int line) { parts.segmentation.Statistics_Row(line); };
    parts.segmentation_services.Statistics_Window().Row_Listen(row);
    parts.image.Table().Row_Listen(row);
    Accessible_Names_Give(
        {parts.panels, parts.database.Column(), parts.image, parts.status_line, parts.trace, parts.banner, [this] {
             return parts.work.session.Has_Volume() ? Wide_Of_Utf8(parts.opener.Volume_Text()) : std::wstring();
         }});
    parts.work.hub.Note({Change::Mode, Change::Saved});  // notes and title as they are at first
    const bool is_maximized = parts.settings.Now().window.is_maximized && show == SW_SHOWNORMAL;
    ::ShowWindow(frame, is_maximized ? SW_SHOWMAXIMIZED : show);
    ::UpdateWindow(frame);
    parts.report.Time("window_shown");
    parts.dialogs.Tell("F1 shows keys and mouse");
    Work_Begin();
    Deliver();
    parts.report.Time("ready");
    parts.report.Line("ready");
    return true;
}

void Application::Work_Begin() {
    const std::filesystem::path kept = Recovery_Folder_Of(parts.settings.File());
    if (!kept.empty()) {
        Crash_Report_Install(kept, WORKBENCH_VERSION);
    }
    parts.recovery.Begin(kept, WORKBENCH_VERSION);
    if (!kept.empty()) {
        parts.recovery.Crashes_Tell(Crash_Reports_Take(kept));
    }
    const bool is_recovered = parts.recovery.Offer();
    if (is_recovered && !parts.options.files.empty()) {
        parts.opener.Ahead_Drop();
        parts.report.Line("files_not_opened");
    } else if (!parts.options.files.empty()) {
        parts.opener.Open(Files_Named(parts.options));
    }
}

bool Application::Take_Message(const MSG& message) {
    const auto take = [this](int key) {
        const auto call = Command_Of_Key(key, Key_Context::Window, ::GetKeyState(VK_SHIFT) < 0);
        if (call) {
            try {
                Execute(*call);
            } catch (const std::exception& failure) {
                Failure_Tell(failure);
            }
        }
        return call.has_value();
    };
    return parts.database.Column().Key_Message(message) || Enlarged_Key_Dispatch(message) ||
           Global_Key_Dispatch(message, parts.window.Handle(), take);
}

int Application::Run() {
    MSG message = {};
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (Take_Message(message)) {
            Deliver();
            continue;
        }
        if (!Enlarged_Wheel_Dispatch(message, parts.settings.Now().is_wheel_turned)) {
            ::TranslateMessage(&message);
            ::DispatchMessageW(&message);
        }
        Deliver();
        Contract_Check();
        parts.recovery.Look_If_Late();
    }
    parts.recovery.End();
    return static_cast<int>(message.wParam);
}

void Application::Lay_Out() {
    const Look& look = parts.look;
    const RECT client = parts.window.Client();
    // On a screen with few pixels for its scale the panels leave room for the image.
    const int share = std::max<int>(client.right * TOOL_PERCENT / 100, look.Px(TOOL_WIDTH_LEAST));
    const int width = std::min<int>({look.Px(TOOL_AREA_WIDTH), share, static_cast<int>(client.right)});
    int bottom = client.bottom - parts.status_line.Wanted_Height();
    parts.status_line.Place({0, bottom, client.right, client.bottom});
    if (parts.trace.Is_Shown()) {
        const int top = std::max(bottom - parts.trace.Wanted_Height(), 0);
        parts.trace.Place({0, top, client.right, bottom});
        bottom = top;
    }
    parts.panels.Area().Place({0, 0, width, bottom});
    const bool is_database = parts.database.Is_Database();
    const int right = client.right - (is_database ? parts.database.Width(client.right - width) : 0);
    const int banner_height = parts.banner.Wanted_Height(static_cast<int>(client.right) - width);
    parts.banner.Place({width, 0, client.right, banner_height});
    parts.banner.Show(banner_height > 0);
    parts.image.Place({width, banner_height, right, bottom});
    parts.database.Column().Place({right, banner_height, client.right, bottom});
}

void Application::Deliver() {
    if (parts.window.Handle() == nullptr) {
        return;  // the last message has taken it away
    }
    try {
        parts.work.hub.Deliver();
    } catch (const std::exception& failure) {
        Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x05WARNING:\x02 Not everything was shown: %s", failure.what());
    }
}

void Application::Execute(const Command_Call& call) {
    const Command_Record& record = Record_Of(call.command);
    Activity_Note("command: " + std::string(record.name) +
                  (Is_Numbered(record) ? " " + std::to_string(call.number) : ""));
    parts.commands.Run(call);
}

void Application::Menu_Refresh(HMENU menu) {
    workbench::Menu_Refresh(menu, parts.commands);
}

void Application::Wheel(POINT screen, int delta, bool is_control) {
    if (parts.panels.Wheel(screen, delta)) {
        return;
    }
    HWND const under = ::WindowFromPoint(screen);
    if (Panel_Host* const host = parts.database.Column().Panel_At(screen); host != nullptr) {
        YCursor_X = screen.x;
        YCursor_Y = screen.y;
        host->Wheel(delta);
    } else if (parts.image.Has(under)) {
        parts.image.Wheel(under, delta, is_control, screen);
    } else if (under == parts.trace.Handle()) {
        parts.trace.Wheel(delta);
    }
}

void Application::Files_Dropped(const std::wstring& path) {
    const std::filesystem::path dropped(path);
    parts.opener.Open(std::span(&dropped, 1));
}

bool Application::May_Close() {
    if (!parts.label_files.May_Leave() || !parts.database.May_Leave()) {
        return false;
    }
    parts.window_control.Settings_Keep();
    parts.report.Line("closed");
    return true;
}

void Application::On_Change_Child(Quorel_2D* new_frame) {
    if (parts.database.Take_Frame(new_frame)) {
        return;
    }
    if (const int slice = parts.objects.Slice_Of(new_frame); slice >= 0) {
        parts.view.Slice_Show(slice);
    } else {
        parts.opener.Frame_Follow(new_frame);
    }
}

void Application::On_Message(int level, const char* text) {
    if (level >= MESSAGE_TRACE) {
        parts.trace.Add(level, Message_Plain(text));
        return;
    }
    parts.report.Line("message " + std::to_string(level) + " " + Message_Plain(text));
    if (level == MESSAGE_STATUS) {
        parts.dialogs.Tell(Utf8_Of_Wide(Wide_Of_Panel(Message_Plain(text).c_str())));
    } else {
        parts.banner.Add(Message_Runs(text));
    }
}

}  // namespace workbench
