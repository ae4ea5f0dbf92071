/** One-of-N lists. */
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <new>

#include "host/kit_widgets.h"
#include "kits/widgets/axis.h"
#include "kits/widgets/painter.h"
#include "kits/widgets/select_drop_list.h"
#include "kits/widgets/select_geometry.h"
#include "kits/widgets/shown_widgets_note.h"

namespace {

constexpr int PAGE_ITEMS = 10;  ///< items that Page Up and Page Down go

/** The list whose drop list is open; null when it was destroyed meanwhile, or when none is open. */
const Selects* open_list = nullptr;

Select_Layout Layout_Of(const Selects& list) {
    const int caption = list.name[0] == 0 ? 0 : Text_Width(list.name, Widget_Font(list)) + 2 * CAPTION_MARGIN;
    return Select_Layout_Of(list.width, list.height, list.arrow, caption);
}

/** A part's ground by its state. */
Rgb Face_Of(const Theme& theme, bool inactive, bool hovered, bool pressed) {
    if (inactive) {
        return Mix(theme.face, theme.panel, INACTIVE_MIX_PERCENT);
    }
    return pressed ? theme.face_pressed : hovered ? theme.face_hover : theme.face;
}

struct Parts_State {
    Select_Part hovered;
    Select_Part pressed;
};

void Paint_Arrow(Surface& picture, const Selects& list, const Rect& rect, Select_Part part, const Parts_State& state) {
    const Theme& theme = Theme_On(Rgb_Of(list.color));
    const bool previous = part == Select_Part::Previous;
    const int target = list.current + (previous ? -1 : 1);
    const bool inactive = Widget_Inactive(list);
    const bool dead = inactive || list.item_nb == 0 || (previous ? target < 0 : target >= list.item_nb);
    Draw_Face(picture, rect, Face_Of(theme, inactive, state.hovered == part, state.pressed == part), theme.line, 1);
    Draw_Arrow(picture, rect, previous ? Arrow::Left : Arrow::Right, dead ? theme.text_grey : theme.text);
}

void Paint_Field(Surface& picture, const Selects& list, const Rect& rect, const Parts_State& state) {
    const Theme& theme = Theme_On(Rgb_Of(list.color));
    const bool inactive = Widget_Inactive(list);
    const bool hovered = state.hovered == Select_Part::Field;
    const bool pressed = state.pressed == Select_Part::Field;
    Rgb ground = inactive ? Mix(theme.field, theme.panel, INACTIVE_MIX_PERCENT) : theme.field;
    ground = pressed ? Shade(ground, 28) : hovered ? Shade(ground, 14) : ground;
    Draw_Face(picture, rect, ground, hovered || pressed ? theme.line_strong : theme.line, 1);
    if (list.item != nullptr && list.current >= 0 && list.current < list.item_nb) {
        const Select_Item& item = list.item[list.current];
        const std::size_t length = ::strnlen(item.text, sizeof(item.text));
        Draw_Caption(picture, {rect.left + CAPTION_MARGIN, rect.top, rect.width - 2 * CAPTION_MARGIN, rect.height},
                     list, {item.text, length}, inactive ? theme.text_grey : theme.field_text, Align::Left);
    }
}

bool Paint(const Selects& list, const Parts_State& state, bool item_only) {
    if (Widget_Hidden(list)) {
        return false;
    }
    Painter painter(list);
    if (!painter) {
        return false;
    }
    const bool has_item = list.item != nullptr && list.current >= 0 && list.current < list.item_nb;
    const char* const item = has_item ? list.item[list.current].text : "";
    Shown_Note(list, {Widget_Kind::List, list.name, {item, ::strnlen(item, sizeof(Select_Item::text))}});
    const Theme& theme = Theme_On(Rgb_Of(list.color));
    const Select_Layout layout = Layout_Of(list);
    Surface& picture = painter.Picture();
    Paint_Field(picture, list, layout.field, state);
    Paint_Arrow(picture, list, layout.previous, Select_Part::Previous, state);
    Paint_Arrow(picture, list, layout.next, Select_Part::Next, state);
    if (item_only) {  // the caption stays as it is; the arrows show whether there is a further item
        painter.Show_Only({layout.field.left, 0, list.width - layout.field.left, list.height});
        return true;
    }
    const Rgb ground = Rgb_Of(list.color);
    picture.Fill(layout.caption, ground);
    Draw_Caption(
        picture,
        {layout.caption.left + CAPTION_MARGIN, 0, layout.caption.width - CAPTION_MARGIN, layout.caption.height}, list,
        list.name, Widget_Inactive(list) ? theme.text_grey : Contrast_Color(ground), Align::Left);
    return true;
}

/** The item that lies `n` items on, inside the list; also from a current item outside. There must be items. */
int Item_Moved(const Selects& list, int n) {
    constexpr int last_index = 0x7FFF;  // what `current` can hold
    const int last = std::min(list.item_nb - 1, last_index);
    return static_cast<int>(std::clamp<std::int64_t>(static_cast<std::int64_t>(list.current) + n, 0, last));
}

/** What a navigation key asks of a list. */
struct Key_Move {
    int key;
    int virtual_key;
    int items;  ///< steps; FIRST_ITEM and LAST_ITEM go to the ends
};

constexpr int FIRST_ITEM = -0x10000;
constexpr int LAST_ITEM = 0x10000;
constexpr std::array<Key_Move, 8> KEY_MOVES = {{{KEY_HOME, KEY_HOME - KEY_SPECIAL, FIRST_ITEM},
                                                {KEY_END, KEY_END - KEY_SPECIAL, LAST_ITEM},
                                                {KEY_PAGE_UP, KEY_PAGE_UP - KEY_SPECIAL, -PAGE_ITEMS},
                                                {KEY_PAGE_DOWN, KEY_PAGE_DOWN - KEY_SPECIAL, PAGE_ITEMS},
                                                {KEY_LEFT, KEY_LEFT - KEY_SPECIAL, -1},
                                                {KEY_RIGHT, KEY_RIGHT - KEY_SPECIAL, 1},
                                                {KEY_INSERT, KEY_INSERT - KEY_SPECIAL, -1},
                                                {KEY_DELETE, KEY_DELETE - KEY_SPECIAL, 1}}};

/** Steps of the navigation key that the host is passing on, or else of the one that is held; 0 for none. */
int Navigation_Steps() {
    const int key = Key_In_Hand() & 0xFFFF;
    for (const Key_Move& move : KEY_MOVES) {
        if (key != 0 ? key == move.key : Input_Key_Held(move.virtual_key)) {
            return move.items;
        }
    }
    return 0;
}

/** Shows the drop list of a list. The list may be destroyed while it is open: `*alive` tells. */
int Ask_Item(const Selects& list, bool* alive) {
    *alive = true;
    if (open_list != nullptr || list.item == nullptr || list.item_nb <= 0) {
        return DROP_LIST_NONE;
    }
    Rect device;
    if (!Widget_Device_Rect(list, &device)) {
        return DROP_LIST_NONE;
    }
    int picked = DROP_LIST_NONE;
    open_list = &list;
    try {
        Drop_List_Request request;
        request.window = list.window;
        request.field = Layout_Of(list).field;
        request.field.left += device.left;
        request.field.top += device.top;
        request.item.assign(list.item, list.item + list.item_nb);
        request.current = list.current;
        request.look = list;
        picked = Drop_List_Ask(request);
    } catch (const std::bad_alloc&) {  // no memory for the list: it does not open
    }
    *alive = open_list == &list;
    open_list = nullptr;
    return picked;
}

}  // namespace

