/** Vertical valuators: a bar that grows from the visual top with the value. */
#include "host/kit_widgets.h"
#include "kits/widgets/axis.h"
#include "kits/widgets/painter.h"
#include "kits/widgets/shown_widgets_note.h"
#include "kits/widgets/slider_geometry.h"

namespace {

constexpr int MARK_HEIGHT = 3;  ///< line at the bar's end, which the pointer drags, pixels

/** A valuator is a slider whose thumb is the mark at the end of the bar. */
int Mark_Offset(const Valuators& valuator, int track) {
    return Slider_Thumb_Offset(track, MARK_HEIGHT, valuator.value, {valuator.minimum, valuator.maximum});
}

int Track_Of(const Valuators& valuator) {
    return valuator.height - 2 * Widget_Border(valuator);
}

bool Paint(const Valuators& valuator, bool hovered, bool dragged) {
    if (Widget_Hidden(valuator)) {
        return false;
    }
    Painter painter(valuator);
    if (!painter) {
        return false;
    }
    Shown_Note(valuator, {Widget_Kind::Value, valuator.name, Number_Text(valuator.value).text});
    const Theme& theme = Theme_Now();
    const bool lively = hovered || dragged;
    Rgb field = theme.field;
    Rgb bar = lively ? Shade(theme.accent, dragged ? 28 : 14) : theme.accent;
    Rgb mark = theme.field_text;
    if (Widget_Inactive(valuator)) {
        field = Mix(field, theme.panel, INACTIVE_MIX_PERCENT);
        bar = Mix(theme.accent, theme.panel, INACTIVE_MIX_PERCENT);
        mark = theme.text_grey;
    }
    const int border = Widget_Border(valuator);
    Draw_Face(painter.Picture(), painter.Area(), field, lively ? theme.line_strong : theme.line, border);
    const Rect inner = painter.Area().Inner(border);
    const Rect before = painter.Picture().Clip_Set(inner);
    const int offset = Mark_Offset(valuator, Track_Of(valuator));
    painter.Picture().Fill({inner.left, inner.top, inner.width, offset}, bar);
    painter.Picture().Fill({inner.left, inner.top + offset, inner.width, MARK_HEIGHT}, mark);
    painter.Picture().Clip_Set(before);
    return true;
}

}  // namespace

int Valuators::Init(HWND init_window) {
    value = Slider_Range{minimum, maximum}.Clamp(value);
    if (Widget_Inactive(*this)) {
        dragged = false;
        hovered = false;
    }
    return Widget_Init(*this, init_window);
}

void Valuators::Draw() {
    if (Paint(*this, hovered, dragged)) {
        Count_Draw();
    }
}

void Valuators::Adjust() {
    if (Paint(*this, hovered, dragged)) {
        Count_Adjust();
    }
}

float Valuators::Read() {
    return value;
}

int Valuators::Select(int up_down) {
    Point pointer;
    const bool over = Widget_Pointer(*this, &pointer) && !Widget_Inactive(*this);
    if (up_down == MOUSE_ASK) {
        return over ? 1 : 0;
    }
    const bool was_hovered = hovered;
    const bool was_dragged = dragged;
    const bool pressed = (up_down & MOUSE_PRESS) != 0;
    hovered = over;
    dragged = pressed ? over : dragged && (up_down & MOUSE_DRAG) != 0 && !Widget_Inactive(*this);
    if (dragged) {
        const int wanted = pointer.y - Widget_Border(*this) - MARK_HEIGHT / 2;
        value = Slider_Value_At(Track_Of(*this), MARK_HEIGHT, wanted, value, {minimum, maximum});
    }
    if (hovered != was_hovered || dragged != was_dragged) {
        Adjust();
    }
    return dragged ? 1 : 0;
}

void Valuators::Deselect() {
    const bool changed = hovered || dragged;
    hovered = false;
    dragged = false;
    if (changed) {
        Adjust();
    }
}

float Valuators::Scroll(int notches) {
    if (!Widget_Inactive(*this)) {
        value = Slider_Scrolled(value, notches, step, {minimum, maximum});
    }
    return value;
}
