// What lies where in the window of the peak analysis, and what it looks like.
#include <algorithm>
#include <array>
#include <numeric>

#include "kits/widgets/widgets_host.h"
#include "workbench/analysis/analysis_window.h"
#include "workbench/model/number_text.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int MARGIN = 10;  // pixels at 96 dots per inch, and so the next
constexpr int ROW = 24;
constexpr int BUTTON_HEIGHT = 28;
constexpr int ROW_WIDTHS = 500;  // of the buttons of one row, when they stand in two
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

}  // namespace

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

}  // namespace workbench
