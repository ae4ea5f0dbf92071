#include "kits/widgets/painter.h"

#include <algorithm>
#include <array>
#include <string>

#include "kits/widgets/window_state.h"

int Widget_Init(Tools& widget, HWND init_window) {
    if (init_window != nullptr) {
        widget.window = init_window;
    }
    Count_Init();
    return 1;
}

Font_Choice Widget_Font(const Tools& widget) {
    return {widget.font_name, widget.font_weight, widget.font_scale, widget.font};
}

int Widget_Border(const Tools& widget) {
    return std::clamp(static_cast<int>(widget.border), 0, std::max(0, std::min<int>(widget.width, widget.height) / 2));
}

// ---- painter

namespace {

/** The part of a picture at a device rectangle that its window can show; one pixel when that is nothing. However large
 * a widget is, its picture takes no more memory than its window. */
Rect Showable(HWND window, const Rect& device) {
    Size client;
    if (!Window_Client_Size(window, &client)) {
        return {};
    }
    const Rect area = {0, 0, device.width, device.height};
    const Rect shown = Rect_Common(area, {-device.left, -device.top, client.width, client.height});
    return shown.Is_Empty() ? Rect_Common(area, {0, 0, 1, 1}) : shown;
}

}  // namespace

Painter::Painter(const Tools& widget)
    : window(widget.window),
      found(Widget_Device_Rect(widget, &device)),
      scratch(device.width, device.height, found ? Showable(window, device) : Rect{}) {}

Painter::Painter(HWND in_window, const Rect& at)
    : window(in_window),
      device(at),
      found(in_window != nullptr && !at.Is_Empty()),
      scratch(at.width, at.height, found ? Showable(window, device) : Rect{}) {}

Painter::~Painter() {
    if (!*this) {
        return;
    }
    if (part_nb == 0) {
        parts[part_nb++] = Area();
    }
    Window_Show(window, device, Picture(), {parts, static_cast<std::size_t>(part_nb)});
}

Painter::operator bool() const {
    return found && scratch.Has_Pixels();
}

bool Painter::Fill_Below(Rgb color) {
    if (Window_Fill(window, device, color)) {
        return true;
    }
    Picture().Fill(Area(), color);
    return false;
}

void Painter::Show_Only(const Rect& part) {
    if (part_nb < PARTS_MAX) {
        parts[part_nb++] = part;
        return;
    }
    for (int i = 1; i < part_nb; i++) {
        parts[0] = Rect_Around(parts[0], parts[i]);
    }
    parts[0] = Rect_Around(parts[0], part);
    part_nb = 1;
}

// ---- common parts

std::array<Rect, 4> Frame_Sides(const Rect& rect, int thickness) {
    const int t = std::clamp(thickness, 0, std::max(0, (std::min(rect.width, rect.height) + 1) / 2));
    return {{{rect.left, rect.top, rect.width, t},
             {rect.left, rect.Bottom() - t, rect.width, t},
             {rect.left, rect.top + t, t, rect.height - 2 * t},
             {rect.Right() - t, rect.top + t, t, rect.height - 2 * t}}};
}

void Draw_Face(Surface& picture, const Rect& rect, Rgb face, Rgb line, int border) {
    picture.Fill(rect, face);
    picture.Frame(rect, border, line);
}

void Draw_Caption(Surface& picture, const Rect& rect, const Tools& widget, std::string_view text, Rgb color,
                  Align align) {
    const Font_Choice font = Widget_Font(widget);
    if (rect.Is_Empty() || text.empty()) {
        return;
    }
    if (Text_Width(text, font) <= rect.width) {
        picture.Text(rect, text, font, color, align);
        return;
    }
    constexpr std::string_view dots = "...";
    const int room = rect.width - Text_Width(dots, font);
    if (room < rect.width / 2) {  // too narrow for dots: as many characters as there is room for
        picture.Text(rect, text, font, color, Align::Left);
        return;
    }
    std::array<char, TEXTS_SIZE + 4> shortened;
    const std::size_t kept = std::min<std::size_t>(Text_Fit(text, font, room), TEXTS_SIZE);
    std::copy_n(text.begin(), kept, shortened.begin());
    std::copy(dots.begin(), dots.end(), shortened.begin() + static_cast<std::ptrdiff_t>(kept));
    picture.Text(rect, {shortened.data(), kept + dots.size()}, font, color, Align::Left);
}

namespace {

/** Opacity, 0 to 255, of a check mark and of its halo in a square. */
struct Check_Mask {
    static constexpr int SIDE_MAX = 64;  // pixels; larger squares get a mark of this size in their middle
    int side = 0;
    std::array<std::uint32_t, SIDE_MAX* SIDE_MAX> halo = {};
    std::array<std::uint32_t, SIDE_MAX* SIDE_MAX> mark = {};
};

/** The mask of a square. All buttons of a panel have one size, so the last one is kept. */
const Check_Mask& Check_Mask_Of(int side) {
    static Check_Mask mask;
    if (mask.side == side) {
        return mask;
    }
    const std::array<Point, 3> line = {
        {{side * 22 / 100, side * 52 / 100}, {side * 42 / 100, side * 72 / 100}, {side * 78 / 100, side * 28 / 100}}};
    const int thickness = std::max(2, side / 7);
    // A white line on black is its own opacity.
    mask.side = side;
    mask.halo.fill(0);
    mask.mark.fill(0);
    Surface(mask.halo.data(), side, side, side, nullptr).Stroke(line, thickness + 2, 0xFF);
    Surface(mask.mark.data(), side, side, side, nullptr).Stroke(line, thickness, 0xFF);
    return mask;
}

}  // namespace

void Draw_Check(Surface& picture, const Rect& rect, Rgb color) {
    constexpr int side_min = 5;
    const int side = std::min({rect.width, rect.height, Check_Mask::SIDE_MAX});
    if (side < side_min) {
        return;
    }
    const Check_Mask& mask = Check_Mask_Of(side);
    const Rect place = {rect.left + (rect.width - side) / 2, rect.top + (rect.height - side) / 2, side, side};
    picture.Stencil(place, mask.halo.data(), Contrast_Color(color));
    picture.Stencil(place, mask.mark.data(), color);
}

void Draw_Arrow(Surface& picture, const Rect& rect, Arrow direction, Rgb color) {
    const bool vertical = direction == Arrow::Up || direction == Arrow::Down;
    const int half = std::clamp(std::min(rect.width, rect.height) / 3, 2, 6);  // rows or columns of the triangle
    const int middle_x = rect.left + rect.width / 2;
    const int middle_y = rect.top + rect.height / 2;
    for (int i = 0; i < half; i++) {  // from the tip to the base
        const int at = direction == Arrow::Down || direction == Arrow::Right ? half / 2 - i : i - half / 2;
        if (vertical) {
            picture.Fill(Rect_Common({middle_x - i, middle_y + at, 2 * i + 1, 1}, rect), color);
        } else {
            picture.Fill(Rect_Common({middle_x + at, middle_y - i, 1, 2 * i + 1}, rect), color);
        }
    }
}
