/** How the widgets tell what they painted. */
#pragma once

#include <string_view>

#include "kits/widgets/shown_widgets.h"

struct Widget_Note {
    Widget_Kind kind = Widget_Kind::Button;
    std::string_view name;
    std::string_view value;
    bool is_current = false;
    bool is_checked = false;
};

/** A widget was painted. What it covers by more than half is no longer seen. */
void Shown_Note(const Tools& widget, const Widget_Note& note);
/** A rectangle of a widget was filled: what lies in it is no longer seen. */
void Shown_Cleared(const Tools& widget);
void Shown_Forget(HWND window);
/** A number as it is read aloud. */
struct Number_Text {
    explicit Number_Text(float value);
    char text[24] = {};
};
