#include "workbench/model/theme_colors.h"

namespace workbench {

namespace {

constexpr Theme_Colors DARK = {
    .ground = 0x2B2D32,
    .heading = 0x3E424A,
    .heading_hover = 0x4C515B,
    .image_ground = 0x121315,
    .text = 0xE6E8EB,
    .text_grey = 0xC6CAD1,
    .line = 0x1B1C20,
    .accent = 0x5EA2F2,
    .accent_text = 0x101216,
    .thumb = 0x878D99,
    .warning = 0x5C4212,
    .warning_text = 0xFFE29E,
    .panel = 0x383A40,
};

constexpr Theme_Colors LIGHT = {
    .ground = 0xE2E4E8,
    .heading = 0xCDD1D8,
    .heading_hover = 0xBFC5CE,
    .image_ground = 0xA0A4AA,
    .text = 0x1D1F24,
    .text_grey = 0x33373F,
    .line = 0xA6ABB5,
    .accent = 0x0E4A96,
    .accent_text = 0xFFFFFF,
    .thumb = 0x6C727E,
    .warning = 0xFFE7AA,
    .warning_text = 0x5C3A00,
    .panel = 0xECEDF0,
};

}  // namespace

const Theme_Colors& Theme_Colors_Of(bool is_dark) {
    return is_dark ? DARK : LIGHT;
}

std::vector<Theme_Pair> Theme_Pairs(const Theme_Colors& colors) {
    return {
        {"voxel text of the status line", colors.text, colors.ground, true},
        {"message of the status line", colors.text_grey, colors.ground, true},
        {"title of a panel", colors.text, colors.heading, true},
        {"title of a panel under the pointer", colors.text, colors.heading_hover, true},
        {"note of a panel", colors.text_grey, colors.heading, true},
        {"note of a panel under the pointer", colors.text_grey, colors.heading_hover, true},
        {"image view without a volume", colors.text_grey, colors.image_ground, true},
        {"text of a prompt", colors.text, colors.ground, true},
        {"field of a prompt", colors.text, colors.heading, true},
        {"line of the trace view", colors.text, colors.image_ground, true},
        {"level in the trace view", colors.text_grey, colors.image_ground, true},
        {"quality of a fit", colors.accent, colors.ground, true},
        {"button that is on", colors.accent_text, colors.accent, true},
        {"heading of the banner", colors.warning_text, colors.warning, true},
        {"mark of the status line", colors.warning_text, colors.warning, true},
        {"line of the banner", colors.text, colors.warning, true},
        {"keyboard mark in the tool area", colors.accent, colors.ground, false},
        {"keyboard mark around the image", colors.accent, colors.image_ground, false},
        {"mark of the shown tab", colors.accent, colors.heading_hover, false},
        {"progress", colors.accent, colors.image_ground, false},
        {"thumb of the slice slider", colors.thumb, colors.ground, false},
        {"dragged thumb of the slice slider", colors.accent, colors.ground, false},
    };
}

}  // namespace workbench
