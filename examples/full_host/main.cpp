// A host with all panels. What a host adds to the panels is here: the variables, the windows, the requests and what
// answers them. The title of the window tells the state; F fits peaks to the histogram. With --check the contract is
// checked after every message and the program's status is the number of mistakes.
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "database/tool_db_class.h"
#include "database/tool_db_file.h"
#include "histogram/histo_peaks.h"
#include "histogram/tool_histo.h"
#include "kits/common/contract.h"
#include "kits/common/messages.h"
#include "kits/dataset/panel_flags.h"
#include "kits/dataset/variable_rules.h"
#include "kits/widgets/panel_window.h"
#include "made_data.h"
#include "panels/kit_version.h"
#include "panels/tool_brush.h"
#include "panels/tool_marker.h"
#include "panels/tool_propagate.h"
#include "panels/tool_tag.h"
#include "panels/version_export.h"

namespace {

constexpr int TOOL_WIDTH = 380;  // pixels
constexpr int GAP = 4;

/** Everything that panels read exists before the first Resize. */
void Variables_Define() {
    for (const char* name : {"$TAG_RED", "$TAG_GRN", "$TAG_BLU"}) {
        const int bit = name[5] == 'R' ? 1 : name[5] == 'G' ? 2 : 4;
        auto* shades = static_cast<std::uint16_t*>(Variable_Define_Array(name, VARIABLE_UNSIGNED_16, 256));
        for (int tag = 0; tag < 256; ++tag) {
            shades[tag] = (tag & bit) != 0 ? 0xE000 : 0x4000;
        }
    }
    Variable_Define_Text("$DEFAULT_ICON_PATH", "icons\\");
    Variable_Define_Recommended(1.0F);  // the rest
    Variable_Set_Array_Text("$TAG_LABEL", 1, "Muscle");
}

class Host {
  public:
    bool Make();
    int Run(bool is_checked);

  private:
    static LRESULT CALLBACK Procedure(HWND of_window, UINT message, WPARAM wparam, LPARAM lparam);
    static int Propagated(void* from, void* to);
    void Lay_Out();
    void Send(unsigned __int64 flags);
    void Title_Set();
    void Fit();

    Made_Data data;
    Collected_Updates collected;
    HWND window = nullptr;
    std::string peaks_text = "no fit";

    Tool_Tag tag;
    Tool_Marker marker;
    Tool_Brush brush;
    Tool_Propagate propagate;
    Tool_Histo histogram;
    Tool_DB_Class classes{2};
    Tool_DB_File files{2};

    kit::Panel_Of<Tool_Tag> hosted_tag{tag, [](Tool_Tag& panel) { return panel.Height(2); }};
    kit::Panel_Of<Tool_Marker> hosted_marker{marker, [](Tool_Marker& panel) { return panel.Height(2); }};
    kit::Panel_Of<Tool_Brush> hosted_brush{brush, [](Tool_Brush& panel) { return panel.Height(); }};
    kit::Panel_Of<Tool_Propagate> hosted_propagate{propagate, [](Tool_Propagate& panel) { return panel.Height(); }};
    kit::Panel_Of<Tool_Histo> hosted_histogram{histogram, [](Tool_Histo& panel) { return panel.Height(200); }};
    kit::Panel_Of<Tool_DB_Class> hosted_classes{classes, [](Tool_DB_Class& panel) { return panel.Height(10); }};
    kit::Panel_Of<Tool_DB_File> hosted_files{files, [](Tool_DB_File& panel) { return panel.Height(10); }};

