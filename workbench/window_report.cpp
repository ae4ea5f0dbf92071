#include "workbench/window_report.h"

#include <oleacc.h>

#include <optional>
#include <string>
#include <vector>

#include "kits/widgets/shown_widgets.h"
#include "workbench/accessible.h"
#include "workbench/accessible_snapshot.h"
#include "workbench/model/json_text.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int TEXT_MOST = 1024;  // characters of a title or a control's text

void Rectangle_Write(Json_Text& out, const RECT& place) {
    out.List_Begin("place");
    out.Number({}, place.left);
    out.Number({}, place.top);
    out.Number({}, place.right - place.left);
    out.Number({}, place.bottom - place.top);
    out.List_End();
}

RECT Client_On_Screen(HWND window) {
    RECT place = {};
    ::GetClientRect(window, &place);
    ::MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

std::string Class_Of(HWND window) {
    wchar_t name[256] = {};
    ::GetClassNameW(window, name, 256);
    return Utf8_Of_Wide(name);
}

std::string Text_Of(HWND window) {
    std::wstring text(TEXT_MOST, L'\0');
    text.resize(static_cast<std::size_t>(::GetWindowTextW(window, text.data(), TEXT_MOST)));
    return Utf8_Of_Wide(text);
}

void Parts_Write(Json_Text& out, const std::vector<Accessible_Part>& parts) {
    out.List_Begin("parts");
    for (const Accessible_Part& part : parts) {
        out.Object_Begin();
        out.Text("name", Utf8_Of_Wide(part.name));
        out.Text("value", Utf8_Of_Wide(part.value));
        out.Flag("is_selected", (part.state & STATE_SYSTEM_SELECTED) != 0);
        out.Flag("is_checked", (part.state & STATE_SYSTEM_CHECKED) != 0);
        out.Flag("is_inactive", (part.state & STATE_SYSTEM_UNAVAILABLE) != 0);
        out.Number("level", part.level);
        Rectangle_Write(out, part.place);
        out.Object_End();
    }
    out.List_End();
}

/** Windows of the panels themselves: their widgets are noted from the first question on. */
void Panel_Parts_Write(Json_Text& out, HWND window) {
    if (Window_Widget_Nb(window) == 0) {
        Window_Widgets_Watch(window, true);
        ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    }
    std::vector<Accessible_Part> parts = Widget_Parts(window, {});
    for (Accessible_Part& part : parts) {
        ::MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&part.place), 2);
    }
    Parts_Write(out, parts);
}

/** Windows and dialogs that the panels open themselves are painted by their library and have no controls. */
bool Is_Of_Panels(HWND window) {
    return ::GetAncestor(window, GA_ROOT) == window && ::GetWindow(window, GW_CHILD) == nullptr &&
           Class_Of(window) != "#32768";  // a menu
}

void Window_Begin(Json_Text& out, HWND window) {
    out.Object_Begin();
    out.Text("class", Class_Of(window));
    out.Text("title", Text_Of(window));
    out.Flag("is_enabled", ::IsWindowEnabled(window) != 0);
    out.Flag("has_focus", ::GetFocus() == window);
    Rectangle_Write(out, Client_On_Screen(window));
    if (const std::optional<Accessible_Snapshot> told = Accessible_Snapshot_Ask(window)) {
        out.Text("name", Utf8_Of_Wide(told->name));
        out.Text("value", Utf8_Of_Wide(told->value));
        Parts_Write(out, told->parts);
    } else if (Is_Of_Panels(window)) {
        Panel_Parts_Write(out, window);
    }
}

BOOL CALLBACK Child_Write(HWND window, LPARAM context) {
    if (::IsWindowVisible(window) != 0) {
        auto& out = *reinterpret_cast<Json_Text*>(context);
        Window_Begin(out, window);
        out.Number("id", ::GetDlgCtrlID(window));
        if (Class_Of(window) == "Button") {
            out.Flag("is_checked", ::SendMessageW(window, BM_GETCHECK, 0, 0) == BST_CHECKED);
        }
        out.Object_End();
    }
    return TRUE;
}

BOOL CALLBACK Window_Write(HWND window, LPARAM context) {
    if (::IsWindowVisible(window) != 0) {
        auto& out = *reinterpret_cast<Json_Text*>(context);
        Window_Begin(out, window);
        out.Flag("is_active", ::GetForegroundWindow() == window);
        out.List_Begin("children");
        ::EnumChildWindows(window, &Child_Write, context);
        out.List_End();
        out.Object_End();
    }
    return TRUE;
}

void Entries_Write(Json_Text& out, HMENU menu) {
    out.List_Begin("entries");
    for (int at = 0; at < ::GetMenuItemCount(menu); ++at) {
        wchar_t text[256] = {};
        ::GetMenuStringW(menu, static_cast<UINT>(at), text, 256, MF_BYPOSITION);
        const UINT state = ::GetMenuState(menu, static_cast<UINT>(at), MF_BYPOSITION);
        HMENU below = ::GetSubMenu(menu, at);
        out.Object_Begin();
        out.Text("text", Utf8_Of_Wide(text));
        // With entries below it the higher byte is their number.
        out.Flag("is_checked", below == nullptr && (state & MF_CHECKED) != 0);
        out.Flag("is_inactive", below == nullptr && (state & (MF_GRAYED | MF_DISABLED)) != 0);
        if (below != nullptr) {
            Entries_Write(out, below);
        }
        out.Object_End();
    }
    out.List_End();
}

}  // namespace

void Windows_Write(Json_Text& out) {
    out.List_Begin("windows");
    ::EnumThreadWindows(::GetCurrentThreadId(), &Window_Write, reinterpret_cast<LPARAM>(&out));
    out.List_End();
}

bool Is_In_Menu() {
    GUITHREADINFO about = {};
    about.cbSize = sizeof about;
    return ::GetGUIThreadInfo(::GetCurrentThreadId(), &about) != 0 && (about.flags & GUI_INMENUMODE) != 0;
}

void Menus_Write(Json_Text& out, HMENU menu) {
    out.Flag("is_in_menu", Is_In_Menu());
    out.Object_Begin("menus");
    if (menu != nullptr) {
        Entries_Write(out, menu);
    }
    out.Object_End();
}

void Place_Write(Json_Text& out, const char* name, HWND window) {
    RECT place = {};
    ::GetWindowRect(window, &place);
    out.Object_Begin(name);
    Rectangle_Write(out, place);
    out.Flag("is_shown", ::IsWindowVisible(window) != 0);
    out.Object_End();
}

}  // namespace workbench
