#include "workbench/analysis/analysis_window.h"

#include <windowsx.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <numeric>
#include <utility>

#include "histogram/histo_peak.h"
#include "histogram/histo_peaks.h"
#include "histogram/tool_histo.h"
#include "kits/common/messages.h"
#include "kits/widgets/widgets_host.h"
#include "workbench/accessible.h"
#include "workbench/model/number_text.h"
#include "workbench/wide_text.h"
#include "workbench/window_places.h"
#include "workbench/window_theme.h"

namespace workbench {

namespace {

constexpr const wchar_t* CLASS_NAME = L"Kit_Analysis";
constexpr const wchar_t* TITLE = L"Peak analysis";
constexpr int LOG_PAGE = 10;       // lines
constexpr int FIRST_WIDTH = 1100;  // pixels at 96 dots per inch
constexpr int FIRST_HEIGHT = 560;
constexpr int PEAKS_MAX = 30;  // peaks that can be asked for
constexpr int PEAKS_FIRST = 8;

/** Null: the component has none. */
const std::uint32_t* Analysed_Counts(const Histo_Record& record, unsigned char component) {
    if ((record.flags & HISTO_COLOR) == 0) {
        return record.counts;
    }
    const std::array<const std::uint32_t*, 5> by_component = {record.counts_component0, record.counts_red,
                                                              record.counts_green, record.counts_blue, record.counts};
    return component < by_component.size() ? by_component[component] : nullptr;
}

}  // namespace

Analysis_Window::Analysis_Window(Look& application_look, Analysis_Host application)
    : look(application_look), host(std::move(application)) {
    peaks_list.Grow(PEAKS_MAX, 0);
    for (int k = 0; k < peaks_list.item_nb; ++k) {
        std::snprintf(peaks_list.item[k].text, sizeof peaks_list.item[k].text, "%d", k + 1);
    }
    peaks_list.current = PEAKS_FIRST - 1;
}

Analysis_Window::~Analysis_Window() {
    Close();
}

void Analysis_Window::Open(HWND owner) {
    if (window != nullptr) {
        ::SetForegroundWindow(window);
        return;
    }
    WNDCLASSW window_class = {};
    window_class.lpfnWndProc = Procedure;
    window_class.hInstance = ::GetModuleHandleW(nullptr);
    window_class.hCursor = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));
    window_class.hIcon = ::LoadIconW(window_class.hInstance, L"MAINICON");
    window_class.lpszClassName = CLASS_NAME;
    ::RegisterClassW(&window_class);  // a second registration fails, which is fine
    const int width = look.Px(FIRST_WIDTH);
    const int height = look.Px(FIRST_HEIGHT);
    window = ::CreateWindowExW(0, CLASS_NAME, TITLE, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, width, height,
                               owner, nullptr, window_class.hInstance, this);
    if (window == nullptr) {
        return;
    }
    Frame_Theme_Follow(window);
    Place_Beside(window, owner, tools_width, place_last, width, height);
    Window_Axis_Set(window, Window_Axis::Down);
    accessible = Accessible_Make();
    Lay_Out();
    ::ShowWindow(window, SW_SHOW);
}

void Analysis_Window::Place_Set(const Window_Place& last, int tools) {
    place_last = last;
    tools_width = tools;
}

Window_Place Analysis_Window::Place_Now() const {
    return window != nullptr ? Place_Of(window) : place_last;
}

void Analysis_Window::Close() {
    if (window != nullptr) {
        ::DestroyWindow(window);
    }
}

void Analysis_Window::Receive(void* context, HWND /*of_window*/, int level, const char* text) {
    static_cast<Analysis_Window*>(context)->log.Add(level, text);
}

template <class Fit>
void Analysis_Window::Analyse(Fit fit) {
    Tool_Histo* panel = host.panel();
    if (panel == nullptr) {
        return;
    }
    log.Clear();
    Message_Receiver_Add(Receive, this, true);
    fit(*panel);
    Message_Receiver_Remove(Receive, this);
    log_first = 0;
    table_first = 0;
    Table_Make();
    log_lines = log.Lines();
    for (const Peak_Row& row : table.rows) {
        if (row.Is_Doubtful()) {
            log_lines.push_back(Peak_Doubt_Text(row));
        }
    }
    source = host.source();
    is_analysed = true;
    is_stale = false;
    host.peaks_changed();
    if (window != nullptr) {
        ::InvalidateRect(window, nullptr, FALSE);
    }
}