    // TAG and marker panels answer a click with what was picked, the brush panel with whether one was.
    kit::Panel_Window tag_window{hosted_tag, [this](int picked, int) {
                                     if (picked >= 0) {
                                         Variable_Set("$TAG_CUR", picked);
                                         collected.Add(UPDATE_TAG_CUR);
                                     }
                                 }};
    kit::Panel_Window marker_window{hosted_marker, [this](int picked, int) {
                                        if (picked >= 0) {
                                            Variable_Set("$MARKER_CUR", picked);
                                            collected.Add(UPDATE_TAG_CUR);
                                        }
                                    }};
    kit::Panel_Window brush_window{hosted_brush, [this](int is_picked, int) {
                                       if (is_picked != 0) {
                                           Variable_Set("$BRUSH_CUR", brush.Read());
                                           collected.Add(UPDATE_BRUSH);
                                       }
                                   }};
    kit::Panel_Window propagate_window{hosted_propagate};
    kit::Panel_Window histogram_window{hosted_histogram};
    kit::Panel_Window classes_window{hosted_classes};
    kit::Panel_Window files_window{hosted_files};

    struct Panel {
        kit::Panel_Window* window;
        Panel_Kind kind;
        Window_Axis axis;  // see docs/coordinates.md
    };
    const Panel panels[7] = {{&tag_window, Panel_Kind::Tag, Window_Axis::Down},
                             {&brush_window, Panel_Kind::Brush, Window_Axis::Up},
                             {&propagate_window, Panel_Kind::Propagate, Window_Axis::Up},
                             {&marker_window, Panel_Kind::Marker, Window_Axis::Down},
                             {&histogram_window, Panel_Kind::Histogram, Window_Axis::Down},
                             {&classes_window, Panel_Kind::Classes, Window_Axis::Up},
                             {&files_window, Panel_Kind::Files, Window_Axis::Up}};
};

/** Where work is carried from one frame to the next; this host has none to carry. */
int Host::Propagated(void* /*from*/, void* /*to*/) {
    return 1;
}

bool Host::Make() {
    WNDCLASSA window_class = {};
    window_class.lpfnWndProc = Procedure;
    window_class.hInstance = ::GetModuleHandleA(nullptr);
    window_class.hCursor = ::LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));
    window_class.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_APPWORKSPACE + 1);
    window_class.lpszClassName = "Full_Host";
    ::RegisterClassA(&window_class);
    window = ::CreateWindowExA(0, "Full_Host", "", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT,
                               860, 680, nullptr, nullptr, window_class.hInstance, nullptr);
    if (window == nullptr) {
        return false;
    }
    hwnd = window;  // messages name the main window
    propagate.Set(&Host::Propagated);
    Request_Listener listener;
    listener.context = this;
    // Panels announce what they changed. It is sent on between two messages: one "Select All" makes a request per
    // frame.
    listener.update = [](void* host, unsigned __int64 flags, void*, void*) {
        static_cast<Host*>(host)->collected.Add(flags);
    };
    listener.change_child = [](void* host, Quorel_Window*, Quorel_2D*, Quorel_2D*) {
        static_cast<Host*>(host)->collected.Add(UPDATE_FRAME_CUR);
    };
    Request_Listener_Set(listener);
    for (const Panel& panel : panels) {
        panel.window->look.style = STYLE_FRAMED_BOX | STYLE_SHOW_CHECK;
        panel.window->look.border = 1;
        panel.window->look.Set_Color(70, 70, 70);
        panel.window->after_resize = Update_After_Resize(panel.kind);
        panel.window->untaken = [this](int key) {
            if (key == 'f') {
                Fit();
            }
        };
        if (!panel.window->Make(window, panel.axis)) {
            return false;
        }
    }
    ::SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    Lay_Out();
    Title_Set();
    ::ShowWindow(window, SW_SHOW);
    return true;
}

void Host::Lay_Out() {
    RECT client = {};
    ::GetClientRect(window, &client);
    int y = 0;
    for (kit::Panel_Window* panel : {&tag_window, &brush_window, &propagate_window, &marker_window}) {
        const int height = panel->Wanted_Height();
        panel->Place(0, y, TOOL_WIDTH, height);
        y += height + GAP;
    }
    histogram_window.Place(0, y, TOOL_WIDTH, std::max<int>(client.bottom - y, 0));
    const int x = TOOL_WIDTH + GAP;
    const int width = std::max<int>(client.right - x, 0);
    classes_window.Place(x, 0, width, client.bottom / 2);
    files_window.Place(x, client.bottom / 2 + GAP, width, client.bottom - client.bottom / 2 - GAP);
}

