/** The drop list of a Selects: a model of its rows without a window, and the way to the window that shows it.
 *
 *  Opening the list is a modal operation: Drop_List_Show returns when an item was picked or the list was closed. So the
 *  press on a list's field can answer at once with the picked item, although the application hands only the events of
 *  its panel windows on.
 */
#pragma once

#include <string>
#include <vector>

#include "host/kit_widgets.h"
#include "kits/widgets/surface.h"

inline constexpr int CAPTION_MARGIN = 4;        ///< before and behind the caption of a list and of its rows, pixels
inline constexpr int DROP_LIST_ROWS_MAX = 16;   ///< rows shown at once
inline constexpr int DROP_LIST_BAR_WIDTH = 14;  ///< scroll bar of a list with more items, pixels
inline constexpr int DROP_LIST_WHEEL_ROWS = 3;  ///< rows per wheel notch
inline constexpr int DROP_LIST_NONE = -1;       ///< no item: nothing picked, no row under the pointer

/** What a Selects asks for. */
struct Drop_List_Request {
    HWND window = nullptr;          ///< the list's window
    Rect field;                     ///< the field, client pixels of the window, y down
    std::vector<Select_Item> item;  ///< copies: the list may change while it is open
    int current = DROP_LIST_NONE;   ///< item that is marked and in view at first
    Tools look;                     ///< font and colours
};

/** Shows the list until an item is picked. @return the item; DROP_LIST_NONE when the list was closed without a pick */
int Drop_List_Show(const Drop_List_Request& request);

/** Puts another way of asking in place of the window, for tests and scripted applications; null: the window again. */
using Drop_List_Runner = int (*)(const Drop_List_Request& request);
KIT_WIDGETS_API void Drop_List_Runner_Set(Drop_List_Runner runner);
/** Asks the runner, or shows the window. What is no index of an item counts as DROP_LIST_NONE. */
int Drop_List_Ask(const Drop_List_Request& request);

/** An open drop list. Positions are pixels of the list's own picture, (0, 0) at its top left. */
class Drop_List {
  public:
    enum class State { Open, Closed, Picked };

    /** @param screen the room for the list, in the coordinates of `request.field`; @param row_height pixels */
    Drop_List(const Drop_List_Request& request, const Rect& screen, int row_height);

    /** Where the list stands: below the field, above it where there is more room; the field's width at least. */
    Rect Area() const { return area; }
    State Now() const { return state; }
    /** The picked item, DROP_LIST_NONE while open or closed without a pick. */
    int Picked() const { return state == State::Picked ? hot : DROP_LIST_NONE; }
    /** The highlighted item, or DROP_LIST_NONE. */
    int Hot() const { return hot; }
    int First_Row() const { return first; }
    int Rows() const { return rows; }
    bool Has_Bar() const { return rows < Item_Nb(); }
    /** The item whose row covers the point, or DROP_LIST_NONE. */
    int Item_At(Point point) const;

    /** A button went down: a row picks, the bar scrolls, a press outside closes. */
    void Press(Point point);
    /** The pointer moved. @param held a button is held: drags the bar */
    void Motion(Point point, bool held);
    /** A button went up. Picks a row that the pointer was drawn to from the field with the opening press still held. */
    void Release(Point point);
    /** @param notches positive: forward, shows earlier rows */
    void Wheel(int notches);
    /** Arrows, pages, ends and first characters move the highlight; Enter and blank pick; Escape and Tab close. */
    void Key(int key);
    void Close();

    void Paint(Surface& picture) const;

  private:
    int Item_Nb() const { return static_cast<int>(request.item.size()); }
    Rect Bar() const;
    int Thumb_Length() const;
    int Thumb_Offset() const;
    void Scroll_To(int row);
    void Highlight(int item);
    void Type(char character);

    const Drop_List_Request& request;
    Rect area;
    int row_height;
    int rows = 0;
    int first = 0;
    int hot = DROP_LIST_NONE;
    int grab = 0;  ///< pointer offset inside the bar's thumb
    bool bar_dragged = false;
    bool opening_press = true;  ///< the press that opened the list is still held
    bool rows_visited = false;  ///< the pointer was over a row since
    std::string typed;          ///< characters typed so far to find an item
    State state = State::Open;
};
