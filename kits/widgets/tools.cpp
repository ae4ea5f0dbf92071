#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "host/kit_widgets.h"
#include "kits/widgets/icons.h"
#include "kits/widgets/painter.h"
#include "kits/widgets/shown_widgets_note.h"

unsigned long Colors::get() const {
    return static_cast<unsigned long>((red & 0xFFU) | ((green & 0xFFU) << 8U) | ((blue & 0xFFU) << 16U));
}

void Tools::Set_Name(const char* format, ...) {
    if (format == nullptr) {
        name[0] = 0;
        return;
    }
    // Through a buffer of its own: the arguments may lie in the caption that is being replaced.
    char made[TOOLS_NAME_SIZE + 4];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(made, sizeof made, format, arguments);
    va_end(arguments);
    if (length < 0) {
        made[0] = 0;
    }
    const std::string_view text(made);
    const std::size_t room = std::min<std::size_t>(name_max, TOOLS_NAME_SIZE - 1);
    std::size_t kept = 0;
    while (kept < text.size() && kept + Character_Length(text, kept) <= room) {
        kept += Character_Length(text, kept);
    }
    std::memset(name, 0, sizeof name);
    std::memcpy(name, made, kept);
}

void Tools::Set_Color(unsigned char red, unsigned char green, unsigned char blue) {
    color.red = red;
    color.green = green;
    color.blue = blue;
}

void Tools::Clear() {
    Clear(color);
}

void Tools::Clear(Colors fill) {
    Painter painter(*this);
    if (painter) {
        painter.Picture().Fill(painter.Area(), Rgb_Of(fill));
        Shown_Cleared(*this);
        Count_Clear();
    }
}

void Tools::Icon(const char* file, unsigned char red, unsigned char green, unsigned char blue, short icon_x,
                 short icon_y) {
    Icon_Draw_Tinted(window, icon_x, icon_y, nullptr, file, Rgb_Make(red, green, blue));
}

void Tools::Cadre() {
    const int thickness = std::max(1, Widget_Border(*this));
    Painter painter(*this);
    if (!painter) {
        return;
    }
    const Rect area = painter.Area();
    painter.Picture().Frame(area, thickness, Theme_Now().line_strong);
    for (const Rect& side : Frame_Sides(area, thickness)) {
        painter.Show_Only(side);
    }
}

void Tools::Fill_Select() {
    Painter painter(*this);
    if (painter) {
        painter.Picture().Fill(painter.Area(), Theme_Now().accent);
    }
}

void Tools::Text(const char* text) {
    Painter painter(*this);
    if (!painter || text == nullptr) {
        painter.Show_Nothing();
        return;
    }
    const Rgb ground = Rgb_Of(color);
    painter.Picture().Fill(painter.Area(), ground);
    Draw_Caption(painter.Picture(), painter.Area().Inner(Widget_Border(*this)), *this, text, Contrast_Color(ground),
                 Align::Left);
}

void Tools::Free() {
    window = nullptr;
}

void Tools::Take_Look(const Tools& host) {
    font_name = host.font_name;
    font_weight = host.font_weight;
    font = host.font;
    font_scale = host.font_scale;
    color = host.color;
    border = host.border;
    window = host.window;
}
