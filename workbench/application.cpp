#include "workbench/application.h"

#include <algorithm>
#include <exception>

#include "kits/common/contract.h"
#include "kits/common/messages.h"
#include "workbench/crash_report.h"
#include "workbench/enlarged_icon.h"
#include "workbench/enlarged_keyboard.h"
#include "workbench/enlarged_wheel.h"
#include "workbench/global_keys.h"
#include "workbench/volumes/message_text.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int TOOL_WIDTH_LEAST = 320;
constexpr int TOOL_PERCENT = 45;  // of the window, when that is less than TOOL_AREA_WIDTH
constexpr int DATABASE_WIDTH_FIRST = 380;
constexpr int IMAGE_WIDTH_LEAST = 200;
constexpr int HISTOGRAM_HEIGHT = 150;
constexpr int HISTOGRAM_HEIGHT_MOST = 320;
constexpr unsigned short TAG_ROWS = 4;
constexpr unsigned short MARKER_ROWS = 2;
constexpr int MESSAGE_TRACE = 10;  // this level and higher ones are traces
constexpr unsigned __int64 FLAGS_TAG_STATE = UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK | UPDATE_TAG_CUR;

Application* the_application = nullptr;

}  // namespace

Application::Application(const Command_Line& command_line)
    : options(command_line),
      class_history({[](const char* text) { return Utf8_Of_Wide(Wide_Of_Panel(text)); },
                     [](const std::string& text) { return Panel_Of_Wide(Wide_Of_Utf8(text)); }}),
      tag_panel(static_cast<unsigned short>(TAG_CHECK_ENABLE | TAG_GREY_SELECTION)),
      hosted_tag(tag_panel, [](Tool_Tag& panel) { return panel.Height(TAG_ROWS); }),
      hosted_marker(marker_panel, [](Tool_Marker& panel) { return panel.Height(MARKER_ROWS); }),
      hosted_brush(brush_panel, [](Tool_Brush& panel) { return panel.Height(); }),
      hosted_propagate(propagate_panel, [](Tool_Propagate& panel) { return panel.Height(); }),
      hosted_histogram(
          histogram_panel,
          [this](Tool_Histo& panel) { return panel.Height(static_cast<unsigned short>(look.Px(HISTOGRAM_HEIGHT))); }),
      window(*this),
      tool_area(look),
      image(look, *this, planes),
      status_line(look),
      banner(look, [this] { Lay_Out(); }),
      trace(look),
      analysis(look, {[this] { return &histogram_panel; }, [this] { Peaks_Changed(); },
                      [this](const std::vector<Peak_Row>& peaks) { Bands_Take(peaks); },
                      [this](const wchar_t* text) { Status(text); }, [this] { return Histogram_Source(); },
                      [this] { return panel_scale.To_Grey(1.0); },
                      [this](const std::string& text) { Table_Save(text); }, [this] { return Table_Source(); }}),
      database(look, Database_Services()),
      not_opened_list(look),
      read_list(look),
      segmentation_services(Segmentation_Wires()) {
    the_application = this;
    Prog_Name = "workbench";
    Contract_Checks_Set(options.check);
    variables.Define();
    classes.emplace();
    class_history.Begin(classes->Root_1D(), classes->Root_3D());
    labels.Adopt();
    tag_rows_shown = variables.Tag_Nb();
    Listen();
    propagate_panel.Set(&Application::Propagation_Function);
    Message_Receiver_Add([](void* context, HWND, int level,
                            const char* text) { static_cast<Application*>(context)->On_Message(level, text); },
                         this, true);
    Request_Listener listener;
    listener.context = this;
    listener.update = [](void* context, unsigned __int64 flags, void*, void*) {
        static_cast<Application*>(context)->On_Panel_Request(flags);
    };
    listener.redraw = [](void* context, unsigned __int64, void*, void*) {
        static_cast<Application*>(context)->On_Redraw();
    };
    listener.change_child = [](void* context, Quorel_Window*, Quorel_2D* new_frame, Quorel_2D*) {
        static_cast<Application*>(context)->On_Change_Child(new_frame);
    };
    Request_Listener_Set(listener);
}

