#include "workbench/database/database_strip.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "base/gdi_handles.h"

namespace workbench {

namespace {

constexpr int TAB_HEIGHT = 26;  // pixels at 96 dots per inch
constexpr int FIND_HEIGHT = 24;
constexpr int STRIP_GAP = 6;
constexpr int BUTTON_WIDTH = 26;
constexpr int EDIT_WIDTH = 74;
constexpr int EDGE = 5;  // the left edge, by which the column is made wider

struct Tab_Of_View {
    Database_View view;
    const wchar_t* text;
};
constexpr Tab_Of_View TABS[DATABASE_VIEW_NB] = {{Database_View::Files, L"Files"},
                                                {Database_View::Patients, L"Patients"},
                                                {Database_View::Classes_2D, L"2D classes"},
                                                {Database_View::Classes_3D, L"3D classes"},
                                                {Database_View::Classes_1D, L"1D classes"}};
constexpr const wchar_t* BUTTON_TEXT[Database_Strip::BUTTON_NB] = {L"+", L"\u2212", L"Edit"};
constexpr const wchar_t* BUTTON_NAME[Database_Strip::BUTTON_NB] = {L"Expand all", L"Collapse all",
                                                                   L"Edit the class tree"};

/** A tab's text; only its first word where there is no room for all. */
std::wstring_view Tab_Text(HDC dc, HFONT font, std::wstring_view text, int room) {
    const Selected_Object selected(dc, font);
    SIZE size = {};
    ::GetTextExtentPoint32W(dc, text.data(), static_cast<int>(text.size()), &size);
    return size.cx < room ? text : text.substr(0, text.find(L' '));
}

}  // namespace

Database_View Database_Strip::Tab_View(int at) {
    return TABS[at].view;
}

const wchar_t* Database_Strip::Tab_Name(int at) {
    return TABS[at].text;
}

const wchar_t* Database_Strip::Button_Name(int at) {
    return BUTTON_NAME[at];
}

int Database_Strip::Left() const {
    return look.Px(EDGE) + look.Px(STRIP_GAP);
}

bool Database_Strip::Is_Edge(POINT point) const {
    return point.x < look.Px(EDGE);
}

int Database_Strip::Height() const {
    return look.Px(TAB_HEIGHT) + look.Px(FIND_HEIGHT) + 3 * look.Px(STRIP_GAP);
}

RECT Database_Strip::Tab(const RECT& client, int at) const {
    const int left = Left();
    const int width = (client.right - left - look.Px(STRIP_GAP)) / DATABASE_VIEW_NB;
    const int top = look.Px(STRIP_GAP);
    return {left + at * width, top, left + (at + 1) * width, top + look.Px(TAB_HEIGHT)};
}

RECT Database_Strip::Button(const RECT& client, int at) const {
    const int top = look.Px(TAB_HEIGHT) + 2 * look.Px(STRIP_GAP);
    int right = client.right - look.Px(STRIP_GAP);
    for (int behind = BUTTON_NB - 1; behind > at; --behind) {
        right -= look.Px(behind == BUTTON_NB - 1 ? EDIT_WIDTH : BUTTON_WIDTH) + look.Px(STRIP_GAP);
    }
    const int width = look.Px(at == BUTTON_NB - 1 ? EDIT_WIDTH : BUTTON_WIDTH);
    return {right - width, top, right, top + look.Px(FIND_HEIGHT)};
}

RECT Database_Strip::Find_Box(const RECT& client) const {
    const int left = Left();
    const int top = look.Px(TAB_HEIGHT) + 2 * look.Px(STRIP_GAP);
    return {left, top, std::max<LONG>(Button(client, 0).left - look.Px(STRIP_GAP), left + 10),
            top + look.Px(FIND_HEIGHT)};
}

Database_Strip::Hit Database_Strip::Part_At(const RECT& client, POINT point) const {
    const auto is_in = [point](const RECT& part) { return ::PtInRect(&part, point) != 0; };
    if (Is_Edge(point)) {
        return {Part::Edge};
    }
    if (is_in(Find_Box(client))) {
        return {Part::Find};
    }
    for (int at = 0; at < DATABASE_VIEW_NB; ++at) {
        if (is_in(Tab(client, at))) {
            return {Part::Tab, TABS[at].view};
        }
    }
    constexpr std::array<Part, BUTTON_NB> buttons = {Part::Expand, Part::Collapse, Part::Edit};
    for (int at = 0; at < BUTTON_NB; ++at) {
        if (is_in(Button(client, at))) {
            return {buttons[static_cast<std::size_t>(at)]};
        }
    }
    return {};
}

void Database_Strip::Paint(HDC dc, const RECT& client, Database_View shown, bool is_editor,
                           bool is_find_focused) const {
    for (int at = 0; at < DATABASE_VIEW_NB; ++at) {
        const RECT tab = Tab(client, at);
        const bool is_shown = shown == TABS[at].view;
        Fill(dc, tab, is_shown ? look.heading_hover : look.heading);
        if (is_shown) {
            Fill(dc, {tab.left, tab.bottom - look.Px(2), tab.right, tab.bottom}, look.accent);
        }
        Draw_Line(dc, tab, Tab_Text(dc, look.Bold(), TABS[at].text, tab.right - tab.left),
                  is_shown ? look.Bold() : look.Font(), is_shown ? look.text : look.text_grey, DT_CENTER);
    }
    Fill(dc, Find_Box(client), look.heading);
    Frame(dc, Find_Box(client), 1, is_find_focused ? look.accent : look.text_grey);
    for (int at = 0; at < BUTTON_NB; ++at) {
        const bool is_on = at == EDIT_BUTTON && is_editor;
        const RECT button = Button(client, at);
        Fill(dc, button, is_on ? look.accent : look.heading);
        Draw_Line(dc, button, BUTTON_TEXT[at], look.Bold(), is_on ? look.accent_text : look.text, DT_CENTER);
    }
}

}  // namespace workbench
