// What the window of the peak analysis tells programs that read the screen aloud.
#include "base/gdi_handles.h"

#include <oleacc.h>

#include "kits/widgets/shown_widgets.h"
#include "workbench/accessible.h"
#include "workbench/analysis/analysis_window.h"
#include "workbench/wide_text.h"

namespace workbench {

std::shared_ptr<Accessible_Source> Analysis_Window::Accessible_Make() {
    auto told = std::make_shared<Accessible_Source>();
    told->role = ROLE_SYSTEM_PANE;
    told->name = [] { return std::wstring(L"Peak analysis"); };
    told->parts = [this] { return Accessible_Parts(); };
    return told;
}

std::vector<Accessible_Part> Analysis_Window::Accessible_Parts() {
    if (!is_watched) {
        is_watched = true;
        Window_Widgets_Watch(window, true);
        Paint();
    }
    std::vector<Accessible_Part> parts = Widget_Parts(window, {});
    const RECT area = Table_Area();
    const int row_height = (area.bottom - area.top) / (Table_Rows_Shown() + 1);
    int shown = -table_first;
    for (const Peak_Row& row : table.rows) {
        Accessible_Part part;
        part.name = Row_Text(row);
        part.role = ROLE_SYSTEM_ROW;
        if (shown >= 0 && shown < Table_Rows_Shown()) {
            const LONG top = area.top + (shown + 1) * row_height;  // below the titles
            part.place = {area.left, top, area.right, top + row_height};
        } else {
            part.state = STATE_SYSTEM_OFFSCREEN;  // can be read all the same
        }
        ++shown;
        parts.push_back(std::move(part));
    }
    parts.push_back({Quality_Line(),
                     L"",
                     ROLE_SYSTEM_STATICTEXT,
                     0,
                     {area.left, area.bottom, area.right, area.bottom + row_height},
                     0});
    RECT client = {};
    ::GetClientRect(window, &client);
    std::wstring lines;
    for (const std::string& line : log_lines) {
        lines += (lines.empty() ? L"" : L"\n") + Wide_Of_Panel(line.c_str());
    }
    parts.push_back({L"Fit log",
                     lines,
                     ROLE_SYSTEM_TEXT,
                     STATE_SYSTEM_READONLY,
                     {area.left, area.bottom + row_height, area.right, client.bottom},
                     0});
    return parts;
}

}  // namespace workbench
