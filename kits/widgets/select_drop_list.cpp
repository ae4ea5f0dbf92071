#include "kits/widgets/select_drop_list.h"

#include <algorithm>
#include <string_view>

#include "kits/widgets/painter.h"
#include "kits/widgets/slider_geometry.h"

namespace {

constexpr int LIST_BORDER = 1;  ///< pixels
constexpr int KEY_BLANK = 32;
constexpr int KEY_RUBOUT = 127;

Drop_List_Runner runner = nullptr;

}  // namespace

void Drop_List_Runner_Set(Drop_List_Runner new_runner) {
    runner = new_runner;
}

int Drop_List_Ask(const Drop_List_Request& request) {
    const int picked = runner != nullptr ? runner(request) : Drop_List_Show(request);
    return picked >= 0 && picked < static_cast<int>(request.item.size()) ? picked : DROP_LIST_NONE;
}

Drop_List::Drop_List(const Drop_List_Request& list_request, const Rect& screen, int list_row_height)
    : request(list_request), row_height(std::max(list_row_height, 1)) {
    const Rect& field = request.field;
    const int below = screen.Bottom() - field.Bottom();
    const int above = field.top - screen.top;
    const int wanted = std::clamp(Item_Nb(), 1, DROP_LIST_ROWS_MAX);
    const auto rows_in = [&](int room) { return std::max((room - 2 * LIST_BORDER) / row_height, 1); };
    const bool fits_below = rows_in(below) >= wanted;
    const bool upwards = !fits_below && below < above;
    rows = std::min(wanted, rows_in(upwards ? above : below));

    area.width = std::max(field.width, DROP_LIST_BAR_WIDTH + 2 * row_height);
    area.height = rows * row_height + 2 * LIST_BORDER;
    area.left = std::max(std::min(field.left, screen.Right() - area.width), screen.left);
    area.top = upwards ? field.top - area.height : field.Bottom();
    if (request.current >= 0 && request.current < Item_Nb()) {
        hot = request.current;
        Scroll_To(hot - rows / 2);
    }
}

int Drop_List::Item_At(Point point) const {
    const int inner_width = area.width - 2 * LIST_BORDER - (Has_Bar() ? DROP_LIST_BAR_WIDTH : 0);
    if (!Rect{LIST_BORDER, LIST_BORDER, inner_width, rows * row_height}.Has_Point(point)) {
        return DROP_LIST_NONE;
    }
    const int item = first + (point.y - LIST_BORDER) / row_height;
    return item < Item_Nb() ? item : DROP_LIST_NONE;
}

Rect Drop_List::Bar() const {
    if (!Has_Bar()) {
        return {};
    }
    return {area.width - LIST_BORDER - DROP_LIST_BAR_WIDTH, LIST_BORDER, DROP_LIST_BAR_WIDTH, rows * row_height};
}

int Drop_List::Thumb_Length() const {
    return Slider_Thumb_Length(Bar().height,
                               Slider_Visible_Part(static_cast<float>(rows), static_cast<float>(Item_Nb())));
}

int Drop_List::Thumb_Offset() const {
    return Slider_Thumb_Offset(Bar().height, Thumb_Length(), static_cast<float>(first),
                               {0.0F, static_cast<float>(Item_Nb() - rows)});
}

void Drop_List::Scroll_To(int row) {
    first = std::clamp(row, 0, std::max(Item_Nb() - rows, 0));
}

void Drop_List::Highlight(int item) {
    if (Item_Nb() == 0) {
        return;
    }
    hot = std::clamp(item, 0, Item_Nb() - 1);
    if (hot < first) {
        Scroll_To(hot);
    } else if (hot >= first + rows) {
        Scroll_To(hot - rows + 1);
    }
}

void Drop_List::Press(Point point) {
    if (state != State::Open) {
        return;
    }
    opening_press = false;
    if (!Rect{0, 0, area.width, area.height}.Has_Point(point)) {
        Close();
        return;
    }
    const Rect bar = Bar();
    if (bar.Has_Point(point)) {
        const int along = point.y - bar.top - Thumb_Offset();
        bar_dragged = along >= 0 && along < Thumb_Length();
        grab = along;
        if (!bar_dragged) {
            Scroll_To(along < 0 ? first - rows : first + rows);
        }
        return;
    }
    const int item = Item_At(point);
    if (item != DROP_LIST_NONE) {
        hot = item;
        state = State::Picked;
    }
}