Application::~Application() {
    Request_Listener_Set({});
    hwnd = nullptr;
    objects.Clear();
    the_application = nullptr;
}

Application* Application::The() {
    return the_application;
}

int Application::Propagation_Function(void* from, void* to) {
    if (the_application == nullptr) {
        return 0;
    }
    const Volume_Objects& objects = the_application->objects;
    return the_application->Propagate(objects.Slice_Of(static_cast<Quorel_2D*>(from)),
                                      objects.Slice_Of(static_cast<Quorel_2D*>(to)));
}

bool Application::Start(int show) {
    if (!window.Make() || !tool_area.Make(window.Handle()) || !image.Make(window.Handle()) ||
        !status_line.Make(window.Handle()) || !banner.Make(window.Handle()) || !trace.Make(window.Handle()) ||
        !database.Make(window.Handle())) {
        return false;
    }
    hwnd = window.Handle();
    look.Dpi_Set(Window_Dpi(window.Handle()));
    variables.Scale_Set(look.Scale());
    Settings_Open();
    Add_Panels();
    if (!options.report.empty() && !report.Open(options.report)) {
        Warn("The report file " + options.report + " cannot be written.");
    }
    if (report.Is_Open()) {
        report.Time("settings_read");
        report_questions.Begin(options.report + ".ask", [this] { Report_State(); });
    }
    Settings_Apply();
    Accessible_Names();
    hub.Note({Change::Mode, Change::Saved});  // notes and title as they are at first
    ::ShowWindow(window.Handle(),
                 settings.Now().window.is_maximized && show == SW_SHOWNORMAL ? SW_SHOWMAXIMIZED : show);
    ::UpdateWindow(window.Handle());
    report.Time("window_shown");
    Status(L"F1 shows keys and mouse");
    const std::filesystem::path kept = Recovery_Folder_Of(settings.File());
    if (!kept.empty()) {
        Crash_Report_Install(kept, WORKBENCH_VERSION);
    }
    recovery.Begin(kept, WORKBENCH_VERSION);
    if (!kept.empty()) {
        recovery.Crashes_Tell(Crash_Reports_Take(kept));
    }
    const bool is_recovered = recovery.Offer();
    if (is_recovered && !options.files.empty()) {
        report.Line("files_not_opened");
    } else if (!options.files.empty()) {
        std::vector<std::filesystem::path> paths;
        for (const std::string& file : options.files) {
            paths.push_back(volumes::Path_From_Utf8(file));
        }
        Open_Paths(paths);
    }
    Deliver();
    report.Time("ready");
    report.Line("ready");
    return true;
}

void Application::Add_Panels() {
    tag_host = tool_area.Add(L"TAG", hosted_tag, Window_Axis::Down, [this](int picked, int) {
        if (picked >= 0) {
            Tag_Set(picked, false);
        }
    });
    brush_host = tool_area.Add(L"Brush", hosted_brush, Window_Axis::Up, [this](int is_picked, int) {
        if (is_picked != 0) {
            Brush_Set(brush_panel.Read());
        }
    });
    propagate_host = tool_area.Add(L"Frames", hosted_propagate, Window_Axis::Up, [](int, int) {});
    marker_host = tool_area.Add(L"Markers", hosted_marker, Window_Axis::Down, [this](int picked, int) {
        if (picked >= 0) {
            Marker_Set(picked);
        }
    });
    histogram_host = tool_area.Add(L"Histogram", hosted_histogram, Window_Axis::Down, [this](int is_used, int) {
        // A press beside the magnification's thumb changes it without painting the plot.
        hosted_histogram.Scale_Note();
        if (is_used != 0) {
            hub.Ask(UPDATE_HISTO_PAINT);
            Enlarged_Icon_Give();
        }
    });
    tool_area.Stretch(histogram_host, look.Px(HISTOGRAM_HEIGHT_MOST));
    hosted_histogram.Scale_Release();
}

