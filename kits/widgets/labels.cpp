#include "host/kit_widgets.h"
#include "kits/widgets/painter.h"
#include "kits/widgets/shown_widgets_note.h"

namespace {
constexpr int LABEL_MARGIN = 3;   // pixels left of the text
constexpr int GREY_PERCENT = 50;  // of the panel's colour in an inactive label
}  // namespace

int Labels::Init(HWND init_window) {
    return Widget_Init(*this, init_window);
}

void Labels::Draw() {
    if (Widget_Hidden(*this)) {
        return;
    }
    Painter painter(*this);
    if (!painter) {
        return;
    }
    Count_Draw();
    Shown_Note(*this, {Widget_Kind::Label, name, {}});
    const bool inactive = Widget_Inactive(*this);
    const Rgb ground = inactive ? Mix(Rgb_Of(color), Theme_Now().panel, GREY_PERCENT) : Rgb_Of(color);
    const Rgb text = inactive ? Mix(Contrast_Color(ground), ground, GREY_PERCENT) : Contrast_Color(ground);
    painter.Picture().Fill(painter.Area(), ground);
    Rect room = painter.Area();
    room.left += LABEL_MARGIN;
    room.width -= 2 * LABEL_MARGIN;
    Draw_Caption(painter.Picture(), room, *this, name, text, Align::Left);
}

// A label has no state marks, takes no input and has no value.
void Labels::Adjust() {}
float Labels::Read() {
    return 0.0F;
}
int Labels::Select(int) {
    return 0;
}
void Labels::Deselect() {}
float Labels::Scroll(int) {
    return 0.0F;
}