void Drop_List::Motion(Point point, bool held) {
    if (state != State::Open) {
        return;
    }
    if (!held) {
        bar_dragged = false;
        opening_press = false;
    }
    if (bar_dragged) {
        const Rect bar = Bar();
        const float row = Slider_Value_At(bar.height, Thumb_Length(), point.y - bar.top - grab,
                                          static_cast<float>(first), {0.0F, static_cast<float>(Item_Nb() - rows)});
        Scroll_To(static_cast<int>(std::lround(row)));
        return;
    }
    const int item = Item_At(point);
    if (item != DROP_LIST_NONE) {
        hot = item;
        rows_visited = true;
    }
}

void Drop_List::Release(Point point) {
    bar_dragged = false;
    if (state != State::Open || !opening_press) {
        return;
    }
    opening_press = false;
    const int item = Item_At(point);
    if (rows_visited && item != DROP_LIST_NONE) {
        hot = item;
        state = State::Picked;
    }
}

void Drop_List::Wheel(int notches) {
    const int scrolled = std::clamp(notches, -Item_Nb(), Item_Nb()) * DROP_LIST_WHEEL_ROWS;
    Scroll_To(first - scrolled);
}

void Drop_List::Key(int key) {
    if (state != State::Open) {
        return;
    }
    if (key > KEY_BLANK && key < KEY_RUBOUT) {
        Type(static_cast<char>(key));
        return;
    }
    typed.clear();
    switch (key) {
        case KEY_UP:
        case KEY_LEFT:
            Highlight(hot - 1);
            break;
        case KEY_DOWN:
        case KEY_RIGHT:
            Highlight(hot + 1);
            break;
        case KEY_PAGE_UP:
            Highlight(hot - rows);
            break;
        case KEY_PAGE_DOWN:
            Highlight(hot + rows);
            break;
        case KEY_HOME:
            Highlight(0);
            break;
        case KEY_END:
            Highlight(Item_Nb() - 1);
            break;
        case KEY_ENTER:
        case KEY_BLANK:
            state = hot == DROP_LIST_NONE ? State::Closed : State::Picked;
            break;
        case KEY_ESCAPE:
        case KEY_TAB:
            Close();
            break;
        default:
            break;
    }
}

void Drop_List::Type(char character) {
    const auto find = [&](std::string_view start) {
        for (int i = 0; i < Item_Nb(); ++i) {
            if (std::string_view(request.item[static_cast<std::size_t>(i)].text).starts_with(start)) {
                return i;
            }
        }
        return DROP_LIST_NONE;
    };
    typed.push_back(character);
    int item = find(typed);
    if (item == DROP_LIST_NONE) {
        typed.assign(1, character);
        item = find(typed);
    }
    if (item == DROP_LIST_NONE) {
        typed.clear();
        return;
    }
    Highlight(item);
}

void Drop_List::Close() {
    if (state == State::Open) {
        state = State::Closed;
    }
}

void Drop_List::Paint(Surface& picture) const {
    const Theme& theme = Theme_On(Rgb_Of(request.look.color));
    Draw_Face(picture, {0, 0, area.width, area.height}, theme.field, theme.line_strong, LIST_BORDER);
    const Rect bar = Bar();
    const int width = area.width - 2 * LIST_BORDER - bar.width;
    for (int row = 0; row < rows && first + row < Item_Nb(); ++row) {
        const int item = first + row;
        const Rect place{LIST_BORDER, LIST_BORDER + row * row_height, width, row_height};
        Rgb color = theme.field_text;
        if (item == hot) {
            picture.Fill(place, theme.accent);
            color = theme.accent_text;
        } else if (item == request.current) {
            picture.Fill(place, Mix(theme.field, theme.accent, 30));
        }
        Draw_Caption(picture, {place.left + CAPTION_MARGIN, place.top, width - 2 * CAPTION_MARGIN, row_height},
                     request.look, request.item[static_cast<std::size_t>(item)].text, color, Align::Left);
    }
    if (!bar.Is_Empty()) {
        picture.Fill(bar, Mix(theme.field, theme.panel, 50));
        Draw_Face(picture, {bar.left + 1, bar.top + Thumb_Offset(), bar.width - 2, Thumb_Length()},
                  bar_dragged ? theme.face_pressed : theme.face, theme.line, 1);
    }
}
