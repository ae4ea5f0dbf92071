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

namespace workbench {

namespace {

constexpr const wchar_t* CLASS_NAME = L"Kit_Analysis";
constexpr const wchar_t* TITLE = L"Peak analysis";
constexpr int LOG_PAGE = 10;       // lines
constexpr int FIRST_WIDTH = 1100;  // pixels at 96 dots per inch
constexpr int FIRST_HEIGHT = 560;
constexpr int MARGIN = 10;
constexpr int ROW = 24;
constexpr int BUTTON_HEIGHT = 28;
constexpr int ROW_WIDTHS = 500;  // of the buttons of one row, when they stand in two
constexpr int PEAKS_MAX = 30;    // peaks that can be asked for
constexpr int PEAKS_FIRST = 8;
constexpr int TABLE_ROWS_MIN = 6;
constexpr int QUALITY_DIGITS = 4;

constexpr std::array<int, PEAK_TITLES.size()> WEIGHTS = {5, 15, 13, 15, 13, 8, 9, 9};  // widths of the columns

std::wstring Quality_Text(const Peak_Table& table, bool is_analysed) {
    if (table.rows.empty()) {
        return is_analysed ? L"No peaks were found." : L"No peaks. Start a fit above.";
    }
    if (!table.quality.is_known) {
        return L"Segments have no fit quality: each covers the grey levels between two valleys.";
    }
    const auto number = [](double value) { return Number_Text(value, QUALITY_DIGITS); };
    return Wide_Of_Utf8("R\xC2\xB2 of the filtered curve " + number(table.quality.r_squared_filtered) +
                        "    R\xC2\xB2 of the counts " + number(table.quality.r_squared_counts) +
                        "    reduced chi-square " + number(table.quality.reduced_chi_square));
}

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

int Analysis_Window::Button_Rows() const {
    RECT client = {};
    ::GetClientRect(window, &client);
    return client.right - 8 * look.Px(MARGIN) < look.Px(2 * ROW_WIDTHS) ? 2 : 1;
}

int Analysis_Window::Buttons_Height() const {
    return Button_Rows() * (look.Px(BUTTON_HEIGHT) + look.Px(MARGIN)) + look.Px(MARGIN);
}

void Analysis_Window::Lay_Out() {
    RECT client = {};
    ::GetClientRect(window, &client);
    const int margin = look.Px(MARGIN);
    const int height = look.Px(BUTTON_HEIGHT);
    const bool is_in_two = Button_Rows() == 2;
    int x = margin;
    int y = margin;
    // All stay in the window when it has no room for them at this scale.
    const int widths = is_in_two ? ROW_WIDTHS : 2 * ROW_WIDTHS;
    const int gaps = is_in_two ? 5 : 8;
    const int room = std::clamp<int>(static_cast<int>(client.right) - gaps * margin, widths / 2, look.Px(widths));
    const auto place = [&](Tools& widget, int own_width, const char* caption, unsigned int style) {
        const int width = own_width * room / widths;
        widget.style = style;
        widget.x = static_cast<short>(x);
        widget.y = static_cast<short>(y);
        widget.width = static_cast<short>(width);
        widget.height = static_cast<short>(height);
        widget.Set_Color(static_cast<unsigned char>(look.panel[0]), static_cast<unsigned char>(look.panel[1]),
                         static_cast<unsigned char>(look.panel[2]));
        widget.border = 1;
        widget.Set_Name("%s", caption);
        x += width + margin;
    };
    place(gauss_button, 120, "Fit Gaussians", STYLE_BUTTON);
    gauss_button.Init(window);
    place(derivative_button, 130, "Derivative method", STYLE_BUTTON);
    derivative_button.Init(window);
    place(peaks_list, 250, " Peaks wanted: ", STYLE_FLAT);
    peaks_list.arrow = static_cast<short>(look.Px(18));
    peaks_list.Init(window);
    if (is_in_two) {
        x = margin;
        y += height + margin;
    }
    place(bands_button, 150, "Peaks to TAG bands", STYLE_BUTTON);
    bands_button.Init(window);
    place(copy_button, 100, "Copy table", STYLE_BUTTON);
    copy_button.Init(window);
    place(copy_full_button, 125, "Copy full table", STYLE_BUTTON);
    copy_full_button.Init(window);
    place(save_full_button, 125, "Save full table", STYLE_BUTTON);
    save_full_button.Init(window);
}

void Analysis_Window::Log_Scroll(int lines) {
    log_first = std::clamp(log_first + lines, 0, std::max(static_cast<int>(log_lines.size()) - 1, 0));
    ::InvalidateRect(window, nullptr, FALSE);
}

void Analysis_Window::Paint_Table(HDC dc, RECT area) const {
    const int weights = std::accumulate(WEIGHTS.begin(), WEIGHTS.end(), 0);
    const int width = area.right - area.left;
    const int row_height = look.Px(ROW);
    const auto draw_row = [&](int row, const auto& cells, HFONT font, COLORREF color) {
        int x = area.left;
        for (std::size_t c = 0; c < WEIGHTS.size(); ++c) {
            const int column_width = width * WEIGHTS[c] / weights;
            const RECT cell = {x, area.top + row * row_height, x + column_width - look.Px(6),
                               area.top + (row + 1) * row_height};
            Draw_Line(dc, cell, Wide_Of_Utf8(cells[c]), font, color, DT_RIGHT);
            x += column_width;
        }
    };
    const RECT head = {area.left, area.top, area.right, area.top + row_height};
    Fill(dc, head, look.heading);
    draw_row(0, PEAK_TITLES, look.Bold(), look.text);
    int row = 1;
    for (std::size_t k = static_cast<std::size_t>(table_first); k < table.rows.size(); ++k) {
        if (area.top + (row + 1) * row_height > area.bottom) {
            break;
        }
        const bool is_grey = is_stale || table.rows[k].Is_Doubtful();
        draw_row(row++, Peak_Cells(table.rows[k]), look.Font(), is_grey ? look.text_grey : look.text);
    }
}

RECT Analysis_Window::Table_Area() const {
    RECT client = {};
    ::GetClientRect(window, &client);
    const int margin = look.Px(MARGIN);
    const int row_height = look.Px(ROW);
    const int rows = std::max<int>(static_cast<int>(table.rows.size()), TABLE_ROWS_MIN) + 1;
    RECT area = {margin, Buttons_Height(), client.right - margin, 0};
    area.bottom = std::min<LONG>(area.top + rows * row_height,
                                 std::max<LONG>(client.bottom - 6 * row_height, area.top + 2 * row_height));
    return area;
}

int Analysis_Window::Table_Rows_Shown() const {
    const RECT area = Table_Area();
    return std::max(static_cast<int>(area.bottom - area.top) / look.Px(ROW) - 1, 1);
}

void Analysis_Window::Table_Scroll(int rows) {
    table_first =
        std::clamp(table_first + rows, 0, std::max(static_cast<int>(table.rows.size()) - Table_Rows_Shown(), 0));
    ::InvalidateRect(window, nullptr, FALSE);
}

std::wstring Analysis_Window::Rows_Text() const {
    const int all = static_cast<int>(table.rows.size());
    const int shown = Table_Rows_Shown();
    if (all <= shown) {
        return L"";
    }
    return L"Peaks " + std::to_wstring(table_first + 1) + L" to " +
           std::to_wstring(std::min(table_first + shown, all)) + L" of " + std::to_wstring(all) +
           L" (the wheel goes on).    ";
}

void Analysis_Window::Paint_Log(HDC dc, RECT area) const {
    const int row_height = look.Px(ROW) * 4 / 5;
    RECT line = area;
    for (std::size_t k = static_cast<std::size_t>(log_first);
         k < log_lines.size() && line.top + row_height <= area.bottom; ++k) {
        line.bottom = line.top + row_height;
        Draw_Line(dc, line, Wide_Of_Panel(log_lines[k].c_str()), look.Fixed(), look.text_grey, DT_LEFT);
        line.top = line.bottom;
    }
}

void Analysis_Window::Paint() {
    {
        const Buffered_Paint paint(window);
        HDC dc = paint.Dc();
        const RECT client = paint.Client();
        Fill(dc, client, look.ground);
        const int margin = look.Px(MARGIN);
        const int row_height = look.Px(ROW);
        const RECT area = Table_Area();
        Paint_Table(dc, area);
        const RECT quality = {area.left, area.bottom, area.right, area.bottom + row_height};
        Draw_Line(dc, quality, Rows_Text() + Quality_Line(), look.Font(), is_stale ? look.text : look.accent, DT_LEFT);
        const RECT title = {area.left, quality.bottom, area.right, quality.bottom + row_height};
        Fill(dc, title, look.heading);
        Draw_Line(dc, title, L" Fit log", look.Bold(), look.text, DT_LEFT);
        Paint_Log(dc, {area.left, title.bottom, area.right, client.bottom - margin});
    }
    Window_Buffer_Begin(window);
    for (Buttons* button : All_Buttons()) {
        button->Draw();
    }
    peaks_list.Draw();
    Window_Buffer_End(window);
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

std::wstring Analysis_Window::Row_Text(const Peak_Row& row) {
    const auto cells = Peak_Cells(row);
    std::string text;
    for (std::size_t c = 0; c < cells.size(); ++c) {
        text += (c == 0 ? "" : ", ") + std::string(PEAK_TITLES[c]) + " " + cells[c];
    }
    return Wide_Of_Utf8(text + (row.Is_Doubtful() ? ", doubtful" : ""));
}

std::wstring Analysis_Window::Quality_Line() const {
    return (is_stale ? L"Of " + Wide_Of_Utf8(source) + L", not of what is counted now.    " : L"") +
           Quality_Text(table, is_analysed && source == host.source());
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
