#include "kits/widgets/shown_widgets.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <unordered_map>
#include <vector>

#include "kits/widgets/painter.h"
#include "kits/widgets/shown_widgets_note.h"

namespace {

using Widget_List = std::vector<Shown_Widget>;

std::unordered_map<HWND, Widget_List>& Watched() {
    static std::unordered_map<HWND, Widget_List> windows;
    return windows;
}

Widget_List* Watched_Find(HWND window) {
    if (Watched().empty()) {
        return nullptr;
    }
    const auto found = Watched().find(window);
    return found == Watched().end() ? nullptr : &found->second;
}

/** Neighbours share their border lines, so that a common pixel does not count. */
bool Is_Covered(const Shown_Widget& widget, const Rect& rect) {
    return rect.Has_Point({widget.left + widget.width / 2, widget.top + widget.height / 2});
}

void Text_Put(char (&out)[SHOWN_TEXT_SIZE], std::string_view text) {
    std::size_t kept = 0;
    while (kept < text.size() && kept + Character_Length(text, kept) < SHOWN_TEXT_SIZE) {
        kept += Character_Length(text, kept);
    }
    std::memset(out, 0, sizeof out);
    std::copy_n(text.begin(), std::min(kept, text.size()), out);
}

}  // namespace

Number_Text::Number_Text(float value) {
    std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
}

void Window_Widgets_Watch(HWND window, bool on) {
    if (!on || window == nullptr) {
        Shown_Forget(window);
        return;
    }
    try {
        Watched()[window].clear();
    } catch (const std::bad_alloc&) {
        Shown_Forget(window);
    }
}

int Window_Widget_Nb(HWND window) {
    const Widget_List* list = Watched_Find(window);
    return list != nullptr ? static_cast<int>(list->size()) : 0;
}

bool Window_Widget_Get(HWND window, int index, Shown_Widget* out) {
    if (out == nullptr || index < 0 || index >= Window_Widget_Nb(window)) {
        return false;
    }
    *out = (*Watched_Find(window))[static_cast<std::size_t>(index)];
    return true;
}

void Shown_Note(const Tools& widget, const Widget_Note& note) {
    Widget_List* list = Watched_Find(widget.window);
    Rect rect;
    if (list == nullptr || !Widget_Device_Rect(widget, &rect)) {
        return;
    }
    Shown_Widget shown;
    shown.kind = note.kind;
    shown.left = rect.left;
    shown.top = rect.top;
    shown.width = rect.width;
    shown.height = rect.height;
    shown.is_current = note.is_current;
    shown.is_checked = note.is_checked;
    shown.is_inactive = Widget_Inactive(widget);
    Text_Put(shown.name, note.name);
    Text_Put(shown.value, note.value);
    const auto same = std::ranges::find_if(*list, [&](const Shown_Widget& one) {
        return one.left == rect.left && one.top == rect.top && one.width == rect.width && one.height == rect.height;
    });
    if (same != list->end()) {
        *same = shown;  // keeps its place in the order
        return;
    }
    std::erase_if(*list, [&](const Shown_Widget& one) { return Is_Covered(one, rect); });
    try {
        list->push_back(shown);
    } catch (const std::bad_alloc&) {
        // It is painted all the same.
    }
}

void Shown_Cleared(const Tools& widget) {
    Widget_List* list = Watched_Find(widget.window);
    Rect rect;
    if (list != nullptr && Widget_Device_Rect(widget, &rect)) {
        std::erase_if(*list, [&](const Shown_Widget& one) { return Is_Covered(one, rect); });
    }
}

void Shown_Forget(HWND window) {
    Watched().erase(window);
}
