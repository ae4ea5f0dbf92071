#include <algorithm>
#include <string_view>

#include "host/kit_dataset.h"
#include "host/kit_widgets.h"
#include "kits/widgets/painter.h"

namespace {

constexpr unsigned int STYLE_BORDERED = 0x2;
constexpr unsigned int STYLE_FILLED = 0x40;
constexpr int TITLE_BAND_DEFAULT = 18;  // pixels, when the host names no height
constexpr int TITLE_MARGIN = 4;         // pixels left of the title
constexpr int BAND_SHADE = 10;          // percent
constexpr int LINE_SHADE = 45;          // percent

/** Height of the title band; 0 without a title. */
int Title_Band(const Boxs& box) {
    if (box.name[0] == 0) {
        return 0;
    }
    const auto value =
        reinterpret_cast<std::uintptr_t>(Fct_Variable_Value("$INTERFACE_TITLE_DIM_SML", nullptr, nullptr, nullptr));
    const int named = static_cast<std::int16_t>(value & 0xFFFFU);
    return std::min<int>(named > 0 ? named : TITLE_BAND_DEFAULT, box.height);
}

Rgb Box_Line(const Boxs& box) {
    return Mix(Rgb_Of(box.color), Contrast_Color(Rgb_Of(box.color)), LINE_SHADE);
}

void Draw_Title(Painter& painter, const Boxs& box, const Rect& inner) {
    const Rect band = {inner.left, inner.top, inner.width, std::min(Title_Band(box), inner.height)};
    if (band.Is_Empty()) {
        return;
    }
    const Rgb ground = Shade(Rgb_Of(box.color), BAND_SHADE);
    painter.Picture().Fill(band, ground);
    Draw_Caption(painter.Picture(), {band.left + TITLE_MARGIN, band.top, band.width - 2 * TITLE_MARGIN, band.height},
                 box, box.name, Contrast_Color(ground), Align::Left);
}

/** Pixels of the border that is drawn. */
int Border_Of(const Boxs& box) {
    return (box.style & STYLE_BORDERED) != 0 ? Widget_Border(box) : 0;
}

/** The border and the title, over what the picture holds. */
void Draw_Marks(Painter& painter, const Boxs& box) {
    const int border = Border_Of(box);
    painter.Picture().Frame(painter.Area(), border, Box_Line(box));
    Draw_Title(painter, box, painter.Area().Inner(border));
}

/** Shows the border and the title band alone. */
void Show_Marks(Painter& painter, const Boxs& box) {
    const int border = Border_Of(box);
    const int band = Title_Band(box);
    if (border == 0 && band == 0) {
        painter.Show_Nothing();
        return;
    }
    for (const Rect& side : Frame_Sides(painter.Area(), border)) {
        painter.Show_Only(side);
    }
    const Rect inner = painter.Area().Inner(border);
    painter.Show_Only({inner.left, inner.top, inner.width, std::min(band, inner.height)});
}

}  // namespace

int Boxs::Init(HWND init_window) {
    return Widget_Init(*this, init_window);
}

void Boxs::Draw() {
    if (Widget_Hidden(*this)) {
        return;
    }
    Painter painter(*this);
    if (!painter) {
        return;
    }
    Count_Draw();
    if ((style & STYLE_FILLED) == 0 || painter.Fill_Below(Rgb_Of(color))) {
        Show_Marks(painter, *this);
    }
    Draw_Marks(painter, *this);
}

void Boxs::Adjust() {
    if (Widget_Hidden(*this)) {
        return;
    }
    Painter painter(*this);
    if (!painter) {
        return;
    }
    Count_Adjust();
    Draw_Marks(painter, *this);
    Show_Marks(painter, *this);
}

int Boxs::Select(int) {
    Point point;
    return Widget_Pointer(*this, &point) ? 1 : 0;
}

void Boxs::Deselect() {}
