// Without a window system there is no picture: texts have a fixed width, so that layouts can be made and checked, and
// nothing is shown.
#include "kits/graph/axis_painter.h"

struct Axis_Painter::Data {
    int font_height = 0;
};

Axis_Painter::Axis_Painter(HDC, const Boxs&, int font_height) : data(std::make_unique<Data>()) {
    data->font_height = font_height;
}

Axis_Painter::~Axis_Painter() = default;

int Axis_Painter::Line_Height() const {
    return data->font_height + 3;
}

int Axis_Painter::Width(const std::string& text) const {
    return static_cast<int>(text.size()) * (data->font_height / 2);
}

int Axis_Painter::Width_Upwards(const std::string& text) const {
    return Width(text);
}

void Axis_Painter::Paint(const Axis_Layout&) const {}

Plot_Rect Axis_Painter::Device_Rect(HDC, int x, int y, int width, int height) {
    return {x, y, x + width, y + height};
}
