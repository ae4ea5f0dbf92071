/** Walking a tree of rows by keys: which record a key leads to, and how far the tree must scroll to show it. Pure. */
#pragma once

#include <vector>

#include "database/db_list.h"

namespace workbench {

inline constexpr int TREE_ROW_HEIGHT = 18;  ///< of the database panels, pixels

/** Record indices of the displayed rows, top first: what lies in collapsed branches is left out. */
std::vector<int> Tree_Shown(int nb, const DB_List* list_pt);

/** Where a key leads. */
struct Tree_Step {
    int record = -1;      ///< the current record from now on; -1: none
    bool toggle = false;  ///< its branch is to be opened or closed
};
/** Up, Down, Page Up, Page Down, Home, End; Left closes a branch or goes to the parent, Right opens a branch or goes to
 *  its first child.
 *  @param current record index, -1: none yet; a hidden record counts as its nearest shown ancestor
 *  @param key KEY_*; @param page rows of a page
 *  @return the unchanged record for keys that mean nothing */
Tree_Step Tree_Key_Step(int nb, const DB_List* list_pt, int current, int key, int page);

/** The scroll position, pixels, that shows a displayed row completely and moves as little as possible.
 *  @param position the one now; @param box_height of the tree's box */
float Tree_Scroll_To(int row, float position, int box_height);

/** Height of a row's middle below the top of the tree, pixels. */
int Tree_Shown_Middle(int row);

/** Opens or closes every branch. */
void Tree_Expand_All(int nb, DB_List* list_pt, bool open);

}  // namespace workbench
