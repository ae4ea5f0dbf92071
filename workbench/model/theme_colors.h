/** The colours of the application's own drawing, 0x00RRGGBB, and what is drawn on what. */
#pragma once

#include <cstdint>
#include <vector>

namespace workbench {

struct Theme_Colors {
    std::uint32_t ground = 0;   ///< tool area and status line
    std::uint32_t heading = 0;  ///< headings of the tool area, tabs, buttons
    std::uint32_t heading_hover = 0;
    std::uint32_t image_ground = 0;  ///< around the slice, trace view, empty part of a progress bar
    std::uint32_t text = 0;
    std::uint32_t text_grey = 0;    ///< second rank: notes, levels, tabs that are not shown
    std::uint32_t line = 0;         ///< parts areas; no meaning of its own
    std::uint32_t accent = 0;       ///< marks: shown tab, progress, keyboard
    std::uint32_t accent_text = 0;  ///< text on the accent
    std::uint32_t thumb = 0;        ///< the slice slider's thumb on the ground
    std::uint32_t warning = 0;      ///< banner
    std::uint32_t warning_text = 0;
    std::uint32_t panel = 0;  ///< face of the panels
};

const Theme_Colors& Theme_Colors_Of(bool is_dark);

/** What is drawn on what, so that it can be checked that it can be read. */
struct Theme_Pair {
    const char* use = "";
    std::uint32_t ink = 0;
    std::uint32_t ground = 0;
    bool is_text = true;  ///< false: a mark, for which less contrast is enough
};
std::vector<Theme_Pair> Theme_Pairs(const Theme_Colors& colors);

}  // namespace workbench