void Analysis_Window::Fit_Gaussian() {
    Analyse([](Tool_Histo& panel) { Histo_Fit_Repeatable(panel); });
}

void Analysis_Window::Fit_Derivative(int peaks) {
    Analyse(
        [peaks](Tool_Histo& panel) { panel.Fit_Derivative(static_cast<unsigned char>(std::clamp(peaks, 0, 255))); });
}

void Analysis_Window::Table_Make() {
    table = {};
    full_text.clear();
    const Tool_Histo* panel = host.panel();
    if (panel == nullptr || panel->data == nullptr || !panel->data->Has_Counts()) {
        return;
    }
    const Histo_Data& data = *panel->data;
    const Histo_Record& record = *data.record;
    const std::size_t filtered_nb =
        data.filtered != nullptr ? static_cast<std::size_t>(std::min<int>(data.curve_nb, record.nb_bins)) : 0;
    const double unit = host.grey_unit();
    const std::uint32_t* counts = Analysed_Counts(record, panel->color_component);
    const Analysed_Curve curve = {{counts, counts != nullptr ? record.nb_bins : std::size_t{0}},
                                  {data.filtered, filtered_nb},
                                  static_cast<double>(record.origin) * unit,
                                  static_cast<double>(record.bin_width) * unit};
    std::vector<Histo_Peak_Info> peaks(static_cast<std::size_t>(Histo_Peaks(*panel, nullptr, 0)));
    Histo_Peaks(*panel, peaks.data(), static_cast<int>(peaks.size()));
    for (Histo_Peak_Info& peak : peaks) {
        for (double* length : {&peak.centre, &peak.full_width, &peak.centre_error, &peak.full_width_error}) {
            *length *= unit;
        }
    }
    table = Peak_Table_Make(peaks, curve);
    full_text = Analysis_Full_Text(table, curve, host.table_source());
}

void Analysis_Window::Look_Changed() {
    if (window != nullptr) {
        Lay_Out();
        ::InvalidateRect(window, nullptr, FALSE);
    }
}

void Analysis_Window::Source_Refresh() {
    const bool was_stale = std::exchange(is_stale, !table.rows.empty() && source != host.source());
    if (window != nullptr && is_stale != was_stale) {
        ::InvalidateRect(window, nullptr, FALSE);
    }
}

void Analysis_Window::Bands_Hand_On() {
    if (table.rows.empty()) {
        return host.tell(L"There are no peaks to make TAG bands of: fit first");
    }
    if (is_stale) {
        const std::wstring question = L"These are the peaks of " + Wide_Of_Utf8(source) + L".\nThe histogram counts " +
                                      Wide_Of_Utf8(host.source()) + L" now.\n\nMake TAG bands of them all the same?";
        if (::MessageBoxW(window, question.c_str(), L"Peaks of another selection",
                          MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) != IDYES) {
            return;
        }
    }
    host.bands_take(table.rows);
}

bool Analysis_Window::Copy_Text(const std::string& utf8) {
    const std::wstring text = Wide_Of_Utf8(utf8);
    if (::OpenClipboard(window) == 0) {
        return false;
    }
    ::EmptyClipboard();
    bool done = false;
    const std::size_t bytes = (text.size() + 1) * sizeof(wchar_t);
    if (HGLOBAL block = ::GlobalAlloc(GMEM_MOVEABLE, bytes)) {
        if (void* memory = ::GlobalLock(block)) {
            std::memcpy(memory, text.c_str(), bytes);
            ::GlobalUnlock(block);
            done = ::SetClipboardData(CF_UNICODETEXT, block) != nullptr;
        }
        if (!done) {
            ::GlobalFree(block);
        }
    }
    ::CloseClipboard();
    return done;
}

void Analysis_Window::Copied_Tell(bool is_done) {
    host.tell(is_done ? L"The peak table is on the clipboard" : L"The clipboard is in use; nothing was copied");
}

void Analysis_Window::Full_Save() {
    if (full_text.empty()) {
        return host.tell(L"There is no analysis to save: fit first");
    }
    host.table_save(full_text);
}

std::array<Buttons*, 6> Analysis_Window::All_Buttons() {
    return {&gauss_button, &derivative_button, &bands_button, &copy_button, &copy_full_button, &save_full_button};
}

void Analysis_Window::Log_Scroll(int lines) {
    log_first = std::clamp(log_first + lines, 0, std::max(static_cast<int>(log_lines.size()) - 1, 0));
    ::InvalidateRect(window, nullptr, FALSE);
}

