/** The tree in browse mode: drawing, hit-testing, toggling and range selection of the rows of a database panel. */
#pragma once

#include "database/db_list.h"
#include "database/tree_rows.h"
#include "host/kit_widgets.h"

inline constexpr int DB_KEY_MASK = 0xFFFF;  ///< of a key code that a panel is given: the key without what else is held

/** One mouse drag for all database panels, of either mode. Anchor and end outlive it: Shift+click goes on from them. */
struct DB_Drag {
    bool active = false;
    const Boxs* owner = nullptr;  ///< tree of the panel in which the drag began; compared only
    int anchor_row = 0;
    int end_row = 0;
    DB_Tree_Point press;
    DB_Tree_Point current;
    bool band_shown = false;  ///< a rubber band is on screen
    int band[4] = {};         ///< its left, bottom, right, top in the window's axis
    const Boxs* left_in =
        nullptr;  ///< tree that shows feedback of a drag that is no more, until it is drawn; compared only

    /** A drag of another tree, whose release went astray, is lost: what it shows there is not this one's to erase. */
    void Begin(const Boxs* tree) {
        if (active && owner != tree) {
            band_shown = false;
            left_in = owner;
        }
        active = true;
        owner = tree;
    }
    /** Whether a drag goes on that began in this tree. */
    bool Is_Of(const Boxs* box) const { return active && owner == box; }
};
extern DB_Drag db_drag;

/** The pointer (YCursor_X, YCursor_Y) in tree coordinates. Positions that are negative or 32768 and more in the window
 *  count as 0.
 *  @param label names the operation when the window gives no device context
 *  @return false without a device context: reported, nothing known */
bool DB_List_Pointer(const Boxs& box, const Sliders& horizontal, const Sliders& vertical, const char* label,
                     DB_Tree_Point* point);

/** Gives a slider the size of what it scrolls, or, when all of it fits, moves it to its start and disables it. Also
 *  brings a position back that dragging pushed beyond the ends. Initialised anew only when something changed; draws
 *  nothing. */
void DB_Slider_Fit(Sliders& slider, const Tree_Extent& extent);

/** Numbers the rows (DB_List::row), sizes both sliders, without drawing them, and draws the rows at their positions. A
 *  band on screen is forgotten: the drawing covers it. Without a device context nothing changes.
 *  In a box without width or height nothing is painted.
 *  @return 1; 0 without records: the tree's ground is drawn empty */
int DB_List_Draw(Boxs* box, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical);
/** Fills `column_x` of the records with columns, pixels from the box's left edge.
 *  @return width of the widest row, pixels; 0 without records or device context */
int DB_List_Text_Pos(Boxs* box, int nb, DB_List* list_pt);
/** A press on the lead cell of a branch shows or hides its rows; any other press begins a drag, a release ends it.
 *  @return 1 when a click or drag selection has ended (to be applied by the caller), else 0 */
int DB_List_Click(Boxs* box, int up_down, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical);
/** Flips the rows from the anchor to the end of the drag; unless Ctrl is held or `mode` has DB_MODE_ADD all others are
 *  unchecked first. Derives the marks of branches and draws. @return 1 */
int DB_List_Select_Range(Boxs* box, int mode, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical);
/** Rubber-band feedback of a drag that began in this tree. @return 1 when it drew, else 0 */
int DB_List_Motion(Boxs* box, int up_down, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical);
/** Moves the rubber band (XOR) to the current point; a null box forgets the band on screen. @return whether it drew */
bool DB_List_Draw_Box(Boxs* box, Sliders* horizontal, Sliders* vertical);
/** The records are about to be freed: everything kept about them is forgotten. */
void DB_List_Forget(const DB_List* list_pt);
/** The tree gets other records or ends: a drag that began in it, and its anchors, are forgotten. */
void DB_Drag_Forget(const Boxs* box);