Selects::Selects() = default;

Selects::~Selects() {
    if (open_list == this) {
        open_list = nullptr;
    }
    delete[] item;
}

Selects::Selects(const Selects& other) : Tools(other), current(other.current), arrow(other.arrow) {
    if (Grow(other.item_nb, 0) != 0 && other.item != nullptr) {
        std::copy_n(other.item, other.item_nb, item);
    }
}

Selects& Selects::operator=(const Selects& other) {
    if (this != &other) {
        Tools::operator=(other);
        current = other.current;
        arrow = other.arrow;
        picked = -1;
        hovered_part = 0;
        pressed_part = 0;
        if (Grow(other.item_nb, 0) != 0 && other.item != nullptr) {
            std::copy_n(other.item, other.item_nb, item);
        }
    }
    return *this;
}

int Selects::Init(HWND init_window) {
    if (Widget_Inactive(*this)) {
        hovered_part = 0;
        pressed_part = 0;
    }
    return Widget_Init(*this, init_window);
}

void Selects::Draw() {
    if (Paint(*this, {static_cast<Select_Part>(hovered_part), static_cast<Select_Part>(pressed_part)}, false)) {
        Count_Draw();
    }
}

void Selects::Adjust() {
    if (Paint(*this, {static_cast<Select_Part>(hovered_part), static_cast<Select_Part>(pressed_part)}, true)) {
        Count_Adjust();
    }
}

