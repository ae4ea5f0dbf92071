/** Keys of the enlarged histogram. Its window takes none of its own, so that each key becomes what the mouse would have
 *  done there. Pure. */
#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace workbench {

/** A control that the window shows; client pixels, y down. */
struct Enlarged_Control {
    std::string_view name;
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

/** What the window shows now. */
struct Enlarged_View {
    int width = 0;  ///< client pixels
    int height = 0;
    std::span<const Enlarged_Control> controls;
};

/** Something that the mouse does. */
struct Enlarged_Act {
    enum class Kind {
        Wheel,  ///< `notches` at a point, forward positive
        Press,  ///< the left button, pressed and released at a point
        Close   ///< of the window
    };
    Kind kind = Kind::Close;
    int notches = 0;
    int x = 0;  ///< client pixels, y down
    int y = 0;
    bool operator==(const Enlarged_Act&) const = default;
};

/** + and - zoom to 4/5 and back, the foot of the counts staying where it is; arrows move the view by a tenth of the
 *  window, Home presses "Reset Zoom", E "Export"; T, C and P open the selectors of TAGs, cursor and peaks; Escape
 *  closes.
 *  @param key KEY_* or a character
 *  @return one after the other; empty: the key means nothing here, or its control is not there */
std::vector<Enlarged_Act> Enlarged_Key_Acts(int key, const Enlarged_View& view);

}  // namespace workbench
