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
#include "kits/dataset/variable_rules.h"
#include "kits/widgets/panel_set.h"
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
    void Title_Set();
    void Fit();

    Made_Data data;
    HWND window = nullptr;
    std::string peaks_text = "no fit";

    Tool_Tag tag;
    Tool_Marker marker;
    Tool_Brush brush;
    Tool_Propagate propagate;
    Tool_Histo histogram;
    Tool_DB_Class classes{2};
    Tool_DB_File files{2};

    kit::Panel_Set panels;
    kit::Panel_Window& tag_window = panels.Add(tag, Panel_Kind::Tag, 2);
    kit::Panel_Window& brush_window = panels.Add(brush, Panel_Kind::Brush);
    kit::Panel_Window& propagate_window = panels.Add(propagate, Panel_Kind::Propagate);
    kit::Panel_Window& marker_window = panels.Add(marker, Panel_Kind::Marker, 2);
    kit::Panel_Window& histogram_window = panels.Add(histogram, Panel_Kind::Histogram, 200);
    kit::Panel_Window& classes_window = panels.Add(classes, Panel_Kind::Classes, 10);
    kit::Panel_Window& files_window = panels.Add(files, Panel_Kind::Files, 10);
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
    propagate.Set(&Host::Propagated);
    panels.untaken = [this](int key) {
        if (key == 'f') {
            Fit();
        }
    };
    if (window == nullptr || !panels.Make(window)) {
        return false;
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
    panels.Announce(UPDATE_HISTO_PAINT);
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
        if (panels.Send() != 0) {
            Title_Set();
        }
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
    return host.Make() ? host.Run(is_checked) : 1;
}