void Analysis_Window::Pointer_Take(LPARAM lparam, bool on_screen) const {
    POINT pointer = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    if (!on_screen) {
        ::ClientToScreen(window, &pointer);
    }
    YCursor_X = pointer.x;
    YCursor_Y = pointer.y;
}

void Analysis_Window::Press(int up_down) {
    if (gauss_button.Select(up_down) != 0) {
        Fit_Gaussian();
    } else if (derivative_button.Select(up_down) != 0) {
        Fit_Derivative(peaks_list.current + 1);
    } else if (bands_button.Select(up_down) != 0) {
        Bands_Hand_On();
    } else if (copy_button.Select(up_down) != 0) {
        Copied_Tell(Copy());
    } else if (copy_full_button.Select(up_down) != 0) {
        Copied_Tell(Copy_Text(full_text));
    } else if (save_full_button.Select(up_down) != 0) {
        Full_Save();
    } else if (peaks_list.Select(up_down) != 0 && peaks_list.Read() >= 0) {
        peaks_list.current = static_cast<short>(peaks_list.Read());
        peaks_list.Adjust();
    }
}

LRESULT Analysis_Window::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    if (const auto answer = Accessible_Message(window, message, wparam, lparam, accessible)) {
        return *answer;
    }
    switch (message) {
        case WM_SIZE:
            Lay_Out();
            Table_Scroll(0);
            ::InvalidateRect(window, nullptr, FALSE);
            return 0;
        case WM_PAINT:
            Paint();
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_LBUTTONDOWN:
            Pointer_Take(lparam, false);
            Press(MOUSE_PRESS | MOUSE_LEFT);
            return 0;
        case WM_LBUTTONUP:
        case WM_MOUSEMOVE: {
            Pointer_Take(lparam, false);
            const int held = (wparam & MK_LBUTTON) != 0 ? MOUSE_DRAG | MOUSE_LEFT : 0;
            for (Buttons* button : All_Buttons()) {
                button->Select(held);
            }
            peaks_list.Select(held);
            TRACKMOUSEEVENT leave = {sizeof leave, TME_LEAVE, window, 0};
            ::TrackMouseEvent(&leave);
            return 0;
        }
        case WM_MOUSELEAVE:
            for (Buttons* button : All_Buttons()) {
                button->Deselect();
            }
            peaks_list.Deselect();
            return 0;
        case WM_MOUSEWHEEL: {
            POINT pointer = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
            ::ScreenToClient(window, &pointer);
            const int lines = -wheel.Add(GET_WHEEL_DELTA_WPARAM(wparam));
            if (pointer.y < Table_Area().bottom) {
                Table_Scroll(lines);
            } else {
                Log_Scroll(lines);
            }
            return 0;
        }
        case WM_KEYDOWN:
            if (wparam == VK_ESCAPE) {
                Close();
            } else if (wparam == 'C' && ::GetKeyState(VK_CONTROL) < 0) {
                Copied_Tell(::GetKeyState(VK_SHIFT) < 0 ? Copy_Text(full_text) : Copy());
            } else if (wparam == VK_UP || wparam == VK_DOWN) {
                Log_Scroll(wparam == VK_UP ? -1 : 1);
            } else if (wparam == VK_PRIOR || wparam == VK_NEXT) {
                Log_Scroll(wparam == VK_PRIOR ? -LOG_PAGE : LOG_PAGE);
            }
            return 0;
        case WM_DESTROY:
            place_last = Place_Of(window);
            Window_Forget(window);
            accessible.reset();
            is_watched = false;
            window = nullptr;
            return 0;
        default:
            return ::DefWindowProcW(window, message, wparam, lparam);
    }
}

LRESULT CALLBACK Analysis_Window::Procedure(HWND of_window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_NCCREATE) {
        auto* self = static_cast<Analysis_Window*>(reinterpret_cast<CREATESTRUCTW*>(lparam)->lpCreateParams);
        self->window = of_window;
        ::SetWindowLongPtrW(of_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto* self = reinterpret_cast<Analysis_Window*>(::GetWindowLongPtrW(of_window, GWLP_USERDATA));
    return self != nullptr && self->window != nullptr ? self->On_Message(message, wparam, lparam)
                                                      : ::DefWindowProcW(of_window, message, wparam, lparam);
}

}  // namespace workbench