int Selects::Read() {
    return picked;
}

int Selects::Select(int up_down) {
    Point pointer;
    const bool over = Widget_Pointer(*this, &pointer) && !Widget_Inactive(*this);
    if (up_down == MOUSE_ASK) {
        return over ? 1 : 0;
    }
    const Select_Part part = over ? Layout_Of(*this).Part_At(pointer) : Select_Part::None;
    const bool pressed = over && (up_down & MOUSE_PRESS) != 0;
    const auto look = [&](Select_Part hovered, Select_Part held) {
        const short new_hovered = static_cast<short>(hovered);
        const short new_pressed = static_cast<short>(held);
        if (new_hovered != hovered_part || new_pressed != pressed_part) {
            hovered_part = new_hovered;
            pressed_part = new_pressed;
            Adjust();
        }
    };
    picked = -1;
    if (!pressed) {
        const bool still_held = (up_down & MOUSE_DRAG) != 0 && static_cast<short>(part) == pressed_part;
        look(part, still_held ? part : Select_Part::None);
        return 0;
    }
    look(part, part);
    if (item_nb <= 0) {
        return 1;
    }
    if (part != Select_Part::Field) {
        const int target = Item_Moved(*this, part == Select_Part::Previous ? -1 : 1);
        picked = static_cast<short>(target == current ? -1 : target);
        return 1;
    }
    bool alive = true;
    const int answer = Ask_Item(*this, &alive);
    if (!alive) {
        return 0;  // nothing of this list may be touched any more
    }
    picked = static_cast<short>(answer < std::min(item_nb, 0x8000) ? answer : -1);
    look(Select_Part::None, Select_Part::None);
    return 1;
}

void Selects::Deselect() {
    const bool changed = hovered_part != 0 || pressed_part != 0;
    hovered_part = 0;
    pressed_part = 0;
    if (changed) {
        Adjust();
    }
}

int Selects::Grow(int nb, int keep) {
    const int wanted = std::max(nb, 0);
    Select_Item* grown = wanted > 0 ? new (std::nothrow) Select_Item[static_cast<std::size_t>(wanted)] : nullptr;
    const bool failed = wanted > 0 && grown == nullptr;
    if (grown != nullptr && keep != 0 && item != nullptr) {
        std::copy_n(item, std::min(wanted, item_nb), grown);
    }
    delete[] item;
    item = grown;
    item_nb = failed ? 0 : wanted;
    return failed ? 0 : 1;
}

int Selects::Scroll(int n) {
    const int steps = n != 0 ? n : Navigation_Steps();
    if (item_nb > 0 && steps != 0) {
        current = static_cast<short>(Item_Moved(*this, steps));
        Adjust();
    }
    return current;
}