int Application::Run() {
    MSG message = {};
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
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
        if (database.Key_Message(message) || Enlarged_Key_Dispatch(message) ||
            Global_Key_Dispatch(message, window.Handle(), take)) {
            Deliver();
            continue;
        }
        if (!Enlarged_Wheel_Dispatch(message, settings.Now().is_wheel_turned)) {
            ::TranslateMessage(&message);
            ::DispatchMessageW(&message);
        }
        Deliver();
        Contract_Check();
        recovery.Look_If_Late();
    }
    recovery.End();
    return static_cast<int>(message.wParam);
}

/** Between two events no panel operation runs: nothing that one holds may be left. */
void Application::Contract_Check() {
    if (Contract_Checks()) {
        Contract_Check_Variables();
        Contract_Check_Iterators();
        Contract_Check_Drawing();
    }
}

void Application::Lay_Out() {
    const RECT client = window.Client();
    // On a screen with few pixels for its scale the panels leave room for the image.
    const int share = std::max<int>(client.right * TOOL_PERCENT / 100, look.Px(TOOL_WIDTH_LEAST));
    const int width = std::min<int>({look.Px(TOOL_AREA_WIDTH), share, static_cast<int>(client.right)});
    int bottom = client.bottom - status_line.Wanted_Height();
    status_line.Place({0, bottom, client.right, client.bottom});
    if (trace.Is_Shown()) {
        const int top = std::max(bottom - trace.Wanted_Height(), 0);
        trace.Place({0, top, client.right, bottom});
        bottom = top;
    }
    tool_area.Place({0, 0, width, bottom});
    int right = client.right;
    if (database.Is_Shown()) {
        // The editor's diagram needs the image's room.
        const int room = client.right - width;
        const int wanted = database_width > 0 ? database_width : look.Px(DATABASE_WIDTH_FIRST);
        const int most = std::max(room - look.Px(IMAGE_WIDTH_LEAST), std::min(room, look.Px(DATABASE_WIDTH_LEAST)));
        right -= database.Is_Editor() ? room : std::min(wanted, most);
    }
    const int banner_height = banner.Wanted_Height(static_cast<int>(client.right) - width);
    banner.Place({width, 0, client.right, banner_height});
    banner.Show(banner_height > 0);
    image.Place({width, banner_height, right, bottom});
    database.Place({right, banner_height, client.right, bottom});
}

void Application::Listen() {
    using Stage = Change_Hub::Stage;
    hub.Listen(Stage::Derived, [this](Told_Changes& told) {
        tools.Follow(told.changes);
        Derive(told);
    });
    hub.Listen(Stage::Panels, [this](Told_Changes& told) {
        if (told.panel_flags != 0) {
            Contract_Check_Update(told.panel_flags);
            tool_area.Update(told.panel_flags);
        }
    });
    hub.Listen(Stage::Panels, [this](Told_Changes& told) {
        if (told.panel_flags != 0) {
            database.Update(told.panel_flags);
        }
    });
    hub.Listen(Stage::Views, [this](Told_Changes& told) { Show_Changes(told.changes); });
    hub.Listen(Stage::Views, [this](Told_Changes& told) {
        if (told.changes.Has_Any({Change::Volume, Change::Opened})) {
            segmentation_control.Volume_Follow();
        } else if (told.changes.Has_Any({Change::Pixels, Change::Texts})) {
            segmentation_control.Labels_Follow();
        }
    });
    hub.Listen(Stage::Report, [this](Told_Changes& told) {
        rounds_told += told.changes.Is_Within({Change::Mouse, Change::Stroke}) ? 0 : 1;
    });
}

