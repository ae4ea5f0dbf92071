#include "kits/widgets/theme.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "kits/widgets/device.h"
#include "kits/widgets/widgets_host.h"

namespace {

constexpr Theme DARK_THEME = {
    .panel = 0x383A40,
    .field = 0x26282C,
    .field_text = 0xE6E8EB,
    .face = 0x565A63,
    .face_hover = 0x6B707B,
    .face_pressed = 0x7F8591,
    .line = 0x1B1C20,
    .line_strong = 0x9AA3B2,
    .text = 0xE6E8EB,
    .text_grey = 0x9CA1AB,
    .accent = 0x2B74D4,
    .accent_text = 0xFFFFFF,
};

constexpr Theme LIGHT_THEME = {
    .panel = 0xECEDF0,
    .field = 0xFFFFFF,
    .field_text = 0x1D1F24,
    .face = 0xD0D4DB,
    .face_hover = 0xBCC2CC,
    .face_pressed = 0xA2AAB7,
    .line = 0xA6ABB5,
    .line_strong = 0x4A515E,
    .text = 0x1D1F24,
    .text_grey = 0x71767E,
    .accent = 0x1F6FD0,
    .accent_text = 0xFFFFFF,
};

constexpr int OWN_FONT_HEIGHT = 13;  // pixels at scale 1
constexpr short OWN_BORDER = 1;
constexpr short OWN_SPACE = 3;
constexpr float SCALE_MIN = 0.5F;
constexpr float SCALE_MAX = 8.0F;

Library_Theme theme_now = Library_Theme::Dark;
float library_scale = 1.0F;

short Scaled(short pixels) {
    return static_cast<short>(std::max(1L, std::lround(static_cast<float>(pixels) * library_scale)));
}

/** The share of linear light of each value that a component can have. */
std::array<float, 256> Linear_Table() {
    std::array<float, 256> table = {};
    for (std::size_t at = 0; at < table.size(); at++) {
        const double share = static_cast<double>(at) / 255.0;
        table[at] = static_cast<float>(share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4));
    }
    return table;
}

/** Relative luminance, 0 (black) to 1 (white). */
float Luminance(Rgb color) {
    static const std::array<float, 256> linear = Linear_Table();
    return 0.2126F * linear[(color >> 16U) & 0xFFU] + 0.7152F * linear[(color >> 8U) & 0xFFU] +
           0.0722F * linear[color & 0xFFU];
}

}  // namespace

short BORDER = OWN_BORDER;
short SPACE = OWN_SPACE;

const Theme& Theme_Now() {
    return theme_now == Library_Theme::Dark ? DARK_THEME : LIGHT_THEME;
}

const Theme& Theme_On(Rgb ground) {
    const int brightness = Brightness(ground);
    if (brightness <= Brightness(DARK_THEME.panel)) {
        return DARK_THEME;
    }
    return brightness >= Brightness(LIGHT_THEME.panel) ? LIGHT_THEME : Theme_Now();
}

void Library_Theme_Set(Library_Theme theme) {
    theme_now = theme;
}

void Library_Scale_Set(float scale) {
    library_scale = scale >= SCALE_MIN ? std::min(scale, SCALE_MAX) : SCALE_MIN;  // also for a scale that is no number
    BORDER = Scaled(OWN_BORDER);
    SPACE = Scaled(OWN_SPACE);
    System_Fonts_Forget();
}

int Library_Font_Height() {
    return Scaled(OWN_FONT_HEIGHT);
}

Rgb Rgb_Make(int red, int green, int blue) {
    const auto component = [](int value) { return static_cast<Rgb>(std::clamp(value, 0, 255)); };
    return (component(red) << 16U) | (component(green) << 8U) | component(blue);
}

Rgb Rgb_Of(const Colors& color) {
    return Rgb_Make(color.red, color.green, color.blue);
}

Rgb Mix(Rgb a, Rgb b, int percent) {
    const int weight = std::clamp(percent, 0, 100);
    const auto part = [&](unsigned int shift) {
        const int of_a = static_cast<int>((a >> shift) & 0xFFU);
        const int of_b = static_cast<int>((b >> shift) & 0xFFU);
        return (of_a * (100 - weight) + of_b * weight + 50) / 100;
    };
    return Rgb_Make(part(16), part(8), part(0));
}

int Brightness(Rgb color) {
    const auto part = [&](unsigned int shift) { return static_cast<int>((color >> shift) & 0xFFU); };
    return (part(16) * 299 + part(8) * 587 + part(0) * 114 + 500) / 1000;
}

Rgb Contrast_Color(Rgb ground) {
    // Where black and white contrast equally: both reach 4.58 to 1 there, and more everywhere else.
    constexpr float middle = 0.1791F;
    constexpr Rgb near_black = 0x010101;
    constexpr Rgb white = 0xFFFFFF;
    return Luminance(ground) > middle ? near_black : white;
}

Rgb Shade(Rgb ground, int percent) {
    constexpr int bright = 200;  // lighter than this there is no room upwards
    return Brightness(ground) > bright ? Mix(ground, 0x000000, percent) : Mix(ground, 0xFFFFFF, percent);
}
