/** Scroll bars. */
#include "host/kit_widgets.h"
#include "kits/widgets/axis.h"
#include "kits/widgets/painter.h"
#include "kits/widgets/shown_widgets_note.h"
#include "kits/widgets/slider_geometry.h"

namespace {

constexpr int THUMB_GAP = 1;  ///< pixels between the track's border and the thumb's sides

/** The thumb of a slider along its axis, in the widget's own picture. */
struct Thumb_Place {
    bool vertical = false;
    int start = 0;   ///< first pixel of the track
    int track = 0;   ///< pixels of the track
    int length = 0;  ///< pixels of the thumb
    int offset = 0;  ///< thumb's first pixel from the track's first pixel

    int Along(Point point) const { return (vertical ? point.y : point.x) - start; }
    Rect Thumb(int width, int height, int border) const {
        const int side = border + THUMB_GAP;
        return vertical ? Rect{side, start + offset, width - 2 * side, length}
                        : Rect{start + offset, side, length, height - 2 * side};
    }
};

Thumb_Place Place_Of(const Sliders& slider, float visible_part) {
    Thumb_Place place;
    place.vertical = (slider.style & STYLE_VERTICAL) != 0;
    place.start = Widget_Border(slider);
    place.track = (place.vertical ? slider.height : slider.width) - 2 * place.start;
    place.length = Slider_Thumb_Length(place.track, visible_part);
    place.offset = Slider_Thumb_Offset(place.track, place.length, slider.value, {slider.minimum, slider.maximum});
    return place;
}

bool Paint(const Sliders& slider, float visible_part, bool hovered, bool dragged) {
    if (Widget_Hidden(slider)) {
        return false;
    }
    Painter painter(slider);
    if (!painter) {
        return false;
    }
    Shown_Note(slider, {Widget_Kind::Slider, slider.name, Number_Text(slider.value).text});
    const Theme& theme = Theme_Now();
    const bool inactive = Widget_Inactive(slider);
    Rgb face = dragged ? theme.face_pressed : hovered ? theme.face_hover : theme.face;
    Rgb track = theme.field;
    if (inactive) {
        face = Mix(theme.face, theme.panel, INACTIVE_MIX_PERCENT);
        track = Mix(theme.field, theme.panel, INACTIVE_MIX_PERCENT);
    }
    const int border = Widget_Border(slider);
    Draw_Face(painter.Picture(), painter.Area(), track, theme.line, border);
    const Rect thumb = Place_Of(slider, visible_part).Thumb(slider.width, slider.height, border);
    Draw_Face(painter.Picture(), thumb, face, dragged || hovered ? theme.line_strong : theme.line, 1);
    return true;
}

}  // namespace

Sliders::Sliders() {
    style = STYLE_SLIDER_VERTICAL;
}

int Sliders::Init(HWND init_window) {
    // Panels let scroll positions run past the ends (scrolling under a dragged pointer) and count on being brought back
    // here. A maximum below the minimum leaves the value alone: panels place their contents by it.
    value = Slider_Range{minimum, maximum}.Clamp(value);
    if (Widget_Inactive(*this)) {
        dragged = false;
        hovered = false;
    }
    return Widget_Init(*this, init_window);
}

void Sliders::Draw() {
    if (Paint(*this, visible_part, hovered, dragged)) {
        Count_Draw();
    }
}

void Sliders::Adjust() {
    value = Slider_Range{minimum, maximum}.Clamp(value);
    if (Paint(*this, visible_part, hovered, dragged)) {
        Count_Adjust();
    }
}

float Sliders::Read() {
    return value;
}

int Sliders::Select(int up_down) {
    Point pointer;
    const bool over = Widget_Pointer(*this, &pointer) && !Widget_Inactive(*this);
    if (up_down == MOUSE_ASK) {
        return over ? 1 : 0;
    }
    const bool was_hovered = hovered;
    const bool was_dragged = dragged;
    const bool pressed = (up_down & MOUSE_PRESS) != 0;
    hovered = over;
    // Nobody tells the slider of a release: the first event without a held button ends the drag.
    dragged = dragged && !pressed && (up_down & MOUSE_DRAG) != 0 && !Widget_Inactive(*this);
    const Slider_Range range{minimum, maximum};
    const Thumb_Place place = Place_Of(*this, visible_part);
    int taken = 0;
    if (pressed && over) {
        const int along = place.Along(pointer) - place.offset;
        if (along >= 0 && along < place.length) {
            dragged = true;
            grab = static_cast<short>(along);
        } else {
            const float page = Slider_Page(visible_part, step, range);
            value = range.Clamp(along < 0 ? value - page : value + page);
        }
        taken = 1;
    } else if (dragged) {
        value = Slider_Value_At(place.track, place.length, place.Along(pointer) - grab, value, range);
        taken = 1;
    }
    if (hovered != was_hovered || dragged != was_dragged) {
        Adjust();
    }
    return taken;
}

void Sliders::Deselect() {
    const bool changed = hovered || dragged;
    hovered = false;
    dragged = false;
    if (changed) {
        Adjust();
    }
}

float Sliders::Scroll(int notches) {
    if (!Widget_Inactive(*this)) {
        value = Slider_Scrolled(value, notches, step, {minimum, maximum});
    }
    return value;
}

void Sliders::Larg_Adjust(float visible, float total) {
    visible_part = Slider_Visible_Part(visible, total);
}