void Application::Deliver() {
    if (window.Handle() == nullptr) {
        return;  // the last message has taken it away
    }
    try {
        hub.Deliver();
    } catch (const std::exception& failure) {
        Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x05WARNING:\x02 Not everything was shown: %s", failure.what());
    }
}

void Application::Derive(Told_Changes& told) {
    if (told.changes.Has_Any({Change::Markers, Change::Volume, Change::Opened})) {
        Markers_Enable_Refresh();
    }
    if (told.changes.Has_Any({Change::Bands, Change::Tag_Nb, Change::Volume, Change::Opened})) {
        Histogram_Ranges_Refresh();
    }
    if (told.changes.Has(Change::Position) && session.Has_Volume() && histogram.Slice_Follow(slice)) {
        Histogram_Select();
        Add_To(told, Change::Selection);
    }
    const bool is_other_tag = histogram.Is_Of_Tag() && told.changes.Has_Any({Change::Pixels, Change::Current_Tag});
    if (session.Has_Volume() && (is_other_tag || told.changes.Has(Change::Counting))) {
        objects.Histograms_Build(session, Histogram_Counted());
        Add_To(told, Change::Counted);
    }
}

void Application::Show_Changes(Changes changes) {
    const auto show = [changes](Shown shown, const auto& action) {
        if (Is_Shown_In(shown, changes)) {
            action();
        }
    };
    show(Shown::Image, [this] { image.Refresh(); });
    show(Shown::Other_Views, [this] { image.Others_Refresh(); });
    show(Shown::Brush_Outline, [this] { image.Outline_Refresh(); });
    if (changes.Has_Any({Change::Selection, Change::Volume, Change::Opened})) {
        Histogram_Scale_Suggest();
    }
    if (changes.Has(Change::Tag_Nb)) {
        Tag_Rows_Show();
    }
    if (changes.Has(Change::Colors)) {
        Tag_Scroll_To(variables.Tag_Cur());  // the buttons were made anew
    }
    show(Shown::Notes, [this] { Notes_Show(); });
    show(Shown::Title, [this] { Title_Show(); });
    show(Shown::Voxel, [this] { Voxel_Show(); });
    show(Shown::Color_Advice, [this] { color_advisor.Slice_Look(); });
    show(Shown::Peak_Source, [this] { analysis.Source_Refresh(); });
}

void Application::On_Panel_Request(unsigned __int64 flags) {
    if (database_events > 0) {
        database_flags |= flags;
        return;
    }
    hub.Ask(flags);
    if (Has_Any(flags, UPDATE_TAG_LABEL)) {
        labels.Note();
    }
}

void Application::On_Redraw() {
    hub.Note(Change::View);
}

void Application::On_Change_Child(Quorel_2D* new_frame) {
    if (database_events > 0) {
        database_frame = new_frame;
    } else if (objects.Slice_Of(new_frame) >= 0) {
        Slice_Show(objects.Slice_Of(new_frame));
    } else {
        Frame_Follow(new_frame);
    }
}

void Application::On_Message(int level, const char* text) {
    if (level >= MESSAGE_TRACE) {
        trace.Add(level, Message_Plain(text));
        return;
    }
    report.Line("message " + std::to_string(level) + " " + Message_Plain(text));
    if (level == MESSAGE_STATUS) {
        Status(Wide_Of_Panel(Message_Plain(text).c_str()));
    } else {
        banner.Add(Message_Runs(text));
    }
}

void Application::Status(const std::wstring& text) {
    dialogs.Tell(Utf8_Of_Wide(text));
}

void Application::Warn(std::string_view utf8, Warning_Subject subject) {
    dialogs.Warn(std::string(utf8), subject);
}

