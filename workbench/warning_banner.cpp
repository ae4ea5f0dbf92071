#include "workbench/warning_banner.h"

#include <windowsx.h>

#include <algorithm>

#include "workbench/model/text_fold.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr DWORD TOGETHER = 400;  // milliseconds within which messages belong together
constexpr std::size_t LINES_MAX = 6;
constexpr int LEFT = 16;   // pixels at 96 dots per inch, before a row
constexpr int RIGHT = 32;  // behind it, for the button that closes
constexpr int INDENT = 24;
constexpr int ROW_LEAST = 100;
constexpr int BANNER_LINE = 20;  // pixels at 96 dots per inch

}  // namespace

bool Warning_Banner::Make(HWND parent) {
    return Create(parent, WS_CHILD | WS_CLIPSIBLINGS, L"");
}

void Warning_Banner::Add(const std::vector<Message_Run>& runs) {
    std::vector<Run> wide;
    for (const Message_Run& run : runs) {
        wide.push_back({run.style, Wide_Of_Panel(run.text.c_str())});
    }
    Add_Lines(wide, Warning_Subject::Other);
}

void Warning_Banner::Add_Text(const std::wstring& text, Warning_Subject subject) {
    Add_Lines({{Message_Style::Warning, L"WARNING:"}, {Message_Style::Plain, L" " + text}}, subject);
}

void Warning_Banner::Add_Lines(const std::vector<Run>& runs, Warning_Subject subject) {
    const DWORD now = ::GetTickCount();
    if (now - last_time > TOGETHER || lines.size() >= LINES_MAX) {
        lines.clear();
    }
    last_time = now;
    Line line{{}, subject};
    for (Run run : runs) {
        for (std::size_t end = run.text.find(L'\n'); end != std::wstring::npos; end = run.text.find(L'\n')) {
            line.runs.push_back({run.style, run.text.substr(0, end)});
            lines.push_back(std::move(line));
            line = {{}, subject};
            run.text.erase(0, end + 1);
        }
        line.runs.push_back(std::move(run));
    }
    lines.push_back(std::move(line));
    changed();
    ::NotifyWinEvent(EVENT_SYSTEM_ALERT, Handle(), OBJID_CLIENT, CHILDID_SELF);
    Invalidate();
}

void Warning_Banner::Close() {
    lines.clear();
    changed();
}

void Warning_Banner::Close(Warning_Subject subject) {
    if (std::erase_if(lines, [subject](const Line& line) { return line.subject == subject; }) > 0) {
        changed();
        Invalidate();
    }
}

std::wstring Warning_Banner::Text() const {
    std::wstring text;
    for (const Line& line : lines) {
        text += text.empty() ? L"" : L"\n";
        for (const Run& run : line.runs) {
            text += run.text;
        }
    }
    return text;
}

int Warning_Banner::Wanted_Height(int width) const {
    return lines.empty() ? 0 : static_cast<int>(Rows(width).size()) * look.Px(BANNER_LINE) + look.Px(14);
}

HFONT Warning_Banner::Font_Of(const Run& run) const {
    return run.style == Message_Style::Warning || run.style == Message_Style::Strong ? look.Bold() : look.Font();
}

std::vector<std::vector<Warning_Banner::Run>> Warning_Banner::Rows(int width) const {
    const int room = std::max(width - look.Px(LEFT + RIGHT), look.Px(ROW_LEAST));
    std::vector<std::vector<Run>> rows;
    for (const Line& line : lines) {
        rows.emplace_back();
        int used = 0;
        for (const Run& run : line.runs) {
            used += run.style == Message_Style::Indented ? look.Px(INDENT) : 0;
            const auto measure = [&](std::wstring_view part) { return Line_Width(Font_Of(run), part); };
            const std::vector<std::wstring> parts = Text_Fold(run.text, room - used, room, measure);
            for (std::size_t at = 0; at < parts.size(); ++at) {
                if (at > 0) {
                    rows.emplace_back();
                    used = 0;
                }
                // What goes on below stands at the left.
                const bool is_indented = at == 0 || run.style != Message_Style::Indented;
                rows.back().push_back({is_indented ? run.style : Message_Style::Plain, parts[at]});
            }
            used += measure(parts.back());
        }
    }
    return rows;
}

RECT Warning_Banner::Close_Box() const {
    const RECT client = Client();
    const int size = look.Px(20);
    return {client.right - size - look.Px(6), look.Px(6), client.right - look.Px(6), look.Px(6) + size};
}

void Warning_Banner::Draw_Lines(HDC dc) const {
    RECT area = Client();
    area.top += look.Px(7);
    area.right = Close_Box().left - look.Px(6);
    for (const std::vector<Run>& row : Rows(static_cast<int>(Client().right))) {
        RECT place = {look.Px(LEFT), area.top, area.right, area.top + look.Px(BANNER_LINE)};
        for (const Run& run : row) {
            place.left += run.style == Message_Style::Indented ? look.Px(INDENT) : 0;
            if (place.left < place.right) {
                place.left += Draw_Line(dc, place, run.text, Font_Of(run),
                                        run.style == Message_Style::Warning ? look.warning_text : look.text, DT_LEFT);
            }
        }
        area.top = place.bottom;
    }
}

void Warning_Banner::Paint() {
    const Buffered_Paint paint(Handle());
    Fill(paint.Dc(), paint.Client(), look.warning);
    RECT edge = paint.Client();
    edge.right = look.Px(4);
    Fill(paint.Dc(), edge, look.warning_text);
    Draw_Lines(paint.Dc());
    Draw_Line(paint.Dc(), Close_Box(), L"\u00D7", look.Bold(), look.warning_text, DT_CENTER);
}

LRESULT Warning_Banner::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_PAINT:
            Paint();
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_LBUTTONDOWN: {
            const POINT point = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
            const RECT close = Close_Box();
            if (::PtInRect(&close, point) != 0) {
                Close();
            }
            return 0;
        }
        default:
            return Window_Base::On_Message(message, wparam, lparam);
    }
}

}  // namespace workbench
