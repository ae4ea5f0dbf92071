/** The class tree editor: the class hierarchy as a diagram whose nodes can be moved, renamed and taken out.
 *
 *  Changes go into the host's class objects at once, and the host is told of each changed parent. It may have the
 *  records built anew while it is told: the editor takes the objects out of the records first. `mode` gives the
 *  dimension (1, 2 or 3) in its low bits; with any other there are no class objects: nothing can be changed, and only
 *  the ground of the diagram is drawn.
 *
 *  Without a device context nothing is drawn and nothing changes.
 *
 *  The host may also end the panel while it is told or while the dialog is open: the operations that take a `panel`
 *  then do no more, and touch neither the box nor the sliders.
 */
#pragma once

#include "database/db_list.h"
#include "host/kit_widgets.h"
#include "panels/protocol/panel_life.h"

/** Draws the diagram, assigns the rows (DB_List::row) and sizes both sliders, without drawing them. @return 1 when
 * nodes could be drawn, else 0 */
int DB_Edit_Draw(int mode, Boxs* box, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical);
/** The zone under the pointer: 10 x index + 0 body, 1 parent handle, 2 children handle, 3 expand toggle; 0 also when
 *  the pointer is on no node. */
int DB_Edit_Locate(Boxs* box, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical);
/** A press begins a drag (parent handle: that node; children handle: all children), shows or hides children (toggle)
 *  or, with MOUSE_RIGHT on a body, renames. The release of a drag on a children handle moves the dragged nodes there.
 *  @return 2 when nodes were dropped (the caller rebuilds), else 1 */
int DB_Edit_Click_DB(int mode, Boxs* box, int up_down, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical,
                     const Panel_Watch* panel = nullptr);
/** KEY_DELETE (the low 16 bits) with the pointer inside the box and on a node's body takes its object out of the tree;
 * the object's children stay in its place, in order. The object lives on, without a parent. @return 0 when nothing
 * could be done, else 1 */
int DB_Edit_Key_DB(int mode, Boxs* box, int key, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical,
                   const Panel_Watch* panel = nullptr);
/** Drag feedback and hover look. Draws what changes only. @return 1 when something was drawn, else 0 */
int DB_Edit_Motion_DB(int mode, Boxs* box, int up_down, int nb, DB_List* list_pt, Sliders* horizontal,
                      Sliders* vertical);
/** Moves the drag feedback, inverting lines from the dragged handles, to the drag's current point. A null box forgets
 *  the lines on screen: a drawing covered them. @return 1 when it drew, else 0 */
int DB_Edit_Drag(Boxs* box, int nb, DB_List* list_pt, Sliders* horizontal, Sliders* vertical);
/** The records are about to be freed: dragged and highlighted nodes are forgotten. */
void DB_Edit_Forget(const DB_List* list_pt);

/** Kinds of an expand toggle. */
inline constexpr int DB_EXPAND_COLLAPSED = 1;  ///< plus
inline constexpr int DB_EXPAND_EXPANDED = 2;   ///< minus
inline constexpr int DB_EXPAND_LOCKED = 4;     ///< red

/** The expand toggle of a record with a row. @param fill colour 0x00BBGGRR; @param kind DB_EXPAND_* */
void DB_Draw_Expand(Boxs* box, const DB_List* record, Sliders* horizontal, Sliders* vertical, std::uint32_t fill,
                    int kind);
/** A filled circle, cut at the box. @param x, y its middle pixel, window's axis; @param radius pixels beside it;
 *  @param pen, fill colours 0x00BBGGRR */
void DB_Draw_Circle(Boxs* box, int x, int y, int radius, std::uint32_t pen, std::uint32_t fill);