void Application::Notes_Show() {
    const int tag = variables.Tag_Cur();
    const auto at = static_cast<std::size_t>(tag);
    std::wstring note = Wide_Of_Panel(variables.Tag_Name(tag).c_str());
    note += variables.Tag_Enable()[at] == 0 ? L", hidden" : L"";
    note += variables.Tag_Lock()[at] != 0 ? L", locked" : L"";
    note += variables.Tag_Select()[at] == 0 ? L", not selected" : L"";
    tool_area.Note_Set(tag_host, note);
    tool_area.Note_Set(brush_host,
                       std::to_wstring(variables.Brush().Pixel_Nb()) + L" pixels" + Wide_Of_Utf8(tools.Brush_Note()));
    tool_area.Note_Set(propagate_host, propagation_kind == Propagation_Kind::Copy ? L"copy" : L"grow");
    const int marker = variables.Marker_Cur();
    tool_area.Note_Set(marker_host, Wide_Of_Panel(variables.Marker_Name(marker).c_str()) +
                                        (tools.Tool_Now() == Tool_Kind::Markers ? L", placing" : L""));
    std::string counted = Histogram_Source();
    if (histogram.Source_Now() == Histogram_Frames::Checked) {
        counted = "checked frames" + counted.substr(std::min(counted.find(", TAG"), counted.size()));
    }
    const std::string unit = panel_scale.Text();
    const std::wstring frames = Wide_Of_Utf8(counted + (unit.empty() ? "" : "   levels " + unit));
    tool_area.Note_Set(histogram_host, session.Has_Volume() ? frames : L"");
}

void Application::Title_Show() {
    recovery.Step_Note();
    std::wstring title = L"Workbench";
    if (session.Has_Volume()) {
        title =
            Wide_Of_Utf8(volumes.Facts(volumes.Current()).title) + (session.Is_Unsaved() ? L"* - " : L" - ") + title;
    }
    ::SetWindowTextW(window.Handle(), title.c_str());
}

void Application::Look_Changed() {
    variables.Scale_Set(look.Scale());
    tool_area.Lay_Out();
    for (Panel_Host* host : {tag_host, marker_host, brush_host, propagate_host, histogram_host}) {
        host->Lay_Out();
    }
    database.Lay_Out();
    analysis.Look_Changed();
    Lay_Out();
    ::RedrawWindow(window.Handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
}

void Application::Dpi_Changed(int dpi) {
    look.Dpi_Set(dpi);
    Look_Changed();
}

void Application::Files_Dropped(const std::wstring& path) {
    const std::filesystem::path dropped(path);
    Open_Paths(std::span(&dropped, 1));
}

void Application::Key(int key) {
    POINT pointer = {};
    ::GetCursorPos(&pointer);
    if (Panel_Host* host = tool_area.Panel_At(pointer); host != nullptr && host->Key(key)) {
        return;
    }
    if (Pane_Key(key)) {
        return;
    }
    if (Panel_Host* host = database.Panel_At(pointer); host != nullptr && host->Key(key)) {
        return;
    }
    const Key_Context context = Is_Class_Undo(pointer) ? Key_Context::Class_Editor : Key_Context::Window;
    if (const auto call = Command_Of_Key(key, context, ::GetKeyState(VK_SHIFT) < 0)) {
        Execute(*call);
    }
}

void Application::Wheel(POINT screen, int delta, bool is_control) {
    const HWND under = ::WindowFromPoint(screen);
    Panel_Host* host = tool_area.Panel_At(screen);
    host = host != nullptr ? host : database.Panel_At(screen);
    if (host != nullptr) {
        YCursor_X = screen.x;
        YCursor_Y = screen.y;
        host->Wheel(delta);
        if (host == histogram_host) {
            hosted_histogram.Scale_Note();
        }
    } else if (under == tool_area.Handle()) {
        tool_area.Wheel(delta);
    } else if (image.Has(under)) {
        image.Wheel(under, delta, is_control, screen);
    } else if (under == trace.Handle()) {
        trace.Wheel(delta);
    }
}

}  // namespace workbench
