// A tool's slider in the picture, with buttons that take over and drop what the tool has begun.
#include <algorithm>
#include <cmath>

#include "workbench/image_view.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

// Pixels at 96 dots per inch.
constexpr int BOX_WIDTH = 460;
constexpr int BOX_HEIGHT = 60;
constexpr int BUTTON_WIDTH = 76;
constexpr int BUTTON_HEIGHT = 24;
constexpr int MARGIN = 8;
constexpr int THUMB_WIDTH = 10;

bool Is_In(const RECT& box, POINT point) {
    return ::PtInRect(&box, point) != 0;
}

}  // namespace

Slider_Boxes Image_View::Tool_Slider_Boxes() const {
    const int margin = look.Px(MARGIN);
    const int width = std::min(look.Px(BOX_WIDTH), state.view_width - 2 * margin);
    const int left = (state.view_width - width) / 2;
    const int bottom = state.view_height - 5 * margin;  // above the scale bar and the side's letter
    Slider_Boxes boxes;
    boxes.all = {left, bottom - look.Px(BOX_HEIGHT), left + width, bottom};
    const int row = boxes.all.bottom - margin - look.Px(BUTTON_HEIGHT);
    boxes.text = {boxes.all.left + margin, boxes.all.top + margin / 2, boxes.all.right - margin, row};
    boxes.drop = {boxes.all.right - margin - look.Px(BUTTON_WIDTH), row, boxes.all.right - margin,
                  boxes.all.bottom - margin};
    boxes.take = boxes.drop;
    ::OffsetRect(&boxes.take, -look.Px(BUTTON_WIDTH) - margin, 0);
    boxes.track = {boxes.all.left + margin, row, boxes.take.left - 2 * margin, boxes.all.bottom - margin};
    return boxes;
}

void Image_View::Draw_Tool_Slider(HDC dc) const {
    const std::optional<Tool_Slider> slider = user.Slider();
    if (!slider) {
        return;
    }
    const Slider_Boxes boxes = Tool_Slider_Boxes();
    Fill(dc, boxes.all, look.ground);
    Frame(dc, boxes.all, 1, look.line);
    Draw_Line(dc, boxes.text, Wide_Of_Utf8(slider->text), look.Font(), look.text, DT_LEFT);
    const int middle = (boxes.track.top + boxes.track.bottom) / 2;
    const int thumb = look.Px(THUMB_WIDTH);
    const int room = std::max<int>(boxes.track.right - boxes.track.left - thumb, 0);
    const int at = boxes.track.left + static_cast<int>(std::lround(room * std::clamp(slider->share, 0.0, 1.0)));
    const int thick = look.Px(2);
    Fill(dc, {boxes.track.left, middle - thick, boxes.track.right, middle + thick}, look.line);
    Fill(dc, {boxes.track.left, middle - thick, at + thumb / 2, middle + thick}, look.accent);
    Fill(dc, {at, boxes.track.top + look.Px(2), at + thumb, boxes.track.bottom - look.Px(2)},
         drag == Drag::Tool_Slider ? look.accent : look.text_grey);
    Fill(dc, boxes.take, look.accent);
    Draw_Line(dc, boxes.take, L"Take over", look.Font(), look.accent_text, DT_CENTER);
    Fill(dc, boxes.drop, look.heading);
    Frame(dc, boxes.drop, 1, look.line);
    Draw_Line(dc, boxes.drop, L"Drop", look.Font(), look.text, DT_CENTER);
}

bool Image_View::Tool_Slider_Press(POINT point) {
    const Slider_Boxes boxes = Tool_Slider_Boxes();
    if (!user.Slider() || !Is_In(boxes.all, point)) {
        return false;
    }
    if (Is_In(boxes.take, point)) {
        user.Slider_End(true);
    } else if (Is_In(boxes.drop, point)) {
        user.Slider_End(false);
    } else {
        drag = Drag::Tool_Slider;
        Tool_Slider_Drag(point.x);
    }
    return true;
}

void Image_View::Tool_Slider_Drag(int x) {
    const Slider_Boxes boxes = Tool_Slider_Boxes();
    const int thumb = look.Px(THUMB_WIDTH);
    const double room = std::max<int>(boxes.track.right - boxes.track.left - thumb, 1);
    user.Slide(std::clamp((x - boxes.track.left - thumb / 2) / room, 0.0, 1.0));
}

}  // namespace workbench
