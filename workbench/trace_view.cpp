#include "workbench/trace_view.h"

#include <algorithm>

#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr std::size_t ENTRIES_MAX = 2000;
constexpr int TRACE_LINE = 16;  // pixels at 96 dots per inch
constexpr int HEADING = 20;

}  // namespace

bool Trace_View::Make(HWND parent) {
    return Create(parent, WS_CHILD | WS_CLIPSIBLINGS, L"");
}

void Trace_View::Add(int level, const std::string& text) {
    if (!entries.empty() && entries.back().level == level && entries.back().text == text) {
        ++entries.back().repeats;
    } else {
        if (entries.size() == ENTRIES_MAX) {
            entries.pop_front();
        }
        entries.push_back({level, text});
    }
    if (Handle() != nullptr && Is_Shown()) {
        Invalidate();
    }
}

int Trace_View::Lines_In_View() const {
    return std::max(static_cast<int>(Client().bottom - look.Px(HEADING)) / look.Px(TRACE_LINE), 1);
}

void Trace_View::Wheel(int delta) {
    const int most = std::max(static_cast<int>(entries.size()) - Lines_In_View(), 0);
    back = std::clamp(back + wheel.Add(delta), 0, most);
    Invalidate();
}

std::size_t Trace_View::First_In_View() const {
    const int count = std::min(Lines_In_View(), static_cast<int>(entries.size()));
    return static_cast<std::size_t>(std::max(static_cast<int>(entries.size()) - count - back, 0));
}

std::wstring Trace_View::Line_Text(const Entry& entry) {
    std::wstring shown = Wide_Of_Panel(entry.text.c_str());
    std::ranges::replace(shown, L'\n', L' ');
    return entry.repeats > 1 ? shown + L"  \u00D7" + std::to_wstring(entry.repeats) : shown;
}

std::wstring Trace_View::Text() const {
    std::wstring text;
    const std::size_t first = First_In_View();
    for (std::size_t at = first; at < std::min(entries.size(), first + static_cast<std::size_t>(Lines_In_View()));
         ++at) {
        text += (text.empty() ? L"" : L"\n") + std::to_wstring(entries[at].level) + L" " + Line_Text(entries[at]);
    }
    return text;
}

void Trace_View::Paint() {
    const Buffered_Paint paint(Handle());
    const HDC dc = paint.Dc();
    Fill(dc, paint.Client(), look.image_ground);
    RECT line = paint.Client();
    line.bottom = look.Px(HEADING);
    Fill(dc, line, look.heading);
    line.left += look.Px(10);
    Draw_Line(dc, line, L"Trace", look.Bold(), look.text, DT_LEFT);
    const std::size_t first = First_In_View();
    for (std::size_t at = first; at < std::min(entries.size(), first + static_cast<std::size_t>(Lines_In_View()));
         ++at) {
        const Entry& entry = entries[at];
        line.top = line.bottom;
        line.bottom += look.Px(TRACE_LINE);
        RECT level = line;
        level.right = level.left + look.Px(24);
        Draw_Line(dc, level, std::to_wstring(entry.level), look.Fixed(), look.text_grey, DT_LEFT);
        RECT text = line;
        text.left = level.right + look.Px(8);
        Draw_Line(dc, text, Line_Text(entry), look.Fixed(), look.text, DT_LEFT);
    }
}

LRESULT Trace_View::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_PAINT:
            Paint();
            return 0;
        case WM_ERASEBKGND:
            return 1;
        default:
            return Window_Base::On_Message(message, wparam, lparam);
    }
}

}  // namespace workbench