void Host::Send(unsigned __int64 flags) {
    Contract_Check_Update(flags);
    if (Has_Any(flags, UPDATE_SELECTION | UPDATE_STRUCTURE)) {
        flags |= UPDATE_HISTO_PAINT;  // a computation paints nothing of itself
    }
    for (const Panel& panel : panels) {
        panel.window->Update(flags);
    }
    Title_Set();
}

void Host::Title_Set() {
    const auto selected = std::ranges::count_if(data.frame, [](const auto& frame) {
        return frame->Flag_Get_Bit(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION) != 0;
    });
    const Quorel_2D* shown = Window_Frame(&data.window);
    const auto number = [](const char* name) { return std::to_string(static_cast<int>(Variable_Number(name, -1))); };
    const std::string title = "TAG " + number("$TAG_CUR") + ", marker " + number("$MARKER_CUR") + ", brush " +
                              number("$BRUSH_CUR") + ", frame " + (shown != nullptr ? shown->Name_Get() : "-") + ", " +
                              std::to_string(selected) + " selected, " + peaks_text;
    ::SetWindowTextA(window, title.c_str());
}

void Host::Fit() {
    Histo_Fit_Repeatable(histogram);
    std::vector<Histo_Peak_Info> peaks(static_cast<std::size_t>(Histo_Peaks(histogram, nullptr, 0)));
    Histo_Peaks(histogram, peaks.data(), static_cast<int>(peaks.size()));
    peaks_text = std::to_string(peaks.size()) + " peaks";
    for (const Histo_Peak_Info& peak : peaks) {
        peaks_text += " at " + std::to_string(static_cast<int>(peak.centre));
    }
    collected.Add(UPDATE_HISTO_PAINT);
}

LRESULT CALLBACK Host::Procedure(HWND of_window, UINT message, WPARAM wparam, LPARAM lparam) {
    auto* host = reinterpret_cast<Host*>(::GetWindowLongPtrA(of_window, GWLP_USERDATA));
    switch (message) {
        case WM_SIZE:
            if (host != nullptr) {
                host->Lay_Out();
            }
            return 0;
        case WM_DESTROY:
            ::PostQuitMessage(0);
            return 0;
        default:
            return ::DefWindowProcA(of_window, message, wparam, lparam);
    }
}

int Host::Run(bool is_checked) {
    MSG message = {};
    while (::GetMessageA(&message, nullptr, 0, 0) > 0) {
        ::TranslateMessage(&message);
        ::DispatchMessageA(&message);
        collected.Send([this](unsigned __int64 flags) { Send(flags); });
        if (is_checked && message.message != WM_QUIT && ::IsWindow(window) != FALSE) {
            Contract_Check_Variables();
            Contract_Check_Iterators();
            Contract_Check_Drawing();
        }
    }
    return Contract_Report_Nb();
}

}  // namespace

int main(int argc, char** argv) {
    char wanted[] = "5.016b";
    static_assert(sizeof wanted == sizeof KIT_PANELS_MODULE_VERSION);
    if (Get_Version_Quorel_Tools(wanted) == nullptr) {
        std::fprintf(stderr, "Kit_Panels.dll is not %s\n", KIT_PANELS_MODULE_VERSION);
        return 1;
    }
    const bool is_checked = argc > 1 && std::strcmp(argv[1], "--check") == 0;
    Contract_Checks_Set(is_checked);
    Message_Receiver_Add(
        [](void*, HWND, int level, const char* text) {
            if (level == MESSAGE_MEMORY || level == MESSAGE_WARNING) {
                std::fprintf(stderr, "%s\n", Message_Plain(text).c_str());
            }
        },
        nullptr);
    Variables_Define();
    Host host;
    const int mistakes = host.Make() ? host.Run(is_checked) : 1;
    Request_Listener_Set({});
    return mistakes;
}
