/** Inner layout of a Selects, in its own picture: caption and field at the left, the two arrows at the right. */
#pragma once

#include <algorithm>

#include "kits/widgets/surface.h"

/** What of a list the pointer can be over. The numbers are kept in the widget. */
enum class Select_Part : short { None = 0, Field = 1, Previous = 2, Next = 3 };

struct Select_Layout {
    Rect caption;   ///< empty without a caption
    Rect field;     ///< the current item; with the caption it opens the drop list
    Rect previous;  ///< arrow to the item before
    Rect next;      ///< arrow to the item behind

    Select_Part Part_At(Point point) const {
        if (previous.Has_Point(point)) {
            return Select_Part::Previous;
        }
        if (next.Has_Point(point)) {
            return Select_Part::Next;
        }
        return caption.Has_Point(point) || field.Has_Point(point) ? Select_Part::Field : Select_Part::None;
    }
};

/** @param arrow width of an arrow, cut at a third of the list; @param caption_width pixels, cut so that half of the
 *  room beside the arrows is left to the field */
inline Select_Layout Select_Layout_Of(int width, int height, int arrow, int caption_width) {
    Select_Layout layout;
    const int arrow_width = std::clamp(arrow, 0, std::max(width, 0) / 3);
    const int room = width - 2 * arrow_width;
    const int caption = std::clamp(caption_width, 0, std::max(room, 0) / 2);
    layout.caption = {0, 0, caption, height};
    layout.field = {caption, 0, room - caption, height};
    layout.previous = {room, 0, arrow_width, height};
    layout.next = {room + arrow_width, 0, arrow_width, height};
    return layout;
}
