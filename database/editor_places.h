/** @file
 *  Where the nodes of the class tree editor stand in its window, for hosts that point at them: for screen readers, or
 *  to ask before a class is taken out. */
#pragma once

#include "database/tool_db_list.h"

/** Installed with the functions below, so it needs no header of the layouts (base/pixel_rectangle.h), which are not.
 *  A rectangle of the window's axis (y upwards): x .. x + width - 1, y .. y + height - 1, pixels. Reaches beyond the
 *  tree's box where the diagram is scrolled. */
struct DB_Node_Box {
    int x = 0;       ///< leftmost pixel
    int y = 0;       ///< lowest pixel
    int width = 0;   ///< pixels
    int height = 0;  ///< pixels
};

/** The node of a record, as the diagram was drawn last with the sliders where they are now.
 *  @param editor a panel in edit mode @param record 0 .. Nb() - 1
 *  @param box receives the rectangle; unchanged without one
 *  @return false when no node is shown for it */
KIT_PANELS_API bool DB_Editor_Node_Box(const Tool_DB_List& editor, int record, DB_Node_Box* box);

/** The record whose node's body is under a point of the window, inside the tree's box: what Delete takes out and a
 *  right press renames there. Record 0, the root, can be renamed only.
 *  @return -1 for none, also on a handle or an expand toggle */
KIT_PANELS_API int DB_Editor_Body_At(const Tool_DB_List& editor, int x, int y);
