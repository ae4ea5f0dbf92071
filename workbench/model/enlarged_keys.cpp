#include "workbench/model/enlarged_keys.h"

#include <algorithm>

#include "host/kit_widgets.h"

namespace workbench {

namespace {

// A turn of the wheel by n notches makes the view 1 + n/10 times as wide and high about the pointer. Half and double
// undo one another to the last bit, and what comes first must make the view smaller: it cannot grow beyond the data.
constexpr int NOTCHES_NEARER = -2;  // 4/5
constexpr int NOTCHES_HALF = -5;
constexpr int NOTCHES_DOUBLE = 10;
constexpr int NOTCHES_TWO_AND_HALF = 15;

// Half about one point and double about another one moves the view by half of what lies between them.
constexpr int POINTS_APART_PERCENT = 20;  // of the window, for a tenth

struct Window_Point {
    int x;
    int y;
};

struct Letter {
    char letter;
    std::string_view control;  // how its name begins
};
constexpr Letter LETTERS[] = {{'E', "Export"}, {'T', "Display TAG"}, {'C', "Display Cursor"}, {'P', "Display Peak"}};

/** The middle of what the controls at the top leave. */
Window_Point Middle(const Enlarged_View& view) {
    int top = 0;
    for (const Enlarged_Control& control : view.controls) {
        top = std::max(top, control.top + control.height);
    }
    return {view.width / 2, (std::min(top, view.height) + view.height) / 2};
}

/** Zooming keeps the counts' foot in view: about the middle of the window most of them would leave it. */
Window_Point Foot(const Enlarged_View& view) {
    constexpr int inside = 3;  // pixels from the edge: within the plot's box
    return {view.width / 2, view.height - inside};
}

Enlarged_Act Wheel(int notches, Window_Point at) {
    return {Enlarged_Act::Kind::Wheel, notches, at.x, at.y};
}

/** @param right, up the direction, -1, 0 or 1: what lies there comes into view */
std::vector<Enlarged_Act> Move(int right, int up, const Enlarged_View& view) {
    const Window_Point middle = Middle(view);
    const int x = right * view.width * POINTS_APART_PERCENT / 200;
    const int y = -up * std::min(view.height * POINTS_APART_PERCENT / 200, view.height - 1 - middle.y);
    return {Wheel(NOTCHES_HALF, {middle.x + x, middle.y + y}), Wheel(NOTCHES_DOUBLE, {middle.x - x, middle.y - y})};
}

std::vector<Enlarged_Act> Press(std::string_view name, const Enlarged_View& view) {
    const auto found = std::ranges::find_if(
        view.controls, [name](const Enlarged_Control& control) { return control.name.starts_with(name); });
    if (found == view.controls.end()) {
        return {};
    }
    return {{Enlarged_Act::Kind::Press, 0, found->left + found->width / 2, found->top + found->height / 2}};
}

}  // namespace

std::vector<Enlarged_Act> Enlarged_Key_Acts(int key, const Enlarged_View& view) {
    switch (key) {
        case '+':
            return {Wheel(NOTCHES_NEARER, Foot(view))};
        case '-':
            return {Wheel(NOTCHES_HALF, Foot(view)), Wheel(NOTCHES_TWO_AND_HALF, Foot(view))};
        case KEY_LEFT:
            return Move(-1, 0, view);
        case KEY_RIGHT:
            return Move(1, 0, view);
        case KEY_UP:
            return Move(0, 1, view);
        case KEY_DOWN:
            return Move(0, -1, view);
        case KEY_HOME:
            return Press("Reset Zoom", view);
        case KEY_ESCAPE:
            return {{Enlarged_Act::Kind::Close}};
        default:
            break;
    }
    const int upper = key >= 'a' && key <= 'z' ? key - 'a' + 'A' : key;
    for (const Letter& letter : LETTERS) {
        if (letter.letter == upper) {
            return Press(letter.control, view);
        }
    }
    return {};
}

}  // namespace workbench
