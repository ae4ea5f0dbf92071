// The image's keyboard cursor: what the mouse does at its pointer is done at a pixel that keys move.
#include <algorithm>

#include "workbench/image_view.h"

namespace workbench {

void Image_View::Cursor_Set(bool on) {
    is_cursor = on && !content.source.levels.empty();
    if (!is_cursor) {
        Pen_Set(false);
        Pointer_Gone();
        Invalidate();
        return;
    }
    if (!is_over) {
        over_x = content.source.width / 2;
        over_y = content.source.height / 2;
    }
    Cursor_Move(0, 0);
}

void Image_View::Cursor_Move(int dx, int dy) {
    if (!is_cursor) {
        return;
    }
    over_x = std::clamp(over_x + dx, 0, std::max(content.source.width - 1, 0));
    over_y = std::clamp(over_y + dy, 0, std::max(content.source.height - 1, 0));
    is_over = true;
    // Moves the slice when the cursor would leave the view.
    const RECT pixel = Screen_Of({over_x, over_y, over_x + 1, over_y + 1}, look.Px(12));
    const int right_over = static_cast<int>(pixel.right) - state.view_width;
    const int bottom_over = static_cast<int>(pixel.bottom) - state.view_height;
    const int pan_x = pixel.left < 0 ? -static_cast<int>(pixel.left) : right_over > 0 ? -right_over : 0;
    const int pan_y = pixel.top < 0 ? -static_cast<int>(pixel.top) : bottom_over > 0 ? -bottom_over : 0;
    if (pan_x != 0 || pan_y != 0) {
        View_Pan(state, pan_x, pan_y);
        Lay_Out();
        placed(*this);
    }
    if (is_pen_down) {
        Render(user.Tool_Move(Over_Point()));
    }
    Outline_Look();
    Invalidate();
    user.Hover(over_x, over_y);
}

void Image_View::Cursor_Act(bool erase) {
    if (!is_cursor || drag != Drag::None || is_pen_down) {
        return;
    }
    Render(user.Tool_Press(Over_Point(), erase ? Tool_Hand::Right : Tool_Hand::Left));
    user.Tool_Release();
    Outline_Refresh();
}

void Image_View::Pen_Set(bool down) {
    if (down == is_pen_down || (down && (!is_cursor || drag != Drag::None))) {
        return;
    }
    if (down) {
        Render(user.Tool_Press(Over_Point(), Tool_Hand::Pen));  // ends the stroke before it, whose pen it may have been
        is_pen_down = true;
    } else {
        is_pen_down = false;
        user.Tool_Release();
    }
    Invalidate();
}

void Image_View::Pen_Lifted() {
    if (is_pen_down) {
        is_pen_down = false;
        Invalidate();
    }
}

void Image_View::Cursor_Pick() {
    if (is_cursor) {
        user.Pick(over_x, over_y);
    }
}

void Image_View::Zoom_By(int notches) {
    if (!content.source.levels.empty()) {
        Zoom_Set(Zoom_Step(layout, notches));
        Cursor_Move(0, 0);
    }
}

void Image_View::Focus_Set(bool on) {
    has_focus = on;
    Invalidate();
}

void Image_View::Draw_Keyboard_Marks(HDC dc) const {
    if (has_focus) {
        Frame(dc, {0, 0, state.view_width, state.view_height}, look.Px(3), look.accent);
    }
    if (!is_cursor || !is_over) {
        return;
    }
    // A cross with a gap around the pixel, light with a dark edge: it shows on every picture.
    const int x = layout.To_Screen_X(over_x + 0.5);
    const int y = layout.To_Screen_Y(over_y + 0.5);
    const int gap = look.Px(6);
    const int arm = look.Px(14);
    const int thick = look.Px(is_pen_down ? 3 : 1);
    const RECT arms[] = {{x - arm, y - thick / 2, x - gap, y - thick / 2 + thick},
                         {x + gap, y - thick / 2, x + arm, y - thick / 2 + thick},
                         {x - thick / 2, y - arm, x - thick / 2 + thick, y - gap},
                         {x - thick / 2, y + gap, x - thick / 2 + thick, y + arm}};
    for (RECT edge : arms) {
        ::InflateRect(&edge, 1, 1);
        Fill(dc, edge, RGB(0, 0, 0));
    }
    for (const RECT& line : arms) {
        Fill(dc, line, RGB(255, 255, 255));
    }
}

}  // namespace workbench
